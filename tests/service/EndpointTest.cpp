// Every endpoint as the server sees it: method, path, and the payload's fields and JSON
// types after deciphering.

#include "DeviceInfo.h"
#include "EventLoop.h"
#include "ForumAnswer.h"
#include "ForumPayloads.h"
#include "HttpRequest.h"
#include "JsonChangDic.h"
#include "RecordingHttpServer.h"
#include "ServiceConfig.h"

#include <gtest/gtest.h>

#include <QJsonArray>

#include <map>

using testsupport::waitUntil;

namespace {

using FieldTypes = std::map<QString, QJsonValue::Type>;
using Send = std::function<void(HttpRequest::SuccessBlock, const QString &)>;

struct EndpointCase
{
    const char *name;
    Send send;
    QJsonObject payload;
    QByteArray method;
    QByteArray path;
    FieldTypes fields;
};

FieldTypes typesOf(const QJsonObject &object)
{
    FieldTypes types;
    for (auto it = object.begin(); it != object.end(); ++it)
        types[it.key()] = it.value().type();
    return types;
}

ListModel board()
{
    return ListModel::fromJson(QJsonObject{{QStringLiteral("sectionid"), 3}, {QStringLiteral("tagid"), 12},
                                           {QStringLiteral("sectionname"), QStringLiteral("综合讨论")}});
}

PostModel topic()
{
    return PostModel::fromJson(QJsonObject{{QStringLiteral("tid"), 4101},
                                           {QStringLiteral("title"), QStringLiteral("组队刷本")},
                                           {QStringLiteral("username"), QStringLiteral("风之旅人")}});
}

// Adapts a catalogue operation to (success, payload), leaving out the unused fail handler.
Send send(void (*operation)(HttpRequest::SuccessBlock, HttpRequest::FailBlock, const QString &))
{
    return [operation](HttpRequest::SuccessBlock success, const QString &payload) {
        operation(std::move(success), {}, payload);
    };
}

constexpr auto S = QJsonValue::String;
constexpr auto N = QJsonValue::Double;
constexpr auto A = QJsonValue::Array;

} // namespace

TEST(Endpoints, EachSendsItsFieldsToItsEndpoint)
{
    RecordingHttpServer server;
    ASSERT_TRUE(server.listen());
    ServiceConfig::setApiRoot(server.apiRoot());
    server.setResponder([](const RecordingHttpServer::Request &) {
        return RecordingHttpServer::Response{200, "application/json", forumanswer::withRData(QJsonObject())};
    });

    const FieldTypes device = {{QStringLiteral("imei"), S}, {QStringLiteral("devicetype"), S}};
    auto with = [&device](FieldTypes more) {
        more.insert(device.begin(), device.end());
        return more;
    };
    const std::vector<EndpointCase> cases = {
        {"GetTempUserInfo", send(HttpRequest::GetTempUserInfoSuccessBlock), ForumPayloads::devicePair(), "GET",
         "/api/GetTempUserInfo", device},
        {"GetSection", send(HttpRequest::GetSectionSuccessBlock),
         ForumPayloads::section(0), "GET", "/api/GetSection", with({{QStringLiteral("userid"), N}})},
        {"GetTopics", send(HttpRequest::GetTopicsSuccessBlock), ForumPayloads::topics(board(), 2), "GET", "/api/GetTopics",
         with({{QStringLiteral("sectionid"), N}, {QStringLiteral("showtype"), N}, {QStringLiteral("sorttype"), N},
               {QStringLiteral("tag"), N}, {QStringLiteral("pageindex"), N}, {QStringLiteral("pagesize"), N}})},
        {"GetTopTopic", send(HttpRequest::GetTopTopicSuccessBlock), ForumPayloads::topTopic(board()), "GET",
         "/api/GetTopTopic", with({{QStringLiteral("sectionid"), N}})},
        {"TopicDetail", send(HttpRequest::GetTopicDetailSuccessBlock), ForumPayloads::topicDetail(board(), topic(), 77),
         "GET", "/api/TopicDetail",
         with({{QStringLiteral("sectionid"), N}, {QStringLiteral("userid"), N}, {QStringLiteral("tid"), N},
               {QStringLiteral("pageindex"), N}, {QStringLiteral("pagesize"), N}, {QStringLiteral("islandlord"), N}})},
        {"RepliesLog", send(HttpRequest::GetRepliesLogSuccessBlock), ForumPayloads::topicDetail(board(), topic(), 77),
         "GET", "/api/RepliesLog",
         with({{QStringLiteral("sectionid"), N}, {QStringLiteral("userid"), N}, {QStringLiteral("tid"), N},
               {QStringLiteral("pageindex"), N}, {QStringLiteral("pagesize"), N}, {QStringLiteral("islandlord"), N}})},
        {"WriteTopic", send(HttpRequest::GetWriteTopicSuccessBlock),
         ForumPayloads::writeTopic(board(), 77, QStringLiteral("标题"), QStringLiteral("内容")), "POST",
         "/api/WriteTopic",
         with({{QStringLiteral("userid"), N}, {QStringLiteral("sectionid"), N}, {QStringLiteral("tag"), N},
               {QStringLiteral("title"), S}, {QStringLiteral("content"), S}, {QStringLiteral("imgs"), A}})},
        {"RepliesleTopic", send(HttpRequest::GetRepliesleTopicSuccessBlock),
         ForumPayloads::reply(board(), topic().tid(), topic().title(), 77, QStringLiteral("顶")), "POST",
         "/api/RepliesleTopic",
         with({{QStringLiteral("sectionid"), N}, {QStringLiteral("userid"), N}, {QStringLiteral("tid"), N},
               {QStringLiteral("content"), S}, {QStringLiteral("imgs"), A}, {QStringLiteral("pid"), N},
               {QStringLiteral("title"), S}})},
    };

    for (const EndpointCase &endpoint : cases) {
        SCOPED_TRACE(endpoint.name);
        server.clear();
        bool answered = false;
        endpoint.send([&answered](const HttpTask &, const QJsonValue &) { answered = true; },
                      JsonChangDic::jsonWithDictionary(endpoint.payload));
        ASSERT_TRUE(waitUntil([&answered] { return answered; }));
        const RecordingHttpServer::Request &request = server.requests().at(0);
        EXPECT_EQ(request.method, endpoint.method);
        EXPECT_EQ(request.path(), endpoint.path);
        const QJsonObject sent = forumanswer::requestPayload(request.query());
        EXPECT_EQ(typesOf(sent), endpoint.fields);
        EXPECT_EQ(sent.value(QStringLiteral("devicetype")), QStringLiteral("IOS"));
        EXPECT_EQ(sent.value(QStringLiteral("imei")), DeviceInfo::getMachineUDID());
    }
    ServiceConfig::setApiRoot({});
}

