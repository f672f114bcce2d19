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
    QJsonArray cached() const
    {
        return QJsonDocument::fromJson(defaults.stringForKey(LFPushKeys::kMsgs).toUtf8()).array();
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

    const auto restarted = makeCore();
    restarted->startWithAppkey(QLatin1String(kAppKey), {});
    ASSERT_TRUE(testsupport::waitUntil([&] { return rows(QStringLiteral("SELECT msgid FROM push_clicks")).size() == 2; }));
    restarted->messageCache().waitForQueue();
    ASSERT_TRUE(testsupport::waitUntil([&] {
        restarted->messageCache().waitForQueue();
        return cached().isEmpty();
    }));
    EXPECT_EQ(rows(QStringLiteral("SELECT msgid, ts FROM push_clicks ORDER BY id")),
              QStringList({QStringLiteral("c1|%1").arg(qint64(clock->now())), QStringLiteral("c2|%1").arg(qint64(clock->now()))}));
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
