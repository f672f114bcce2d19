// Feeds arbitrary bytes to the record decoders: every input must end in a decoded record or an
// LFTException, and a decoded record's encoding must survive a decode unchanged.

#include "LFEnvelope.h"
#include "LFTRecords.h"

#include <cstdint>
#include <cstdlib>

namespace {
template <typename Record> void roundTrip(const QByteArray &bytes)
{
    Record record;
    try {
        record = LFTDecode<Record>(bytes);
    } catch (const LFTException &) {
        return;
    }
    // Compared as bytes: a NaN read from the input never equals itself as a value.
    const QByteArray encoded = LFTEncode(record);
    if (LFTEncode(LFTDecode<Record>(encoded)) != encoded)
        std::abort();
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    // The first byte picks the record; the rest is its encoding.
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char *>(data) + 1, qsizetype(size - 1));
    switch (data[0] % 4) {
    case 0: roundTrip<LFTUALogEntry>(bytes); break;
    case 1: roundTrip<LFTResponse>(bytes); break;
    case 2: roundTrip<LFEnvelope>(bytes); break;
    default: roundTrip<LFTImprint>(bytes); break;
    }
    return 0;
}
