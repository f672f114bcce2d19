// The operator's send: refused without the secret, the target checked, one stored and
// delivered message per device in order; the notification `push send` builds; the secret
// file; and where a reconnecting stream resumes.
#include "GatewayFixture.h"
#include "PushDeliveryHub.h"
#include "PushGatewaySecret.h"
#include "PushSendCommand.h"

#include <QFile>

namespace {

class GatewaySend : public GatewayFixture
{
protected:
    QJsonObject sendBody(const QJsonObject &target, const QString &msgId = QStringLiteral("m1")) const
    {
        return {{QStringLiteral("target"), target},
                {QStringLiteral("user_info"), PushSendCommand::userInfo(msgId, {1001, 1, {}, {}, {}}, QStringLiteral("a"))}};
    }
    GatewayReply send(const QJsonObject &target, const QByteArray &secret = kSecret)
    {
        return post(QStringLiteral("/send"), sendBody(target), "Bearer " + secret);
    }
};
QUORVEL_FOR_BOTH_STORES(GatewaySend);

TEST_P(GatewaySend, WithoutTheSecretNothingIsStoredOrDelivered)
{
    post(QStringLiteral("/register"), device(kToken));
    const QJsonObject all{{QStringLiteral("all"), true}};
    EXPECT_EQ(post(QStringLiteral("/send"), sendBody(all)).status, 401);
    EXPECT_EQ(send(all, QByteArray(64, 't')).status, 401);
    EXPECT_EQ(send(all, kSecret.left(63)).status, 401);
    EXPECT_EQ(post(QStringLiteral("/send"), sendBody(all), "Basic " + kSecret).status, 401);
    EXPECT_TRUE(delivered.isEmpty());
    EXPECT_TRUE(store->messagesAfter(kToken, 0).isEmpty());
}

TEST_P(GatewaySend, EachMatchingDeviceGetsItsOwnNumberedMessage)
{
    post(QStringLiteral("/register"), device(kToken));
    post(QStringLiteral("/register"), device(kOtherToken));
    post(QStringLiteral("/tag/add"), device(kOtherToken, {{QStringLiteral("tags"), QJsonArray{QStringLiteral("组队")}}}));

    const GatewayReply toAll = send({{QStringLiteral("all"), true}});
    EXPECT_EQ(toAll.status, 200);
    EXPECT_EQ(toAll.body.value(QStringLiteral("devices")).toInt(), 2);
    EXPECT_EQ(send({{QStringLiteral("tag"), QStringLiteral("组队")}}).body.value(QStringLiteral("devices")).toInt(), 1);
    EXPECT_EQ(send({{QStringLiteral("device"), kToken.toUpper()}}).body.value(QStringLiteral("devices")).toInt(), 1);
    EXPECT_EQ(send({{QStringLiteral("alias"), QStringLiteral("nobody")}}).status, 404);
    EXPECT_EQ(send({{QStringLiteral("device"), QString(64, QLatin1Char('c'))}}).status, 404);

    ASSERT_EQ(delivered.size(), 4);
    QStringList order;
    for (const Delivered &message : delivered)
        order << message.token.left(1) + QString::number(message.id);
    EXPECT_EQ(order, QStringList({QStringLiteral("a1"), QStringLiteral("b2"), QStringLiteral("b3"), QStringLiteral("a4")}));
    EXPECT_EQ(store->messagesAfter(kToken, 1).size(), 1);
    EXPECT_EQ(store->messagesAfter(kOtherToken, 0).size(), 2);
}

TEST_P(GatewaySend, BadSendBodiesAreRefused)
{
    post(QStringLiteral("/register"), device(kToken));
    QJsonObject noId = sendBody({{QStringLiteral("all"), true}});
    noId.insert(QStringLiteral("user_info"), QJsonObject{{QStringLiteral("aps"), QJsonObject()}});
    QJsonObject huge = sendBody({{QStringLiteral("all"), true}});
    QJsonObject bigInfo = huge.value(QStringLiteral("user_info")).toObject();
    bigInfo.insert(QStringLiteral("pad"), QString(5000, QLatin1Char('x')));
    huge.insert(QStringLiteral("user_info"), bigInfo);
    for (const QJsonObject &body : {sendBody({}), sendBody({{QStringLiteral("all"), true}, {QStringLiteral("tag"), QStringLiteral("t")}}),
                                    sendBody({{QStringLiteral("all"), false}}), sendBody({{QStringLiteral("device"), QStringLiteral("ab")}}),
                                    sendBody({{QStringLiteral("group"), QStringLiteral("x")}}), noId, huge}) {
        const GatewayReply reply = post(QStringLiteral("/send"), body, "Bearer " + kSecret);
        EXPECT_EQ(reply.status, 400) << QJsonDocument(body).toJson().left(200).constData();
        EXPECT_TRUE(reply.body.contains(QStringLiteral("errors")));
    }
    EXPECT_TRUE(delivered.isEmpty());
}

TEST_P(GatewaySend, TheNotificationNamesItsTopicInKey1AsJsonText)
{
    const QJsonObject userInfo =
        PushSendCommand::userInfo(QStringLiteral("00ff"), {1001, 1, QStringLiteral("新手必读"), QStringLiteral("阿明"),
                                                           QStringLiteral("正文")}, QStringLiteral("有新帖"));
    EXPECT_EQ(QJsonDocument(userInfo).toJson(QJsonDocument::Compact),
              QByteArray(R"({"aps":{"alert":"有新帖","badge":1},"d":"00ff","key1":"{\"data\":{\"content\":\"正文\",)"
                         R"(\"sectionid\":1,\"title\":\"新手必读\",\"topicid\":1001,\"username\":\"阿明\"}}"})"));
}

TEST_P(GatewaySend, TheSecretIsMadeOncePerDatabaseAndSharedByEveryConnection)
{
    EXPECT_EQ(PushGatewaySecret::storedIn(*database), std::nullopt);
    const QByteArray secret = PushGatewaySecret::ofDatabase(*database);
    EXPECT_EQ(secret.size(), 2 * PushGatewaySecret::kBytes);
    EXPECT_EQ(QByteArray::fromHex(secret).toHex(), secret);
    QString error;
    // A second server process on the same database takes the same secret.
    const std::unique_ptr<ForumDatabase> second = ForumDatabase::open(location, &error);
    ASSERT_TRUE(second) << error.toStdString();
    EXPECT_EQ(PushGatewaySecret::ofDatabase(*second), secret);
    EXPECT_EQ(PushGatewaySecret::storedIn(*second), secret);
    EXPECT_TRUE(PushGatewaySecret::matches(secret, PushGatewaySecret::ofDatabase(*database)));

    QFile file(folder.filePath(QStringLiteral("operator-secret")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(secret + "\n");
    file.close();
    EXPECT_EQ(PushGatewaySecret::read(file.fileName(), &error), secret);
    EXPECT_TRUE(PushGatewaySecret::read(folder.filePath(QStringLiteral("none")), &error).isEmpty());
    EXPECT_FALSE(error.isEmpty());
}

TEST_P(GatewaySend, AStreamResumesAfterItsLastIdOnlyWithinTheSameDatabase)
{
    PushDeliveryHub hub(*store);
    const QByteArray epoch = store->epoch().toLatin1();
    EXPECT_EQ(hub.resumeAfter(epoch + ":7"), 7);
    EXPECT_EQ(hub.resumeAfter("other:7"), 0);
    EXPECT_EQ(hub.resumeAfter(epoch + ":x"), 0);
    EXPECT_EQ(hub.resumeAfter(epoch + ":-3"), 0);
    EXPECT_EQ(hub.resumeAfter({}), 0);
    store->storeMessage({kToken, kToken}, QStringLiteral("m"), "{\"d\":\"m\"}", kNow);
    EXPECT_EQ(hub.missedEvents(kToken, 1), "id: " + epoch + ":2\ndata: {\"d\":\"m\"}\n\n");
}

} // namespace
