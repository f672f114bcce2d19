#include "LFAnalyticsEnvelope.h"

#include "LFAnalyticsApp.h"
#include "LFAnalyticsConfig.h"
#include "LFAnalyticsContext.h"
#include "LFAnalyticsDevice.h"
#include "LFAnalyticsInternal.h"
#include "LFAnalyticsThrift.h"
#include "LFAnalyticsUtility.h"
#include "LFEnvelope.h"
#include "LFTRecords.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QMutexLocker>

#include <cmath>

namespace {
const QString kSerialNumKey = QStringLiteral("lfSerialNum");
const QString kSignatureKey = QStringLiteral("lfSignature");
const QString kActivateMsgKey = QStringLiteral("lfActivateMsg");

QByteArray md5(const QByteArray &data)
{
    return QCryptographicHash::hash(data, QCryptographicHash::Md5);
}
} // namespace

LFAnalyticsEnvelope::LFAnalyticsEnvelope(LFAnalyticsContext &context)
    : m_context(context)
{
}

QByteArray LFAnalyticsEnvelope::mergeEntityAndIdentity(const QByteArray &entityDigest,
                                                       const QByteArray &identityDigest)
{
    QByteArray merged(kBlockSize, '\0');
    for (int k = 0; k < kDigestSize; ++k) {
        merged[2 * k] = k < entityDigest.size() ? entityDigest.at(k) : '\0';
        merged[2 * k + 1] = k < identityDigest.size() ? identityDigest.at(k) : '\0';
    }
    return merged;
}

QByteArray LFAnalyticsEnvelope::buildGUIDWithData(const QByteArray &merged, const QByteArray &seed,
                                                  uint32_t timestamp)
{
    QByteArray guid = merged.leftJustified(kBlockSize, '\0', true);
    for (int i : {0, 1, kBlockSize - 2, kBlockSize - 1})
        guid[i] = seed.size() == kBlockSize ? seed.at(i) : '\0';
    for (int i = 0; i < kBlockSize; ++i)
        guid[i] = char(uint8_t(guid.at(i)) ^ uint8_t(timestamp >> (8 * (i % 4))));
    return guid;
}

QString LFAnalyticsEnvelope::generateChecksum(const QString &signatureHex, int32_t serialNum,
                                              int32_t timestamp, int32_t length, const QString &guidHex)
{
    const QString text = signatureHex + QString::number(serialNum) + QString::number(timestamp)
                         + QString::number(length) + guidHex;
    return QString::fromLatin1(md5(text.toUtf8()).toHex());
}

QByteArray LFAnalyticsEnvelope::encryptionKey(const QByteArray &signature)
{
    return signature.mid(1, LFAnalyticsUtility::kAesKeySize);
}

QByteArray LFAnalyticsEnvelope::buildIdentity() const
{
    const LFAnalyticsDevice &device = m_context.device();
    return md5((device.vendorIdentifier() + device.deviceId()).toUtf8());
}

int32_t LFAnalyticsEnvelope::buildSerialNum()
{
    QMutexLocker lock(&m_serialMutex);
    LFAnalyticsConfig &config = m_context.config();
    if (const std::optional<double> stored = config.numberWithKey(kSerialNumKey))
        return int32_t(*stored);
    config.setConfigure(1, kSerialNumKey);
    return 1;
}

void LFAnalyticsEnvelope::incrementSerialNum()
{
    QMutexLocker lock(&m_serialMutex);
    LFAnalyticsConfig &config = m_context.config();
    config.setConfigure(int32_t(config.numberWithKey(kSerialNumKey).value_or(1)) + 1, kSerialNumKey);
}

QByteArray LFAnalyticsEnvelope::fetchSignature() const
{
    const QByteArray stored = m_context.config().configureWithKey(kSignatureKey).toByteArray();
    return stored.size() == kBlockSize ? stored : QByteArray();
}

QByteArray LFAnalyticsEnvelope::setSignatureWithData(const QByteArray &signature)
{
    const QByteArray stored = fetchSignature();
    if (!stored.isEmpty())
        return stored;
    m_context.config().setConfigure(signature, kSignatureKey);
    return signature;
}

bool LFAnalyticsEnvelope::shouldEncrypt() const
{
    const QString codex = m_context.thrift().imprintPropertyValueWithKey(QStringLiteral("codex"));
    if (!codex.isNull())
        return codex == QStringLiteral("1");
    return m_context.app().encryptEnabled();
}

QByteArray LFAnalyticsEnvelope::makeEnvelopeData(const QByteArray &logEntry)
{
    QByteArray entity = LFAnalyticsUtility::compressData(logEntry);
    if (entity.isNull() || entity.size() >= kMaxEntitySize) {
        m_context.internal().removeCacheData();
        return {};
    }
    const uint32_t timestamp = uint32_t(std::floor(m_context.now()));
    const int32_t serialNum = buildSerialNum();
    const QByteArray identity = buildIdentity();
    QByteArray merged = mergeEntityAndIdentity(md5(entity), identity);
    const QByteArray signature = setSignatureWithData(buildGUIDWithData(merged, QByteArray(), timestamp));
    QByteArray guid = buildGUIDWithData(merged, signature, timestamp);

    const bool encrypt = shouldEncrypt();
    if (encrypt) {
        entity = LFAnalyticsUtility::AES128EncryptData(entity, encryptionKey(signature));
        merged = mergeEntityAndIdentity(md5(entity), identity);
        guid = buildGUIDWithData(merged, signature, timestamp);
    }

    LFEnvelope envelope;
    envelope.setVersion(kVersion);
    envelope.setAddress(m_context.app().appid());
    envelope.setSignature(QString::fromLatin1(signature.toHex()));
    envelope.setSerial_num(serialNum);
    envelope.setTs_secs(int32_t(timestamp));
    envelope.setLength(int32_t(logEntry.size()));
    envelope.setEntity(entity);
    envelope.setGuid(QString::fromLatin1(guid.toHex()));
    envelope.setChecksum(generateChecksum(envelope.signature(), serialNum, int32_t(timestamp),
                                          envelope.length(), envelope.guid()));
    envelope.setCodex(encrypt ? 1 : 0);
    try {
        return LFTEncode(envelope);
    } catch (const LFTException &error) {
        m_context.log(QStringLiteral("Exception occurred: %1, %2").arg(error.name(), error.reason()));
        return {};
    }
}

bool LFAnalyticsEnvelope::writeEnvelopeFile(const QByteArray &logEntry)
{
    const QByteArray bytes = makeEnvelopeData(logEntry);
    if (bytes.isNull())
        return false;
    const QDir folder(m_context.internal().envelopeDirectory());
    // Two envelopes within one millisecond still get names of their own, in order.
    qint64 ms = qint64(std::floor(m_context.now() * 1000));
    while (QFileInfo::exists(folder.filePath(LFAnalyticsUtility::generateEnvelopeFileNameWithTS(ms))))
        ++ms;
    const bool saved = LFAnalyticsUtility::saveData(
        bytes, folder.filePath(LFAnalyticsUtility::generateEnvelopeFileNameWithTS(ms)));
    if (saved)
        m_context.config().setConfigure(true, kActivateMsgKey);
    incrementSerialNum();
    return saved;
}
