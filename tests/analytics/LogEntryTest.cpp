// The log entry built from the component's state: what each part carries, and the size cap.

#include "AnalyticsFixture.h"

#include <QFile>

using LogEntryTest = AnalyticsFixture;

TEST_F(LogEntryTest, EntryCarriesAppDeviceAndStats)
{
    start();
    context->internal().setWrapperType(QStringLiteral("qml"));
    config().setConfigure(3, QStringLiteral("lfSuccessfulRequests"));
    context->dispatch().send(QStringList{QStringLiteral("qq"), QStringLiteral("u9")}, LFEventTypeProfileSignIn);
    drain();

    const LFTUALogEntry entry = LFTDecode<LFTUALogEntry>(thrift().toData());
    EXPECT_EQ(entry.app_info().key(), kAppKey);
    EXPECT_EQ(entry.app_info().sdk_version(), QStringLiteral("3.6.6"));
    EXPECT_EQ(entry.app_info().sdk_type(), 1);
    EXPECT_EQ(entry.app_info().channel(), QStringLiteral("App Store"));
    EXPECT_EQ(entry.app_info().version(), QStringLiteral("1.0.0"));
    EXPECT_EQ(entry.app_info().package_name(), QStringLiteral("org.quorvel.test"));
    EXPECT_EQ(entry.app_info().wrapper_type(), QStringLiteral("qml"));
    EXPECT_FALSE(entry.app_info().wrapper_versionIsSet());
    EXPECT_EQ(entry.device_info().resolution().height(), 1334);
    EXPECT_EQ(entry.device_info().resolution().width(), 750);
    EXPECT_EQ(entry.device_info().device_id().size(), 40);
    EXPECT_EQ(entry.misc_info().access_type(), 2);
    EXPECT_EQ(entry.client_stats().successful_requests(), 3);
    EXPECT_EQ(entry.client_stats().failed_requests(), 0);
    EXPECT_FALSE(entry.client_stats().last_request_spent_msIsSet());
    EXPECT_EQ(entry.active_user().puid(), QStringLiteral("u9"));
    EXPECT_EQ(entry.active_user().provider(), QStringLiteral("qq"));
    EXPECT_TRUE(entry.activate_msgIsSet());
    EXPECT_FALSE(entry.control_policyIsSet());
}

TEST_F(LogEntryTest, EventsAreGroupedBySessionAndTimesAreMilliseconds)
{
    start();
    events().event(QStringLiteral("open"), QString(), 2, 0);
    events().event(QStringLiteral("share"), QStringLiteral("weibo"), 1, 1500);
    events().event(QStringLiteral("read"), QVariantMap{{QStringLiteral("board"), QStringLiteral("7")}}, 800);
    events().logPageView(QStringLiteral("home"), 9);
    context->location().setLatitude(31.25, 121.5);
    drain();
    const QString first = internal().sessionId();
    clock->advance(60);
    session().appInactivate();
    drain();
    clock->advance(10);
    session().appActivate();
    events().event(QStringLiteral("later"), QString(), 1, 0);
    drain();

    const LFTUALogEntry entry = LFTDecode<LFTUALogEntry>(thrift().toData());
    ASSERT_EQ(entry.instant_msgs().size(), 2);
    const LFTInstantMsg &firstMessages = entry.instant_msgs()[0];
    EXPECT_EQ(firstMessages.id(), first);
    ASSERT_EQ(firstMessages.events().size(), 3);
    const LFTEvent &open = firstMessages.events()[0];
    EXPECT_EQ(open.name(), QStringLiteral("open"));
    EXPECT_EQ(open.properties().value(QStringLiteral("open")).string_value(), QStringLiteral(""));
    EXPECT_EQ(open.acc(), 2);
    EXPECT_FALSE(open.durationIsSet());
    EXPECT_EQ(open.ts(), qint64(kStart) * 1000);
    EXPECT_EQ(firstMessages.events()[1].properties().value(QStringLiteral("share")).string_value(), QStringLiteral("weibo"));
    EXPECT_EQ(firstMessages.events()[1].duration(), 1500);
    EXPECT_EQ(firstMessages.events()[2].properties().value(QStringLiteral("board")).string_value(), QStringLiteral("7"));
    EXPECT_EQ(firstMessages.events()[2].duration(), 800);
    EXPECT_EQ(entry.instant_msgs()[1].events()[0].ts(), qint64(kStart + 70) * 1000);

    ASSERT_EQ(entry.sessions().size(), 1);
    const LFTSession &session = entry.sessions()[0];
    EXPECT_EQ(session.id(), first);
    EXPECT_EQ(session.start_time(), qint64(kStart) * 1000);
    EXPECT_EQ(session.end_time(), qint64(kStart + 60) * 1000);
    EXPECT_EQ(session.duration(), 60000);
    ASSERT_EQ(session.pages().size(), 1);
    EXPECT_EQ(session.pages()[0].page_name(), QStringLiteral("home"));
    EXPECT_EQ(session.pages()[0].duration(), 9000);
    ASSERT_EQ(session.locations().size(), 1);
    EXPECT_EQ(session.locations()[0].lat(), 31.25);
    EXPECT_EQ(session.locations()[0].ts(), qint64(kStart) * 1000);
}

