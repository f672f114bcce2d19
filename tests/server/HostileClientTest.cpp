// The server process under hostile clients on raw sockets: bodies of hundreds of megabytes,
// megabyte headers, a thousand idle connections and byte-a-second senders are refused or
// closed early, while the server's peak memory stays under 100 MB and its other clients are
// served. Refusals are logged once per address and minute; keep-alive still answers several
// requests on one connection.
#include "AnswerEnvelope.h"
#include "BodyBudget.h"
#include "EventLoop.h"
#include "HttpLimits.h"
#include "LocalForumServer.h"
#include "RawHttpConnection.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTime>

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <memory>
#include <thread>
#include <vector>

namespace {

using Demo = LocalForumServer::Demo;

constexpr qint64 kMemoryCeilingKb = 100 * 1024;  // the server's peak (VmHWM) stays under this
constexpr qint64 kHugeBodyBytes = 300LL * 1024 * 1024;
constexpr int kHugeBodies = 10;
constexpr qsizetype kFillerBytes = 64 * 1024;  // every huge body streams from one such buffer
constexpr qsizetype kHugeHeadBytes = 1024 * 1024;
constexpr qsizetype kSmallHeaderValueBytes = 24;
constexpr int kSmallMaxBodyBytes = 2048;  // --max-body for the boundary test
constexpr int kIdleConnections = 1000;
// Each stalled client's head stops this short of the default --max-header, without its end.
constexpr qsizetype kStalledHeadMargin = 512;
constexpr quint8 kOtherClientHost = 2;  // 127.0.0.2: a client besides the hostile one
constexpr int kStalledSettleMs = 1000;  // for the server to read what the stalled clients sent
constexpr int kSpareDescriptors = 100;  // for the server's own files beside the idle connections
constexpr int kMaxConnections = 10;
constexpr int kSlowSenders = 10;  // of each kind: in the request line, in the body
constexpr int kSlowBodyBytes = 64;
constexpr const char *kShortTimeout = "2";  // seconds, for --read-timeout and --idle-timeout
constexpr int kEarliestCloseMs = 1000;      // a timeout of 2 s closes nothing sooner than this
constexpr int kIdleCloseBoundMs = 15000;
constexpr int kSlowCloseBoundMs = 12000;  // far under the default idle timeout of 30 s
constexpr int kTrickleIntervalMs = 1000;
constexpr int kPollIntervalMs = 20;
constexpr int kAnswerTimeoutMs = 10000;
constexpr int kHugeBodyTimeoutMs = 240000;  // a server that reads all 3 GB takes its time
constexpr int kLogSettleMs = 1000;
constexpr int kLastCalmSecond = 45;  // later in a minute, a burst could straddle two minutes

const QByteArray kBoardsLine = "GET /api/GetSection HTTP/1.1";
const QByteArray kBannersLine = "GET /api/GetAdRecom HTTP/1.1";
const QByteArray kPostLine = "POST /api/WriteTopic HTTP/1.1";

// Raises this process's open-file limit to the hard limit; servers started afterwards
// inherit it. Returns the limit now in force.
rlim_t raiseOpenFileLimit()
{
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) == 0) {
        limit.rlim_cur = limit.rlim_max;
        ::setrlimit(RLIMIT_NOFILE, &limit);
        ::getrlimit(RLIMIT_NOFILE, &limit);
    }
    return limit.rlim_cur;
}

// A "kB" field of /proc/<pid>/status ("VmHWM": peak resident, "VmRSS": resident now); -1
// when it cannot be read.
qint64 statusKb(qint64 pid, const QByteArray &field)
{
    QFile status(QStringLiteral("/proc/%1/status").arg(pid));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n'))
        if (line.startsWith(field + ':'))
            return line.mid(field.size() + 1).trimmed().split(' ').first().toLongLong();
    return -1;
}

int openDescriptors(qint64 pid)
{
    return int(QDir(QStringLiteral("/proc/%1/fd").arg(pid))
                   .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
                   .size());
}

QByteArray request(quint16 port, const QByteArray &requestLine, const QByteArray &headers = {})
{
    return requestLine + "\r\nHost: 127.0.0.1:" + QByteArray::number(port) + "\r\n" + headers + "\r\n";
}

