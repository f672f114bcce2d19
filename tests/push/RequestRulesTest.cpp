// What the push component puts on the wire and how it reads replies, against a recording
// server: JSON POSTs with their content type, a missing token as 64 zeros, the reply rules
// and their log lines; logging silent while off; and where the push host comes from.
#include "LFPNetworkLogic.h"
#include "LFPushEndpoint.h"
#include "PushFixture.h"
#include "RecordingHttpServer.h"

#include <QJsonDocument>

namespace {

class RequestRules : public PushFixture
{
protected:
    void SetUp() override
    {
        PushFixture::SetUp();
        ASSERT_TRUE(recorder.listen());
    }

    // Sends a launch report to the recorder answering `body`; the error the report got.
    QString launchAgainst(const QByteArray &body)
    {
        recorder.setResponder([body](const RecordingHttpServer::Request &) {
            return RecordingHttpServer::Response{200, "application/json", body};
        });
        const auto core = makeCore(recorder.baseUrl() + QStringLiteral("push/"));
        bool done = false;
        QString error;
        core->network().sendLaunch({}, [&](const QJsonObject &, const QString &e) {
            error = e;
            done = true;
        });
        EXPECT_TRUE(testsupport::waitUntil([&] { return done; }));
        return error;
    }

    RecordingHttpServer recorder;
};

TEST_F(RequestRules, ReportsAreJsonPostsWithTheirContentTypeAndAZeroTokenWhenThereIsNone)
{
    EXPECT_TRUE(launchAgainst(R"({"success":true})").isEmpty());
    ASSERT_EQ(recorder.requests().size(), 1);
    const RecordingHttpServer::Request &request = recorder.requests().first();
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.target, "/push/launch");
    EXPECT_EQ(request.headers.value("content-type"), "application/json;charset=utf-8");
    const QJsonObject body = QJsonDocument::fromJson(request.body).object();
    EXPECT_EQ(body.value(QStringLiteral("device_token")).toString(), QString(64, QLatin1Char('0')));
    EXPECT_TRUE(body.value(QStringLiteral("header")).isObject());
    EXPECT_TRUE(log.lines().first().startsWith(QStringLiteral("register param [{\"device_token\":\"0000")));
}

TEST_F(RequestRules, RepliesNeedSuccessOrErrors)
{
    EXPECT_EQ(launchAgainst(R"({"errors":"appkey unknown"})"), QStringLiteral("appkey unknown"));
    EXPECT_TRUE(log.lines().contains(QStringLiteral("register error [appkey unknown] object[{\"errors\":\"appkey unknown\"}]")));
    EXPECT_EQ(launchAgainst(R"({"ok":1})"), QStringLiteral("responseDic didn't find success or errors [{\"ok\":1}]"));
    EXPECT_EQ(launchAgainst(""), QStringLiteral("error,responseString nil,error nil?"));
    EXPECT_TRUE(log.lines().contains(QStringLiteral("error,responseString nil,error nil?")));
    // A failed report keeps the day open: the next launch is sent again.
    EXPECT_TRUE(defaults.stringForKey(QStringLiteral("kLFPushUserDefaultKeyForLatestLaunchDate")).isNull());
}

TEST_F(RequestRules, NothingIsLoggedWhileLoggingIsOff)
{
    LFPushUtils::setLogEnabled(false);
    launchAgainst("");
    LFPMessage(QJsonDocument::fromJson(R"({"d":"m","aps":{"alert":5}})").object(), 1);
    LFPushUtils::setLogEnabled(true);
    EXPECT_TRUE(log.lines().isEmpty()) << log.lines().join(QLatin1Char('\n')).toStdString();
}

TEST(PushHost, TheAppsSettingThenTheEnvironmentThenTheLocalGateway)
{
    qunsetenv(LFPushEndpoint::kEnvironmentVariable);
    EXPECT_EQ(LFPushEndpoint::url(), QStringLiteral("http://127.0.0.1:8080/push"));
    qputenv(LFPushEndpoint::kEnvironmentVariable, "http://127.0.0.1:9100/push");
    EXPECT_EQ(LFPushEndpoint::url(), QStringLiteral("http://127.0.0.1:9100/push"));
    LFPushEndpoint::setUrl(QStringLiteral("http://127.0.0.1:9200/push"));
    EXPECT_EQ(LFPushEndpoint::url(), QStringLiteral("http://127.0.0.1:9200/push"));
    LFPushEndpoint::setUrl({});
    qunsetenv(LFPushEndpoint::kEnvironmentVariable);
}

} // namespace
