// The notification path end to end, with a small application delegate that starts the push
// component at launch as the app does and keeps what it receives: a notification sent by
// `quorvel-server push send` while the app was away arrives as the launch options, one sent
// while it runs reaches the delegate once with its topic, and the gateway records the click.
#include "Application.h"
#include "DesktopNotificationService.h"
#include "EventLoop.h"
#include "JsonChangDic.h"
#include "LFPush.h"
#include "LocalForumServer.h"
#include "LogCapture.h"
#include "ProgramRun.h"

#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSqlDatabase>
#include <QSqlQuery>

namespace {

constexpr const char *kAppKey = "3c1f9a27b84e0d65a2f7c913";

class RecordingAppDelegate final : public ApplicationDelegate
{
public:
    bool didFinishLaunchingWithOptions(const LaunchOptions &options) override
    {
        launchOptions = options;
        LFPush::startWithAppkey(QLatin1String(kAppKey), options);
        LFPush::registerForRemoteNotifications();
        LFPush::setLogEnabled(true);
        return true;
    }
    void didRegisterForRemoteNotificationsWithDeviceToken(const QByteArray &deviceToken) override
    {
        token = deviceToken;
    }
    void didReceiveRemoteNotification(const QJsonObject &userInfo) override
    {
        LFPush::didReceiveRemoteNotification(userInfo);
        const QJsonValue key1 = userInfo.value(QStringLiteral("key1"));
        const QJsonValue payload = JsonChangDic::dictionaryWithJsonString(
            key1.isString() ? std::optional<QString>(key1.toString()) : std::nullopt);
        received << userInfo;
        topics << payload.toObject().value(QStringLiteral("data")).toObject().value(QStringLiteral("topicid")).toInt();
    }

    LaunchOptions launchOptions;
    QByteArray token;
    QList<QJsonObject> received;
    QList<int> topics;
};

QString pushRoot(const LocalForumServer &server)
{
    return server.origin() + QStringLiteral("/push");
}

void pushSend(const LocalForumServer &server, const QByteArray &token, int topicId)
{
    const testsupport::ProgramResult sent = testsupport::runProgram(
        QStringLiteral(QUORVEL_SERVER_BINARY),
        {QStringLiteral("push"), QStringLiteral("send"), QStringLiteral("--gateway"), pushRoot(server),
         QStringLiteral("--device"), QString::fromLatin1(token.toHex()), QStringLiteral("--topic"),
         QString::number(topicId), QStringLiteral("--section"), QStringLiteral("1"), QStringLiteral("--title"),
         QStringLiteral("新手必读"), QStringLiteral("--user"), QStringLiteral("阿明"), QStringLiteral("--db"),
         server.databasePath()});
    ASSERT_EQ(sent.exitCode, 0) << sent.errors.toStdString();
}

// A device known to the gateway from an earlier run of the app.
bool registerEarlier(const LocalForumServer &server, const QByteArray &token)
{
    QNetworkAccessManager network;
    QNetworkRequest request(QUrl(pushRoot(server) + QStringLiteral("/register")));
    request.setRawHeader("Content-type", "application/json;charset=utf-8");
    const QJsonObject body{{QStringLiteral("header"), QJsonObject()},
                           {QStringLiteral("device_token"), QString::fromLatin1(token.toHex())}};
    QNetworkReply *reply = network.post(request, QJsonDocument(body).toJson());
    testsupport::waitUntil([reply] { return reply->isFinished(); });
    reply->deleteLater();
    return reply->error() == QNetworkReply::NoError;
}

QStringList clickedMessages(const LocalForumServer &server)
{
    QStringList ids;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("clicks"));
        db.setDatabaseName(server.databasePath());
        if (db.open()) {
            QSqlQuery query(QStringLiteral("SELECT msgid FROM push_clicks ORDER BY id"), db);
            while (query.next())
                ids << query.value(0).toString();
        }
    }
    QSqlDatabase::removeDatabase(QStringLiteral("clicks"));
    return ids;
}

TEST(PushEndToEnd, ANotificationSentByTheGatewayReachesTheAppOnceWithItsTopicAndItsClickIsRecorded)
{
    LocalForumServer server;
    ASSERT_TRUE(server.isRunning()) << server.errorString().toStdString();
    LogCapture pushLog("quorvel.push");
    LFPush::setPushUrl(pushRoot(server));
    DesktopNotificationService::Options options;
    options.gateway = QUrl(LFPush::pushUrl());
    DesktopNotificationService notifications(options);
    Application::shared().setRemoteNotificationService(&notifications);
    const QByteArray token = notifications.deviceToken();

    // Sent while the app is not running: it comes as the launch options.
    ASSERT_TRUE(registerEarlier(server, token));
    pushSend(server, token, 1002);

    RecordingAppDelegate app;
    Application::shared().setDelegate(&app);
    ASSERT_TRUE(Application::shared().launch(notifications.launchOptions()));
    notifications.startDelivery();
    const QJsonObject launchNotification = app.launchOptions.remoteNotification;
    EXPECT_EQ(QJsonDocument::fromJson(launchNotification.value(QStringLiteral("key1")).toString().toUtf8())
                  .object().value(QStringLiteral("data")).toObject().value(QStringLiteral("topicid")).toInt(),
              1002);
    ASSERT_TRUE(testsupport::waitUntil([&] { return app.token == token; }));
    ASSERT_TRUE(testsupport::waitUntil([&] { return notifications.channel().isConnected(); }));

    pushSend(server, token, 1001);
    ASSERT_TRUE(testsupport::waitUntil([&] { return app.received.size() == 1; }));
    const QString msgId = app.received.first().value(QStringLiteral("d")).toString();
    EXPECT_EQ(app.topics, QList<int>({1001}));
    EXPECT_EQ(app.received.first().value(QStringLiteral("aps")).toObject().value(QStringLiteral("alert")).toString(),
              QStringLiteral("新手必读"));
    ASSERT_TRUE(testsupport::waitUntil([&] { return clickedMessages(server).contains(msgId); }));

    // A notification whose key1 is not JSON is logged by the helper and survived.
    app.didReceiveRemoteNotification({{QStringLiteral("d"), QStringLiteral("bad")}, {QStringLiteral("key1"), QStringLiteral("{oops")}});
    EXPECT_EQ(app.topics.last(), 0);

    testsupport::spinFor(500);
    EXPECT_EQ(app.topics, QList<int>({1001, 0}));
    EXPECT_EQ(clickedMessages(server).count(msgId), 1);
    EXPECT_FALSE(clickedMessages(server).contains(
        launchNotification.value(QStringLiteral("d")).toString()));
    // Logging is switched on after the start, as the app does: the start itself printed nothing.
    EXPECT_FALSE(pushLog.contains(QStringLiteral("payload is [")));
    EXPECT_TRUE(pushLog.contains(QStringLiteral("register ok for token [%1]!").arg(QString::fromLatin1(token.toHex()))));
    Application::shared().setDelegate(nullptr);
}

} // namespace
