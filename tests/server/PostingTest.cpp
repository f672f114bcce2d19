// Temporary users, posting and seeing the post, the posting rules and the rate limit.
#include "LocalForumServer.h"
#include "ServerHarness.h"

using Demo = LocalForumServer::Demo;

namespace {

const QString kTitle = QStringLiteral("萌新求问：第一件装备怎么选？");
const QString kBody = QStringLiteral("刚入坑三天，\n背包里有两件紫装，不知道先强化哪一件。");

int boardTopicCount(ServerHarness &forum, int index = 0)
{
    return forum.boards().at(index)["sectiontopic"].toInt();
}

} // namespace

class ServerPosting : public ::testing::TestWithParam<StoreKind>
{
};
QUORVEL_FOR_BOTH_STORES(ServerPosting);

TEST_P(ServerPosting, TemporaryUserIdIsStablePerDevice)
{
    ServerHarness forum(GetParam());
    const ApiAnswer answer = forum.call("GetTempUserInfo", ServerHarness::device("device-a"));
    ASSERT_EQ(answer.status, 200);
    const QJsonValue userinfo = answer.rdata["userinfo"];
    ASSERT_TRUE(userinfo["userid"].isDouble());
    EXPECT_TRUE(userinfo["username"].isString());
    const qint64 first = userinfo["userid"].toInteger();
    EXPECT_GT(first, 0);
    EXPECT_EQ(forum.userFor("device-a"), first);
    EXPECT_NE(forum.userFor("device-b"), first);
    EXPECT_EQ(forum.userFor("device-a"), first);
    EXPECT_EQ(forum.call("GetTempUserInfo", ServerHarness::device("  ")).status, 400);
}

TEST_P(ServerPosting, NewTopicAppearsInListCountAndDetail)
{
    ServerHarness forum(GetParam());
    const qint64 user = forum.userFor(ServerHarness::kImei);
    const int countBefore = boardTopicCount(forum);

    const ApiAnswer posted = forum.call("WriteTopic", forum.topicPayload(user, kTitle, kBody));
    ASSERT_EQ(posted.status, 200);
    EXPECT_EQ(forum.describe(posted), QString::fromUtf8(Demo::kTopicPosted));
    const qint64 tid = posted.rdata["tid"].toInteger();

    const QJsonObject newest = forum.topicsPage(Demo::kBoardId, 1)[0].toObject();
    EXPECT_EQ(newest["tid"].toInteger(), tid);
    EXPECT_EQ(newest["title"].toString(), kTitle);
    EXPECT_EQ(newest["topiccontent"].toString(), kBody);
    EXPECT_EQ(newest["userid"].toInteger(), user);
    EXPECT_EQ(newest["replycount"].toInt(), 0);
    EXPECT_EQ(newest["topictype"].toInt(), 0);
    EXPECT_EQ(boardTopicCount(forum), countBefore + 1);
    EXPECT_EQ(forum.topicsPage(Demo::kBoardId, 5).size(), Demo::kBoardOrdinaryTopics % 10 + 1);
    EXPECT_EQ(forum.detail(tid)["title"].toString(), kTitle);
    EXPECT_EQ(forum.boards().at(0)["tid"].toInteger(), tid);
}

TEST_P(ServerPosting, ReplyAppearsFirstAmongRepliesAndCounts)
{
    ServerHarness forum(GetParam());
    const qint64 user = forum.userFor(ServerHarness::kImei);
    const ApiAnswer posted = forum.call("RepliesleTopic", forum.replyPayload(user, Demo::kManyRepliesTopicId, "+1 谢谢"));
    ASSERT_EQ(posted.status, 200);
    EXPECT_EQ(forum.describe(posted), QString::fromUtf8(Demo::kReplyPosted));

    const QJsonArray replies = forum.replies(Demo::kManyRepliesTopicId);
    const QJsonObject newest = replies[Demo::kManyRepliesHighlighted].toObject();
    EXPECT_EQ(newest["content"].toString(), "+1 谢谢");
    EXPECT_EQ(newest["istop"].toInt(), 0);
    EXPECT_EQ(newest["userid"].toInteger(), user);
    EXPECT_EQ(forum.detail(Demo::kManyRepliesTopicId)["replycount"].toInt(), Demo::kManyRepliesCount + 1);
}

TEST_P(ServerPosting, UserZeroPostsAsTheDevicesTemporaryUser)
{
    ServerHarness forum(GetParam());
    const ApiAnswer posted = forum.call("WriteTopic", forum.topicPayload(0, kTitle, kBody));
    ASSERT_EQ(forum.describe(posted), QString::fromUtf8(Demo::kTopicPosted));
    EXPECT_EQ(forum.detail(posted.rdata["tid"].toInteger())["userid"].toInteger(),
              forum.userFor(ServerHarness::kImei));
}

