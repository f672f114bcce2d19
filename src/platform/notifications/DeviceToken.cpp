#include "DeviceToken.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMutex>
#include <QMutexLocker>
#include <QRandomGenerator>
#include <QSaveFile>
#include <QStandardPaths>

namespace {

QMutex &fileMutex()
{
    static QMutex mutex;
    return mutex;
}

QByteArray makeToken()
{
    QByteArray token(DeviceToken::kSize, Qt::Uninitialized);
    QRandomGenerator::system()->fillRange(reinterpret_cast<quint32 *>(token.data()),
                                          DeviceToken::kSize / int(sizeof(quint32)));
    return token;
}

} // namespace

QString DeviceToken::defaultFilePath()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QStringLiteral("/push-token");
}

QByteArray DeviceToken::value()
{
    return valueStoredIn(defaultFilePath());
}

QByteArray DeviceToken::valueStoredIn(const QString &filePath)
{
    QMutexLocker lock(&fileMutex());
    QFile file(filePath);
    if (file.open(QIODevice::ReadOnly)) {
        const QByteArray stored = QByteArray::fromHex(file.read(2 * kSize + 1).trimmed());
        if (stored.size() == kSize)
            return stored;
    }
    const QByteArray made = makeToken();
    QDir().mkpath(QFileInfo(filePath).absolutePath());
    QSaveFile out(filePath);
    if (out.open(QIODevice::WriteOnly)) {
        out.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
        out.write(made.toHex());
        out.commit();
    }
    return made;
}
