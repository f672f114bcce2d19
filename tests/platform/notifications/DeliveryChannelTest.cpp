// The delivery channel against a real quorvel-server gateway: live delivery, a gateway
// restart with catch-up and no duplicates, the launch notification, and sends refused
// without the operator's secret.
#include "Application.h"
#include "DesktopNotificationService.h"
#include "DeviceToken.h"
#include "EventLoop.h"
#include "GatewayClient.h"
#include "LogCapture.h"
#include "NotificationChannel.h"
#include "RecordingHttpServer.h"

#include <gtest/gtest.h>

#include <QScopeGuard>
#include <QTemporaryDir>

namespace {

int topicOf(const QJsonObject &userInfo)
{
    const QJsonObject payload = QJsonDocument::fromJson(userInfo.value(QStringLiteral("key1")).toString().toUtf8()).object();
    return payload.value(QStringLiteral("data")).toObject().value(QStringLiteral("topicid")).toInt();
}

class DeliveryChannel : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(server.isRunning()) << server.errorString().toStdString();
        ASSERT_TRUE(gatewayclient::registerDevice(server, token));
    }

    std::unique_ptr<NotificationChannel> makeChannel(const QString &root = {})
    {
        return std::make_unique<NotificationChannel>(QUrl(root.isEmpty() ? gatewayclient::pushRoot(server) : root),
                                                     token, state,
                                                     [this](const QJsonObject &userInfo) { topics << topicOf(userInfo); });
    }

    void send(int topicId)
    {
        const testsupport::ProgramResult sent = gatewayclient::sendToDevice(server, token, topicId);
        ASSERT_EQ(sent.exitCode, 0) << sent.errors.toStdString();
    }

    LocalForumServer server;
    QTemporaryDir folder;
    QByteArray token = DeviceToken::valueStoredIn(folder.filePath(QStringLiteral("token")));
    UserDefaults state{folder.filePath(QStringLiteral("state.ini"))};
    QList<int> topics;
};

TEST_F(DeliveryChannel, AfterTheGatewayRestartsItReconnectsAndCatchesUpWithoutDuplicates)
{
    LogCapture log("quorvel.notifications");
    const std::unique_ptr<NotificationChannel> channel = makeChannel();
    channel->start();
    ASSERT_TRUE(testsupport::waitUntil([&] { return channel->isConnected(); }));
    send(1001);
    ASSERT_TRUE(testsupport::waitUntil([&] { return topics.size() == 1; }));

    ASSERT_TRUE(server.restart());
    send(1002);  // before or after the channel is back: either way it arrives once
    ASSERT_TRUE(testsupport::waitUntil([&] { return topics.size() == 2; }, 20000));
    ASSERT_TRUE(testsupport::waitUntil([&] { return channel->isConnected(); }, 20000));

    // Away while a message is sent: it comes on reconnection, after the last one delivered.
    channel->stop();
    send(1003);
    testsupport::spinFor(300);
    EXPECT_EQ(topics.size(), 2);
    channel->start();
    ASSERT_TRUE(testsupport::waitUntil([&] { return topics.size() == 3; }));
    send(1004);
    ASSERT_TRUE(testsupport::waitUntil([&] { return topics.size() == 4; }));
    testsupport::spinFor(500);

    EXPECT_EQ(topics, QList<int>({1001, 1002, 1003, 1004}));
    EXPECT_EQ(log.lines().size(), 1) << log.lines().join(QLatin1Char('\n')).toStdString();
    EXPECT_TRUE(log.contains(QStringLiteral("lost")));
}

TEST_F(DeliveryChannel, APushRootEndingInASlashReachesTheSameStream)
{
    const std::unique_ptr<NotificationChannel> channel = makeChannel(gatewayclient::pushRoot(server) + QStringLiteral("/"));
    channel->start();
    ASSERT_TRUE(testsupport::waitUntil([&] { return channel->isConnected(); }));
    send(1501);
    ASSERT_TRUE(testsupport::waitUntil([&] { return topics.size() == 1; }));
    EXPECT_EQ(topics, QList<int>({1501}));
}

