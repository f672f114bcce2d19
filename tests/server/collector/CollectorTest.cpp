// The collector in-process on a real database of either store: envelopes made by the real client component
// (plain and encrypted) are opened, stored and reported; bad envelopes get resp_code 2 and
// store nothing; the answer's imprint passes the client's own checksum rule.

#include "BothStores.h"
#include "AnalyticsCollector.h"
#include "AnalyticsReport.h"
#include "AnalyticsStore.h"
#include "LFAnalyticsApp.h"
#include "LFAnalyticsContext.h"
#include "LFAnalyticsEnvelope.h"
#include "LFAnalyticsEvent.h"
#include "LFAnalyticsInternal.h"
#include "LFAnalyticsSession.h"
#include "LFAnalyticsThrift.h"
#include "LFEnvelope.h"
#include "LFWorkDispatch.h"

#include "EventLoop.h"

#include <gtest/gtest.h>

#include <QSqlQuery>
#include <QTemporaryDir>

namespace {
constexpr double kStart = 1700000000;
const QString kAppKey = QStringLiteral("3c1f9a27b84e0d65a2f7c913");

qint64 rows(AnalyticsStore &store, const QString &table)
{
    QSqlQuery query(QStringLiteral("SELECT COUNT(*) FROM %1").arg(table), store.database());
    return query.next() ? query.value(0).toLongLong() : -1;
}
} // namespace

class CollectorTest : public ::testing::TestWithParam<StoreKind>
{
protected:
    void SetUp() override
    {
        QString error;
        store = AnalyticsStore::open(emptyForum(GetParam(), folder), &error);
        ASSERT_TRUE(store) << error.toStdString();
        options.imprint = {{QStringLiteral("report_policy"), QStringLiteral("6")},
                           {QStringLiteral("defcon"), QStringLiteral("7")},
                           {QStringLiteral("codex"), QStringLiteral("1")}};
        collector = std::make_unique<AnalyticsCollector>(*store, options, [] { return qint64(kStart * 1000); });

        clock = std::make_shared<LFManualClock>(kStart);
        LFAnalyticsOptions client;
        client.clock = clock;
        client.configStore = std::make_shared<UserDefaults>(folder.filePath(QStringLiteral("client.ini")));
        client.cacheDirectory = folder.filePath(QStringLiteral("caches"));
        client.networkReachable = [] { return false; };
        context = std::make_unique<LFAnalyticsContext>(std::move(client));
        context->app().setCrashReportEnabled(false);
        context->app().startWithAppkey(kAppKey, 1, QString());
        ASSERT_TRUE(testsupport::waitUntil([this] { return context->dispatch().pendingCount() == 0; }));
    }

    // An envelope of one ended session with a page, two taps and an error.
    QByteArray clientEnvelope()
    {
        LFAnalyticsEvent &events = context->event();
        events.logPageView(QStringLiteral("HomeViewController"), 12);
        events.event(QStringLiteral("advertisingClick"), QString(), 1, 0);
        events.event(QStringLiteral("advertisingClick"), QStringLiteral("banner 2"), 1, 0);
        events.event(QStringLiteral("open_board"), QString(), 1, 0);
        EXPECT_TRUE(testsupport::waitUntil([this] { return context->dispatch().pendingCount() == 0; }));
        context->internal().error(QStringLiteral("Application received signal SIGSEGV\n(null)\n((\n)"));
        clock->advance(30);
        context->internal().stopSession(30);
        return context->envelope().makeEnvelopeData(context->thrift().toData());
    }

    AnalyticsCollector::Reply post(const QByteArray &body)
    {
        return collector->handle("POST", "/app_logs", body);
    }

    QTemporaryDir folder;
    std::unique_ptr<AnalyticsStore> store;
    CollectorOptions options;
    std::unique_ptr<AnalyticsCollector> collector;
    std::shared_ptr<LFManualClock> clock;
    std::unique_ptr<LFAnalyticsContext> context;
};

QUORVEL_FOR_BOTH_STORES(CollectorTest);

TEST_P(CollectorTest, AnAcceptedEnvelopeIsStoredReportedAndAnsweredWithTheImprint)
{
    const AnalyticsCollector::Reply reply = post(clientEnvelope());
    EXPECT_EQ(reply.status, 200);
    EXPECT_EQ(reply.contentType, QByteArray("application/thrift"));
    const LFTResponse response = LFTDecode<LFTResponse>(reply.body);
    EXPECT_EQ(response.resp_code(), 1);
    ASSERT_TRUE(response.imprintIsSet());
    EXPECT_TRUE(LFAnalyticsThrift::validateImprintChecksum(response.imprint()));
    EXPECT_EQ(response.imprint().property().value(QStringLiteral("defcon")).value(), QStringLiteral("7"));
    EXPECT_EQ(response.imprint().property().size(), 3);

    const QString report = AnalyticsReport::render(*store);
    const QString sessionId = context->internal().sessionId();
    EXPECT_EQ(report, QStringLiteral("Events\n"
                                     "  advertisingClick: 2\n"
                                     "  open_board: 1\n"
                                     "Sessions\n"
                                     "  %1 from 2023-11-14T22:13:20Z for 30.000 s\n"
                                     "    page HomeViewController: 12.000 s\n"
                                     "Errors\n"
                                     "  %1 at 2023-11-14T22:13:20Z: Application received signal SIGSEGV\n")
                          .arg(sessionId));
    EXPECT_EQ(rows(*store, QStringLiteral("analytics_devices")), 1);
}

