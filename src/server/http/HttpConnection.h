#pragma once
// One client connection: waits for a request (idle time-out), reads it under the limits
// (read time-out from its first byte), hands it to the handler and writes the answer, then
// waits for the next one while the client keeps the connection alive. A refused request is
// answered and the connection closed after draining a little of what the client still
// sends, so the client reads the answer rather than a reset. Its work runs on its own
// thread of the server's pool; respond() and the stream calls may come from any thread.

#include "HttpRequestReading.h"
#include "HttpResponse.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/span_body.hpp>

#include <atomic>
#include <chrono>
#include <deque>
#include <memory>
#include <optional>

struct HttpServerShared;

class HttpConnection : public std::enable_shared_from_this<HttpConnection>
{
public:
    // The handler's answer must come within this, or the client gets 503.
    static constexpr std::chrono::seconds kAnswerTimeout{30};
    // Writing one answer may take this long before the client counts as gone.
    static constexpr std::chrono::seconds kWriteTimeout{30};
    // After a refusal: how long, and how much, to drain before closing.
    static constexpr std::chrono::seconds kLingerTime{1};
    static constexpr std::size_t kLingerBytes = 8 * 1024 * 1024;
    // An open stream whose client reads less than this falls behind and is closed.
    static constexpr std::size_t kMaxStreamBacklog = 1024 * 1024;
    static constexpr std::size_t kReadChunk = 16 * 1024;

    HttpConnection(boost::asio::ip::tcp::socket socket, std::shared_ptr<HttpServerShared> shared);
    ~HttpConnection();

    void start();

    // The client's IP address as text, "unknown" when the socket cannot tell.
    static QByteArray peerAddressOf(const boost::asio::ip::tcp::socket &socket);

    // Any thread. An answer or stream for another than the current exchange is dropped.
    void respond(quint64 exchange, HttpResponse response);
    void openStream(quint64 exchange, QByteArray contentType, QByteArray first);
    void writeToStream(QByteArray bytes);
    bool isOpen() const { return m_open.load(); }

private:
    using Response = boost::beast::http::response<boost::beast::http::span_body<const char>>;

    void awaitRequest();
    void readHeader();
    void onHeader(boost::system::error_code error);
    // Claims room for the body about to be read; false when the server holds too much.
    bool claimBodyBytes();
    void releaseBodyBytes();
    void readBody();
    void onBody(boost::system::error_code error);
    void refuse(const boost::system::error_code &error);
    void refuse(const HttpRequestReading::Refusal &refusal);
    void dispatch();
    void onAnswerTimeout(boost::system::error_code error);

    void deliverAnswer(quint64 exchange, HttpResponse response);
    void writeResponse(HttpResponse response, bool linger);
    void onWritten(boost::system::error_code error, bool linger);
    void linger();
    // Reads and drops what the client sends until it closes or `most` bytes have come, then
    // closes.
    void discardUntilClosed(std::size_t most);
    void close();

    void startStream(quint64 exchange, QByteArray contentType, QByteArray first);
    void queueStreamBytes(QByteArray bytes);
    void writeStreamQueue();

    boost::beast::tcp_stream m_stream;
    std::shared_ptr<HttpServerShared> m_shared;
    QByteArray m_peerAddress;
    boost::beast::flat_buffer m_buffer;
    std::optional<HttpRequestReading::Parser> m_parser;
    boost::asio::steady_timer m_answerTimer;
    bool m_awaitingAnswer = false;
    quint64 m_exchange = 0;  // numbers the requests handed to the handler
    bool m_keepAlive = false;
    unsigned m_version = 11;
    bool m_headRequest = false;  // its answer goes without the body
    qint64 m_claimedBodyBytes = 0;
    // The answer being written, and the bytes its body points into.
    QByteArray m_responseBody;
    std::optional<Response> m_response;
    // Open streams: what is still to be written, and whether a write is under way.
    bool m_streaming = false;
    std::deque<QByteArray> m_streamQueue;
    std::size_t m_streamBacklog = 0;
    bool m_streamWriting = false;
    // What is read only to be dropped (lingering close, stream clients), and how much of it.
    std::unique_ptr<char[]> m_discard;
    std::size_t m_discarded = 0;
    std::atomic<bool> m_open{true};
};
