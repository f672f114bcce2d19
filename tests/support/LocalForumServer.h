#pragma once
// Test fixture: runs the project's forum server (`quorvel-server`) on a free loopback port
// with its own database in a temporary folder, for tests that talk to a real server.
// Lives on the test's main thread. The process stops when the fixture is destroyed.
//
//   LocalForumServer server({"--post-interval", "0"});
//   ASSERT_TRUE(server.isRunning()) << server.errorString();
//   client.setApiRoot(server.apiRoot());  // "http://127.0.0.1:PORT/api/"

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

class LocalForumServer
{
public:
    // Facts of the demo forum every fresh database holds (the same on every machine).
    struct Demo
    {
        static constexpr int kBoardCount = 6;
        // Ordinary topics (GetTopics) per board, boards 1..6 in the GetSection order.
        static constexpr int kOrdinaryTopicCounts[kBoardCount] = {42, 38, 36, 34, 32, 40};

        // Board 1, "新手攻略": 42 ordinary topics (pages of 10: 10, 10, 10, 10, 2), plus two
        // pinned (topictype 1 and 3) and two guide (2 and 4) topics.
        static constexpr int kBoardId = 1;
        static constexpr int kBoardTagId = 101;
        static constexpr const char *kBoardName = "新手攻略";  // UTF-8
        static constexpr int kBoardOrdinaryTopics = 42;
        static constexpr int kBoardTopicCount = 46;  // its `sectiontopic`
        static constexpr int kBoardPinnedTopics = 2;
        static constexpr int kBoardGuideTopics = 2;
        // GetTopTopic answers the pinned and guide topics and one topictype 0 and one
        // topictype 5 item, which the client sorts into no list.
        static constexpr int kBoardTopTopicItems = 6;

        // Topic ids are board * 1000 + n. Topic 1001 is board 1's pinned (topictype 1) topic
        // with 64 replies: 3 highlighted (istop 1), 2 with istop 2 and 3, 59 ordinary.
        // RepliesLog page 1 / 50 gives the 3 highlighted replies first, then 47 ordinary ones.
        static constexpr int kManyRepliesTopicId = 1001;
        static constexpr int kManyRepliesSectionId = 1;
        static constexpr int kManyRepliesCount = 64;  // its `replycount`
        static constexpr int kManyRepliesHighlighted = 3;
        static constexpr int kManyRepliesFirstPageOrdinary = 47;

        // Board 1's newest ordinary topic, first on GetTopics page 1 until something is
        // posted: 56 replies, 1 of them highlighted.
        static constexpr int kNewestTopicId = 1046;
        static constexpr int kNewestTopicReplies = 56;

        // GetAdRecom: 5 items in this order: topic 1003, page, topic 2003, page, topic 4002.
        static constexpr int kBannerCount = 5;
        static constexpr int kBannerTopicItems = 3;  // urltype 0
        static constexpr int kBannerPageItems = 2;   // urltype 1, adurl http://HOST:PORT/pages/N.html
        static constexpr int kFirstBannerTopicId = 1003;

        // Posting rules at their defaults (--post-interval, --max-title, --max-content).
        static constexpr int kDefaultPostIntervalSeconds = 10;
        static constexpr int kMaxTitleLength = 30;     // UTF-16 units
        static constexpr int kMaxContentLength = 2000; // UTF-16 units
        static constexpr const char *kTopicPosted = "发帖成功";
        static constexpr const char *kReplyPosted = "回帖成功";
        static constexpr const char *kTooSoon = "操作太频繁";
    };

    // Starts the server with `--port 0 --db <temporary folder>/forum.sqlite` and
    // `extraArguments`, and waits until it listens.
    explicit LocalForumServer(const QStringList &extraArguments = {});
    ~LocalForumServer();

    LocalForumServer(const LocalForumServer &) = delete;
    LocalForumServer &operator=(const LocalForumServer &) = delete;

    bool isRunning() const;
    QString errorString() const { return m_error; }

    quint16 port() const { return m_port; }
    // The server process's id, for reading its figures under /proc; 0 when it does not run.
    qint64 pid() const { return m_process ? m_process->processId() : 0; }
    QString origin() const;   // "http://127.0.0.1:PORT"
    // The analytics collector's root ("http://127.0.0.1:PORT"); empty when it did not start.
    QString analyticsRoot() const { return m_analyticsRoot; }
    QString apiRoot() const;  // "http://127.0.0.1:PORT/api/"
    // The SQLite file in the temporary folder, or the --db given among the extra arguments.
    QString databasePath() const;

    // Stops the server and starts it again on the same database and, when it is still free,
    // the same port. Returns whether it runs again.
    bool restart();
    // Stops the server (SIGTERM, then kill if it lingers).
    void stop();
    // Kills the server at once (SIGKILL), as a crash would.
    void kill();

    // Everything the server has logged on stderr so far (one line per request).
    QByteArray log() const;

private:
    bool start(quint16 port);

    QTemporaryDir m_folder;
    QStringList m_extraArguments;
    std::unique_ptr<QProcess> m_process;
    quint16 m_port = 0;
    QString m_error;
    QString m_analyticsRoot;
};
