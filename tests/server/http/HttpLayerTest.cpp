// The HTTP layer in-process, over real loopback sockets: what a handler is given, keep-alive
// and pipelining, answers from other threads, event streams, "100 Continue", the limits and
// their log lines. Process-level hostile clients are in HostileClientTest.
#include "BodyBudget.h"
#include "EventLoop.h"
#include "HttpServer.h"
#include "QueuedHandler.h"
#include "RawHttpConnection.h"
#include "RefusalLog.h"
#include "RequestLogLine.h"

#include <QDeadlineTimer>
#include <QMutex>
#include <QThread>
#include <QStringList>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

constexpr int kWaitMs = 5000;

// A server on a free loopback port whose handler the test sets, collecting its log lines.
class LayerServer
{
public:
    explicit LayerServer(HttpServer::Handler handler, HttpLimits limits = {})
        : m_server(limits, std::move(handler), [this](const QString &line) {
            QMutexLocker lock(&m_mutex);
            m_log << line;
        })
    {
        QString error;
        m_port = m_server.listen(QStringLiteral("127.0.0.1"), 0, &error);
        m_server.start(2);
    }

    quint16 port() const { return m_port; }
    HttpServer &server() { return m_server; }
    QStringList log()
    {
        QMutexLocker lock(&m_mutex);
        return m_log;
    }

private:
    QMutex m_mutex;
    QStringList m_log;
    HttpServer m_server;
    quint16 m_port = 0;
};

// Answers with what it was given: "METHOD path|query|body|Host".
void echo(HttpRequest request, HttpResponder responder)
{
    responder.respond({200, "text/plain",
                       request.method + ' ' + request.path + '|' + request.query + '|' + request.body + '|'
                           + request.header("host"),
                       {{"X-Peer", request.peerAddress}}});
}

HttpLimits smallLimits()
{
    HttpLimits limits;
    limits.maxBodyBytes = 100;
    limits.maxHeaderBytes = 1024;
    limits.readTimeout = std::chrono::seconds(1);
    limits.idleTimeout = std::chrono::seconds(1);
    limits.maxConnections = 3;
    return limits;
}

} // namespace

TEST(HttpLayer, HandsTheRawTargetHeadersAndBodyOverAndKeepsConnectionsAlive)
{
    LayerServer server(echo);
    RawHttpConnection client(server.port());
    ASSERT_TRUE(client.isConnected());
    // Two requests in one write: answered in order on the one connection.
    ASSERT_TRUE(client.write("GET /api/Get%20It?data=a+b%2B/c== HTTP/1.1\r\nHost: forum:8080\r\n\r\n"
                             "POST /p HTTP/1.1\r\nhost: h\r\nContent-Length: 5\r\n\r\nhello",
                             kWaitMs));
    const std::optional<RawAnswer> first = client.readAnswer(kWaitMs);
    ASSERT_TRUE(first);
    EXPECT_EQ(first->status, 200);
    EXPECT_EQ(first->body, "GET /api/Get%20It|data=a+b%2B/c==||forum:8080");
    const std::optional<RawAnswer> second = client.readAnswer(kWaitMs);
    ASSERT_TRUE(second);
    EXPECT_EQ(second->body, "POST /p||hello|h");
    // A chunked body arrives whole.
    ASSERT_TRUE(client.write("POST /c HTTP/1.1\r\nHost: h\r\nTransfer-Encoding: chunked\r\n\r\n"
                             "3\r\nabc\r\n2\r\nde\r\n0\r\n\r\n",
                             kWaitMs));
    const std::optional<RawAnswer> chunked = client.readAnswer(kWaitMs);
    ASSERT_TRUE(chunked);
    EXPECT_EQ(chunked->body, "POST /c||abcde|h");
    EXPECT_FALSE(client.checkClosed());
    EXPECT_TRUE(client.received().isEmpty());

    // HTTP/1.0 without keep-alive: answered, then closed.
    RawHttpConnection old(server.port());
    ASSERT_TRUE(old.write("GET /old HTTP/1.0\r\n\r\n", kWaitMs));
    const std::optional<RawAnswer> answer = old.readAnswer(kWaitMs);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->body, "GET /old|||");
    EXPECT_TRUE(old.waitForClose(kWaitMs));
}