TEST_P(CollectorTest, AnEncryptedEnvelopeIsDecryptedWithTheKeyItsSignatureGives)
{
    context->app().setEncryptEnabled(true);
    const QByteArray bytes = clientEnvelope();
    ASSERT_EQ(LFTDecode<LFEnvelope>(bytes).codex(), 1);
    EXPECT_EQ(LFTDecode<LFTResponse>(post(bytes).body).resp_code(), 1);
    EXPECT_EQ(rows(*store, QStringLiteral("analytics_events")), 3);
}

TEST_P(CollectorTest, BadEnvelopesGetRespCodeTwoAndStoreNothing)
{
    const QByteArray good = clientEnvelope();
    const LFEnvelope envelope = LFTDecode<LFEnvelope>(good);
    auto resealed = [](LFEnvelope changed) {
        changed.setChecksum(LFAnalyticsEnvelope::generateChecksum(changed.signature(), changed.serial_num(),
                                                                  changed.ts_secs(), changed.length(), changed.guid()));
        return LFTEncode(changed);
    };
    LFEnvelope wrongSerial = envelope;
    wrongSerial.setSerial_num(envelope.serial_num() + 1);
    LFEnvelope wrongLength = envelope;
    wrongLength.setLength(envelope.length() - 1);
    LFEnvelope truncated = envelope;
    truncated.setEntity(envelope.entity().chopped(8));
    LFEnvelope claimsEncrypted = envelope;
    claimsEncrypted.setCodex(1);
    LFEnvelope hugeLength = envelope;
    hugeLength.setLength(0x7fffffff);

    const QList<QByteArray> bad = {
        QByteArray(),
        QByteArray("not an envelope at all"),
        good.left(good.size() / 2),
        LFTEncode(wrongSerial),          // checksum no longer matches
        resealed(wrongLength),
        resealed(truncated),
        resealed(claimsEncrypted),
        resealed(hugeLength),
    };
    for (const QByteArray &body : bad) {
        const AnalyticsCollector::Reply reply = post(body);
        EXPECT_EQ(reply.status, 200);
        const LFTResponse response = LFTDecode<LFTResponse>(reply.body);
        EXPECT_EQ(response.resp_code(), AnalyticsCollector::kRespCodeBadEnvelope);
        EXPECT_FALSE(response.imprintIsSet());
        EXPECT_FALSE(response.msg().isEmpty());
    }
    for (const char *table : {"analytics_devices", "analytics_sessions", "analytics_events", "analytics_errors"})
        EXPECT_EQ(rows(*store, QString::fromLatin1(table)), 0) << table;
}

TEST_P(CollectorTest, OnlyPostsToTheLogPathAreTaken)
{
    EXPECT_EQ(collector->handle("GET", "/app_logs", QByteArray()).status, 405);
    EXPECT_EQ(collector->handle("POST", "/api/app_logs", QByteArray()).status, 404);
}

TEST(CollectorOptionsTest, ImprintValuesAndPortComeFromTheCommandLine)
{
    QCommandLineParser parser;
    parser.addOptions(CollectorOptions::commandLineOptions());
    ASSERT_TRUE(parser.parse({QStringLiteral("quorvel-server"), QStringLiteral("--analytics-port"), QStringLiteral("0"),
                              QStringLiteral("--imprint-defcon"), QStringLiteral("2"),
                              QStringLiteral("--imprint-latent-hours"), QStringLiteral("72")}));
    QString error;
    const std::optional<CollectorOptions> options = CollectorOptions::fromParser(parser, &error);
    ASSERT_TRUE(options) << error.toStdString();
    EXPECT_EQ(options->port, 0);
    EXPECT_EQ(options->imprint, (QMap<QString, QString>{{QStringLiteral("defcon"), QStringLiteral("2")},
                                                        {QStringLiteral("latent_hours"), QStringLiteral("72")}}));

    QCommandLineParser bad;
    bad.addOptions(CollectorOptions::commandLineOptions());
    ASSERT_TRUE(bad.parse({QStringLiteral("quorvel-server"), QStringLiteral("--imprint-codex"), QStringLiteral("yes")}));
    EXPECT_FALSE(CollectorOptions::fromParser(bad, &error));
    EXPECT_EQ(error, QStringLiteral("--imprint-codex needs a whole number\n"));
}