QByteArray contentLength(qint64 bytes)
{
    return "Content-Length: " + QByteArray::number(bytes) + "\r\n";
}

// The head of a 300 MB upload, its length declared or its body chunked.
QByteArray hugeUploadHead(quint16 port, bool chunked)
{
    return request(port, kPostLine,
                   "Content-Type: application/x-www-form-urlencoded\r\n"
                       + (chunked ? QByteArray("Transfer-Encoding: chunked\r\n") : contentLength(kHugeBodyBytes)));
}

::testing::AssertionResult isListOf(const std::optional<RawAnswer> &answer, int items)
{
    if (!answer)
        return ::testing::AssertionFailure() << "no answer";
    if (answer->status != 200)
        return ::testing::AssertionFailure() << "status " << answer->status << ": " << answer->body.left(200).constData();
    const std::optional<QJsonValue> rdata = AnswerEnvelope::unwrap(answer->body);
    if (!rdata || rdata->toArray().size() != items)
        return ::testing::AssertionFailure() << "not a list of " << items << ": " << answer->body.left(200).constData();
    return ::testing::AssertionSuccess();
}

::testing::AssertionResult isBoardList(const std::optional<RawAnswer> &answer)
{
    return isListOf(answer, Demo::kBoardCount);
}

// The board list asked for on a connection of its own, as an ordinary client would.
std::optional<RawAnswer> askForBoards(quint16 port)
{
    RawHttpConnection connection(port);
    if (!connection.write(request(port, kBoardsLine), kAnswerTimeoutMs))
        return std::nullopt;
    return connection.readAnswer(kAnswerTimeoutMs);
}

// What the log says after "refused 127.0.0.1: ", one entry per line (a line may carry the
// server's "quorvel-server: " prefix before it).
QList<QString> loopbackRefusals(const QByteArray &log)
{
    static const QRegularExpression line(QStringLiteral("^(?:quorvel-server: )?refused 127\\.0\\.0\\.1: (.*)$"),
                                         QRegularExpression::MultilineOption);
    QList<QString> found;
    for (QRegularExpressionMatchIterator it = line.globalMatch(QString::fromUtf8(log)); it.hasNext();)
        found << it.next().captured(1);
    return found;
}

// Waits for the next minute when this one is nearly over, so that a burst of refusals falls
// in one calendar minute as well as in any 60 seconds.
void waitForACalmPartOfTheMinute()
{
    const int second = QTime::currentTime().second();
    if (second >= kLastCalmSecond)
        testsupport::spinFor((60 - second) * 1000);
}

struct HugeUpload
{
    std::optional<RawAnswer> answer;
    qint64 bodySent = 0;
    bool closed = false;
};

// Writes `head`, then `piece` over and over until 300 MB or the server's close, and waits
// for the close. Counts itself in `streaming` once the head is out.
HugeUpload upload(quint16 port, const QByteArray &head, const QByteArray &piece, std::atomic<int> *streaming)
{
    HugeUpload result;
    RawHttpConnection connection(port);
    const bool headWritten = connection.write(head, kAnswerTimeoutMs);
    ++*streaming;
    if (headWritten) {
        result.bodySent = connection.stream(piece, kHugeBodyBytes, kHugeBodyTimeoutMs);
        result.closed = connection.waitForClose(kAnswerTimeoutMs);
    }
    result.answer = connection.readAnswer(0);
    return result;
}

using Connections = std::vector<std::unique_ptr<RawHttpConnection>>;

Connections openIdle(quint16 port, int count)
{
    Connections connections;
    for (int i = 0; i < count; ++i)
        connections.push_back(std::make_unique<RawHttpConnection>(port));
    return connections;
}

int countConnected(const Connections &connections)
{
    return int(std::count_if(connections.begin(), connections.end(), [](const auto &c) { return c->isConnected(); }));
}

int countClosed(const Connections &connections)
{
    return int(std::count_if(connections.begin(), connections.end(), [](const auto &c) { return c->checkClosed(); }));
}

class HostileClients : public ::testing::Test
{
protected:
    static void SetUpTestSuite() { openFileLimit = raiseOpenFileLimit(); }

