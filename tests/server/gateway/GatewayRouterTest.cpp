// The push component's calls at the gateway: reports answered with the policies, tags and
// aliases kept, click reports recorded, and malformed bodies answered 400 with "errors"
// without changing anything.
#include "GatewayFixture.h"

namespace {

class GatewayCalls : public GatewayFixture
{
};
QUORVEL_FOR_BOTH_STORES(GatewayCalls);

TEST_P(GatewayCalls, ReportsAnswerSuccessWithTheLaunchAndTagPolicies)
{
    const GatewayReply registered = post(QStringLiteral("/register"), device(kToken));
    EXPECT_EQ(registered.status, 200);
    EXPECT_EQ(registered.body, QJsonObject({{QStringLiteral("success"), true}, {QStringLiteral("launch_policy"), 2},
                                            {QStringLiteral("tag_policy"), 1}}));
    // A launch without a token is answered but names no device.
    EXPECT_EQ(post(QStringLiteral("/launch"), device(QString(64, QLatin1Char('0')))).status, 200);
    EXPECT_EQ(store->recipients({PushGatewayStore::Target::All, {}}), QStringList(kToken));
}

TEST_P(GatewayCalls, TagsAndAliasesAreKeptPerDevice)
{
    post(QStringLiteral("/register"), device(kToken));
    post(QStringLiteral("/register"), device(kOtherToken));
    const GatewayReply added = post(QStringLiteral("/tag/add"),
                                    device(kToken, {{QStringLiteral("tags"), QJsonArray{QStringLiteral("新手"), QStringLiteral("组队")}}}));
    EXPECT_EQ(added.body.value(QStringLiteral("tags")).toArray(), QJsonArray({QStringLiteral("新手"), QStringLiteral("组队")}));
    post(QStringLiteral("/tag/add"), device(kOtherToken, {{QStringLiteral("tags"), QJsonArray{QStringLiteral("组队")}}}));
    EXPECT_EQ(store->recipients({PushGatewayStore::Target::Tag, QStringLiteral("组队")}), QStringList({kToken, kOtherToken}));
    post(QStringLiteral("/tag/delete"), device(kToken, {{QStringLiteral("tags"), QJsonArray{QStringLiteral("组队")}}}));
    EXPECT_EQ(post(QStringLiteral("/tag/get"), device(kToken)).body.value(QStringLiteral("tags")).toArray(),
              QJsonArray({QStringLiteral("新手")}));
    post(QStringLiteral("/tag/reset"), device(kToken));
    EXPECT_TRUE(store->tags(kToken).isEmpty());

    post(QStringLiteral("/alias"), device(kToken, {{QStringLiteral("alias"), QStringLiteral("阿明")}, {QStringLiteral("type"), QStringLiteral("qq")}}));
    post(QStringLiteral("/alias/set"), device(kToken, {{QStringLiteral("alias"), QStringLiteral("小明")}, {QStringLiteral("type"), QStringLiteral("qq")}}));
    post(QStringLiteral("/alias"), device(kOtherToken, {{QStringLiteral("alias"), QStringLiteral("小明")}}));
    EXPECT_EQ(store->aliases(kToken), QStringList(QStringLiteral("小明")));
    EXPECT_EQ(store->recipients({PushGatewayStore::Target::Alias, QStringLiteral("小明")}), QStringList({kToken, kOtherToken}));
    post(QStringLiteral("/alias/delete"), device(kOtherToken, {{QStringLiteral("alias"), QStringLiteral("小明")}}));
    EXPECT_EQ(store->recipients({PushGatewayStore::Target::Alias, QStringLiteral("小明")}), QStringList(kToken));
}

TEST_P(GatewayCalls, ClickReportsAreRecordedWithTheirDevice)
{
    EXPECT_EQ(post(QStringLiteral("/push_logs"),
                   device(kToken, {{QStringLiteral("msg_id"), QStringLiteral("m1")}, {QStringLiteral("ts"), 1234.5}})).status,
              200);
    ASSERT_EQ(store->clicks().size(), 1);
    EXPECT_EQ(store->clicks().first().deviceToken, kToken);
    EXPECT_EQ(store->clicks().first().msgId, QStringLiteral("m1"));
    EXPECT_EQ(store->clicks().first().ts, 1234.5);
}

TEST_P(GatewayCalls, MalformedBodiesAreRefusedWithErrorsAndChangeNothing)
{
    const QString zero(64, QLatin1Char('0'));
    const QJsonArray tooMany = [] {
        QJsonArray tags;
        for (int i = 0; i < 65; ++i)
            tags.append(QString::number(i));
        return tags;
    }();
    const struct { const char *path; QByteArray body; } cases[] = {
        {"/register", "not json"},
        {"/register", "[1,2]"},
        {"/register", QJsonDocument(QJsonObject{{QStringLiteral("device_token"), kToken}}).toJson()},
        {"/register", QJsonDocument(QJsonObject{{QStringLiteral("header"), 1}, {QStringLiteral("device_token"), kToken}}).toJson()},
        {"/register", QJsonDocument(device(kToken.left(63))).toJson()},
        {"/register", QJsonDocument(device(QString(64, QLatin1Char('g')))).toJson()},
        {"/register", QJsonDocument(device(zero)).toJson()},
        {"/tag/add", QJsonDocument(device(zero, {{QStringLiteral("tags"), QJsonArray{QStringLiteral("a")}}})).toJson()},
        {"/tag/add", QJsonDocument(device(kToken, {{QStringLiteral("tags"), QStringLiteral("a")}})).toJson()},
        {"/tag/add", QJsonDocument(device(kToken, {{QStringLiteral("tags"), QJsonArray()}})).toJson()},
        {"/tag/add", QJsonDocument(device(kToken, {{QStringLiteral("tags"), QJsonArray{QString(129, QLatin1Char('x'))}}})).toJson()},
        {"/tag/add", QJsonDocument(device(kToken, {{QStringLiteral("tags"), tooMany}})).toJson()},
        {"/tag/delete", QJsonDocument(device(kToken, {{QStringLiteral("tags"), QJsonArray{1}}})).toJson()},
        {"/alias", QJsonDocument(device(kToken)).toJson()},
        {"/alias/set", QJsonDocument(device(kToken, {{QStringLiteral("alias"), QString()}})).toJson()},
        {"/alias", QJsonDocument(device(kToken, {{QStringLiteral("alias"), QStringLiteral("a")}, {QStringLiteral("type"), 3}})).toJson()},
        {"/push_logs", QJsonDocument(device(kToken, {{QStringLiteral("ts"), 1}})).toJson()},
        {"/push_logs", QJsonDocument(device(kToken, {{QStringLiteral("msg_id"), QStringLiteral("m")}, {QStringLiteral("ts"), -1}})).toJson()},
        {"/push_logs", QJsonDocument(device(kToken, {{QStringLiteral("msg_id"), QStringLiteral("m")}, {QStringLiteral("ts"), QStringLiteral("1")}})).toJson()},
    };
    for (const auto &bad : cases) {
        const GatewayReply reply = router->handle("POST", QLatin1String(bad.path), {}, bad.body);
        EXPECT_EQ(reply.status, 400) << bad.path << " " << bad.body.constData();
        EXPECT_TRUE(reply.body.value(QStringLiteral("errors")).isString()) << bad.path;
        EXPECT_FALSE(reply.body.contains(QStringLiteral("success")));
    }
    EXPECT_TRUE(store->recipients({PushGatewayStore::Target::All, {}}).isEmpty());
    EXPECT_TRUE(store->tags(kToken).isEmpty());
    EXPECT_TRUE(store->aliases(kToken).isEmpty());
    EXPECT_TRUE(store->clicks().isEmpty());
}

TEST_P(GatewayCalls, UnknownCallsAndOtherMethodsAreRefused)
{
    EXPECT_EQ(router->handle("POST", QStringLiteral("/nothing"), {}, "{}").status, 404);
    EXPECT_EQ(router->handle("GET", QStringLiteral("/register"), {}, {}).status, 405);
}

TEST_P(GatewayCalls, DevicesAndMessagesOutliveTheConnection)
{
    post(QStringLiteral("/register"), device(kToken));
    const QList<qint64> ids = store->storeMessage({kToken}, QStringLiteral("m"), "{\"d\":\"m\"}", kNow);
    const QString epoch = store->epoch();
    store.reset();
    router.reset();
    database.reset();
    QString error;
    database = ForumDatabase::open(location, &error);
    PushGatewayStore reopened(*database);
    EXPECT_EQ(reopened.epoch(), epoch);
    EXPECT_EQ(reopened.recipients({PushGatewayStore::Target::All, {}}), QStringList(kToken));
    ASSERT_EQ(reopened.messagesAfter(kToken, 0).size(), 1);
    EXPECT_EQ(reopened.messagesAfter(kToken, 0).first().id, ids.first());
    EXPECT_TRUE(reopened.messagesAfter(kToken, ids.first()).isEmpty());
}

} // namespace
