// Session end after a crash or a kill, attribute cleaning of both event kinds, and the carrier.

#include "AnalyticsFixture.h"
#include "LFAnalyticsCache.h"

using CoreFixesTest = AnalyticsFixture;

namespace {
int archivedEvents(const QString &cacheFile)
{
    const LFAnalyticsCache::ReadResult read = LFAnalyticsCache::read(cacheFile);
    return read.containers ? int(read.containers->events.size()) : -1;
}
} // namespace

TEST_F(CoreFixesTest, ACrashWhileInBackgroundSavesWhatMemoryHolds)
{
    start();
    session().appInactivate();
    drain();
    ASSERT_EQ(session().sessionStatus(), LFAnalyticsSession::Ended);
    events().event(QStringLiteral("late"), QString(), 1, 0);
    drain();

    session().setAppCrashed(true);
    session().appInactivate();
    EXPECT_EQ(session().sessionStatus(), LFAnalyticsSession::Ended);
    EXPECT_TRUE(session().appInBackGround());
    EXPECT_EQ(archivedEvents(internal().cacheFilePath()), 1);
    // The session was ended once only.
    const LFAnalyticsCache::ReadResult read = LFAnalyticsCache::read(internal().cacheFilePath());
    ASSERT_TRUE(read.containers);
    EXPECT_EQ(read.containers->terminates.size(), 1);
}

TEST_F(CoreFixesTest, ResignThenTerminateSavesWhatCameInBetween)
{
    start();
    session().appInactivate();
    drain();
    events().event(QStringLiteral("after_resign"), QString(), 1, 0);
    session().appInactivate(true);
    EXPECT_TRUE(session().appBeKilling());
    EXPECT_EQ(archivedEvents(internal().cacheFilePath()), 1);
}

TEST_F(CoreFixesTest, GameEventKeysMustBeTextAndEmptyKeysAreKept)
{
    QVariantMap attributes;
    attributes.insert(QString(), QStringLiteral("missing key"));
    attributes.insert(QStringLiteral("level"), 12);
    const std::optional<QVariantMap> game = events().validateAttributes(attributes, QStringLiteral("gkv"));
    ASSERT_TRUE(game);
    EXPECT_EQ(*game, (QVariantMap{{QStringLiteral("level"), 12}}));
    EXPECT_TRUE(logged(QStringLiteral(
        "LFLOG: (ERROR) Lefiseix event's keys and values must be string ,key's max length 64 and value's max length 256")));

    QVariantMap empty;
    empty.insert(QStringLiteral(""), QStringLiteral("v"));
    const std::optional<QVariantMap> app = events().validateAttributes(empty, QStringLiteral("ekv"));
    ASSERT_TRUE(app);
    EXPECT_EQ(app->value(QStringLiteral("")).toString(), QStringLiteral("v"));
}

TEST_F(CoreFixesTest, CarrierIsSentOnlyWhenThePlatformKnowsOne)
{
    EXPECT_FALSE(thrift().buildMiscInfo().carrierIsSet());
    context.reset();
    LFAnalyticsOptions options;
    options.configStore = std::make_shared<UserDefaults>(folder.filePath(QStringLiteral("other.ini")));
    options.cacheDirectory = folder.filePath(QStringLiteral("other"));
    options.carrierName = [] { return QStringLiteral("中国移动"); };
    context = std::make_unique<LFAnalyticsContext>(std::move(options));
    EXPECT_EQ(thrift().buildMiscInfo().carrier(), QStringLiteral("中国移动"));
}
