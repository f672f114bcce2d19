// Tags and aliases: refused without a token or a name (logged, nothing sent), a missing type
// only warned about, and kept by the gateway.
#include "LFPNetworkLogic.h"
#include "PushFixture.h"

#include <QJsonArray>

namespace {

struct Answer
{
    bool done = false;
    QJsonObject responseObject;
    QString error;
};

LFPNetworkLogic::Response into(Answer &answer)
{
    return [&answer](const QJsonObject &responseObject, const QString &error) {
        answer = {true, responseObject, error};
    };
}

class TagsAndAliases : public PushFixture
{
protected:
    Answer call(const std::function<void(LFPNetworkLogic::Response)> &request)
    {
        Answer answer;
        request(into(answer));
        EXPECT_TRUE(testsupport::waitUntil([&] { return answer.done; }));
        return answer;
    }
};

TEST_F(TagsAndAliases, WithoutATokenNothingIsSent)
{
    const auto core = makeCore();
    core->startWithAppkey(QLatin1String(kAppKey), {});
    LFPNetworkLogic &network = core->network();
    EXPECT_EQ(call([&](auto r) { network.addTag(QStringLiteral("新手"), r); }).error,
              QStringLiteral("add tag[新手] error token nil"));
    EXPECT_EQ(call([&](auto r) { network.getTags(r); }).error, QStringLiteral("get tag[] error token nil"));
    EXPECT_EQ(call([&](auto r) { network.addAlias(QStringLiteral("阿明"), QStringLiteral("forum"), r); }).error,
              QStringLiteral("addAlias error token nil"));
    EXPECT_EQ(call([&](auto r) { network.removeAlias(QStringLiteral("阿明"), QStringLiteral("forum"), r); }).error,
              QStringLiteral("removeAlias error token nil"));
    EXPECT_TRUE(log.lines().contains(QStringLiteral("add tag[新手] error token nil")));
    EXPECT_TRUE(log.lines().contains(QStringLiteral("addAlias error token nil")));
    testsupport::spinFor(300);
    EXPECT_FALSE(server.log().contains("/push/tag"));
    EXPECT_FALSE(server.log().contains("/push/alias"));
}

TEST_F(TagsAndAliases, TheGatewayKeepsADevicesTagsAndAliases)
{
    const auto core = launch();
    ASSERT_TRUE(testsupport::waitUntil([&] { return !core->installation().deviceToken.isEmpty(); }));
    LFPNetworkLogic &network = core->network();
    const QString token = core->installation().deviceToken;

    EXPECT_EQ(call([&](auto r) { network.addAlias(QString(), QStringLiteral("forum"), r); }).error,
              QStringLiteral("error:name is nil"));
    const Answer added = call([&](auto r) { network.addTag(QStringLiteral("新手"), r); });
    EXPECT_TRUE(added.error.isEmpty()) << added.error.toStdString();
    call([&](auto r) { network.addTag(QStringLiteral("组队"), r); });
    EXPECT_EQ(call([&](auto r) { network.getTags(r); }).responseObject.value(QStringLiteral("tags")).toArray(),
              QJsonArray({QStringLiteral("新手"), QStringLiteral("组队")}));
    call([&](auto r) { network.removeTag(QStringLiteral("新手"), r); });
    EXPECT_EQ(rows(QStringLiteral("SELECT tag FROM push_tags")), QStringList(QStringLiteral("组队")));
    call([&](auto r) { network.removeAllTags(r); });
    EXPECT_TRUE(rows(QStringLiteral("SELECT tag FROM push_tags")).isEmpty());

    const Answer untyped = call([&](auto r) { network.addAlias(QStringLiteral("阿明"), QString(), r); });
    EXPECT_TRUE(untyped.error.isEmpty());
    EXPECT_TRUE(log.lines().contains(QStringLiteral("warning: type is nil")));
    call([&](auto r) { network.setAlias(QStringLiteral("阿强"), QStringLiteral("forum"), r); });
    call([&](auto r) { network.setAlias(QStringLiteral("小明"), QStringLiteral("forum"), r); });
    EXPECT_EQ(rows(QStringLiteral("SELECT token, alias, type FROM push_aliases ORDER BY alias")),
              QStringList({token + QStringLiteral("|小明|forum"), token + QStringLiteral("|阿明|")}));
    call([&](auto r) { network.removeAlias(QStringLiteral("阿明"), QString(), r); });
    EXPECT_EQ(rows(QStringLiteral("SELECT alias FROM push_aliases")), QStringList(QStringLiteral("小明")));

    core->unregisterForRemoteNotifications();
    EXPECT_EQ(call([&](auto r) { network.addTag(QStringLiteral("组队"), r); }).error,
              QStringLiteral("add tag[组队] error token nil"));
    EXPECT_FALSE(Application::shared().isRegisteredForRemoteNotifications());
}

TEST_F(TagsAndAliases, AnswersWithoutSuccessOrErrorsAndMissingAddressesAreFailures)
{
    const auto core = makeCore(server.origin() + QStringLiteral("/img"));
    core->installation().deviceToken = QString(64, QLatin1Char('a'));
    // The picture server answers a JSON object with neither key.
    const Answer neither = call([&](auto r) { core->network().post(server.origin() + QStringLiteral("/api/Nothing"),
                                                                   {{QStringLiteral("a"), 1}}, r); });
    EXPECT_TRUE(neither.error.startsWith(QStringLiteral("responseDic didn't find success or errors [")))
        << neither.error.toStdString();
    const Answer nowhere = call([&](auto r) { core->network().post(QString(), {{QStringLiteral("a"), 1}}, r); });
    EXPECT_EQ(nowhere.error, QStringLiteral("requestWithUrl:url or parameters nil"));
    const Answer empty = call([&](auto r) { core->network().post(pushRoot() + QStringLiteral("/register"), {}, r); });
    EXPECT_EQ(empty.error, QStringLiteral("requestWithUrl:url or parameters nil"));
    const Answer refused = call([&](auto r) { core->network().post(pushRoot() + QStringLiteral("/register"),
                                                                   {{QStringLiteral("header"), 1}}, r); });
    EXPECT_EQ(refused.error, QStringLiteral("header must be an object"));
}

} // namespace