    void start(const QStringList &extraArguments = {})
    {
        server = std::make_unique<LocalForumServer>(extraArguments);
        ASSERT_TRUE(server->isRunning()) << server->errorString().toStdString();
        port = server->port();
    }

    // Expects the server's peak memory under the ceiling, and prints it with the resident
    // memory now.
    void expectMemoryUnderCeiling() const
    {
        const qint64 peak = statusKb(server->pid(), "VmHWM");
        const qint64 now = statusKb(server->pid(), "VmRSS");
        std::printf("[ memory   ] quorvel-server VmHWM %lld kB, VmRSS %lld kB\n", peak, now);
        ASSERT_GT(peak, 0) << "no /proc/" << server->pid() << "/status";
        EXPECT_LT(peak, kMemoryCeilingKb) << "VmHWM " << peak << " kB, VmRSS " << now << " kB";
    }

    static inline rlim_t openFileLimit = 0;
    std::unique_ptr<LocalForumServer> server;
    quint16 port = 0;
};

// A body over --max-body is refused with 413 as soon as the server can tell: right after the
// headers when Content-Length declares it, as soon as a chunked body passes the limit. Ten
// 300 MB uploads at once and a chunked one leave the server's memory under 100 MB and its
// other clients served, and all those refusals make one log line.
TEST_F(HostileClients, HugeBodiesAreRefusedWith413BeforeTheyAreRead)
{
    ASSERT_NO_FATAL_FAILURE(start());
    waitForACalmPartOfTheMinute();

    // The head alone: the answer comes without a byte of the body.
    RawHttpConnection declared(port);
    ASSERT_TRUE(declared.write(hugeUploadHead(port, false), kAnswerTimeoutMs));
    const RawAnswer early = declared.readAnswer(kAnswerTimeoutMs).value_or(RawAnswer());
    EXPECT_EQ(early.status, 413) << "(0: no answer to the head)";
    EXPECT_EQ(early.contentType, "application/json");
    const QJsonObject error = QJsonDocument::fromJson(early.body).object();
    EXPECT_EQ(error.value(QStringLiteral("error")).toString(), QStringLiteral("payload_too_large"));
    EXPECT_TRUE(error.value(QStringLiteral("message")).isString()) << early.body.constData();
    EXPECT_TRUE(declared.waitForClose(kAnswerTimeoutMs));

    // Ten declared and one chunked at once, each writing until the server closes.
    const QByteArray zeros(kFillerBytes, '\0');
    const QByteArray chunk = QByteArray::number(kFillerBytes, 16) + "\r\n" + zeros + "\r\n";
    constexpr int kUploads = kHugeBodies + 1;
    std::vector<HugeUpload> uploads(kUploads);
    std::atomic<int> streaming{0};
    std::vector<std::thread> uploaders;
    for (int i = 0; i < kUploads; ++i) {
        const bool chunked = i == kHugeBodies;
        uploaders.emplace_back([&, i, chunked] {
            uploads[i] = upload(port, hugeUploadHead(port, chunked), chunked ? chunk : zeros, &streaming);
        });
    }
    EXPECT_TRUE(testsupport::waitUntil([&] { return streaming == kUploads; }, kAnswerTimeoutMs));
    EXPECT_TRUE(isBoardList(askForBoards(port))) << "while the uploads stream";
    for (std::thread &uploader : uploaders)
        uploader.join();

    for (int i = 0; i < kUploads; ++i) {
        SCOPED_TRACE(i == kHugeBodies ? "chunked upload" : "declared upload " + std::to_string(i));
        const HugeUpload &upload = uploads[size_t(i)];
        std::printf("[ upload   ] %s: %lld body bytes sent, answer %d, %s\n", i == kHugeBodies ? "chunked" : "declared",
                    upload.bodySent, upload.answer ? upload.answer->status : 0, upload.closed ? "closed" : "left open");
        EXPECT_EQ(upload.answer ? upload.answer->status : 0, 413);
        EXPECT_TRUE(upload.closed);
        EXPECT_LT(upload.bodySent, kHugeBodyBytes) << "the server took the whole body before refusing it";
    }
    EXPECT_TRUE(isBoardList(askForBoards(port))) << "after the uploads";
    expectMemoryUnderCeiling();

    // Twelve 413s from one address within a minute: one line.
    ASSERT_TRUE(testsupport::waitUntil([&] { return !loopbackRefusals(server->log()).isEmpty(); }))
        << server->log().toStdString();
    testsupport::spinFor(kLogSettleMs);
    const QList<QString> refusals = loopbackRefusals(server->log());
    ASSERT_EQ(refusals.size(), 1) << server->log().toStdString();
    EXPECT_TRUE(refusals.first().contains(QStringLiteral("(413)"))) << refusals.first().toStdString();
}

