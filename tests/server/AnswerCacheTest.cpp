// The answer cache in-process: reading answers come from it until a write changes them,
// devices share answers that do not depend on the device, bad requests never get a cached
// answer, and on PostgreSQL a write through one connection drops the other's answers once
// its notice arrives.
#include "EventLoop.h"
#include "LocalForumServer.h"
#include "ServerHarness.h"

namespace {

using Demo = LocalForumServer::Demo;

class ServerAnswerCache : public ::testing::TestWithParam<StoreKind>
{
protected:
    static ServerRequest get(const QByteArray &endpoint, const QJsonObject &payload, const QByteArray &host = "forum.test:8080")
    {
        return {"GET", "/api/" + endpoint, "data=" + ServerHarness::encipher(payload), {}, host};
    }
    static QJsonObject page(const QString &imei, qint64 tid)
    {
        return ServerHarness::with(ServerHarness::device(imei), {{"sectionid", 1}, {"userid", 0}, {"tid", tid},
                                                                  {"pageindex", 1}, {"pagesize", 50}, {"islandlord", 0}});
    }
    static QJsonObject board(const QString &imei)
    {
        return ServerHarness::with(ServerHarness::device(imei), {{"sectionid", Demo::kBoardId}, {"showtype", 0},
                                                                  {"sorttype", 0}, {"tag", Demo::kBoardTagId},
                                                                  {"pageindex", 1}, {"pagesize", 10}});
    }
};
QUORVEL_FOR_BOTH_STORES(ServerAnswerCache);

TEST_P(ServerAnswerCache, ReadingAnswersAreCachedUntilAWriteChangesThem)
{
    ServerHarness forum(GetParam());
    ForumRouter &router = forum.router();
    const qint64 tid = Demo::kManyRepliesTopicId;
    EXPECT_EQ(router.cachedReply(get("RepliesLog", page("a", tid))), std::nullopt);
    const ServerReply first = router.handle(get("RepliesLog", page("a", tid)));
    ASSERT_EQ(first.status, 200);
    EXPECT_TRUE(first.note.isEmpty());
    // Another device asking the same gets the same bytes, from the cache, on any thread.
    const std::optional<ServerReply> hit = router.cachedReply(get("RepliesLog", page("b", tid)));
    ASSERT_TRUE(hit);
    EXPECT_EQ(hit->body, first.body);
    EXPECT_EQ(hit->note, QStringLiteral("cached"));
    router.handle(get("GetTopics", board("a")));
    router.handle(get("TopicDetail", page("a", Demo::kManyRepliesTopicId + 1)));
    router.handle(get("GetSection", ServerHarness::with(ServerHarness::device("a"), {{"userid", 0}})));
    EXPECT_EQ(router.cache().count(), 4);

    // A reply drops its topic's answers and its board's lists, not other topics' answers.
    const qint64 user = forum.userFor(ServerHarness::kImei);
    ASSERT_EQ(forum.call("RepliesleTopic", forum.replyPayload(user, tid, QStringLiteral("新回复"))).status, 200);
    EXPECT_EQ(router.cachedReply(get("RepliesLog", page("a", tid))), std::nullopt);
    EXPECT_EQ(router.cachedReply(get("GetTopics", board("a"))), std::nullopt);
    EXPECT_TRUE(router.cachedReply(get("TopicDetail", page("a", Demo::kManyRepliesTopicId + 1))));
    EXPECT_TRUE(router.cachedReply(get("GetSection", ServerHarness::with(ServerHarness::device("a"), {{"userid", 0}}))));
    const QJsonArray replies = forum.call("RepliesLog", page("a", tid)).rdata.toArray();
    EXPECT_EQ(replies.at(Demo::kManyRepliesHighlighted)[QStringLiteral("content")].toString(), QStringLiteral("新回复"));

    // A new topic drops the board list too.
    forum.nowMs += 60'000;
    ASSERT_EQ(forum.call("WriteTopic", forum.topicPayload(user, QStringLiteral("新帖"), QStringLiteral("内容"))).status, 200);
    EXPECT_EQ(router.cachedReply(get("GetSection", ServerHarness::with(ServerHarness::device("a"), {{"userid", 0}}))),
              std::nullopt);
}

TEST_P(ServerAnswerCache, BadOrDifferentRequestsNeverGetAnotherRequestsAnswer)
{
    ServerHarness forum(GetParam());
    ForumRouter &router = forum.router();
    ASSERT_EQ(router.handle(get("GetTopics", board("a"))).status, 200);
    // Without the device pair the request is bad, cached answer or not.
    QJsonObject noDevice = board("a");
    noDevice.remove(QStringLiteral("imei"));
    EXPECT_EQ(router.cachedReply(get("GetTopics", noDevice)), std::nullopt);
    EXPECT_EQ(router.handle(get("GetTopics", noDevice)).status, 400);
    // Another page, another board, or addresses for another host are other answers.
    EXPECT_EQ(router.cachedReply(get("GetTopics", ServerHarness::with(board("a"), {{"pageindex", 2}}))), std::nullopt);
    EXPECT_EQ(router.cachedReply(get("GetTopics", ServerHarness::with(board("a"), {{"sectionid", 2}}))), std::nullopt);
    const QJsonObject boards = ServerHarness::with(ServerHarness::device("a"), {{"userid", 0}});
    router.handle(get("GetSection", boards, "one.test:8080"));
    EXPECT_TRUE(router.cachedReply(get("GetSection", boards, "one.test:8080")));
    EXPECT_EQ(router.cachedReply(get("GetSection", boards, "two.test:8080")), std::nullopt);
    // Writes and the temporary user are never cached; POST of a reading endpoint is refused.
    EXPECT_EQ(router.cachedReply(get("GetTempUserInfo", ServerHarness::device("a"))), std::nullopt);
    ServerRequest post = get("GetTopics", board("a"));
    post.method = "POST";
    EXPECT_EQ(router.cachedReply(post), std::nullopt);
    EXPECT_EQ(router.handle(post).status, 405);
}

TEST(ServerAnswerCacheShared, AWriteThroughOneConnectionDropsTheOthersAnswersWhenItsNoticeArrives)
{
    QTemporaryDir folder;
    const QString url = seededForum(StoreKind::PostgreSQL, folder);
    ASSERT_FALSE(url.isEmpty());
    QString error;
    const std::unique_ptr<ForumDatabase> firstDatabase = ForumDatabase::open(url, &error);
    const std::unique_ptr<ForumDatabase> secondDatabase = ForumDatabase::open(url, &error);
    ASSERT_TRUE(firstDatabase && secondDatabase) << error.toStdString();
    ForumStore firstStore(*firstDatabase);
    ForumStore secondStore(*secondDatabase);
    ServerOptions options;
    ForumRouter writer(firstStore, options, [] { return qint64(1'790'000'000'000); });
    ForumRouter reader(secondStore, options, [] { return qint64(1'790'000'000'000); });

    const ServerRequest topics{"GET", "/api/GetTopics", "data=" + ServerHarness::encipher(
        ServerHarness::with(ServerHarness::device("r"), {{"sectionid", 1}, {"showtype", 0}, {"sorttype", 0},
                                                         {"tag", 101}, {"pageindex", 1}, {"pagesize", 10}})), {}, "f.test"};
    reader.handle(topics);
    ASSERT_TRUE(reader.cachedReply(topics));
    const QJsonObject topic = ServerHarness::with(ServerHarness::device("w"), {{"userid", 0}, {"sectionid", 1}, {"tag", 101},
                                                                              {"title", "另一连接"}, {"content", "x"},
                                                                              {"imgs", QJsonArray()}});
    ASSERT_EQ(writer.handle({"POST", "/api/WriteTopic", "data=" + ServerHarness::encipher(topic), {}, "f.test"}).status, 200);
    EXPECT_TRUE(testsupport::waitUntil([&] { return !reader.cachedReply(topics); }, 5000));
    EXPECT_EQ(AnswerEnvelope::unwrap(reader.handle(topics).body).value()[0][QStringLiteral("title")].toString(),
              QStringLiteral("另一连接"));
}

} // namespace
