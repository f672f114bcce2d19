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

ListModel UserIdStore::userOfTempUserAnswer(const QJsonValue &payload)
{
    return ListModel::fromJson(payload.toObject().value(QStringLiteral("userinfo")));
}

QString UserIdStore::storeFromTempUserAnswer(const QJsonValue &payload)
{
    return storeUser(userOfTempUserAnswer(payload));
}

QString UserIdStore::storeUser(const ListModel &user)
{
    const QString idText = FieldValue::describe(user.userid());
    const QString key = QString::fromLatin1(kKey);
    m_defaults.removeObjectForKey(key);
    m_defaults.synchronize();
    m_defaults.setObject(idText, key);
    m_defaults.synchronize();
    return idText;
}
