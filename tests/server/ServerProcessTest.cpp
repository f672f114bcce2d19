// The server process on a loopback port: its command line, persistence across restarts,
// concurrent clients, and surviving bad input on the wire.
#include "ServerWire.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>
#include <QTcpSocket>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

QByteArray runServer(const QStringList &arguments, int *exitCode)
{
    QProcess process;
    process.start(QStringLiteral(QUORVEL_SERVER_BINARY), arguments);
    EXPECT_TRUE(process.waitForFinished(20000));
    *exitCode = process.exitCode();
    return process.readAllStandardOutput() + process.readAllStandardError();
}

} // namespace

TEST(ServerProcess, HelpListsEveryOptionAndBadOptionsFail)
{
    int exitCode = -1;
    const QByteArray help = runServer({"--help"}, &exitCode);
    EXPECT_EQ(exitCode, 0);
    for (const char *option : {"--host", "--port", "--db", "--post-interval", "--max-body", "--max-title",
                               "--max-content", "--help"})
        EXPECT_TRUE(help.contains(option)) << option;

    EXPECT_EQ((runServer({"--port", "http"}, &exitCode), exitCode), 2);
    EXPECT_EQ((runServer({"--no-such-option"}, &exitCode), exitCode), 2);
    for (const char *address : {"postgresql://quorvel@127.0.0.1:5432/", "postgresql://127.0.0.1/forum",
                                "postgres://quorvel@/forum", "postgresql://quorvel@127.0.0.1/a/b"}) {
        EXPECT_TRUE(runServer({"--db", address}, &exitCode).contains("is not of the form postgresql://user@host:port/dbname"))
            << address;
        EXPECT_EQ(exitCode, 2) << address;
    }
    // A database that cannot be reached stops the start.
    EXPECT_TRUE(runServer({"--port", "0", "--db", "postgresql://quorvel@127.0.0.1:1/forum"}, &exitCode)
                    .contains("cannot open postgresql://quorvel@127.0.0.1:1/forum"));
    EXPECT_EQ(exitCode, 1);
}

TEST(ServerProcess, ServesPicturesAndLogsOneLinePerRequest)
{
    LocalForumServer server;
    ASSERT_TRUE(server.isRunning()) << server.errorString().toStdString();
    EXPECT_EQ(server.apiRoot(), QStringLiteral("http://127.0.0.1:%1/api/").arg(server.port()));
    Wire wire(server);

    const WireAnswer boards = wire.get(server.apiRoot() + "GetSection");
    ASSERT_EQ(boards.status, 200);
    EXPECT_EQ(boards.contentType, "application/json");
    const QString icon = boards.rdata[0]["sectionico"].toString();
    EXPECT_TRUE(icon.startsWith(server.origin() + "/img/section/"));
    const WireAnswer picture = wire.get(icon);
    EXPECT_EQ(picture.contentType, "image/png");
    EXPECT_TRUE(picture.body.startsWith("\x89PNG"));

    EXPECT_TRUE(testsupport::waitUntil([&] { return server.log().count('\n') >= 2; }));
    const QByteArray log = server.log();
    EXPECT_TRUE(log.contains("GET /api/GetSection 200")) << log.constData();
    EXPECT_TRUE(log.contains("GET /img/section/1.png 200")) << log.constData();
}

