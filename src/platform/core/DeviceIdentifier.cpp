#include "DeviceIdentifier.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMutex>
#include <QMutexLocker>
#include <QRandomGenerator>
#include <QSaveFile>
#include <QStandardPaths>
#include <QUuid>

namespace {

constexpr int kIdentifierLength = 40;

QString makeIdentifier()
{
    // SHA-1 of a random UUID and fresh random bytes: 40 hex digits, as the phone's utility.
    QByteArray seed = QUuid::createUuid().toRfc4122();
    for (int i = 0; i < 4; ++i) {
        const quint64 word = QRandomGenerator::system()->generate64();
        seed.append(reinterpret_cast<const char *>(&word), sizeof word);
    }
    return QString::fromLatin1(QCryptographicHash::hash(seed, QCryptographicHash::Sha1).toHex());
}

QMutex &fileMutex()
{
    static QMutex mutex;
    return mutex;
}

} // namespace

QString DeviceIdentifier::value()
{
    return valueStoredIn(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)
                         + QStringLiteral("/device-id"));
}

QString DeviceIdentifier::valueStoredIn(const QString &filePath)
{
    QMutexLocker lock(&fileMutex());
    QFile file(filePath);
    if (file.open(QIODevice::ReadOnly)) {
        const QString stored = QString::fromLatin1(file.read(kIdentifierLength + 1)).trimmed();
        if (isWellFormed(stored))
            return stored;
    }

    const QString made = makeIdentifier();
    QDir().mkpath(QFileInfo(filePath).absolutePath());
    QSaveFile out(filePath);
    if (out.open(QIODevice::WriteOnly)) {
        out.write(made.toLatin1());
        out.commit();
    }
    return made;
}

bool DeviceIdentifier::isWellFormed(const QString &identifier)
{
    if (identifier.size() != kIdentifierLength)
        return false;
    for (const QChar c : identifier) {
        const bool hex = (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f');
        if (!hex)
            return false;
    }
    return true;
}