TEST(HttpLayer, AnswersComeFromAnyThreadOnceAndQueuedHandlersRunOnTheMainThread)
{
    std::atomic<int> handled{0};
    const Qt::HANDLE mainThread = QThread::currentThreadId();
    std::atomic<bool> ranOnMain{false};
    QObject context;
    LayerServer server(QueuedHandler::onThreadOf(&context, [&](HttpRequest request, HttpResponder responder) {
        ranOnMain = QThread::currentThreadId() == mainThread;
        const int number = ++handled;
        // Answered later from a thread of its own. A second answer, given while the next
        // request waits for its own, is dropped.
        std::thread([request, responder, number, &handled] {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            responder.respond({201, "text/plain", "late " + request.path, {}});
            QDeadlineTimer deadline(kWaitMs);
            while (handled == number && !deadline.hasExpired())
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            responder.respond({500, "text/plain", "again", {}});
        }).detach();
    }));
    RawHttpConnection client(server.port());
    ASSERT_TRUE(client.write("GET /one HTTP/1.1\r\nHost: h\r\n\r\n", kWaitMs));
    ASSERT_TRUE(testsupport::waitUntil([&] { return handled == 1; }));
    const std::optional<RawAnswer> answer = client.readAnswer(kWaitMs);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->status, 201);
    EXPECT_EQ(answer->body, "late /one");
    EXPECT_TRUE(ranOnMain);
    // The connection serves the next request; nothing of the dropped answer shows.
    ASSERT_TRUE(client.write("GET /two HTTP/1.1\r\nHost: h\r\n\r\n", kWaitMs));
    ASSERT_TRUE(testsupport::waitUntil([&] { return handled == 2; }));
    const std::optional<RawAnswer> next = client.readAnswer(kWaitMs);
    ASSERT_TRUE(next);
    EXPECT_EQ(next->body, "late /two");
}

TEST(HttpLayer, StreamsWriteUntilTheClientLeavesAndRespondersOutliveTheServer)
{
    std::mutex mutex;
    std::optional<HttpResponder> kept;
    auto server = std::make_unique<LayerServer>([&](HttpRequest, HttpResponder responder) {
        responder.openStream("text/event-stream", "data: first\n\n");
        std::lock_guard lock(mutex);
        kept = responder;
    });
    auto client = std::make_unique<RawHttpConnection>(server->port());
    ASSERT_TRUE(client->write("GET /events HTTP/1.1\r\nHost: h\r\n\r\n", kWaitMs));
    ASSERT_TRUE(testsupport::waitUntil([&] {
        std::lock_guard lock(mutex);
        return kept.has_value();
    }));
    const HttpResponder stream = *kept;
    stream.write("data: second\n\n");
    stream.respond({500, "text/plain", "not after a stream", {}});
    ASSERT_TRUE(testsupport::waitUntil([&] {
        client->checkClosed();
        return client->received().endsWith("data: second\n\n");
    }));
    EXPECT_EQ(client->received(),
              "HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\nCache-Control: no-cache\r\n"
              "Connection: close\r\n\r\ndata: first\n\ndata: second\n\n");
    EXPECT_TRUE(stream.isOpen());
    EXPECT_EQ(server->server().connectionCount(), 1);

    client.reset();
    EXPECT_TRUE(testsupport::waitUntil([&] { return !stream.isOpen(); }));
    EXPECT_TRUE(testsupport::waitUntil([&] { return server->server().connectionCount() == 0; }));
    stream.write("data: to nobody\n\n");
    // A responder kept past the server's end does nothing.
    server.reset();
    stream.write("data: after the end\n\n");
    EXPECT_FALSE(stream.isOpen());
}

TEST(HttpLayer, ContinueIsSentBeforeABodyTheServerWillTake)
{
    LayerServer server(echo, smallLimits());
    RawHttpConnection client(server.port());
    ASSERT_TRUE(client.write("POST /up HTTP/1.1\r\nHost: h\r\nContent-Length: 4\r\nExpect: 100-continue\r\n\r\n", kWaitMs));
    ASSERT_TRUE(testsupport::waitUntil([&] {
        client.checkClosed();
        return client.received().contains("\r\n\r\n");
    }));
    EXPECT_EQ(client.received(), "HTTP/1.1 100 Continue\r\n\r\n");
    ASSERT_TRUE(client.write("data", kWaitMs));
    ASSERT_TRUE(testsupport::waitUntil([&] {
        client.checkClosed();
        return client.received().endsWith("data|h");
    }));
    EXPECT_TRUE(client.received().contains("HTTP/1.1 200 OK"));

    // Over the limit, the answer is 413 and no "100 Continue" invites the body.
    RawHttpConnection large(server.port());
    ASSERT_TRUE(large.write("POST /up HTTP/1.1\r\nHost: h\r\nContent-Length: 101\r\nExpect: 100-continue\r\n\r\n", kWaitMs));
    const std::optional<RawAnswer> refused = large.readAnswer(kWaitMs);
    ASSERT_TRUE(refused);
    EXPECT_EQ(refused->status, 413);
    EXPECT_TRUE(large.waitForClose(kWaitMs));
}

