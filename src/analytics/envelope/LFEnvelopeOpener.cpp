#include "LFEnvelopeOpener.h"

#include "LFAnalyticsEnvelope.h"
#include "LFAnalyticsThrift.h"
#include "LFAnalyticsUtility.h"

namespace {
LFEnvelopeOpener::Result failure(const QString &problem)
{
    return {std::nullopt, problem};
}
} // namespace

std::optional<LFEnvelope> LFEnvelopeOpener::decodeEnvelope(const QByteArray &bytes, QString *problem)
{
    try {
        return LFTDecode<LFEnvelope>(bytes);
    } catch (const LFTException &error) {
        if (problem)
            *problem = QStringLiteral("not an envelope: %1: %2").arg(error.name(), error.reason());
        return std::nullopt;
    }
}

LFEnvelopeOpener::Result LFEnvelopeOpener::open(const QByteArray &bytes)
{
    QString problem;
    std::optional<LFEnvelope> envelope = decodeEnvelope(bytes, &problem);
    if (!envelope)
        return failure(problem);
    const QString expected = LFAnalyticsEnvelope::generateChecksum(
        envelope->signature(), envelope->serial_num(), envelope->ts_secs(), envelope->length(),
        envelope->guid());
    if (expected != envelope->checksum())
        return failure(QStringLiteral("checksum mismatch"));

    // Clients never send an entry as large as this, so nothing larger is ever inflated.
    if (envelope->length() < 0 || envelope->length() >= LFAnalyticsThrift::kMaxEntrySize)
        return failure(QStringLiteral("length %1 out of range").arg(envelope->length()));

    QByteArray entity = envelope->entity();
    const int32_t codex = envelope->codex();
    if (envelope->codexIsSet() && codex == 1) {
        const QByteArray signature = QByteArray::fromHex(envelope->signature().toLatin1());
        if (signature.size() != LFAnalyticsEnvelope::kBlockSize)
            return failure(QStringLiteral("signature is not %1 bytes").arg(LFAnalyticsEnvelope::kBlockSize));
        entity = LFAnalyticsUtility::AES128DecryptData(entity, LFAnalyticsEnvelope::encryptionKey(signature));
        if (entity.isNull())
            return failure(QStringLiteral("entity does not decrypt"));
    } else if (envelope->codexIsSet() && codex != 0) {
        return failure(QStringLiteral("unknown codex %1").arg(codex));
    }
    const QByteArray entryBytes = LFAnalyticsUtility::inflateData(entity, envelope->length());
    if (entryBytes.isNull())
        return failure(QStringLiteral("entity does not inflate to %1 bytes").arg(envelope->length()));
    try {
        Opened opened{std::move(*envelope), entryBytes, LFTDecode<LFTUALogEntry>(entryBytes)};
        return {std::move(opened), QString()};
    } catch (const LFTException &error) {
        return failure(QStringLiteral("log entry does not decode: %1: %2").arg(error.name(), error.reason()));
    }
}