TEST_F(DeliveryChannel, ADeviceWhoseStreamIsOpenCanBeSentToBeforeItRegistersHere)
{
    // Its daily report was made to an earlier database: only its stream tells of it.
    token = DeviceToken::valueStoredIn(folder.filePath(QStringLiteral("unregistered")));
    const std::unique_ptr<NotificationChannel> channel = makeChannel();
    channel->start();
    ASSERT_TRUE(testsupport::waitUntil([&] { return channel->isConnected(); }));
    send(1601);
    ASSERT_TRUE(testsupport::waitUntil([&] { return topics.size() == 1; }));
    EXPECT_EQ(topics, QList<int>({1601}));
}

TEST_F(DeliveryChannel, UnregisteringStopsDeliveryAndRegisteringAgainResumesIt)
{
    struct Receiver final : ApplicationDelegate
    {
        bool didFinishLaunchingWithOptions(const LaunchOptions &) override { return true; }
        void didReceiveRemoteNotification(const QJsonObject &userInfo) override { topics << topicOf(userInfo); }
        QList<int> topics;
    } delegate;
    DesktopNotificationService service({QUrl(gatewayclient::pushRoot(server)), folder.filePath(QStringLiteral("token")),
                                        folder.filePath(QStringLiteral("service.ini")), &Application::shared(), true});
    Application::shared().setRemoteNotificationService(&service);
    Application::shared().setDelegate(&delegate);
    Application::shared().launch({});
    const auto restore = qScopeGuard([] {
        Application::shared().setDelegate(nullptr);
        Application::shared().setRemoteNotificationService(nullptr);
    });
    ASSERT_EQ(service.deviceToken(), token);
    service.startDelivery();
    ASSERT_TRUE(testsupport::waitUntil([&] { return service.channel().isConnected(); }));

    Application::shared().unregisterForRemoteNotifications();
    EXPECT_FALSE(service.channel().isConnected());
    send(1701);
    testsupport::spinFor(500);
    EXPECT_TRUE(delegate.topics.isEmpty());

    // Registered again: the channel reopens and brings what came meanwhile.
    Application::shared().registerForRemoteNotifications();
    ASSERT_TRUE(testsupport::waitUntil([&] { return delegate.topics.size() == 1; }));
    EXPECT_EQ(delegate.topics, QList<int>({1701}));
    EXPECT_TRUE(service.channel().isConnected());
}

TEST_F(DeliveryChannel, LaunchTakesTheOldestMissedNotificationAndTheChannelBringsTheRestOnce)
{
    send(2001);
    send(2002);
    {
        const std::unique_ptr<NotificationChannel> channel = makeChannel();
        const std::optional<QJsonObject> launch = channel->takeLaunchNotification(5000);
        ASSERT_TRUE(launch.has_value());
        EXPECT_EQ(topicOf(*launch), 2001);
        channel->start();
        ASSERT_TRUE(testsupport::waitUntil([&] { return topics.size() == 1; }));
    }
    EXPECT_EQ(topics, QList<int>({2002}));

    // The next launch of the app: nothing comes twice.
    const std::unique_ptr<NotificationChannel> next = makeChannel();
    EXPECT_FALSE(next->takeLaunchNotification(5000).has_value());
    next->start();
    ASSERT_TRUE(testsupport::waitUntil([&] { return next->isConnected(); }));
    send(2003);
    ASSERT_TRUE(testsupport::waitUntil([&] { return topics.size() == 2; }));
    testsupport::spinFor(300);
    EXPECT_EQ(topics, QList<int>({2002, 2003}));
}

TEST_F(DeliveryChannel, PushSendWithoutTheSecretIsRefusedAndDeliversNothing)
{
    const testsupport::ProgramResult missing = gatewayclient::sendToDevice(
        server, token, 3001, {QStringLiteral("--secret-file"), folder.filePath(QStringLiteral("missing"))});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_TRUE(missing.errors.contains(QStringLiteral("status 401"))) << missing.errors.toStdString();

    QFile wrong(folder.filePath(QStringLiteral("wrong")));
    ASSERT_TRUE(wrong.open(QIODevice::WriteOnly));
    wrong.write(QByteArray(64, 'a'));
    wrong.close();
    const testsupport::ProgramResult guessed =
        gatewayclient::sendToDevice(server, token, 3002, {QStringLiteral("--secret-file"), wrong.fileName()});
    EXPECT_EQ(guessed.exitCode, 1);

    EXPECT_FALSE(makeChannel()->takeLaunchNotification(5000).has_value());
}

