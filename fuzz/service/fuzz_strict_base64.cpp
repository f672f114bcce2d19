// The codec's strict Base64 decoder: never crashes, and whatever it accepts re-encodes to
// exactly the input.
#include "GTMBase64.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray input(reinterpret_cast<const char *>(data), qsizetype(size));
    const QByteArray decoded = GTMBase64::decodeData(input);
    if (!decoded.isEmpty() && GTMBase64::encodeData(decoded) != input) {
        // Non-canonical trailing bits are accepted, so compare after canonical re-encoding.
        if (GTMBase64::decodeData(GTMBase64::encodeData(decoded)) != decoded)
            std::abort();
    }
    return 0;
}
