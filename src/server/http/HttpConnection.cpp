#include "HttpConnection.h"

#include "HttpServerShared.h"

#include <boost/asio/dispatch.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/string.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/write.hpp>

#include <limits>
#include <utility>

namespace beast = boost::beast;
namespace http = beast::http;
namespace net = boost::asio;
using tcp = net::ip::tcp;
using boost::system::error_code;

namespace {

const char kContinue[] = "HTTP/1.1 100 Continue\r\n\r\n";
const QByteArray kJson = QByteArrayLiteral("application/json");

beast::string_view viewOf(const QByteArray &bytes)
{
    return {bytes.constData(), std::size_t(bytes.size())};
}

QByteArray streamHead(const QByteArray &contentType)
{
    return "HTTP/1.1 200 OK\r\nContent-Type: " + contentType
           + "\r\nCache-Control: no-cache\r\nConnection: close\r\n\r\n";
}

} // namespace

HttpConnection::HttpConnection(tcp::socket socket, std::shared_ptr<HttpServerShared> shared)
    : m_stream(std::move(socket))
    , m_shared(std::move(shared))
    , m_peerAddress(peerAddressOf(m_stream.socket()))
    // A header never needs more, and a body passes through a read at a time.
    , m_buffer(std::size_t(m_shared->limits.maxHeaderBytes) + kReadChunk)
    , m_answerTimer(m_stream.get_executor())
{
    // Answers are small and written whole: waiting to fill a segment only adds latency.
    error_code ignored;
    m_stream.socket().set_option(tcp::no_delay(true), ignored);
}

QByteArray HttpConnection::peerAddressOf(const tcp::socket &socket)
{
    error_code error;
    const tcp::endpoint peer = socket.remote_endpoint(error);
    return error ? QByteArrayLiteral("unknown") : QByteArray::fromStdString(peer.address().to_string());
}

HttpConnection::~HttpConnection()
{
    releaseBodyBytes();
    m_shared->connections.fetch_sub(1);
}

void HttpConnection::start()
{
    net::dispatch(m_stream.get_executor(), [self = shared_from_this()] { self->awaitRequest(); });
}

void HttpConnection::awaitRequest()
{
    if (m_buffer.size() > 0) {  // the next request came with the last one
        readHeader();
        return;
    }
    // Idle until a first byte: only then does the request's own deadline start.
    m_stream.expires_after(m_shared->limits.idleTimeout);
    m_stream.async_read_some(m_buffer.prepare(kReadChunk), [self = shared_from_this()](error_code error, std::size_t read) {
        if (error) {
            self->close();
            return;
        }
        self->m_buffer.commit(read);
        self->readHeader();
    });
}

void HttpConnection::readHeader()
{
    m_parser.emplace();
    HttpRequestReading::applyLimits(*m_parser, m_shared->limits);
    m_stream.expires_after(m_shared->limits.readTimeout);
    http::async_read_header(m_stream, m_buffer, *m_parser,
                            [self = shared_from_this()](error_code error, std::size_t) { self->onHeader(error); });
}

void HttpConnection::onHeader(error_code error)
{
    if (error) {
        refuse(error);
        return;
    }
    if (const std::optional<HttpRequestReading::Refusal> refusal = HttpRequestReading::refusalForHeader(*m_parser)) {
        refuse(*refusal);
        return;
    }
    if (!claimBodyBytes()) {
        refuse(HttpRequestReading::Refusal{
            503, "server_busy",
            QStringLiteral("no room for another body (%1 bytes in all, an eighth per client)")
                .arg(m_shared->limits.maxBodyBytesInFlight)});
        return;
    }
    // HTTP/1.0 clients know no interim answers.
    if (!m_parser->is_done() && m_parser->get().version() >= 11
        && beast::iequals(m_parser->get()[http::field::expect], "100-continue")) {
        net::async_write(m_stream, net::buffer(kContinue, sizeof kContinue - 1),
                         [self = shared_from_this()](error_code writeError, std::size_t) {
                             if (writeError)
                                 self->close();
                             else
                                 self->readBody();
                         });
        return;
    }
    readBody();
}

bool HttpConnection::claimBodyBytes()
{
    if (m_parser->is_done())
        return true;
    // A chunked body may take up to the limit; a declared one is held at its length.
    const qint64 claim = qint64(m_parser->content_length().value_or(std::uint64_t(m_shared->limits.maxBodyBytes)));
    if (!m_shared->bodies.claim(m_peerAddress, claim))
        return false;
    m_claimedBodyBytes = claim;
    return true;
}

