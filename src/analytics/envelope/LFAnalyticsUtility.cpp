#include "LFAnalyticsUtility.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <openssl/evp.h>
#include <zlib.h>

#include <algorithm>
#include <memory>

namespace {
using CipherContext = std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)>;

QByteArray runCipher(const QByteArray &data, const QByteArray &key, bool encrypt)
{
    if (key.size() != LFAnalyticsUtility::kAesKeySize)
        return {};
    CipherContext context(EVP_CIPHER_CTX_new(), &EVP_CIPHER_CTX_free);
    if (!context
        || EVP_CipherInit_ex(context.get(), EVP_aes_128_cbc(), nullptr,
                             reinterpret_cast<const unsigned char *>(key.constData()),
                             reinterpret_cast<const unsigned char *>(LFAnalyticsUtility::kAesIv.constData()),
                             encrypt ? 1 : 0) != 1)
        return {};
    QByteArray out(data.size() + EVP_MAX_BLOCK_LENGTH, Qt::Uninitialized);
    int written = 0;
    int finalWritten = 0;
    auto *outBytes = reinterpret_cast<unsigned char *>(out.data());
    if (EVP_CipherUpdate(context.get(), outBytes, &written,
                         reinterpret_cast<const unsigned char *>(data.constData()), int(data.size())) != 1
        || EVP_CipherFinal_ex(context.get(), outBytes + written, &finalWritten) != 1)
        return {};
    out.truncate(written + finalWritten);
    return out;
}

// The time in milliseconds that an envelope file's name starts with, or -1.
qint64 fileTime(const QString &name)
{
    bool ok = false;
    const qint64 ms = name.left(name.size() - LFAnalyticsUtility::kEnvelopeSuffix.size()).toLongLong(&ok);
    return ok ? ms : -1;
}
} // namespace

QByteArray LFAnalyticsUtility::AES128EncryptData(const QByteArray &data, const QByteArray &key)
{
    return runCipher(data, key, true);
}

QByteArray LFAnalyticsUtility::AES128DecryptData(const QByteArray &data, const QByteArray &key)
{
    return runCipher(data, key, false);
}

QByteArray LFAnalyticsUtility::compressData(const QByteArray &data)
{
    uLongf size = compressBound(uLong(data.size()));
    QByteArray out(qsizetype(size), Qt::Uninitialized);
    if (compress2(reinterpret_cast<Bytef *>(out.data()), &size,
                  reinterpret_cast<const Bytef *>(data.constData()), uLong(data.size()),
                  Z_DEFAULT_COMPRESSION) != Z_OK)
        return {};
    out.truncate(qsizetype(size));
    return out;
}

QByteArray LFAnalyticsUtility::inflateData(const QByteArray &data, qsizetype expectedLength)
{
    if (expectedLength < 0)
        return {};
    // One byte more than expected, so a stream that inflates to more is caught.
    QByteArray out(expectedLength + 1, Qt::Uninitialized);
    uLongf size = uLongf(out.size());
    const int status = uncompress(reinterpret_cast<Bytef *>(out.data()), &size,
                                  reinterpret_cast<const Bytef *>(data.constData()), uLong(data.size()));
    if (status != Z_OK || qsizetype(size) != expectedLength)
        return {};
    out.truncate(expectedLength);
    return out;
}

QStringList LFAnalyticsUtility::envelopeFiles(const QString &folder)
{
    const QDir dir(folder);
    QList<std::pair<qint64, QString>> found;
    for (const QString &name : dir.entryList({QLatin1Char('*') + kEnvelopeSuffix}, QDir::Files))
        found.append({fileTime(name), dir.filePath(name)});
    std::sort(found.begin(), found.end());
    QStringList paths;
    for (const auto &entry : found)
        paths.append(entry.second);
    return paths;
}

QString LFAnalyticsUtility::generateEnvelopeFileNameWithTS(qint64 milliseconds)
{
    return QString::number(milliseconds) + kEnvelopeSuffix;
}

bool LFAnalyticsUtility::saveData(const QByteArray &data, const QString &path)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(data) == data.size() && file.flush() && file.commit();
}

bool LFAnalyticsUtility::removeFile(const QString &path)
{
    return QFile::remove(path);
}

void LFAnalyticsUtility::removeUnfinishedFiles(const QString &folder)
{
    // QSaveFile names its temporary file after the target with a random ending.
    const QDir dir(folder);
    for (const QString &name : dir.entryList({QLatin1Char('*') + kEnvelopeSuffix + QStringLiteral(".*")}, QDir::Files))
        QFile::remove(dir.filePath(name));
}
