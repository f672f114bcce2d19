#include "PushGatewaySecret.h"

#include "ForumDatabase.h"

#include <QFile>
#include <QRandomGenerator>

namespace {
const QString kMetaKey = QStringLiteral("push_secret");
} // namespace

QByteArray PushGatewaySecret::ofDatabase(ForumDatabase &database)
{
    QByteArray bytes(kBytes, Qt::Uninitialized);
    QRandomGenerator::system()->fillRange(reinterpret_cast<quint32 *>(bytes.data()), kBytes / int(sizeof(quint32)));
    return database.metaOrStore(kMetaKey, QString::fromLatin1(bytes.toHex())).toLatin1();
}

std::optional<QByteArray> PushGatewaySecret::storedIn(ForumDatabase &database)
{
    const std::optional<QString> stored = database.meta(kMetaKey);
    if (!stored)
        return std::nullopt;
    return stored->toLatin1();
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