void HttpConnection::releaseBodyBytes()
{
    m_shared->bodies.release(m_peerAddress, std::exchange(m_claimedBodyBytes, 0));
}

void HttpConnection::readBody()
{
    if (m_parser->is_done()) {
        dispatch();
        return;
    }
    http::async_read(m_stream, m_buffer, *m_parser,
                     [self = shared_from_this()](error_code error, std::size_t) { self->onBody(error); });
}

void HttpConnection::onBody(error_code error)
{
    if (error)
        refuse(error);
    else
        dispatch();
}

void HttpConnection::refuse(const error_code &error)
{
    const auto unread = QByteArray::fromRawData(static_cast<const char *>(m_buffer.data().data()),
                                                qsizetype(m_buffer.size()));
    const std::optional<HttpRequestReading::Refusal> refusal = HttpRequestReading::refusalFor(
        error, m_shared->limits, HttpRequestReading::requestLineEnded(*m_parser, unread, m_shared->limits));
    if (refusal)
        refuse(*refusal);
    else
        close();
}

void HttpConnection::refuse(const HttpRequestReading::Refusal &refusal)
{
    // A HEAD refused after its header was read still gets its answer without a body.
    m_headRequest = m_parser && m_parser->is_header_done() && m_parser->get().method() == http::verb::head;
    m_parser.reset();
    releaseBodyBytes();
    QString what = refusal.what;
    if (refusal.status != 0)
        what += QStringLiteral(" (%1)").arg(refusal.status);
    m_shared->refusals.refused(m_peerAddress, refusal.code, what);
    if (refusal.status == 0) {
        close();
        return;
    }
    m_keepAlive = false;
    m_version = 11;
    writeResponse({refusal.status, kJson, HttpRequestReading::refusalBody(refusal), {}}, true);
}

void HttpConnection::dispatch()
{
    m_keepAlive = m_parser->keep_alive();
    m_version = m_parser->get().version();
    m_headRequest = m_parser->get().method() == http::verb::head;
    HttpRequest request = HttpRequestReading::takeRequest(*m_parser, m_peerAddress);
    m_parser.reset();
    releaseBodyBytes();
    m_awaitingAnswer = true;
    ++m_exchange;
    try {
        m_shared->handler(std::move(request), HttpResponder(weak_from_this(), m_exchange));
    } catch (const std::exception &failure) {
        m_shared->log(QStringLiteral("request handler failed: %1").arg(QString::fromLocal8Bit(failure.what())));
        deliverAnswer(m_exchange, {500, kJson, R"({"error":"server_error","message":"internal failure"})", {}});
    }
    // A handler that answered at once (from the cache) needs no deadline. Answers from other
    // threads reach this connection's thread only after this returns, so the timer is set
    // before them; its wait also keeps the connection alive until the answer comes.
    if (m_awaitingAnswer) {
        m_answerTimer.expires_after(kAnswerTimeout);
        m_answerTimer.async_wait([self = shared_from_this()](error_code error) { self->onAnswerTimeout(error); });
    }
}

void HttpConnection::onAnswerTimeout(error_code error)
{
    if (error || !m_awaitingAnswer)
        return;
    m_shared->log(QStringLiteral("no answer for %1 within %2 s, answered 503")
                      .arg(QString::fromLatin1(m_peerAddress))
                      .arg(kAnswerTimeout.count()));
    m_awaitingAnswer = false;
    m_keepAlive = false;
    writeResponse({503, kJson, R"({"error":"unavailable","message":"no answer in time"})", {}}, false);
}

void HttpConnection::respond(quint64 exchange, HttpResponse response)
{
    net::dispatch(m_stream.get_executor(), [self = shared_from_this(), exchange, response = std::move(response)]() mutable {
        self->deliverAnswer(exchange, std::move(response));
    });
}

void HttpConnection::deliverAnswer(quint64 exchange, HttpResponse response)
{
    if (!m_awaitingAnswer || exchange != m_exchange || !m_open)
        return;
    m_awaitingAnswer = false;
    m_answerTimer.cancel();
    writeResponse(std::move(response), false);
}