// The limit is exact: a body of --max-body bytes is served, and the connection kept alive;
// one byte more is refused with 413 and the connection closed.
TEST_F(HostileClients, ABodyOfTheLimitIsServedAndOneByteMoreIsRefused)
{
    ASSERT_NO_FATAL_FAILURE(start({QStringLiteral("--max-body"), QString::number(kSmallMaxBodyBytes)}));
    RawHttpConnection connection(port);
    ASSERT_TRUE(connection.write(request(port, kBoardsLine, contentLength(kSmallMaxBodyBytes))
                                     + QByteArray(kSmallMaxBodyBytes, 'a'),
                                 kAnswerTimeoutMs));
    EXPECT_TRUE(isBoardList(connection.readAnswer(kAnswerTimeoutMs)));
    EXPECT_FALSE(connection.checkClosed());

    connection.write(request(port, kBoardsLine, contentLength(kSmallMaxBodyBytes + 1))
                         + QByteArray(kSmallMaxBodyBytes + 1, 'a'),
                     kAnswerTimeoutMs);
    const std::optional<RawAnswer> refused = connection.readAnswer(kAnswerTimeoutMs);
    EXPECT_EQ(refused ? refused->status : 0, 413);
    EXPECT_TRUE(connection.waitForClose(kAnswerTimeoutMs));
}

// A request line and headers over --max-header are refused with 431, a request line alone
// over it with 414, and the connection is closed; the server stays small and serves on.
TEST_F(HostileClients, MegabyteHeadsAreRefusedWith431Or414AndClosed)
{
    ASSERT_NO_FATAL_FAILURE(start());
    const QByteArray oneHugeHeader = "X-Filler: " + QByteArray(kHugeHeadBytes, 'a') + "\r\n";
    QByteArray manySmallHeaders;
    for (int i = 0; manySmallHeaders.size() < kHugeHeadBytes; ++i)
        manySmallHeaders += "X-Filler-" + QByteArray::number(i) + ": " + QByteArray(kSmallHeaderValueBytes, 'a') + "\r\n";
    const QByteArray hugeRequestLine = "GET /api/GetSection?data=" + QByteArray(kHugeHeadBytes, 'a') + " HTTP/1.1";
    const struct
    {
        const char *what;
        QByteArray bytes;
        int status;
    } heads[] = {
        {"one huge header", request(port, kBoardsLine, oneHugeHeader), 431},
        {"many small headers", request(port, kBoardsLine, manySmallHeaders), 431},
        {"huge request line", request(port, hugeRequestLine), 414},
    };
    for (const auto &head : heads) {
        SCOPED_TRACE(head.what);
        RawHttpConnection connection(port);
        // The server may answer and close before the last byte is out: no verdict on the write.
        connection.write(head.bytes, kAnswerTimeoutMs);
        const std::optional<RawAnswer> answer = connection.readAnswer(kAnswerTimeoutMs);
        EXPECT_EQ(answer ? answer->status : 0, head.status);
        EXPECT_TRUE(connection.waitForClose(kAnswerTimeoutMs));
    }
    EXPECT_TRUE(isBoardList(askForBoards(port)));
    expectMemoryUnderCeiling();

    ASSERT_TRUE(testsupport::waitUntil([&] { return !loopbackRefusals(server->log()).isEmpty(); }))
        << server->log().toStdString();
    const QString first = loopbackRefusals(server->log()).first();
    EXPECT_TRUE(first.contains(QStringLiteral("(431)"))) << first.toStdString();
}

