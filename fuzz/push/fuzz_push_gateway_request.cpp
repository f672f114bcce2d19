// Any body for any gateway call gives a request or a reason, never both and never a crash.
#include "PushGatewayRequest.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    const QByteArray body(reinterpret_cast<const char *>(data) + 1, qsizetype(size - 1));
    if (data[0] == 0xff) {
        const auto parsed = PushGatewayRequest::parseSend(body);
        if (parsed.request.has_value() == !parsed.error.isEmpty())
            std::abort();
        return 0;
    }
    const auto kind = static_cast<PushGatewayRequest::Kind>(data[0] % 10);
    const auto parsed = PushGatewayRequest::parseDevice(kind, body);
    if (parsed.request.has_value() == !parsed.error.isEmpty())
        std::abort();
    return 0;
}
