#include "HttpRequestReading.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <boost/asio/error.hpp>
#include <boost/beast/core/error.hpp>
#include <boost/beast/core/string.hpp>
#include <boost/beast/http/error.hpp>

namespace http = boost::beast::http;

namespace HttpRequestReading {

namespace {

QByteArray bytesOf(boost::beast::string_view text)
{
    return QByteArray(text.data(), qsizetype(text.size()));
}

} // namespace

void applyLimits(Parser &parser, const HttpLimits &limits)
{
    parser.header_limit(std::uint32_t(limits.maxHeaderBytes));
    parser.body_limit(std::uint64_t(limits.maxBodyBytes));
}

HttpRequest takeRequest(Parser &parser, const QByteArray &peerAddress)
{
    http::request<http::string_body> message = parser.release();
    HttpRequest request;
    request.method = bytesOf(message.method_string());
    request.setTarget(bytesOf(message.target()));
    request.headers.reserve(qsizetype(std::distance(message.begin(), message.end())));
    for (const auto &field : message)
        request.headers.append({bytesOf(field.name_string()), bytesOf(field.value())});
    request.body = QByteArray(message.body().data(), qsizetype(message.body().size()));
    request.peerAddress = peerAddress;
    request.markReceived();
    return request;
}

bool requestLineEnded(const Parser &parser, const QByteArray &unread, const HttpLimits &limits)
{
    return !parser.get().target().empty() || unread.left(limits.maxHeaderBytes).contains("\r\n");
}

std::optional<Refusal> refusalFor(const boost::system::error_code &error, const HttpLimits &limits,
                                  bool lineEnded)
{
    if (error == http::error::body_limit)
        return Refusal{413, "payload_too_large", QStringLiteral("body over %1 bytes").arg(limits.maxBodyBytes)};
    if (error == http::error::header_limit) {
        if (!lineEnded)
            return Refusal{414, "uri_too_long", QStringLiteral("request line over %1 bytes").arg(limits.maxHeaderBytes)};
        return Refusal{431, "header_too_large", QStringLiteral("header over %1 bytes").arg(limits.maxHeaderBytes)};
    }
    if (error == boost::beast::error::timeout)
        return Refusal{0, "read_timeout", QStringLiteral("request not read within %1 s (closed)").arg(limits.readTimeout.count())};
    // The client closed or reset the connection: nothing to say to it, nothing to log.
    if (error == http::error::end_of_stream || error == http::error::partial_message
        || error == boost::asio::error::eof || error == boost::asio::error::connection_reset
        || error == boost::asio::error::operation_aborted || error == boost::asio::error::broken_pipe)
        return std::nullopt;
    // Any other failure of the parser: the bytes are not a request.
    if (error.category() == http::make_error_code(http::error::bad_target).category())
        return Refusal{400, "bad_request", QStringLiteral("malformed request (%1)").arg(QString::fromStdString(error.message()))};
    return std::nullopt;
}

std::optional<Refusal> refusalForHeader(const Parser &parser)
{
    // Only plain chunked framing is read: other codings would reach the handler undecoded, and
    // HTTP/1.0 knows no chunks.
    const auto &message = parser.get();
    if (message.count(http::field::transfer_encoding) > 0
        && (message.version() < 11 || !boost::beast::iequals(message[http::field::transfer_encoding], "chunked")))
        return Refusal{400, "bad_request", QStringLiteral("malformed request (transfer coding not chunked)")};
    return std::nullopt;
}

QByteArray refusalBody(const Refusal &refusal)
{
    const QJsonObject body{{QStringLiteral("error"), QString::fromLatin1(refusal.code)},
                           {QStringLiteral("message"), refusal.what}};
    return QJsonDocument(body).toJson(QJsonDocument::Compact);
}

} // namespace HttpRequestReading
