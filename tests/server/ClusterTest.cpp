// Several server processes on one PostgreSQL database, as `serve-cluster.sh` runs them:
// first starts that seed the forum once, posts through one read through the other (with
// both answer caches warm), the posting interval held across them, SIGKILLs under
// concurrent writes losing no acknowledged post, and a lost database answered 503 until it
// is back.
#include "LocalPostgres.h"
#include "ServerWire.h"

#include <QProcess>
#include <QRegularExpression>

#include <memory>
#include <set>

namespace {

constexpr int kKillRounds = 50;
constexpr int kWritesPerRound = 16;

class ServerCluster : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(postgres.isRunning()) << postgres.errorString().toStdString();
        url = postgres.emptyDatabase();
        ASSERT_FALSE(url.isEmpty()) << postgres.errorString().toStdString();
    }

    std::unique_ptr<LocalForumServer> serve(const QStringList &extra = {})
    {
        auto server = std::make_unique<LocalForumServer>(QStringList{QStringLiteral("--db"), url} + extra);
        EXPECT_TRUE(server->isRunning()) << server->errorString().toStdString();
        return server;
    }

    static QJsonObject replyPayload(const QString &imei, qint64 tid, const QString &content)
    {
        QJsonObject payload = device(imei);
        for (const auto &[key, value] : {std::pair<const char *, QJsonValue>{"sectionid", Demo::kBoardId}, {"userid", 0},
                                         {"tid", tid}, {"content", content}, {"imgs", QJsonArray()}, {"pid", -1},
                                         {"title", QStringLiteral("回复")}})
            payload.insert(key, value);
        return payload;
    }

    static QJsonObject topicPage(qint64 tid)
    {
        QJsonObject payload = device(QStringLiteral("reader"));
        for (const auto &[key, value] : {std::pair{"sectionid", qint64(Demo::kBoardId)}, {"userid", qint64(0)},
                                         {"tid", tid}, {"pageindex", qint64(1)}, {"pagesize", qint64(50)},
                                         {"islandlord", qint64(0)}})
            payload.insert(key, value);
        return payload;
    }

    LocalPostgres &postgres = LocalPostgres::shared();
    QString url;
};

TEST_F(ServerCluster, ProcessesStartingTogetherSeedTheForumOnce)
{
    std::vector<std::unique_ptr<QProcess>> processes;
    for (int i = 0; i < 3; ++i) {
        processes.push_back(std::make_unique<QProcess>());
        processes.back()->start(QStringLiteral(QUORVEL_SERVER_BINARY),
                                {QStringLiteral("--port"), QStringLiteral("0"), QStringLiteral("--analytics-port"),
                                 QStringLiteral("0"), QStringLiteral("--db"), url});
    }
    QList<QString> roots;
    static const QRegularExpression listening(QStringLiteral("^quorvel-server listening on (http://\\S+/api/)"));
    for (const auto &process : processes) {
        ASSERT_TRUE(testsupport::waitUntil([&] { return process->canReadLine() || process->state() == QProcess::NotRunning; }, 20000));
        const QRegularExpressionMatch match = listening.match(QString::fromUtf8(process->readLine()));
        ASSERT_TRUE(match.hasMatch()) << process->readAllStandardError().toStdString();
        roots << match.captured(1);
    }
    for (const QString &root : roots) {
        Wire wire(root);
        const WireAnswer boards = wire.get(root + QStringLiteral("GetSection"));
        ASSERT_EQ(boards.status, 200);
        ASSERT_EQ(boards.rdata.toArray().size(), Demo::kBoardCount);
        EXPECT_EQ(boards.rdata[0][QStringLiteral("sectiontopic")].toInt(), Demo::kBoardTopicCount);
    }
    for (const auto &process : processes) {
        process->terminate();
        process->waitForFinished();
    }
}

TEST_F(ServerCluster, APostThroughOneIsInTheNextAnswerOfTheOther)
{
    const auto first = serve({QStringLiteral("--post-interval"), QStringLiteral("0")});
    const auto second = serve({QStringLiteral("--post-interval"), QStringLiteral("0")});
    Wire a(*first);
    Wire b(*second);
    // Both caches hold the board's first page and the topic's replies before the writes.
    const qint64 tid = b.call("GET", "GetTopics", firstPage("reader")).rdata[0][QStringLiteral("tid")].toInteger();
    const int replies = b.call("GET", "RepliesLog", topicPage(tid)).rdata.toArray().size();
    ASSERT_EQ(b.call("GET", "GetTopics", firstPage("reader")).status, 200);
    EXPECT_GT(second->log().count("(cached)"), 0) << second->log().toStdString();

    const WireAnswer posted = a.call("POST", "WriteTopic", topicPayload("writer", QStringLiteral("经由甲进程发的帖")));
    ASSERT_EQ(posted.status, 200);
    EXPECT_EQ(b.call("GET", "GetTopics", firstPage("reader")).rdata[0][QStringLiteral("title")].toString(),
              QStringLiteral("经由甲进程发的帖"));

    ASSERT_EQ(a.call("POST", "RepliesleTopic", replyPayload("writer", tid, QStringLiteral("甲进程的回复"))).status, 200);
    const QJsonArray after = b.call("GET", "RepliesLog", topicPage(tid)).rdata.toArray();
    EXPECT_EQ(after.size(), std::min(replies + 1, 50));
    bool found = false;
    for (const QJsonValue &reply : after)
        found = found || reply[QStringLiteral("content")].toString() == QStringLiteral("甲进程的回复");
    EXPECT_TRUE(found);
}

