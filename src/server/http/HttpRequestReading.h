#pragma once
// Reading a request with Boost.Beast under the server's limits, shared by the connection
// and the fuzzer: the parser's limits, the request it parsed, and what a failed read gets.
// Plain functions; any thread.

#include "HttpLimits.h"
#include "HttpRequest.h"

#include <QString>

#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/string_body.hpp>

#include <optional>

namespace HttpRequestReading {

using Parser = boost::beast::http::request_parser<boost::beast::http::string_body>;

// A parser that stops at the header and body limits while it reads.
void applyLimits(Parser &parser, const HttpLimits &limits);

// The parsed request; its body is moved out of the parser.
HttpRequest takeRequest(Parser &parser, const QByteArray &peerAddress);

// What a read that failed with `error` gets: an answer with this status (then a close), or,
// with status 0, a close without answer. Nothing when the client simply went away.
struct Refusal
{
    int status = 0;
    QByteArray code;  // the JSON error code of the answer, and the refusal's kind in the log
    QString what;     // for the answer and the log
};
// Whether the request line ended within the header limit: the parser took it, or its line
// break is among the first bytes `unread` that the parser still holds (it may wait for the
// whole header before it takes the line).
bool requestLineEnded(const Parser &parser, const QByteArray &unread, const HttpLimits &limits);

// `lineEnded` tells a header over the limit (431) from a request line over it (414).
std::optional<Refusal> refusalFor(const boost::system::error_code &error, const HttpLimits &limits,
                                  bool lineEnded);

// A refusal for a header the parser took but the server must not: a transfer coding other
// than plain chunked leaves the body's end unknown or its bytes undecoded, and guessing
// would let a body pass for a request of its own.
std::optional<Refusal> refusalForHeader(const Parser &parser);

// The JSON body of a refusal's answer.
QByteArray refusalBody(const Refusal &refusal);

} // namespace HttpRequestReading
