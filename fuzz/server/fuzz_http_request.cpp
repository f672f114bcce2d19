// The HTTP layer's request reading: any bytes, fed to the parser under small limits in the
// pieces a network would deliver. A read either gives a request whose parts hold together,
// or a refusal of a known status, or waits for more; never a crash or an unbounded request.
#include "HttpRequestReading.h"

#include <boost/asio/buffer.hpp>

#include <cstdint>
#include <cstdlib>

namespace {

HttpLimits smallLimits()
{
    HttpLimits limits;
    limits.maxBodyBytes = 512;
    limits.maxHeaderBytes = 1024;
    return limits;
}

void check(bool condition)
{
    if (!condition)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const HttpLimits limits = smallLimits();
    if (size == 0)
        return 0;
    // The first byte cuts the rest into pieces of 1 to 64 bytes.
    const std::size_t piece = 1 + data[0] % 64;
    const auto *bytes = reinterpret_cast<const char *>(data + 1);
    const std::size_t length = size - 1;

    HttpRequestReading::Parser parser;
    HttpRequestReading::applyLimits(parser, limits);
    std::string pending;
    boost::system::error_code error;
    for (std::size_t offset = 0; offset < length && !parser.is_done(); offset += piece) {
        pending.append(bytes + offset, std::min(piece, length - offset));
        const std::size_t used = parser.put(boost::asio::buffer(pending), error);
        pending.erase(0, used);
        if (error == boost::beast::http::error::need_more)
            continue;
        if (error)
            break;
    }
    if (error && error != boost::beast::http::error::need_more) {
        const auto refusal = HttpRequestReading::refusalFor(error, limits, parser);
        check(!refusal || refusal->status == 0 || refusal->status == 400 || refusal->status == 413
              || refusal->status == 414 || refusal->status == 431);
        if (refusal && refusal->status != 0)
            check(!HttpRequestReading::refusalBody(*refusal).isEmpty());
        return 0;
    }
    if (!parser.is_done())
        return 0;
    const HttpRequest request = HttpRequestReading::takeRequest(parser, QByteArrayLiteral("127.0.0.1"));
    check(request.body.size() <= limits.maxBodyBytes);
    check(request.target.size() <= limits.maxHeaderBytes);
    check(request.path + (request.query.isEmpty() && !request.target.contains('?') ? QByteArray() : "?" + request.query)
          == request.target);
    check(!request.method.isEmpty());
    return 0;
}
