#pragma once
// Wraps encoded log entries in envelopes (compressed, digested, signed, maybe encrypted) and
// saves them as envelope files. Runs on the main thread; the serial number is read and bumped
// under a lock.

#include <QByteArray>
#include <QMutex>
#include <QString>

#include <cstdint>

class LFAnalyticsContext;

class LFAnalyticsEnvelope
{
public:
    // A compressed entity this large or larger is thrown away with the whole cache.
    static constexpr qsizetype kMaxEntitySize = 209920;
    static constexpr int kDigestSize = 16;
    static constexpr int kBlockSize = 32;
    static inline const QString kVersion = QStringLiteral("V1.0");

    explicit LFAnalyticsEnvelope(LFAnalyticsContext &context);

    // The envelope bytes for an encoded log entry, or a null array when none is made.
    QByteArray makeEnvelopeData(const QByteArray &logEntry);
    // Makes an envelope and saves it as a new envelope file; true when a file was written.
    bool writeEnvelopeFile(const QByteArray &logEntry);

    // 32 bytes: entity digest bytes at even places, identity digest bytes at odd ones.
    static QByteArray mergeEntityAndIdentity(const QByteArray &entityDigest, const QByteArray &identityDigest);
    // The merged block with bytes 0, 1, 30 and 31 from the seed (0 without one), each byte
    // then XORed with byte (i mod 4) of the little-endian timestamp.
    static QByteArray buildGUIDWithData(const QByteArray &merged, const QByteArray &seed, uint32_t timestamp);
    // MD5 of "%@%d%d%d%@" (signature hex, serial, timestamp, length, GUID hex), lowercase hex.
    static QString generateChecksum(const QString &signatureHex, int32_t serialNum, int32_t timestamp,
                                    int32_t length, const QString &guidHex);
    // The AES key: the 16 signature bytes from its second byte on.
    static QByteArray encryptionKey(const QByteArray &signature);

    // MD5 of the vendor identifier followed by the device identifier.
    QByteArray buildIdentity() const;
    // The stored serial number, or 1 (stored) when there is none.
    int32_t buildSerialNum();
    // The stored signature, or an empty array.
    QByteArray fetchSignature() const;
    // Stores the signature unless one is stored already; returns the one in force.
    QByteArray setSignatureWithData(const QByteArray &signature);
    // Whether the imprint's "codex" (or, without one, encryptEnabled) asks for encryption.
    bool shouldEncrypt() const;

private:
    void incrementSerialNum();

    LFAnalyticsContext &m_context;
    QMutex m_serialMutex;
};