void HttpConnection::writeResponse(HttpResponse response, bool linger)
{
    m_responseBody = std::move(response.body);
    m_response.emplace(http::status::ok, m_version);
    m_response->result(unsigned(response.status));
    m_response->set(http::field::content_type, viewOf(response.contentType));
    for (const auto &[name, value] : response.headers)
        m_response->set(viewOf(name), viewOf(value));
    m_response->keep_alive(m_keepAlive);
    // An answer to HEAD says how long the body would be, and leaves it out.
    m_response->content_length(std::uint64_t(m_responseBody.size()));
    if (!m_headRequest)
        m_response->body() = {m_responseBody.constData(), std::size_t(m_responseBody.size())};
    m_stream.expires_after(kWriteTimeout);
    http::async_write(m_stream, *m_response, [self = shared_from_this(), linger](error_code error, std::size_t) {
        self->onWritten(error, linger);
    });
}

void HttpConnection::onWritten(error_code error, bool linger)
{
    m_response.reset();
    m_responseBody.clear();
    if (error) {
        close();
    } else if (linger) {
        this->linger();
    } else if (!m_keepAlive) {
        error_code ignored;
        m_stream.socket().shutdown(tcp::socket::shutdown_send, ignored);
        close();
    } else {
        awaitRequest();
    }
}

void HttpConnection::linger()
{
    // Closing with unread bytes would reset the connection, and a reset can take the
    // answer with it: say we are done, then read and drop for a short while.
    error_code ignored;
    m_stream.socket().shutdown(tcp::socket::shutdown_send, ignored);
    m_buffer.consume(m_buffer.size());
    m_stream.expires_after(kLingerTime);
    discardUntilClosed(kLingerBytes);
}

void HttpConnection::discardUntilClosed(std::size_t most)
{
    if (!m_discard)
        m_discard = std::make_unique<char[]>(kReadChunk);
    m_stream.async_read_some(net::buffer(m_discard.get(), kReadChunk),
                             [self = shared_from_this(), most](error_code error, std::size_t read) {
                                 self->m_discarded += read;
                                 if (error || self->m_discarded >= most)
                                     self->close();
                                 else
                                     self->discardUntilClosed(most);
                             });
}

void HttpConnection::close()
{
    if (!m_open.exchange(false))
        return;
    releaseBodyBytes();
    m_answerTimer.cancel();
    m_stream.close();
}

void HttpConnection::openStream(quint64 exchange, QByteArray contentType, QByteArray first)
{
    net::dispatch(m_stream.get_executor(), [self = shared_from_this(), exchange, contentType = std::move(contentType),
                                            first = std::move(first)]() mutable {
        self->startStream(exchange, std::move(contentType), std::move(first));
    });
}

void HttpConnection::startStream(quint64 exchange, QByteArray contentType, QByteArray first)
{
    if (!m_awaitingAnswer || exchange != m_exchange || !m_open)
        return;
    m_awaitingAnswer = false;
    m_answerTimer.cancel();
    m_streaming = true;
    // A stream lasts as long as its client; its backlog, not a deadline, bounds a slow one.
    m_stream.expires_never();
    queueStreamBytes(streamHead(contentType) + first);
    // Whatever the client sends on a stream is dropped; its end is the stream's end.
    discardUntilClosed(std::numeric_limits<std::size_t>::max());
}

void HttpConnection::writeToStream(QByteArray bytes)
{
    net::dispatch(m_stream.get_executor(), [self = shared_from_this(), bytes = std::move(bytes)]() mutable {
        self->queueStreamBytes(std::move(bytes));
    });
}

void HttpConnection::queueStreamBytes(QByteArray bytes)
{
    if (!m_streaming || !m_open)
        return;
    m_streamBacklog += std::size_t(bytes.size());
    if (m_streamBacklog > kMaxStreamBacklog) {
        m_shared->log(QStringLiteral("stream to %1 fell %2 bytes behind, closed")
                          .arg(QString::fromLatin1(m_peerAddress))
                          .arg(m_streamBacklog));
        close();
        return;
    }
    m_streamQueue.push_back(std::move(bytes));
    if (!m_streamWriting)
        writeStreamQueue();
}

void HttpConnection::writeStreamQueue()
{
    if (m_streamQueue.empty() || !m_open) {
        m_streamWriting = false;
        return;
    }
    m_streamWriting = true;
    const QByteArray &next = m_streamQueue.front();
    net::async_write(m_stream, net::buffer(next.constData(), std::size_t(next.size())),
                     [self = shared_from_this()](error_code error, std::size_t written) {
                         self->m_streamBacklog -= written;
                         self->m_streamQueue.pop_front();
                         if (error)
                             self->close();
                         self->writeStreamQueue();
                     });
}