TEST(HttpLayer, RequestsOverTheLimitsAreRefusedWithTheirStatusAndLoggedOnce)
{
    LayerServer server(echo, smallLimits());
    struct Case
    {
        const char *what;
        QByteArray request;
        int status;
        QByteArray body;
    };
    const Case cases[] = {
        {"declared body", "POST /p HTTP/1.1\r\nHost: h\r\nContent-Length: 101\r\n\r\n", 413,
         R"({"error":"payload_too_large","message":"body over 100 bytes"})"},
        {"chunked body", "POST /p HTTP/1.1\r\nHost: h\r\nTransfer-Encoding: chunked\r\n\r\n64\r\n" + QByteArray(100, 'x')
                             + "\r\n1\r\nx\r\n0\r\n\r\n",
         413, R"({"error":"payload_too_large","message":"body over 100 bytes"})"},
        {"header", "GET / HTTP/1.1\r\nHost: h\r\nX-Big: " + QByteArray(1100, 'a') + "\r\n\r\n", 431,
         R"({"error":"header_too_large","message":"header over 1024 bytes"})"},
        {"request line", "GET /?" + QByteArray(1100, 'a') + " HTTP/1.1\r\nHost: h\r\n\r\n", 414,
         R"({"error":"uri_too_long","message":"request line over 1024 bytes"})"},
        {"not HTTP", "HELLO THERE\r\n\r\n", 400, {}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.what);
        for (int repeat = 0; repeat < 2; ++repeat) {
            RawHttpConnection client(server.port());
            client.write(c.request, kWaitMs);
            const std::optional<RawAnswer> answer = client.readAnswer(kWaitMs);
            ASSERT_TRUE(answer);
            EXPECT_EQ(answer->status, c.status);
            if (!c.body.isEmpty()) {
                EXPECT_EQ(answer->body, c.body);
            }
            EXPECT_TRUE(client.waitForClose(kWaitMs));
        }
    }
    // Each kind once, though each came twice (and both bodies are one kind).
    const QStringList log = server.log();
    ASSERT_EQ(log.size(), 4) << log.join('\n').toStdString();
    EXPECT_EQ(log.at(0), "refused 127.0.0.1: body over 100 bytes (413)");
    EXPECT_EQ(log.at(1), "refused 127.0.0.1: header over 1024 bytes (431)");
    EXPECT_EQ(log.at(2), "refused 127.0.0.1: request line over 1024 bytes (414)");
    EXPECT_TRUE(log.at(3).startsWith("refused 127.0.0.1: malformed request")) << log.at(3).toStdString();
}

TEST(HttpLayer, SlowAndIdleClientsAreClosedAndConnectionsBeyondTheCapAtOnce)
{
    LayerServer server(echo, smallLimits());
    RawHttpConnection idle(server.port());
    RawHttpConnection slow(server.port());
    ASSERT_TRUE(slow.write("GET / HT", kWaitMs));
    ASSERT_TRUE(testsupport::waitUntil([&] { return server.server().connectionCount() == 2; }));
    RawHttpConnection served(server.port());
    ASSERT_TRUE(testsupport::waitUntil([&] { return server.server().connectionCount() == 3; }));
    // The fourth is over the cap of three.
    RawHttpConnection beyond(server.port());
    EXPECT_TRUE(beyond.waitForClose(kWaitMs));
    EXPECT_TRUE(served.write("GET /still HTTP/1.1\r\nHost: h\r\n\r\n", kWaitMs));
    EXPECT_TRUE(served.readAnswer(kWaitMs));
    // One second idle or one second into a request: both closed, with no answer.
    EXPECT_TRUE(idle.waitForClose(kWaitMs));
    EXPECT_TRUE(slow.waitForClose(kWaitMs));
    EXPECT_TRUE(idle.received().isEmpty());
    EXPECT_TRUE(slow.received().isEmpty());
    // The time-out closes the socket before its line is written.
    const QString timedOut = QStringLiteral("refused 127.0.0.1: request not read within 1 s (closed)");
    EXPECT_TRUE(testsupport::waitUntil([&] { return server.log().contains(timedOut); }))
        << server.log().join('\n').toStdString();
    EXPECT_TRUE(server.log().contains("refused 127.0.0.1: over 3 connections (closed)"));
}

