// The forum client's own request path (catalogue, transport, codec, records) against the
// real server process: paging, posting and seeing the post, the rate-limit answer, and
// bad payloads answered 4xx without reaching any handler.
#include "EventLoop.h"
#include "ForumPayloads.h"
#include "HttpRequest.h"
#include "JsonChangDic.h"
#include "ListModel.h"
#include "LocalForumServer.h"
#include "PostModel.h"
#include "ServiceConfig.h"

#include <QJsonArray>

#include <gtest/gtest.h>

#include <optional>

using Demo = LocalForumServer::Demo;
using testsupport::waitUntil;

namespace {

using Call = void (*)(HttpRequest::SuccessBlock, HttpRequest::FailBlock, const QString &);

class ClientRoundTrip : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(server.isRunning()) << server.errorString().toStdString();
        ServiceConfig::setApiRoot(server.apiRoot());
        bool done = false;
        HttpRequest::GetSectionSuccessBlock(
            [&](const HttpTask &, const QJsonValue &boards) {
                board.emplace(ListModel::fromJson(boards[0]));
                done = true;
            },
            {}, JsonChangDic::jsonWithDictionary(ForumPayloads::section(0)));
        ASSERT_TRUE(waitUntil([&] { return done; }, 10000));
        ASSERT_TRUE(board);
        ASSERT_EQ(board->sectionid().toInt(), Demo::kBoardId);
    }
    void TearDown() override { ServiceConfig::setApiRoot({}); }

    // Sends one enciphered request the way the screens do and waits for its payload.
    QJsonValue ask(Call call, const QJsonObject &payload)
    {
        std::optional<QJsonValue> answer;
        call([&](const HttpTask &, const QJsonValue &rdata) { answer = rdata; }, {},
             JsonChangDic::jsonWithDictionary(payload));
        EXPECT_TRUE(waitUntil([&] { return answer.has_value(); }, 10000));
        return answer.value_or(QJsonValue());
    }

    LocalForumServer server;
    std::optional<ListModel> board;  // records are not assignable
};

} // namespace

TEST_F(ClientRoundTrip, PagesThroughABoardToAnEmptyPage)
{
    QList<int> sizes;
    for (int page = 1; page <= 6; ++page)
        sizes << ask(HttpRequest::GetTopicsSuccessBlock, ForumPayloads::topics(*board, page)).toArray().size();
    EXPECT_EQ(sizes, QList<int>({10, 10, 10, 10, Demo::kBoardOrdinaryTopics - 40, 0}));

    const QJsonArray top = ask(HttpRequest::GetTopTopicSuccessBlock, ForumPayloads::topTopic(*board)).toArray();
    EXPECT_EQ(top.size(), Demo::kBoardTopTopicItems);
}

TEST_F(ClientRoundTrip, PostedTopicAndReplyAreSeenAndASecondPostIsRefused)
{
    const QJsonValue posted = ask(HttpRequest::GetWriteTopicSuccessBlock,
                                  ForumPayloads::writeTopic(*board, 0, QStringLiteral("客户端发帖"),
                                                            QStringLiteral("第一行\n第二行")));
    EXPECT_EQ(posted["description"].toString(), QString::fromUtf8(Demo::kTopicPosted));

    const PostModel newest =
        PostModel::fromJson(ask(HttpRequest::GetTopicsSuccessBlock, ForumPayloads::topics(*board, 1))[0]);
    EXPECT_EQ(newest.title().toString(), QStringLiteral("客户端发帖"));
    EXPECT_EQ(newest.topiccontent().toString(), QStringLiteral("第一行\n第二行"));
    const QJsonValue detail = ask(HttpRequest::GetTopicDetailSuccessBlock, ForumPayloads::topicDetail(*board, newest, 0));
    EXPECT_EQ(detail["title"].toString(), QStringLiteral("客户端发帖"));

    // Within the default interval the same device is told to wait.
    const QJsonValue refused = ask(HttpRequest::GetRepliesleTopicSuccessBlock,
                                   ForumPayloads::reply(*board, newest.tid(), newest.title(), 0, QStringLiteral("沙发")));
    EXPECT_EQ(refused["description"].toString(), QString::fromUtf8(Demo::kTooSoon));
    EXPECT_TRUE(ask(HttpRequest::GetRepliesLogSuccessBlock, ForumPayloads::topicDetail(*board, newest, 0))
                    .toArray()
                    .isEmpty());
}

TEST_F(ClientRoundTrip, RepliesOfABusyTopicArriveFiftyAtATime)
{
    PostModel topic = PostModel::fromJson(QJsonObject{{"tid", Demo::kManyRepliesTopicId}});
    const QJsonArray replies =
        ask(HttpRequest::GetRepliesLogSuccessBlock, ForumPayloads::topicDetail(*board, topic, 0)).toArray();
    ASSERT_EQ(replies.size(), 50);
    int highlighted = 0;
    for (const QJsonValue &reply : replies)
        highlighted += reply["istop"].toInt() == 1;
    EXPECT_EQ(highlighted, Demo::kManyRepliesHighlighted);
}

TEST_F(ClientRoundTrip, BadPayloadIsAnswered4xxAndReachesNoHandler)
{
    bool badAnswered = false;
    HttpRequest::GetTopicsSuccessBlock([&](const HttpTask &, const QJsonValue &) { badAnswered = true; }, {},
                                       QStringLiteral("this is not JSON"));
    ASSERT_TRUE(waitUntil([&] { return server.log().contains("GET /api/GetTopics 400"); }, 10000))
        << server.log().constData();
    // A good request after it still works, and by then the bad one has had its answer.
    EXPECT_EQ(ask(HttpRequest::GetTopTopicSuccessBlock, ForumPayloads::topTopic(*board)).toArray().size(),
              Demo::kBoardTopTopicItems);
    EXPECT_FALSE(badAnswered);
}
