#pragma once
// Byte and file helpers of the envelope code: AES-128-CBC with the envelope's fixed IV, zlib,
// and the envelope files in their folder. Stateless; any thread.

#include <QByteArray>
#include <QString>
#include <QStringList>

class LFAnalyticsUtility
{
public:
    LFAnalyticsUtility() = delete;

    static constexpr int kAesKeySize = 16;
    static inline const QByteArray kAesIv = QByteArray::fromHex("3e7a19c4d20b8f56a1c7e04b92d36f18");
    static inline const QString kEnvelopeSuffix = QStringLiteral("_envelope.log");

    // AES-128-CBC with PKCS#7 padding and the fixed IV; a null array when the key is not 16
    // bytes or the data does not decrypt.
    static QByteArray AES128EncryptData(const QByteArray &data, const QByteArray &key);
    static QByteArray AES128DecryptData(const QByteArray &data, const QByteArray &key);

    // A plain zlib stream at the default level.
    static QByteArray compressData(const QByteArray &data);
    // The inflated stream when it inflates to exactly `expectedLength` bytes; else null.
    static QByteArray inflateData(const QByteArray &data, qsizetype expectedLength);

    // The envelope files of `folder`, oldest first (by the time their names carry).
    static QStringList envelopeFiles(const QString &folder);
    // "%lld_envelope.log" of the time in milliseconds.
    static QString generateEnvelopeFileNameWithTS(qint64 milliseconds);
    // Writes through a temporary file that is flushed and renamed: a reader finds either no
    // file or the whole one, whenever the process dies.
    static bool saveData(const QByteArray &data, const QString &path);
    static bool removeFile(const QString &path);
    // Removes temporary files that a writer killed midway left behind.
    static void removeUnfinishedFiles(const QString &folder);
};
