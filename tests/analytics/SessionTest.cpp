// Sessions on a manual clock: start, ids, the long-session rule, pages, profiles, location,
// the main-thread dispatcher and the cache file across launches.

#include "AnalyticsFixture.h"

#include <QFile>
#include <QRegularExpression>
#include <QThread>

using SessionTest = AnalyticsFixture;

TEST_F(SessionTest, StartRefusesBlankKeysAndWarnsAboutAChangedOne)
{
    app().startWithAppkey(QStringLiteral(" \n"), 1, QString());
    EXPECT_TRUE(logged(QStringLiteral("LFLOG: appkey can not be found or not valid. LFAnalytics methods must be "
                                      "called after [LFAnalytics startWithAppkey...]!")));
    drain();
    EXPECT_EQ(session().sessionStatus(), LFAnalyticsSession::NeverStarted);

    config().setConfigure(QStringLiteral("older key"), QStringLiteral("appkey"));
    start(6);
    EXPECT_TRUE(logged(QStringLiteral("WARNING: Appkey is different from the past.")));
    EXPECT_EQ(config().stringWithKey(QStringLiteral("appkey")), kAppKey);
    EXPECT_EQ(config().numberWithKey(QStringLiteral("lfcReportPolicy")), 6);
    EXPECT_EQ(config().numberWithKey(QStringLiteral("lfSeparatedTime")), kStart);
    EXPECT_EQ(app().appid(), kAppKey);
}

TEST_F(SessionTest, FirstSessionKeepsTheInitialIdAndLaterOnesGetNewIds)
{
    const QString initial = internal().sessionId();
    EXPECT_TRUE(QRegularExpression(QStringLiteral("^[0-9a-f]{32}$")).match(initial).hasMatch());
    start();
    EXPECT_EQ(internal().sessionId(), initial);

    session().appInactivate();
    drain();
    EXPECT_EQ(session().sessionStatus(), LFAnalyticsSession::Ended);
    clock->advance(30);
    session().appActivate();
    drain();
    EXPECT_NE(internal().sessionId(), initial);
    EXPECT_EQ(session().lastLaunchTime(), kStart + 30);

    session().appActivate();
    EXPECT_FALSE(logged(QStringLiteral("LFLOG: WARNING app has already activate.")));
    app().setLogEnabled(true);
    session().appActivate();
    EXPECT_TRUE(logged(QStringLiteral("LFLOG: WARNING app has already activate.")));
    drain();
}

TEST_F(SessionTest, LongSessionsAreRecordedAsOneHour)
{
    start();
    clock->advance(7200);
    session().appInactivate();
    drain();
    clock->advance(10);
    session().appActivate();
    clock->advance(7201);
    // Without a background task the session stops at once, on this thread.
    app().setBackgroundTaskEnabled(false);
    session().appInactivate();
    const auto terminates = internal().containers().terminates;
    ASSERT_TRUE(terminates.isEmpty());   // saved to the cache and cleaned from memory
    internal().loadCache();
    const auto saved = internal().containers().terminates;
    ASSERT_EQ(saved.size(), 2);
    EXPECT_EQ(saved[0].duration, 7200);
    EXPECT_EQ(saved[1].duration, 3600);
    EXPECT_EQ(saved[1].startTime, kStart + 7210);
    EXPECT_EQ(saved[1].endTime, kStart + 7210 + 7201);
}

TEST_F(SessionTest, TerminatingEndsTheSessionOnceAndAtOnce)
{
    start();
    clock->advance(100);
    session().appInactivate(true);
    EXPECT_TRUE(session().appBeKilling());
    session().appInactivate(true);
    EXPECT_EQ(context->dispatch().pendingCount(), 0);
    internal().loadCache();
    EXPECT_EQ(internal().containers().terminates.size(), 1);
}

TEST_F(SessionTest, PageViewsGoIntoTheSessionRecord)
{
    start();
    app().setLogEnabled(true);
    events().logPageView(QStringLiteral("home"), 12);
    events().endLogPageView(QStringLiteral("never begun"));
    events().beginLogPageView(QStringLiteral("quick"));
    drain();
    clock->advance(0.9);
    events().endLogPageView(QStringLiteral("quick"));
    events().beginLogPageView(QStringLiteral("topic"));
    drain();
    clock->advance(3.7);
    events().endLogPageView(QStringLiteral("topic"));
    drain();
    EXPECT_TRUE(logged(QStringLiteral("LFLOG: pageEnd=topic, duration:3")));

    const auto pages = internal().containers().pages;
    ASSERT_EQ(pages.size(), 2);
    EXPECT_EQ(pages[0].name, QStringLiteral("home"));
    EXPECT_EQ(pages[0].seconds, 12);
    EXPECT_EQ(pages[1].name, QStringLiteral("topic"));
    EXPECT_EQ(pages[1].seconds, 3);

    internal().stopSession(40);
    const auto memory = internal().containers();
    EXPECT_TRUE(memory.pages.isEmpty());
    EXPECT_EQ(memory.terminates.last().pageViews.size(), 2);
}