TEST(HttpLayer, NoBodyPassesForARequestAndNoRequestLineIsMistakenForTooLong)
{
    std::atomic<int> handled{0};
    LayerServer server([&](HttpRequest request, HttpResponder responder) {
        ++handled;
        echo(std::move(request), std::move(responder));
    }, smallLimits());
    // A coding other than chunked leaves the body's end unknown: refused, and the bytes
    // after the head are never read as a request of their own.
    // Nor are codings the handler would get undecoded, nor chunks in HTTP/1.0, which has none.
    const struct
    {
        const char *version;
        const char *coding;
    } framings[] = {{"1.1", "gzip"}, {"1.1", "chunked, identity"}, {"1.1", "gzip, chunked"}, {"1.0", "chunked"}};
    for (const auto &framing : framings) {
        SCOPED_TRACE(framing.coding);
        RawHttpConnection client(server.port());
        ASSERT_TRUE(client.write("POST /p HTTP/" + QByteArray(framing.version) + "\r\nHost: h\r\nTransfer-Encoding: "
                                     + QByteArray(framing.coding) + "\r\n\r\n0\r\n\r\nGET /smuggled HTTP/1.1\r\nHost: h\r\n\r\n",
                                 kWaitMs));
        const std::optional<RawAnswer> answer = client.readAnswer(kWaitMs);
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->status, 400);
        EXPECT_EQ(answer->body, R"json({"error":"bad_request","message":"malformed request (transfer coding not chunked)"})json");
        EXPECT_TRUE(client.waitForClose(kWaitMs));
        EXPECT_TRUE(client.received().isEmpty());
    }
    EXPECT_EQ(handled, 0);

    // A request line that arrives in pieces and a header over the limit: 431, not 414.
    RawHttpConnection pieces(server.port());
    ASSERT_TRUE(pieces.write("GET / H", kWaitMs));
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    ASSERT_TRUE(pieces.write("TTP/1.1\r\nHost: h\r\nX-Big: " + QByteArray(1100, 'a') + "\r\n\r\n", kWaitMs));
    const std::optional<RawAnswer> refused = pieces.readAnswer(kWaitMs);
    ASSERT_TRUE(refused);
    EXPECT_EQ(refused->status, 431);
    EXPECT_EQ(refused->body, R"({"error":"header_too_large","message":"header over 1024 bytes"})");
}

TEST(HttpLayer, HeadAnswersCarryTheLengthWithoutTheBodyAndAbsoluteTargetsAreLocal)
{
    LayerServer server(echo);
    RawHttpConnection client(server.port());
    ASSERT_TRUE(client.write("HEAD /page HTTP/1.1\r\nHost: h\r\n\r\n"
                             "GET http://forum:8080/page?x=1 HTTP/1.1\r\nHost: forum:8080\r\n\r\n",
                             kWaitMs));
    const QByteArray getBody = "GET /page|x=1||forum:8080";
    ASSERT_TRUE(testsupport::waitUntil([&] {
        client.checkClosed();
        return client.received().endsWith(getBody);
    }));
    const QByteArray headBody = "HEAD /page|||h";
    const QByteArray received = client.received();
    // The HEAD answer's head, then at once the GET's answer.
    const qsizetype second = received.indexOf("HTTP/1.1 200", 1);
    ASSERT_GT(second, 0);
    EXPECT_TRUE(received.left(second).contains("Content-Length: " + QByteArray::number(headBody.size()) + "\r\n"));
    EXPECT_TRUE(received.left(second).endsWith("\r\n\r\n"));
    EXPECT_TRUE(received.mid(second).endsWith("\r\n\r\n" + getBody));
}

TEST(HttpLayer, BodiesUnderWayAreBoundedInAllAndPerClient)
{
    HttpLimits limits = smallLimits();
    limits.maxBodyBytesInFlight = 250;  // an eighth, 31 bytes, per client beyond its first body
    limits.maxConnections = 10;         // the refused ones linger a while
    LayerServer server(echo, limits);
    const QByteArray head = "POST /p HTTP/1.1\r\nHost: h\r\nContent-Length: 100\r\n\r\n";
    // Two clients' stalled bodies hold 200 of the 250.
    RawHttpConnection first(server.port(), 1);
    RawHttpConnection second(server.port(), 2);
    ASSERT_TRUE(first.write(head + "abc", kWaitMs));
    ASSERT_TRUE(second.write(head, kWaitMs));
    ASSERT_TRUE(testsupport::waitUntil([&] { return server.server().connectionCount() == 2; }));
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    const QByteArray busyBody =
        R"json({"error":"server_busy","message":"no room for another body (250 bytes in all, an eighth per client)"})json";
    // The first client's second body is past its share; a third client's is past the total.
    for (const quint8 host : {quint8(1), quint8(3)}) {
        SCOPED_TRACE(host);
        RawHttpConnection refused(server.port(), host);
        ASSERT_TRUE(refused.write(head, kWaitMs));
        const std::optional<RawAnswer> busy = refused.readAnswer(kWaitMs);
        ASSERT_TRUE(busy);
        EXPECT_EQ(busy->status, 503);
        EXPECT_EQ(busy->body, busyBody);
    }
    // The first body done, its room is free again, for anyone.
    ASSERT_TRUE(first.write(QByteArray(97, 'x'), kWaitMs));
    ASSERT_TRUE(first.readAnswer(kWaitMs));
    RawHttpConnection third(server.port(), 3);
    ASSERT_TRUE(third.write(head + QByteArray(100, 'y'), kWaitMs));
    const std::optional<RawAnswer> served = third.readAnswer(kWaitMs);
    ASSERT_TRUE(served);
    EXPECT_EQ(served->status, 200);
    EXPECT_TRUE(server.log().contains(
        "refused 127.0.0.1: no room for another body (250 bytes in all, an eighth per client) (503)"));
}