TEST(Endpoints, PayloadValuesFollowTheRecordsAndFixedRules)
{
    const QJsonObject topics = ForumPayloads::topics(board(), 2);
    EXPECT_EQ(topics.value(QStringLiteral("tag")), 12);
    EXPECT_EQ(topics.value(QStringLiteral("pageindex")), 2);
    EXPECT_EQ(topics.value(QStringLiteral("pagesize")), 10);
    EXPECT_EQ(topics.value(QStringLiteral("showtype")), 0);

    // The topic screen always asks for page 1 of 50.
    const QJsonObject detail = ForumPayloads::topicDetail(board(), topic(), 77);
    EXPECT_EQ(detail.value(QStringLiteral("pageindex")), 1);
    EXPECT_EQ(detail.value(QStringLiteral("pagesize")), 50);
    EXPECT_EQ(detail.value(QStringLiteral("islandlord")), 0);
    EXPECT_EQ(detail.value(QStringLiteral("tid")), 4101);

    // Replying to a poster sends the poster's name as the title.
    const QJsonObject toPoster = ForumPayloads::reply(board(), 9, topic().username(), 77, QStringLiteral("好"));
    EXPECT_EQ(toPoster.value(QStringLiteral("title")), QStringLiteral("风之旅人"));
    EXPECT_EQ(toPoster.value(QStringLiteral("pid")), -1);
    EXPECT_EQ(toPoster.value(QStringLiteral("imgs")), QJsonArray());

    // Fields a record never received still go out, as null.
    const QJsonObject bare = ForumPayloads::reply(ListModel(), PostModel().tid(), PostModel().title(), 0, QStringLiteral("x"));
    EXPECT_TRUE(bare.value(QStringLiteral("title")).isNull());
    EXPECT_TRUE(bare.value(QStringLiteral("sectionid")).isNull());
    EXPECT_EQ(bare.size(), 9);

    // Identifiers travel as they arrived: a string id stays a string.
    const ListModel odd = ListModel::fromJson(QJsonObject{{QStringLiteral("sectionid"), QStringLiteral("3")}});
    EXPECT_EQ(ForumPayloads::topTopic(odd).value(QStringLiteral("sectionid")), QStringLiteral("3"));
}
