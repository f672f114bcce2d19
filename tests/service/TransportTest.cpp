// The transport against a local HTTP server that records raw requests: what goes on the
// wire, which answers reach the caller, and which only leave a log line.

#include "EventLoop.h"
#include "ForumAnswer.h"
#include "HttpRequest.h"
#include "LogCapture.h"
#include "RecordingHttpServer.h"
#include "RequestOrder.h"
#include "ServiceConfig.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QJsonArray>
#include <QTcpServer>
#include <QThread>
#include <QUrl>

using testsupport::waitUntil;

namespace {

// Every request has finished, so any handler that was going to run has run.
bool allAnswered()
{
    return HttpSessionManager::requestsInFlight() == 0;
}

class TransportTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(server.listen());
        ServiceConfig::setApiRoot(server.apiRoot());
    }
    void TearDown() override { ServiceConfig::setApiRoot({}); }

    void answerWith(QByteArray body, QByteArray contentType = "application/json", int status = 200)
    {
        server.setResponder([=](const RecordingHttpServer::Request &) {
            return RecordingHttpServer::Response{status, contentType, body};
        });
    }

    // A success handler that records every call.
    HttpRequest::SuccessBlock recorder()
    {
        return [this](const HttpTask &, const QJsonValue &payload) {
            calls.append(payload);
            onMainThread &= QThread::currentThread() == QCoreApplication::instance()->thread();
        };
    }

    bool waitForRequest() { return waitUntil([this] { return !server.requests().isEmpty(); }); }

    RecordingHttpServer server;
    QList<QJsonValue> calls;
    bool onMainThread = true;
    LogCapture log{"quorvel"};
};

// A payload whose cipher text contains a "+", so escaping would show.
QString jsonWithPlusInCipher()
{
    for (int i = 0;; ++i) {
        const QString json = QStringLiteral(R"({"sectionid":%1,"devicetype":"IOS"})").arg(i);
        if (RequestData::encodedUrl(json, {}).contains(u'+'))
            return json;
    }
}

} // namespace

TEST_F(TransportTest, EncipheredGetSendsBase64LiterallyInTheQuery)
{
    answerWith(forumanswer::withRData(QJsonArray{1, 2}));
    const QString json = jsonWithPlusInCipher();
    HttpRequest::GetTopicsSuccessBlock(recorder(), {}, json);
    ASSERT_TRUE(waitUntil([this] { return !calls.isEmpty(); }));

    const RecordingHttpServer::Request &request = server.requests().at(0);
    const QString cipher = DesCryptUtil::DesEncode(json, DesCryptUtil::kKey, DesCryptUtil::kIV).value();
    EXPECT_EQ(request.method, "GET");
    EXPECT_EQ(request.target, "/api/GetTopics?data=" + cipher.toLatin1());
    EXPECT_TRUE(request.target.contains('+'));
    EXPECT_FALSE(request.target.contains('%'));
    EXPECT_EQ(calls.at(0), QJsonValue(QJsonArray{1, 2}));
    EXPECT_TRUE(onMainThread);
}

TEST_F(TransportTest, EncipheredPostRepeatsThePayloadAsAnEscapedFormBody)
{
    answerWith(forumanswer::withRData(QJsonObject{{QStringLiteral("description"), QStringLiteral("回帖成功")}}));
    const QString json = jsonWithPlusInCipher();
    HttpRequest::GetRepliesleTopicSuccessBlock(recorder(), {}, json);
    ASSERT_TRUE(waitUntil([this] { return !calls.isEmpty(); }));

    const RecordingHttpServer::Request &request = server.requests().at(0);
    const QByteArray cipher = DesCryptUtil::DesEncode(json, DesCryptUtil::kKey, DesCryptUtil::kIV)->toLatin1();
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.target, "/api/RepliesleTopic?data=" + cipher);
    EXPECT_EQ(request.headers.value("content-type"), "application/x-www-form-urlencoded");
    QByteArray escaped = cipher;
    escaped.replace("+", "%2B").replace("=", "%3D");
    EXPECT_EQ(request.body, "=" + escaped);
    EXPECT_TRUE(request.body.contains("%2B"));
    EXPECT_EQ(calls.at(0).toObject().value(QStringLiteral("description")), QStringLiteral("回帖成功"));
}

TEST_F(TransportTest, EncipheredCallsAcceptOnlyJsonContentTypes)
{
    for (const QByteArray type : {"application/json", "text/json", "text/javascript; charset=utf-8"}) {
        calls.clear();
        answerWith(forumanswer::withRData(7), type);
        HttpRequest::GetTopTopicSuccessBlock(recorder(), {}, QStringLiteral("{}"));
        ASSERT_TRUE(waitUntil([this] { return !calls.isEmpty(); })) << type.constData();
        EXPECT_EQ(calls.at(0), QJsonValue(7));
    }

    calls.clear();
    server.clear();
    answerWith(forumanswer::withRData(7), "text/html");
    HttpRequest::GetTopTopicSuccessBlock(recorder(), {}, QStringLiteral("{}"));
    ASSERT_TRUE(waitUntil(allAnswered));
    EXPECT_TRUE(calls.isEmpty());
    ASSERT_EQ(log.lines().size(), 1);
    EXPECT_TRUE(log.lines().at(0).contains(QStringLiteral("unacceptable content-type: text/html")));
    EXPECT_FALSE(log.lines().at(0).startsWith(QStringLiteral("error----:")));
}