TEST_F(ServerCluster, ThePostingIntervalHoldsAcrossProcesses)
{
    const auto first = serve();
    const auto second = serve();
    Wire a(*first);
    Wire b(*second);
    ASSERT_EQ(a.call("POST", "WriteTopic", topicPayload("one-device", QStringLiteral("第一帖"))).rdata[QStringLiteral("description")],
              QString::fromUtf8(Demo::kTopicPosted));
    EXPECT_TRUE(b.call("POST", "WriteTopic", topicPayload("one-device", QStringLiteral("第二帖")))
                    .rdata[QStringLiteral("description")].toString().startsWith(QString::fromUtf8(Demo::kTooSoon)));

    // Twenty posts of one new user in flight at once, half through each process: one is taken.
    a.call("GET", "GetTempUserInfo", device("racer"));
    std::vector<WireAnswer> answers;
    for (int i = 0; i < 20; ++i)
        (i % 2 ? a : b).send("POST", "WriteTopic", topicPayload("racer", QStringLiteral("抢%1").arg(i)), &answers);
    ASSERT_TRUE(testsupport::waitUntil([&] { return answers.size() == 20; }, 20000));
    int taken = 0;
    for (const WireAnswer &answer : answers)
        taken += answer.rdata[QStringLiteral("description")].toString() == QString::fromUtf8(Demo::kTopicPosted);
    EXPECT_EQ(taken, 1);
}

TEST_F(ServerCluster, AKilledProcessLosesNoAcknowledgedPostAndTheOtherServesOn)
{
    const auto survivor = serve({QStringLiteral("--post-interval"), QStringLiteral("0")});
    Wire check(*survivor);
    std::set<qint64> acknowledged;
    for (int round = 0; round < kKillRounds; ++round) {
        auto victim = serve({QStringLiteral("--post-interval"), QStringLiteral("0")});
        Wire toVictim(*victim);
        Wire toSurvivor(*survivor);
        std::vector<WireAnswer> answers;
        for (int i = 0; i < kWritesPerRound; ++i)
            (i % 2 ? toVictim : toSurvivor)
                .send("POST", "WriteTopic", topicPayload(QStringLiteral("k%1-%2").arg(round).arg(i), QStringLiteral("轮%1").arg(round)),
                      &answers);
        // Killed while writes are in flight: some answered, some cut off.
        testsupport::waitUntil([&] { return answers.size() >= kWritesPerRound / 4; }, 10000);
        victim->kill();
        testsupport::waitUntil([&] { return answers.size() == kWritesPerRound; }, 10000);
        for (const WireAnswer &answer : answers) {
            if (answer.status == 200 && answer.rdata[QStringLiteral("tid")].toInteger() > 0)
                acknowledged.insert(answer.rdata[QStringLiteral("tid")].toInteger());
        }
    }
    EXPECT_GE(acknowledged.size(), size_t(kKillRounds * kWritesPerRound / 2));
    for (const qint64 tid : acknowledged) {
        const WireAnswer detail = check.call("GET", "TopicDetail", topicPage(tid));
        ASSERT_EQ(detail.status, 200);
        EXPECT_EQ(detail.rdata[QStringLiteral("tid")].toInteger(), tid) << "acknowledged topic lost";
    }
}

TEST_F(ServerCluster, ALostDatabaseIsAnswered503UntilItIsBack)
{
    const auto server = serve();
    Wire wire(*server);
    ASSERT_EQ(wire.call("POST", "WriteTopic", topicPayload("before", QStringLiteral("断线前"))).status, 200);

    ASSERT_TRUE(postgres.stop()) << postgres.errorString().toStdString();
    const WireAnswer during = wire.call("POST", "WriteTopic", topicPayload("during", QStringLiteral("断线中")));
    EXPECT_EQ(during.status, 503);
    EXPECT_EQ(wire.call("GET", "TopicDetail", topicPage(Demo::kManyRepliesTopicId)).status, 503);
    ASSERT_TRUE(postgres.start()) << postgres.errorString().toStdString();

    EXPECT_TRUE(testsupport::waitUntil(
        [&] { return wire.call("GET", "TopicDetail", topicPage(Demo::kManyRepliesTopicId)).status == 200; }, 40000));
    EXPECT_EQ(wire.call("POST", "WriteTopic", topicPayload("after", QStringLiteral("断线后"))).status, 200);
    EXPECT_EQ(server->log().count("database connection lost"), 1) << server->log().toStdString();
    EXPECT_EQ(server->log().count("database connection back"), 1);
}

} // namespace