TEST_F(SessionTest, LocationIsReportedWithOneSessionOnly)
{
    start();
    context->location().setLatitude(31.2, 0);
    internal().stopSession(1);
    context->location().setLatitude(31.2, 121.5);
    internal().stopSession(2);
    internal().stopSession(3);
    const auto terminates = internal().containers().terminates;
    ASSERT_EQ(terminates.size(), 3);
    EXPECT_FALSE(terminates[0].hasLocation());
    EXPECT_TRUE(terminates[1].hasLocation());
    EXPECT_EQ(terminates[1].gps_time, qint64(kStart * 1000));
    EXPECT_FALSE(terminates[2].hasLocation());
}

TEST_F(SessionTest, ProfileSignInAndSignOffSplitTheSession)
{
    start();
    const QString first = internal().sessionId();
    clock->advance(50);
    context->dispatch().send(QStringList{QStringLiteral("weibo"), QStringLiteral("u1")}, LFEventTypeProfileSignIn);
    drain();
    EXPECT_EQ(envelopes.size(), 1);
    EXPECT_NE(internal().sessionId(), first);
    EXPECT_EQ(session().lastLaunchTime(), kStart + 50);
    EXPECT_EQ(config().stringWithKey(QStringLiteral("LFProfilePUID")), QStringLiteral("u1"));
    EXPECT_FALSE(internal().hasDataInMemory());   // handed to the envelope

    const QString second = internal().sessionId();
    context->dispatch().send(QStringList{QStringLiteral("weibo"), QStringLiteral("u1")}, LFEventTypeProfileSignIn);
    drain();
    EXPECT_EQ(internal().sessionId(), second);
    EXPECT_EQ(envelopes.size(), 1);

    context->dispatch().send({}, LFEventTypeProfileSignOff);
    drain();
    EXPECT_EQ(envelopes.size(), 2);
    EXPECT_NE(internal().sessionId(), second);
    EXPECT_TRUE(config().stringWithKey(QStringLiteral("LFProfilePUID")).isNull());
    EXPECT_TRUE(config().stringWithKey(QStringLiteral("LFProfileProvider")).isNull());
}

TEST_F(SessionTest, WorkFromAnyThreadRunsOnTheMainThread)
{
    start();
    app().setLogEnabled(true);
    QThread *worker = QThread::create([this] {
        for (int i = 0; i < 50; ++i)
            events().event(QStringLiteral("from worker"), QString(), 1, 0);
        context->dispatch().send({}, 99);
    });
    worker->start();
    worker->wait();
    delete worker;
    drain();
    EXPECT_EQ(internal().containers().events.size(), 50);
    EXPECT_TRUE(logged(QStringLiteral("LFLOG: WARNING: unkown event type")));
}

TEST_F(SessionTest, RecordsSurviveTheNextLaunchThroughTheCacheFile)
{
    start();
    events().event(QStringLiteral("kept"), QStringLiteral("label"), 3, 0);
    events().event(QStringLiteral("with attributes"), QVariantMap{{QStringLiteral("k"), QStringLiteral("v")}}, 5);
    drain();
    session().appInactivate();
    drain();
    EXPECT_TRUE(QFile::exists(internal().cacheFilePath()));
    EXPECT_FALSE(internal().hasDataInMemory());

    makeContext();
    start();
    const auto memory = internal().containers();
    ASSERT_EQ(memory.events.size(), 1);
    EXPECT_EQ(memory.events[0].event_id, QStringLiteral("kept"));
    EXPECT_EQ(memory.events[0].acc, 3);
    ASSERT_EQ(memory.ekvs.size(), 1);
    EXPECT_EQ(memory.ekvs[0].values.value(QStringLiteral("k")).toString(), QStringLiteral("v"));
    EXPECT_EQ(memory.terminates.size(), 1);

    // A second start of a session in the same launch does not read the file twice.
    session().appActivate();
    drain();
    EXPECT_EQ(internal().containers().events.size(), 1);
}

TEST_F(SessionTest, DamagedCacheFileIsDiscardedWithALogLine)
{
    start();
    events().event(QStringLiteral("kept"), QString(), 1, 0);
    drain();
    session().appInactivate();
    drain();

    QFile file(internal().cacheFilePath());
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    QByteArray bytes = file.readAll();
    bytes[bytes.size() - 3] = char(bytes[bytes.size() - 3] ^ 0x5a);
    file.seek(0);
    file.write(bytes);
    file.close();

    makeContext();
    app().setLogEnabled(true);
    start();
    EXPECT_TRUE(logged(QStringLiteral("LFLOG: cache file discarded: digest mismatch")));
    EXPECT_FALSE(QFile::exists(internal().cacheFilePath()));
    EXPECT_TRUE(internal().containers().events.isEmpty());

    QFile garbage(internal().cacheFilePath());
    ASSERT_TRUE(garbage.open(QIODevice::WriteOnly));
    garbage.write("not an archive");
    garbage.close();
    makeContext();
    app().setLogEnabled(true);
    start();
    EXPECT_TRUE(logged(QStringLiteral("LFLOG: cache file discarded: unknown format")));
}
