// Sessions on a manual clock: start, ids, the long-session rule, pages, profiles, location,
// the main-thread dispatcher and the cache file across launches.

#include "AnalyticsFixture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QThread>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

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

    // Next launch: the app goes inactive first, records more, and is then killed.
    makeContext();
    start();
    clock->advance(20);
    session().appInactivate();
    drain();
    events().event(QStringLiteral("after resign"), QString(), 1, 0);
    drain();
    events().event(QStringLiteral("still queued"), QString(), 1, 0);
    session().appInactivate(true);
    EXPECT_EQ(context->dispatch().pendingCount(), 0);
    EXPECT_FALSE(internal().hasDataInMemory());   // saved on this thread, before returning

    makeContext();
    internal().loadCache();
    const auto saved = internal().containers();
    EXPECT_EQ(saved.terminates.size(), 2);   // the second session ended once, at resign
    ASSERT_EQ(saved.events.size(), 2);
    EXPECT_EQ(saved.events[0].event_id, QStringLiteral("after resign"));
    EXPECT_EQ(saved.events[1].event_id, QStringLiteral("still queued"));
}

TEST_F(SessionTest, SessionEndRecordKeepsItsOwnIdAndTimesWhenTheNextSessionBeginsFirst)
{
    start();
    const QString first = internal().sessionId();
    clock->advance(40);
    session().appInactivate();   // the end record is made later, on the main thread
    clock->advance(5);
    session().appActivate();
    drain();
    ASSERT_NE(internal().sessionId(), first);

    const auto terminates = internal().containers().terminates;
    ASSERT_EQ(terminates.size(), 1);
    EXPECT_EQ(terminates[0].session_id, first);
    EXPECT_EQ(terminates[0].startTime, kStart);
    EXPECT_EQ(terminates[0].endTime, kStart + 40);
    EXPECT_EQ(terminates[0].duration, 40);
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
    // Nothing was worked on the worker: it all waits for this thread.
    EXPECT_EQ(context->dispatch().pendingCount(), 51);
    EXPECT_TRUE(internal().containers().events.isEmpty());
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

TEST_F(SessionTest, ProfileChangeBeforeTheSessionStartWasWorkedSendsTheLastLaunchsRecords)
{
    start();
    events().event(QStringLiteral("last launch"), QString(), 1, 0);
    drain();
    session().appInactivate();
    drain();
    ASSERT_TRUE(QFile::exists(internal().cacheFilePath()));

    // The sign-in is queued before the session start has read the cache file.
    makeContext();
    app().startWithAppkey(kAppKey, 1, QString());
    context->dispatch().send(QStringList{QStringLiteral("weibo"), QStringLiteral("u1")}, LFEventTypeProfileSignIn);
    ASSERT_TRUE(testsupport::waitUntil([this] {
        return session().sessionStatus() == LFAnalyticsSession::Active;
    }));
    drain();

    ASSERT_EQ(envelopes.size(), 1);
    const LFTUALogEntry entry = LFTDecode<LFTUALogEntry>(envelopes[0]);
    QStringList names;
    for (const LFTInstantMsg &messages : entry.instant_msgs())
        for (const LFTEvent &event : messages.events())
            names.append(event.name());
    EXPECT_EQ(names, QStringList{QStringLiteral("last launch")});
    EXPECT_EQ(entry.sessions().size(), 2);   // the last launch's and the one split off
    EXPECT_FALSE(QFile::exists(internal().cacheFilePath()));
    EXPECT_FALSE(internal().hasDataInMemory());   // sent once, not read back again
}

TEST_F(SessionTest, CacheFileThatCannotBeOpenedIsKeptAndNotOverwritten)
{
    // A socket in place of the file: it exists, but opening it fails, for root too.
    const QString path = internal().cacheFilePath();
    ASSERT_TRUE(QDir().mkpath(QFileInfo(path).absolutePath()));
    const QByteArray nativePath = QFile::encodeName(path);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ASSERT_LT(size_t(nativePath.size()), sizeof(address.sun_path));
    std::memcpy(address.sun_path, nativePath.constData(), size_t(nativePath.size()));
    const int socketFd = ::socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_GE(socketFd, 0);
    ASSERT_EQ(::bind(socketFd, reinterpret_cast<const sockaddr *>(&address), sizeof(address)), 0);
    ::close(socketFd);

    app().setLogEnabled(true);
    start();
    events().event(QStringLiteral("kept in memory"), QString(), 1, 0);
    drain();
    session().appInactivate();
    drain();
    auto loggedStartingWith = [](const QString &prefix) {
        const QStringList &lines = capturedLogLines();
        return std::any_of(lines.cbegin(), lines.cend(), [&prefix](const QString &line) {
            return line.startsWith(prefix);
        });
    };
    EXPECT_TRUE(loggedStartingWith(QStringLiteral("LFLOG: cache file not read: ")));
    EXPECT_FALSE(loggedStartingWith(QStringLiteral("LFLOG: cache file discarded")));
    const QFileInfo kept(path);
    EXPECT_TRUE(kept.exists());
    EXPECT_FALSE(kept.isFile());   // still the socket: neither removed nor replaced
    EXPECT_EQ(internal().containers().events.size(), 1);
    EXPECT_EQ(internal().containers().terminates.size(), 1);

    // An envelope takes what memory holds and leaves the unread file alone.
    session().appActivate();
    context->dispatch().send(QStringList{QStringLiteral("weibo"), QStringLiteral("u1")}, LFEventTypeProfileSignIn);
    drain();
    EXPECT_EQ(envelopes.size(), 1);
    EXPECT_FALSE(internal().hasDataInMemory());
    EXPECT_TRUE(QFileInfo(path).exists());
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