// A thousand connections that never send a byte are all accepted and held (under the
// default --max-connections), cost little memory, and hold nobody else up.
TEST_F(HostileClients, AThousandIdleConnectionsAreHeldWhileOthersAreServed)
{
    ASSERT_GE(openFileLimit, rlim_t(kIdleConnections + kSpareDescriptors));
    ASSERT_NO_FATAL_FAILURE(start());
    const int descriptorsBefore = openDescriptors(server->pid());
    const Connections idle = openIdle(port, kIdleConnections);
    ASSERT_EQ(countConnected(idle), kIdleConnections);
    // Held by the server itself, not waiting in the kernel's queue of unaccepted ones.
    EXPECT_TRUE(testsupport::waitUntil(
        [&] { return openDescriptors(server->pid()) - descriptorsBefore >= kIdleConnections; }, kAnswerTimeoutMs))
        << openDescriptors(server->pid()) - descriptorsBefore << " more descriptors";

    EXPECT_TRUE(isBoardList(askForBoards(port)));
    expectMemoryUnderCeiling();
    EXPECT_EQ(countClosed(idle), 0);
}

// A thousand clients that each send a head just under the header limit and then stall hold
// what they sent in the server's buffers until the read timeout; that stays under the
// ceiling, and others are served meanwhile.
TEST_F(HostileClients, AThousandStalledHeadsUnderTheLimitStayUnderTheCeiling)
{
    ASSERT_GE(openFileLimit, rlim_t(kIdleConnections + kSpareDescriptors));
    ASSERT_NO_FATAL_FAILURE(start());
    const QByteArray head = kBoardsLine + "\r\nHost: 127.0.0.1\r\nX-Filler: "
        + QByteArray(HttpLimits::kDefaultMaxHeaderBytes - kStalledHeadMargin, 'a');
    const Connections stalled = openIdle(port, kIdleConnections);
    ASSERT_EQ(countConnected(stalled), kIdleConnections);
    for (const auto &connection : stalled)
        ASSERT_TRUE(connection->write(head, kAnswerTimeoutMs));
    testsupport::spinFor(kStalledSettleMs);

    EXPECT_TRUE(isBoardList(askForBoards(port)));
    expectMemoryUnderCeiling();
    EXPECT_EQ(countClosed(stalled), 0);
}

// A thousand connections of one client that each declare a body of the largest size, send
// all but its last byte and stall: the server holds only that client's share of bodies and
// turns the rest away (503), so its memory stays under the ceiling and other clients post.
TEST_F(HostileClients, AThousandStalledBodiesOfTheLimitStayUnderTheCeiling)
{
    ASSERT_GE(openFileLimit, rlim_t(kIdleConnections + kSpareDescriptors));
    ASSERT_NO_FATAL_FAILURE(start());
    const QByteArray head = request(port, kPostLine, contentLength(HttpLimits::kDefaultMaxBodyBytes));
    const QByteArray body(HttpLimits::kDefaultMaxBodyBytes - 1, 'b');
    const Connections stalled = openIdle(port, kIdleConnections);
    ASSERT_EQ(countConnected(stalled), kIdleConnections);
    for (const auto &connection : stalled) {
        // Those turned away stop taking the body; that is what the test wants to see.
        if (connection->write(head, kAnswerTimeoutMs))
            connection->stream(body, body.size(), kStalledSettleMs);
    }
    testsupport::spinFor(kStalledSettleMs);

    EXPECT_TRUE(isBoardList(askForBoards(port)));
    expectMemoryUnderCeiling();
    const auto busy = std::count_if(stalled.begin(), stalled.end(), [](const auto &connection) {
        connection->checkClosed();  // reads what has come
        const std::optional<RawAnswer> answer = connection->readAnswer(0);
        return answer && answer->status == 503;
    });
    // One client gets an eighth of the room: exactly this many bodies of the limit.
    const qint64 held = HttpLimits::kDefaultMaxBodyBytesInFlight / BodyBudget::kAddressShareDivisor
        / HttpLimits::kDefaultMaxBodyBytes;
    EXPECT_EQ(busy, kIdleConnections - held) << loopbackRefusals(server->log()).join('\n').toStdString();

    // Another client still posts: its request reaches the forum (which finds no payload).
    RawHttpConnection other(port, kOtherClientHost);
    ASSERT_TRUE(other.write(request(port, kPostLine, contentLength(2)) + "=x", kAnswerTimeoutMs));
    const std::optional<RawAnswer> posted = other.readAnswer(kAnswerTimeoutMs);
    ASSERT_TRUE(posted);
    EXPECT_EQ(posted->status, 400);
}