TEST(ServerProcess, PostsAndUsersSurviveARestartOnTheSameDatabase)
{
    LocalForumServer server;
    ASSERT_TRUE(server.isRunning()) << server.errorString().toStdString();
    Wire wire(server);
    const qint64 user = wire.call("GET", "GetTempUserInfo", device("restart-device")).rdata["userinfo"]["userid"].toInteger();
    const WireAnswer posted = wire.call("POST", "WriteTopic", topicPayload("restart-device", "重启测试"));
    ASSERT_EQ(posted.rdata["description"].toString(), QString::fromUtf8(Demo::kTopicPosted));
    const quint16 port = server.port();

    ASSERT_TRUE(server.restart()) << server.errorString().toStdString();
    EXPECT_EQ(server.port(), port);
    Wire after(server);
    const QJsonValue newest = after.call("GET", "GetTopics", firstPage("restart-device")).rdata[0];
    EXPECT_EQ(newest["title"].toString(), "重启测试");
    EXPECT_EQ(newest["userid"].toInteger(), user);
    EXPECT_EQ(after.call("GET", "GetTempUserInfo", device("restart-device")).rdata["userinfo"]["userid"].toInteger(), user);
    // The demo data is written once, not again on the second start.
    EXPECT_EQ(after.get(server.apiRoot() + "GetSection").rdata[0]["sectiontopic"].toInt(), Demo::kBoardTopicCount + 1);
    // The rate limit is kept in the database too.
    EXPECT_EQ(after.call("POST", "WriteTopic", topicPayload("restart-device", "再来一帖")).rdata["description"].toString(),
              QString::fromUtf8(Demo::kTooSoon));
}

TEST(ServerProcess, ConcurrentClientsAreAllAnsweredAndEveryPostIsStoredOnce)
{
    LocalForumServer server;
    ASSERT_TRUE(server.isRunning()) << server.errorString().toStdString();
    constexpr int kClients = 6;
    constexpr int kPostsPerClient = 5;
    std::vector<std::unique_ptr<Wire>> wires;
    std::vector<WireAnswer> posts;
    std::vector<WireAnswer> reads;
    for (int c = 0; c < kClients; ++c) {
        wires.push_back(std::make_unique<Wire>(server));
        for (int p = 0; p < kPostsPerClient; ++p) {
            const QString imei = QStringLiteral("busy-%1-%2").arg(c).arg(p);
            wires.back()->send("POST", "WriteTopic", topicPayload(imei, QStringLiteral("并发 %1-%2").arg(c).arg(p)), &posts);
            wires.back()->send("GET", "GetTopics", firstPage(imei, 100), &reads);
        }
    }
    constexpr size_t kRequests = kClients * kPostsPerClient;
    ASSERT_TRUE(testsupport::waitUntil([&] { return posts.size() == kRequests && reads.size() == kRequests; }, 30000));

    QSet<qint64> tids;
    for (const WireAnswer &post : posts) {
        EXPECT_EQ(post.rdata["description"].toString(), QString::fromUtf8(Demo::kTopicPosted));
        tids.insert(post.rdata["tid"].toInteger());
    }
    EXPECT_EQ(tids.size(), int(kRequests));
    for (const WireAnswer &read : reads) {
        EXPECT_EQ(read.status, 200);
        EXPECT_GE(read.rdata.toArray().size(), Demo::kBoardOrdinaryTopics);
    }
    Wire check(server);
    EXPECT_EQ(check.call("GET", "GetTopics", firstPage("check", 100)).rdata.toArray().size(),
              Demo::kBoardOrdinaryTopics + int(kRequests));
}

TEST(ServerProcess, BadInputOnTheWireIsAnsweredAndTheServerCarriesOn)
{
    LocalForumServer server;
    ASSERT_TRUE(server.isRunning()) << server.errorString().toStdString();
    Wire wire(server);
    const WireAnswer notBase64 = wire.get(server.apiRoot() + "GetTopics?data=not base64!");
    EXPECT_EQ(notBase64.status, 400);
    EXPECT_EQ(notBase64.contentType, "application/json");
    EXPECT_EQ(wire.get(server.apiRoot() + "Nothing").status, 404);

    // Bytes that are not HTTP at all, on a raw connection.
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, server.port());
    ASSERT_TRUE(socket.waitForConnected(5000));
    socket.write(QByteArray("\x16\x03\x01\x00\xff garbage\r\n\r\n", 19));
    socket.waitForBytesWritten(5000);
    socket.waitForReadyRead(2000);
    socket.abort();

    EXPECT_EQ(wire.get(server.apiRoot() + "GetAdRecom").rdata.toArray().size(), Demo::kBannerCount);
    EXPECT_TRUE(server.isRunning());
    EXPECT_TRUE(server.log().contains("400")) << server.log().constData();
}