TEST_F(DeliveryChannel, TheStreamIsRefusedWithoutAWellFormedDeviceToken)
{
    QNetworkAccessManager network;
    for (const QByteArray &authorization : {QByteArray(), QByteArray("Bearer abc"), "Bearer " + QByteArray(64, '0'),
                                            "Basic " + token.toHex()}) {
        QNetworkRequest request(QUrl(gatewayclient::pushRoot(server) + QStringLiteral("/events?once=1")));
        if (!authorization.isEmpty())
            request.setRawHeader("Authorization", authorization);
        QNetworkReply *reply = network.get(request);
        ASSERT_TRUE(testsupport::waitUntil([reply] { return reply->isFinished(); }));
        EXPECT_EQ(reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), 401) << authorization.constData();
        reply->deleteLater();
    }
}

TEST(DeliveryChannelBackOff, DoublesFromOneSecondUpTo60Seconds)
{
    QList<int> delays;
    for (int failures = 1; failures <= 9; ++failures)
        delays << NotificationChannel::retryDelayMs(failures);
    EXPECT_EQ(delays, QList<int>({1000, 2000, 4000, 8000, 16000, 32000, 60000, 60000, 60000}));
}

// A stand-in gateway that answers each stream request with `answer(n)` (n counting from 1)
// and ends the stream there.
class ScriptedGateway : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(gateway.listen());
        gateway.setResponder([this](const RecordingHttpServer::Request &) { return answer(++answered); });
        channel = std::make_unique<NotificationChannel>(
            QUrl(gateway.baseUrl() + QStringLiteral("push")), QByteArray(32, '\x07'), state,
            [this](const QJsonObject &userInfo) { msgIds << userInfo.value(QStringLiteral("d")).toString(); });
    }

    std::function<RecordingHttpServer::Response(int n)> answer;
    RecordingHttpServer gateway;
    int answered = 0;
    QTemporaryDir folder;
    UserDefaults state{folder.filePath(QStringLiteral("state.ini"))};
    QStringList msgIds;
    std::unique_ptr<NotificationChannel> channel;
};

TEST_F(ScriptedGateway, AnEventTheGatewaySendsAgainIsDeliveredOnce)
{
    const QByteArray first = "id: e:1\ndata: {\"d\":\"m1\"}\n\n";
    const QByteArray second = "id: e:2\ndata: {\"d\":\"m2\"}\n\n";
    answer = [&](int) { return RecordingHttpServer::Response{200, "text/event-stream", first + first + second}; };
    channel->start();
    // Each stream ends, so the channel comes back and is given the same events again; a
    // third request means the second stream was read to its end.
    ASSERT_TRUE(testsupport::waitUntil([&] { return answered >= 3; }, 10000));
    channel->stop();
    EXPECT_EQ(msgIds, QStringList({QStringLiteral("m1"), QStringLiteral("m2")}));
}

TEST_F(ScriptedGateway, AGoodConnectionStartsTheBackOffAgainFromOneSecond)
{
    answer = [](int n) {
        // Two refusals, then a stream the gateway ends at once.
        return n <= 2 ? RecordingHttpServer::Response{503, "text/plain", "busy"}
                      : RecordingHttpServer::Response{200, "text/event-stream", ": hello\n\n"};
    };
    channel->start();
    ASSERT_TRUE(testsupport::waitUntil([&] { return answered == 2 && channel->pendingRetryMs() > 0; }, 10000));
    EXPECT_EQ(channel->pendingRetryMs(), 2000);
    ASSERT_TRUE(testsupport::waitUntil([&] { return answered == 3 && channel->pendingRetryMs() > 0; }, 10000));
    EXPECT_EQ(channel->pendingRetryMs(), 1000);
    channel->stop();
}

} // namespace