// With --idle-timeout 2 the server closes idle connections itself, a connection kept alive
// after its request among them, not before their time, and serves on.
TEST_F(HostileClients, IdleConnectionsAreClosedByTheIdleTimeout)
{
    ASSERT_GE(openFileLimit, rlim_t(kIdleConnections + kSpareDescriptors));
    ASSERT_NO_FATAL_FAILURE(start({QStringLiteral("--idle-timeout"), QString::fromLatin1(kShortTimeout)}));
    QElapsedTimer clock;
    clock.start();
    Connections idle = openIdle(port, kIdleConnections);
    ASSERT_EQ(countConnected(idle), kIdleConnections);
    auto keptAlive = std::make_unique<RawHttpConnection>(port);
    ASSERT_TRUE(keptAlive->write(request(port, kBoardsLine), kAnswerTimeoutMs));
    EXPECT_TRUE(isBoardList(keptAlive->readAnswer(kAnswerTimeoutMs)));
    idle.push_back(std::move(keptAlive));

    qint64 firstCloseMs = -1;
    const bool allClosed = testsupport::waitUntil([&] {
        const int closed = countClosed(idle);
        if (closed > 0 && firstCloseMs < 0)
            firstCloseMs = clock.elapsed();
        return closed == int(idle.size());
    }, kIdleCloseBoundMs);
    std::printf("[ idle     ] first close after %lld ms, %d of %zu closed after %lld ms\n", firstCloseMs,
                countClosed(idle), idle.size(), clock.elapsed());
    EXPECT_TRUE(allClosed) << countClosed(idle) << " of " << idle.size() << " closed";
    EXPECT_GE(firstCloseMs, kEarliestCloseMs);
    EXPECT_TRUE(isBoardList(askForBoards(port)));
}

// Connections beyond --max-connections are closed at once; a place freed by a client that
// leaves is taken again.
TEST_F(HostileClients, ConnectionsBeyondTheMostAreClosedAtOnce)
{
    ASSERT_NO_FATAL_FAILURE(start({QStringLiteral("--max-connections"), QString::number(kMaxConnections)}));
    Connections held;
    for (int i = 0; i < kMaxConnections; ++i) {
        held.push_back(std::make_unique<RawHttpConnection>(port));
        ASSERT_TRUE(held.back()->write(request(port, kBoardsLine), kAnswerTimeoutMs));
        EXPECT_TRUE(isBoardList(held.back()->readAnswer(kAnswerTimeoutMs))) << "connection " << i;
    }
    RawHttpConnection beyond(port);
    ASSERT_TRUE(beyond.isConnected());
    EXPECT_TRUE(beyond.waitForClose(kAnswerTimeoutMs));
    EXPECT_EQ(countClosed(held), 0);

    held.pop_back();
    EXPECT_TRUE(testsupport::waitUntil([&] { return bool(isBoardList(askForBoards(port))); }, kAnswerTimeoutMs));
}