TEST_F(LogEntryTest, StoredImprintGroupsAndBackOffAreCarried)
{
    start();
    LFTImprintValue value;
    value.setValue(QStringLiteral("8"));
    value.setTs(5);
    value.setGuid(QStringLiteral("g"));
    LFTImprint imprint;
    imprint.setProperty({{QStringLiteral("report_policy"), value}});
    imprint.setVersion(2);
    imprint.setChecksum(QStringLiteral("c"));
    config().setConfigure(LFTEncode(imprint), QStringLiteral("lfImprint"));
    config().setConfigure(QVariantMap{{QStringLiteral("SIG7"), 2}}, QStringLiteral("lfExperimentGroupInfo"));
    config().setConfigure(QStringLiteral("1"), QStringLiteral("lfActivateMsg"));
    config().setConfigure(clock->now() - 20, QStringLiteral("lastPostInterval"));
    job().setDefconLevel(2);

    const LFTUALogEntry entry = LFTDecode<LFTUALogEntry>(thrift().toData());
    EXPECT_TRUE(entry.imprint() == imprint);
    EXPECT_EQ(entry.group_info().value(QStringLiteral("SIG7")), 2);
    EXPECT_FALSE(entry.activate_msgIsSet());
    EXPECT_EQ(entry.control_policy().latent().latency(), 0);
    EXPECT_EQ(entry.control_policy().latent().interval(), 20000);
    EXPECT_EQ(app().reportPolicy(), 8u);
}

TEST_F(LogEntryTest, AnEntryOfFourMebibytesIsThrownAwayWithTheCache)
{
    start();
    // One event in memory and in the cache file, its label making the entry `length` bigger.
    auto entryWithLabel = [this](qsizetype length) {
        internal().removeCacheData();
        events().event(QStringLiteral("big"), QString(length, QLatin1Char('x')), 1, 0);
        drain();
        internal().saveAndCleanCache();
        internal().loadCache();
        EXPECT_TRUE(QFile::exists(internal().cacheFilePath()));
        return thrift().toData();
    };
    const qsizetype probe = 1000;
    const qsizetype exact = probe + (LFAnalyticsThrift::kMaxEntrySize - entryWithLabel(probe).size());

    const QByteArray below = entryWithLabel(exact - 1);
    EXPECT_EQ(below.size(), LFAnalyticsThrift::kMaxEntrySize - 1);
    EXPECT_TRUE(internal().hasDataInMemory());

    EXPECT_TRUE(entryWithLabel(exact).isNull());
    EXPECT_FALSE(internal().hasDataInMemory());
    EXPECT_FALSE(QFile::exists(internal().cacheFilePath()));
}

TEST_F(LogEntryTest, RepliesThatCannotBeReadAreLoggedAndAbsent)
{
    app().setLogEnabled(true);
    EXPECT_FALSE(thrift().fromData(QByteArray::fromHex("0800")).has_value());
    EXPECT_TRUE(logged(QStringLiteral("LFLOG: Exception occurred: TTransportException, Not enough bytes remain in buffer")));
    LFTResponse response;
    response.setResp_code(1);
    EXPECT_EQ(thrift().fromData(LFTEncode(response))->resp_code(), 1);
}
