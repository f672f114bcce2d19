// Feeds arbitrary bytes to the envelope opener, as the collector and quorvel-logtool receive
// them: every input must open or give a reason, never crash. Half the inputs are sealed first
// (a valid checksum around the bytes as the entity, encrypted or not), so that decryption,
// inflating and the entry decoder are reached too.

#include "LFAnalyticsEnvelope.h"
#include "LFEnvelopeOpener.h"

#include <cstdint>
#include <cstdlib>

namespace {
LFEnvelope sealed(const QByteArray &entity, bool encrypted, int32_t length)
{
    LFEnvelope envelope;
    envelope.setVersion(LFAnalyticsEnvelope::kVersion);
    envelope.setAddress(QStringLiteral("3c1f9a27b84e0d65a2f7c913"));
    envelope.setSignature(QStringLiteral("00112233445566778899aabbccddeeff00112233445566778899aabbccddeeff"));
    envelope.setSerial_num(1);
    envelope.setTs_secs(1700000000);
    envelope.setLength(length);
    envelope.setEntity(entity);
    envelope.setGuid(QStringLiteral("ffeeddccbbaa99887766554433221100ffeeddccbbaa99887766554433221100"));
    envelope.setChecksum(LFAnalyticsEnvelope::generateChecksum(envelope.signature(), 1, 1700000000, length, envelope.guid()));
    envelope.setCodex(encrypted ? 1 : 0);
    return envelope;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 3)
        return 0;
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char *>(data) + 3, qsizetype(size - 3));
    const bool seal = data[0] & 1;
    const bool encrypted = data[0] & 2;
    const int32_t length = int32_t(data[1]) << 8 | data[2];
    const LFEnvelopeOpener::Result result =
        LFEnvelopeOpener::open(seal ? LFTEncode(sealed(bytes, encrypted, length)) : bytes);
    if (!result.opened && result.problem.isEmpty())
        std::abort();
    return 0;
}