TEST_F(TransportTest, PlainGetAlsoAcceptsHtmlAndSendsNoPayload)
{
    answerWith(forumanswer::withRData(QJsonArray{QStringLiteral("a")}), "text/html");
    HttpRequest::GetAdRecomSuccessBlock(recorder(), {});
    ASSERT_TRUE(waitUntil([this] { return !calls.isEmpty(); }));
    EXPECT_EQ(server.requests().at(0).method, "GET");
    EXPECT_EQ(server.requests().at(0).target, "/api/GetAdRecom");
    EXPECT_EQ(calls.at(0), QJsonValue(QJsonArray{QStringLiteral("a")}));

    calls.clear();
    answerWith(forumanswer::withRData(1), "text/plain");
    HttpRequest::GetSectionSuccessBlock(recorder(), {});
    ASSERT_TRUE(waitUntil([this] { return !log.lines().isEmpty(); }));
    EXPECT_EQ(server.requests().at(1).target, "/api/GetSection");
    EXPECT_TRUE(log.lines().at(0).startsWith(QStringLiteral("error----:")));
    EXPECT_TRUE(calls.isEmpty());
}

TEST_F(TransportTest, NullDataCallsNothingAndLogsNothing)
{
    answerWith(R"({"Data":null})");
    HttpRequest::GetTopicDetailSuccessBlock(recorder(), {}, QStringLiteral("{}"));
    ASSERT_TRUE(waitForRequest());
    ASSERT_TRUE(waitUntil(allAnswered));
    EXPECT_TRUE(calls.isEmpty());
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST_F(TransportTest, AnswersWithoutAPayloadStillCallBackWithAbsent)
{
    // Inner object without RData; body without Data; Data that does not decipher.
    const QList<QByteArray> bodies = {forumanswer::envelope({{QStringLiteral("Other"), 1}}),
                                      R"({"Status":1})", R"({"Data":"not base64"})", "[]"};
    for (const QByteArray &body : bodies) {
        calls.clear();
        answerWith(body);
        HttpRequest::GetRepliesLogSuccessBlock(recorder(), {}, QStringLiteral("{}"));
        ASSERT_TRUE(waitUntil([this] { return !calls.isEmpty(); })) << body.constData();
        EXPECT_TRUE(calls.at(0).isUndefined()) << body.constData();
    }
    EXPECT_TRUE(log.contains(QStringLiteral("json解析失败：")));
}

TEST_F(TransportTest, FailuresLogOneLineAndNeverCallBack)
{
    answerWith(forumanswer::withRData(1), "application/json", 500);
    HttpRequest::GetTopicsSuccessBlock(recorder(), {}, QStringLiteral("{}"));
    ASSERT_TRUE(waitUntil([this] { return !log.lines().isEmpty(); }));
    EXPECT_TRUE(log.lines().at(0).contains(QStringLiteral("(500)")));

    answerWith("{not json");
    HttpRequest::GetTopicsSuccessBlock(recorder(), {}, QStringLiteral("{}"));
    ASSERT_TRUE(waitUntil([this] { return log.lines().size() == 2; }));

    // Nothing listens on the port any more: the connection is refused.
    QTcpServer probe;
    ASSERT_TRUE(probe.listen(QHostAddress::LocalHost, 0));
    const quint16 deadPort = probe.serverPort();
    probe.close();
    ServiceConfig::setApiRoot(QStringLiteral("http://127.0.0.1:%1/api/").arg(deadPort));
    HttpRequest::GetWriteTopicSuccessBlock(recorder(), {}, QStringLiteral("{}"));
    HttpRequest::GetAdRecomSuccessBlock(recorder(), {});
    ASSERT_TRUE(waitUntil([this] { return log.lines().size() == 4; }));
    const QStringList refused = log.lines().mid(2);
    EXPECT_EQ(refused.filter(QStringLiteral("error----:")).size(), 1) << refused.join(u'\n').toStdString();
    ASSERT_TRUE(waitUntil(allAnswered));
    EXPECT_TRUE(calls.isEmpty());
}

TEST_F(TransportTest, RequestsGoOutInTheOrderAskedForPostsIncluded)
{
    answerWith(forumanswer::withRData(QJsonObject{}));
    const testsupport::RequestOrder order;
    // Qt would start each GET at once and each POST only from the event loop.
    HttpRequest::GetRepliesleTopicSuccessBlock(recorder(), {}, QStringLiteral("{}"));
    HttpRequest::GetTopicDetailSuccessBlock(recorder(), {}, QStringLiteral("{}"));
    HttpRequest::GetWriteTopicSuccessBlock(recorder(), {}, QStringLiteral("{}"));
    HttpRequest::GetRepliesLogSuccessBlock(recorder(), {}, QStringLiteral("{}"));
    EXPECT_EQ(HttpSessionManager::requestsInFlight(), 4);
    ASSERT_TRUE(waitUntil(allAnswered));
    EXPECT_EQ(order.paths(),
              (QStringList{"/api/RepliesleTopic", "/api/TopicDetail", "/api/WriteTopic", "/api/RepliesLog"}));
    EXPECT_EQ(calls.size(), 4);
}