TEST_P(ServerPosting, SecondPostWithinTheIntervalIsRefusedAcrossBothKinds)
{
    ServerHarness forum(GetParam());
    const qint64 user = forum.userFor(ServerHarness::kImei);
    ASSERT_EQ(forum.describe(forum.call("WriteTopic", forum.topicPayload(user, kTitle, kBody))),
              QString::fromUtf8(Demo::kTopicPosted));
    const int countAfterFirst = boardTopicCount(forum);

    forum.nowMs += Demo::kDefaultPostIntervalSeconds * 1000 - 1;
    EXPECT_EQ(forum.describe(forum.call("WriteTopic", forum.topicPayload(user, "又一帖", kBody))),
              QString::fromUtf8(Demo::kTooSoon));
    EXPECT_EQ(forum.describe(forum.call("RepliesleTopic", forum.replyPayload(user, Demo::kNewestTopicId, "顶"))),
              QString::fromUtf8(Demo::kTooSoon));
    EXPECT_EQ(boardTopicCount(forum), countAfterFirst);
    EXPECT_EQ(forum.detail(Demo::kNewestTopicId)["replycount"].toInt(), Demo::kNewestTopicReplies);

    // Another user is not held back, and the first may post again once the interval is over.
    EXPECT_EQ(forum.describe(forum.call("RepliesleTopic", forum.replyPayload(forum.userFor("other"), Demo::kNewestTopicId, "顶"))),
              QString::fromUtf8(Demo::kReplyPosted));
    forum.nowMs += 1;
    EXPECT_EQ(forum.describe(forum.call("RepliesleTopic", forum.replyPayload(user, Demo::kNewestTopicId, "顶"))),
              QString::fromUtf8(Demo::kReplyPosted));
}

TEST_P(ServerPosting, RefusedPostsStoreNothingAndSayWhy)
{
    ServerHarness forum(GetParam());
    const qint64 user = forum.userFor(ServerHarness::kImei);
    const QString longestTitle(Demo::kMaxTitleLength, QChar(u'长'));
    const QString longestBody(Demo::kMaxContentLength, QChar(u'字'));
    struct Case { QJsonObject payload; const char *endpoint; QString description; };
    const Case cases[] = {
        {forum.topicPayload(user, "", kBody), "WriteTopic", "标题不能为空"},
        {forum.topicPayload(user, " \n ", kBody), "WriteTopic", "标题不能为空"},
        {forum.topicPayload(user, longestTitle + "!", kBody), "WriteTopic", "标题过长"},
        {forum.topicPayload(user, kTitle, "\n\n"), "WriteTopic", "内容不能为空"},
        {forum.topicPayload(user, kTitle, longestBody + "!"), "WriteTopic", "内容过长"},
        {forum.topicPayload(user, kTitle, kBody, 99), "WriteTopic", "版块不存在"},
        {forum.topicPayload(424242, kTitle, kBody), "WriteTopic", "用户不存在"},
        {forum.replyPayload(user, 987654, "顶"), "RepliesleTopic", "帖子不存在"},
        {forum.replyPayload(user, Demo::kNewestTopicId, ""), "RepliesleTopic", "内容不能为空"},
    };
    for (const Case &refused : cases) {
        const ApiAnswer answer = forum.call(refused.endpoint, refused.payload);
        EXPECT_EQ(answer.status, 200);
        EXPECT_EQ(forum.describe(answer), refused.description);
        EXPECT_FALSE(answer.rdata.toObject().contains("tid") && refused.endpoint == QByteArray("WriteTopic"));
    }
    EXPECT_EQ(boardTopicCount(forum), Demo::kBoardTopicCount);
    EXPECT_EQ(forum.detail(Demo::kNewestTopicId)["replycount"].toInt(), Demo::kNewestTopicReplies);

    // Refusals do not start the waiting time, and the limits themselves are allowed.
    EXPECT_EQ(forum.describe(forum.call("WriteTopic", forum.topicPayload(user, longestTitle, longestBody))),
              QString::fromUtf8(Demo::kTopicPosted));
}

TEST_P(ServerPosting, ReplyToAPosterAndTagAsTextAreAccepted)
{
    ServerHarness forum(GetParam());
    const qint64 user = forum.userFor(ServerHarness::kImei);
    // Replying to a poster sends the poster's name as the title and any board id.
    QJsonObject reply = forum.replyPayload(user, Demo::kNewestTopicId, "同意楼上");
    reply["title"] = "星辰旅人";
    reply["sectionid"] = 5;
    EXPECT_EQ(forum.describe(forum.call("RepliesleTopic", reply)), QString::fromUtf8(Demo::kReplyPosted));

    forum.nowMs += 60'000;
    QJsonObject topic = forum.topicPayload(user, kTitle, kBody);
    topic["tag"] = "101";
    EXPECT_EQ(forum.describe(forum.call("WriteTopic", topic)), QString::fromUtf8(Demo::kTopicPosted));
}
