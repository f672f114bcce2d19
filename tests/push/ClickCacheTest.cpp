// Click reports: kept in the user defaults while the gateway cannot be reached, still there
// after a restart, sent with the next report and then dropped; a report without id or time
// refused.
#include "LFPMessageCache.h"
#include "LFPushKeys.h"
#include "PushFixture.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace {

class ClickCache : public PushFixture
{
protected:
    // The clicks kept on disk, read by a settings object of their own.
    QJsonArray cached() const
    {
        const UserDefaults onDisk(defaults.filePath());
        return QJsonDocument::fromJson(onDisk.stringForKey(LFPushKeys::kMsgs).toUtf8()).array();
    }

    QStringList clicks() const { return rows(QStringLiteral("SELECT msgid FROM push_clicks ORDER BY id")); }

    static QJsonObject notification(const char *msgId)
    {
        return QJsonObject{{QStringLiteral("d"), QLatin1String(msgId)},
                           {QStringLiteral("aps"), QJsonObject{{QStringLiteral("alert"), QStringLiteral("a")}}}};
    }
};

TEST_F(ClickCache, ClicksMadeWhileTheGatewayIsAwayAreSentAfterARestart)
{
    {
        // Nothing listens on the discard port of the loopback address.
        const auto offline = makeCore(QStringLiteral("http://127.0.0.1:9/push"));
        offline->didReceiveRemoteNotification(
            QJsonDocument::fromJson(R"({"d":"c1","aps":{"alert":"a"}})").object());
        offline->sendClickReportForRemoteNotification(
            QJsonDocument::fromJson(R"({"d":"c2","aps":{"alert":"b"}})").object());
        offline->messageCache().waitForQueue();
        testsupport::spinFor(500);
        offline->messageCache().waitForQueue();
    }
    ASSERT_EQ(cached().size(), 2);
    EXPECT_EQ(cached()[0].toObject().value(QStringLiteral("msg_id")).toString(), QStringLiteral("c1"));
    EXPECT_EQ(cached()[1].toObject().value(QStringLiteral("msg_id")).toString(), QStringLiteral("c2"));

    // The next run reads the clicks back from the file.
    UserDefaults reread(defaults.filePath());
    const auto restarted = makeCore({}, &reread);
    restarted->startWithAppkey(QLatin1String(kAppKey), {});
    ASSERT_TRUE(testsupport::waitUntil([&] { return rows(QStringLiteral("SELECT msgid FROM push_clicks")).size() == 2; }));
    restarted->messageCache().waitForQueue();
    ASSERT_TRUE(testsupport::waitUntil([&] {
        restarted->messageCache().waitForQueue();
        return cached().isEmpty();
    }));
    // Both go out at once, on connections of their own, so the gateway may store either first.
    EXPECT_EQ(rows(QStringLiteral("SELECT msgid, ts FROM push_clicks ORDER BY msgid")),
              QStringList({QStringLiteral("c1|%1").arg(qint64(clock->now())), QStringLiteral("c2|%1").arg(qint64(clock->now()))}));
}

TEST_F(ClickCache, AClickReportedAgainInTheSameRunIsNotSentTwice)
{
    {
        const auto core = makeCore();
        core->sendClickReportForRemoteNotification(notification("r1"));
        // Another report pass while the first one is on its way takes its snapshot of the
        // cache before the click leaves it.
        core->startApp();
        ASSERT_TRUE(testsupport::waitUntil([&] {
            core->messageCache().waitForQueue();
            return cached().isEmpty() && clicks().size() == 1;
        }));
        core->sendClickReportForRemoteNotification(notification("r1"));
        core->messageCache().waitForQueue();
        testsupport::spinFor(300);
        core->messageCache().waitForQueue();
        EXPECT_TRUE(cached().isEmpty());
    }
    // The next launch: its own click goes, the old one does not come again.
    UserDefaults reread(defaults.filePath());
    const auto next = makeCore({}, &reread);
    next->startWithAppkey(QLatin1String(kAppKey), {});
    next->sendClickReportForRemoteNotification(notification("r2"));
    ASSERT_TRUE(testsupport::waitUntil([&] { return clicks().contains(QStringLiteral("r2")); }));
    testsupport::spinFor(300);
    EXPECT_EQ(clicks(), QStringList({QStringLiteral("r1"), QStringLiteral("r2")}));
}

TEST_F(ClickCache, AReportWithoutIdOrTimeIsRefused)
{
    LFPMessageCache cache(defaults);
    cache.saveCacheMessage(QString(), 10);
    cache.saveCacheMessage(QStringLiteral("x"), 0);
    cache.saveCacheMessage(QStringLiteral("y"), 5);
    cache.saveCacheMessage(QStringLiteral("y"), 6);
    cache.waitForQueue();
    testsupport::spinFor(50);
    EXPECT_EQ(log.lines(), QStringList({QStringLiteral("error:saveCacheMessage:msgId or ts error!"),
                                        QStringLiteral("error:saveCacheMessage:msgId or ts error!")}));
    EXPECT_EQ(cached(), QJsonArray({QJsonObject{{QStringLiteral("msg_id"), QStringLiteral("y")}, {QStringLiteral("ts"), 6}}}));
}

} // namespace
