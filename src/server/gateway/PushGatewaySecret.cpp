#include "PushGatewaySecret.h"

#include <QFile>
#include <QRandomGenerator>
#include <QSaveFile>

QString PushGatewaySecret::filePathFor(const QString &databasePath)
{
    return databasePath + QStringLiteral(".push-secret");
}

QByteArray PushGatewaySecret::create(const QString &filePath, QString *error)
{
    QByteArray bytes(kBytes, Qt::Uninitialized);
    QRandomGenerator::system()->fillRange(reinterpret_cast<quint32 *>(bytes.data()), kBytes / int(sizeof(quint32)));
    const QByteArray secret = bytes.toHex();
    QSaveFile file(filePath);
    // The permissions are set before any byte is written, so no one else can read it early.
    if (!file.open(QIODevice::WriteOnly)
        || !file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner)
        || file.write(secret + '\n') != secret.size() + 1 || !file.commit()) {
        *error = QStringLiteral("cannot write the push secret %1: %2").arg(filePath, file.errorString());
        return {};
    }
    return secret;
}

QByteArray PushGatewaySecret::read(const QString &filePath, QString *error)
{
    QFile file(filePath);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("cannot read the push secret %1: %2").arg(filePath, file.errorString());
        return {};
    }
    const QByteArray secret = file.read(4 * kBytes).trimmed();
    if (secret.isEmpty())
        *error = QStringLiteral("the push secret %1 is empty").arg(filePath);
    return secret;
}

bool PushGatewaySecret::matches(const QByteArray &expected, const QByteArray &given)
{
    if (expected.isEmpty() || expected.size() != given.size())
        return false;
    unsigned char difference = 0;
    for (qsizetype i = 0; i < expected.size(); ++i)
        difference |= static_cast<unsigned char>(expected[i] ^ given[i]);
    return difference == 0;
}
