#include "UserIdStore.h"

#include "FieldValue.h"
#include "ListModel.h"

#include <QJsonObject>

UserIdStore::UserIdStore(UserDefaults &defaults) : m_defaults(defaults) {}

QString UserIdStore::text() const
{
    const QString key = QString::fromLatin1(kKey);
    m_defaults.synchronize();
    const QVariant value = m_defaults.objectForKey(key);
    return value.isValid() ? value.toString() : QString();
}

qint64 UserIdStore::userId() const
{
    return FieldValue::integerValue(text());
}

QString UserIdStore::storeFromTempUserAnswer(const QJsonValue &payload)
{
    const ListModel user = ListModel::fromJson(payload.toObject().value(QStringLiteral("userinfo")));
    const QString idText = FieldValue::describe(user.userid());
    const QString key = QString::fromLatin1(kKey);
    m_defaults.removeObjectForKey(key);
    m_defaults.synchronize();
    m_defaults.setObject(idText, key);
    m_defaults.synchronize();
    return idText;
}