TEST(BodyBudget, KeepsTheTotalAndEachAddresssShare)
{
    BodyBudget budget(800);  // a share of 100
    EXPECT_TRUE(budget.claim("a", 60));
    EXPECT_TRUE(budget.claim("a", 40));
    EXPECT_FALSE(budget.claim("a", 1));
    // A first body may be larger than a share, as long as the total holds it.
    EXPECT_TRUE(budget.claim("b", 500));
    EXPECT_FALSE(budget.claim("c", 201));
    EXPECT_TRUE(budget.claim("c", 200));
    budget.release("b", 500);
    budget.release("a", 40);
    EXPECT_TRUE(budget.claim("a", 40));
    EXPECT_FALSE(budget.claim("a", 1));
    EXPECT_TRUE(budget.claim("d", 500));
    EXPECT_FALSE(budget.claim("e", 1));
}

TEST(RequestLogLine, JoinsThePartsLiterallyAndCutsLongMethodsAndPaths)
{
    HttpRequest request;
    request.method = "GET";
    request.setTarget("/api/%1%20x%0A?data=%2");
    EXPECT_EQ(RequestLogLine::of(request, 404, QStringLiteral("nothing at %1"), 2.25),
              QStringLiteral("GET /api/%1%20x%0A 404 2.3 ms (nothing at %1)"));
    request.method = QByteArray(100, 'M');
    request.setTarget("/" + QByteArray(300, 'p'));
    EXPECT_EQ(RequestLogLine::of(request, 405),
              QString(RequestLogLine::kMaxMethodCharacters, QLatin1Char('M')) + QStringLiteral("... /")
                  + QString(RequestLogLine::kMaxPathCharacters - 1, QLatin1Char('p')) + QStringLiteral("... 405"));
}

TEST(RefusalLog, LogsEachAddressAndKindOncePerMinute)
{
    QStringList lines;
    qint64 now = 0;
    RefusalLog log([&](const QString &line) { lines << line; }, [&] { return now; });
    log.refused("10.0.0.1", "413", "body over 10 bytes (413)");
    log.refused("10.0.0.1", "413", "body over 10 bytes (413)");
    log.refused("10.0.0.1", "431", "header over 10 bytes (431)");
    log.refused("10.0.0.2", "413", "body over 10 bytes (413)");
    now = RefusalLog::kWindowMs - 1;
    log.refused("10.0.0.1", "413", "body over 10 bytes (413)");
    now = RefusalLog::kWindowMs;
    log.refused("10.0.0.1", "413", "body over 10 bytes (413)");
    EXPECT_EQ(lines, QStringList({"refused 10.0.0.1: body over 10 bytes (413)",
                                  "refused 10.0.0.1: header over 10 bytes (431)",
                                  "refused 10.0.0.2: body over 10 bytes (413)",
                                  "refused 10.0.0.1: body over 10 bytes (413)"}));
}

TEST(RefusalLog, StaysBoundedUnderManyAddresses)
{
    int lines = 0;
    qint64 now = 0;
    RefusalLog log([&](const QString &) { ++lines; }, [&] { return now; });
    for (int i = 0; i < RefusalLog::kMaxAddresses + 10; ++i)
        log.refused(QByteArray::number(i), "413", "x");
    // A full table of this minute's addresses: the newest go unlogged.
    EXPECT_EQ(lines, RefusalLog::kMaxAddresses);
    // A minute on, the old ones are forgotten to make room.
    now = RefusalLog::kWindowMs;
    log.refused("new", "413", "x");
    EXPECT_EQ(lines, RefusalLog::kMaxAddresses + 1);
}