// With --read-timeout 2 a request must be whole within 2 s of its first byte: senders of a
// byte a second, in the request line or in the body, are closed without an answer though
// they never stop sending, long before the idle timeout; others are served meanwhile.
TEST_F(HostileClients, ByteASecondSendersAreClosedByTheReadTimeout)
{
    ASSERT_NO_FATAL_FAILURE(start({QStringLiteral("--read-timeout"), QString::fromLatin1(kShortTimeout)}));
    struct SlowSender
    {
        std::unique_ptr<RawHttpConnection> connection;
        QByteArray rest;  // sent a byte at a time
        qint64 closedAtMs = -1;
    };
    std::vector<SlowSender> senders;
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < kSlowSenders; ++i) {
        senders.push_back({std::make_unique<RawHttpConnection>(port), request(port, kBoardsLine)});
        const QByteArray postHead = request(port, kPostLine, contentLength(kSlowBodyBytes));
        senders.push_back({std::make_unique<RawHttpConnection>(port), QByteArray(kSlowBodyBytes, 'a')});
        ASSERT_TRUE(senders.back().connection->write(postHead, kAnswerTimeoutMs));
    }

    int servedMeanwhile = 0;
    int askedMeanwhile = 0;
    qint64 nextTrickleMs = 0;
    int open = int(senders.size());
    while (open > 0 && clock.elapsed() < kSlowCloseBoundMs) {
        const bool trickle = clock.elapsed() >= nextTrickleMs;
        for (SlowSender &sender : senders) {
            if (sender.closedAtMs >= 0)
                continue;
            if (sender.connection->checkClosed()) {
                sender.closedAtMs = clock.elapsed();
                --open;
            } else if (trickle && !sender.rest.isEmpty()) {
                sender.connection->write(sender.rest.left(1), kAnswerTimeoutMs);
                sender.rest.remove(0, 1);
            }
        }
        if (trickle) {
            nextTrickleMs += kTrickleIntervalMs;
            if (open > 0) {
                ++askedMeanwhile;
                servedMeanwhile += bool(isBoardList(askForBoards(port)));
            }
        }
        testsupport::spinFor(kPollIntervalMs);
    }

    std::printf("[ slow     ] %d of %zu closed within %d ms; %d of %d others served meanwhile\n",
                int(senders.size()) - open, senders.size(), kSlowCloseBoundMs, servedMeanwhile, askedMeanwhile);
    EXPECT_EQ(open, 0);
    for (size_t i = 0; i < senders.size(); ++i) {
        SCOPED_TRACE(i % 2 ? "slow body " + std::to_string(i / 2) : "slow request line " + std::to_string(i / 2));
        EXPECT_GE(senders[i].closedAtMs, kEarliestCloseMs);
        EXPECT_TRUE(senders[i].connection->received().isEmpty()) << senders[i].connection->received().constData();
    }
    EXPECT_GT(askedMeanwhile, 0);
    EXPECT_EQ(servedMeanwhile, askedMeanwhile);
}

// Keep-alive: requests on one connection are answered in turn, each with its own answer, and
// the connection stays open.
TEST_F(HostileClients, KeepAliveAnswersSeveralRequestsOnOneConnection)
{
    ASSERT_NO_FATAL_FAILURE(start());
    RawHttpConnection connection(port);
    const struct
    {
        QByteArray line;
        int items;
    } requests[] = {{kBoardsLine, Demo::kBoardCount}, {kBannersLine, Demo::kBannerCount}, {kBoardsLine, Demo::kBoardCount}};
    for (const auto &asked : requests) {
        SCOPED_TRACE(asked.line.constData());
        ASSERT_TRUE(connection.write(request(port, asked.line), kAnswerTimeoutMs));
        EXPECT_TRUE(isListOf(connection.readAnswer(kAnswerTimeoutMs), asked.items));
    }
    EXPECT_FALSE(connection.checkClosed());
}

} // namespace

// What a client puts in its request stays inside one log record: a path with escaped line
// breaks and format markers, and a gateway path that decodes to a line break, each add
// exactly one line, and nothing the client wrote starts a line of its own.
TEST_F(HostileClients, NoRequestBreaksOrForgesALogLine)
{
    ASSERT_NO_FATAL_FAILURE(start());
    const QByteArray forged = "quorvel-server: GET /api/Forged 200 0.1 ms";
    const QByteArray lines[] = {
        "GET /x%0A" + QByteArray(forged).replace(' ', "%20") + "%1%2 HTTP/1.1",
        "POST /push/x%0D%0A" + QByteArray(forged).replace(' ', "%20") + " HTTP/1.1",
    };
    for (const QByteArray &line : lines) {
        RawHttpConnection connection(port);
        ASSERT_TRUE(connection.write(request(port, line, "Content-Length: 0\r\n"), kAnswerTimeoutMs));
        ASSERT_TRUE(connection.readAnswer(kAnswerTimeoutMs));
    }
    const QList<QByteArray> log = server->log().split('\n');
    EXPECT_FALSE(log.contains(forged)) << server->log().constData();
    const qsizetype mentions = std::count_if(log.begin(), log.end(), [](const QByteArray &l) { return l.contains("Forged"); });
    EXPECT_EQ(mentions, 2) << server->log().constData();
}
