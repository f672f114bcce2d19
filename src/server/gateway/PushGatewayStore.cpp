#include "PushGatewayStore.h"

#include <QJsonDocument>
#include <QRandomGenerator>
#include <QVariant>

namespace {

const QString kEpochKey = QStringLiteral("push_epoch");

// Text columns are NOT NULL: a missing text is stored as an empty one.
QString text(const QString &value)
{
    return value.isNull() ? QStringLiteral("") : value;
}

} // namespace

PushGatewayStore::PushGatewayStore(ForumDatabase &database)
    : m_database(database)
    , m_epoch(database.metaOrStore(kEpochKey, QString::number(QRandomGenerator::system()->generate64(), 36)))
{
}

QStringList PushGatewayStore::column(QSqlQuery &query)
{
    m_database.exec(query);
    QStringList values;
    while (query.next())
        values << query.value(0).toString();
    return values;
}

void PushGatewayStore::reportDevice(const QString &token, bool isRegister, const QJsonObject &header, qint64 now)
{
    const QString when = isRegister ? QStringLiteral("registered") : QStringLiteral("launched");
    QSqlQuery query = m_database.prepare(
        QStringLiteral("INSERT INTO push_devices(token, appkey, header, %1, reports) VALUES(?, ?, ?, ?, 1)"
                       " ON CONFLICT(token) DO UPDATE SET appkey = excluded.appkey, header = excluded.header,"
                       " %1 = excluded.%1, reports = push_devices.reports + 1")
            .arg(when));
    query.addBindValue(text(token));
    query.addBindValue(text(header.value(QStringLiteral("appkey")).toString()));
    query.addBindValue(QString::fromUtf8(QJsonDocument(header).toJson(QJsonDocument::Compact)));
    query.addBindValue(now);
    m_database.exec(query);
}

void PushGatewayStore::recordStreamDevice(const QString &token)
{
    // No report yet: no app key, an empty header and no report times until one comes.
    QSqlQuery query = m_database.prepare(
        QStringLiteral("INSERT INTO push_devices(token, appkey, header) VALUES(?, '', '{}') ON CONFLICT DO NOTHING"));
    query.addBindValue(text(token));
    m_database.exec(query);
}

QStringList PushGatewayStore::tags(const QString &token)
{
    QSqlQuery query = m_database.prepare(QStringLiteral("SELECT tag FROM push_tags WHERE token = ? ORDER BY tag"));
    query.addBindValue(text(token));
    return column(query);
}

void PushGatewayStore::addTags(const QString &token, const QStringList &tags)
{
    execForEachTag(QStringLiteral("INSERT INTO push_tags(token, tag) VALUES(?, ?) ON CONFLICT DO NOTHING"), token, tags);
}

void PushGatewayStore::removeTags(const QString &token, const QStringList &tags)
{
    execForEachTag(QStringLiteral("DELETE FROM push_tags WHERE token = ? AND tag = ?"), token, tags);
}

void PushGatewayStore::execForEachTag(const QString &statement, const QString &token, const QStringList &tags)
{
    ForumDatabase::Transaction transaction(m_database);
    for (const QString &tag : tags) {
        QSqlQuery query = m_database.prepare(statement);
        query.addBindValue(text(token));
        query.addBindValue(text(tag));
        m_database.exec(query);
    }
    transaction.commit();
}

void PushGatewayStore::resetTags(const QString &token)
{
    QSqlQuery query = m_database.prepare(QStringLiteral("DELETE FROM push_tags WHERE token = ?"));
    query.addBindValue(text(token));
    m_database.exec(query);
}

QStringList PushGatewayStore::aliases(const QString &token)
{
    QSqlQuery query = m_database.prepare(
        QStringLiteral("SELECT alias FROM push_aliases WHERE token = ? ORDER BY alias, type"));
    query.addBindValue(text(token));
    return column(query);
}

void PushGatewayStore::addAlias(const QString &token, const QString &alias, const QString &type)
{
    QSqlQuery query = m_database.prepare(
        QStringLiteral("INSERT INTO push_aliases(token, alias, type) VALUES(?, ?, ?) ON CONFLICT DO NOTHING"));
    query.addBindValue(text(token));
    query.addBindValue(text(alias));
    query.addBindValue(text(type));
    m_database.exec(query);
}

void PushGatewayStore::setAlias(const QString &token, const QString &alias, const QString &type)
{
    ForumDatabase::Transaction transaction(m_database);
    QSqlQuery clear = m_database.prepare(QStringLiteral("DELETE FROM push_aliases WHERE token = ? AND type = ?"));
    clear.addBindValue(text(token));
    clear.addBindValue(text(type));
    m_database.exec(clear);
    addAlias(token, alias, type);
    transaction.commit();
}

void PushGatewayStore::removeAlias(const QString &token, const QString &alias, const QString &type)
{
    QSqlQuery query = m_database.prepare(
        QStringLiteral("DELETE FROM push_aliases WHERE token = ? AND alias = ? AND type = ?"));
    query.addBindValue(text(token));
    query.addBindValue(text(alias));
    query.addBindValue(text(type));
    m_database.exec(query);
}

QStringList PushGatewayStore::recipients(const Target &target)
{
    switch (target.kind) {
    case Target::Device: {
        QSqlQuery query = m_database.prepare(QStringLiteral("SELECT token FROM push_devices WHERE token = ?"));
        query.addBindValue(text(target.value));
        return column(query);
    }
    case Target::Tag: {
        QSqlQuery query = m_database.prepare(
            QStringLiteral("SELECT token FROM push_tags WHERE tag = ? ORDER BY token"));
        query.addBindValue(text(target.value));
        return column(query);
    }
    case Target::Alias: {
        QSqlQuery query = m_database.prepare(
            QStringLiteral("SELECT DISTINCT token FROM push_aliases WHERE alias = ? ORDER BY token"));
        query.addBindValue(text(target.value));
        return column(query);
    }
    case Target::All:
        break;
    }
    QSqlQuery query = m_database.prepare(QStringLiteral("SELECT token FROM push_devices ORDER BY token"));
    return column(query);
}

QList<qint64> PushGatewayStore::storeMessage(const QStringList &tokens, const QString &msgId,
                                             const QByteArray &userInfo, qint64 now)
{
    QList<qint64> ids;
    ForumDatabase::Transaction transaction(m_database);
    for (const QString &token : tokens) {
        QSqlQuery query = m_database.prepare(
            QStringLiteral("INSERT INTO push_messages(token, msgid, userinfo, created) VALUES(?, ?, ?, ?) RETURNING id"));
        query.addBindValue(text(token));
        query.addBindValue(text(msgId));
        query.addBindValue(QString::fromUtf8(userInfo));
        query.addBindValue(now);
        ids << m_database.execReturningKey(query).value_or(0);
    }
    // Streams held by other server processes on the database learn of it from the notice.
    transaction.announce({QLatin1String(kMessagesChanged)});
    transaction.commit();
    return ids;
}

QList<PushGatewayStore::StoredMessage> PushGatewayStore::messagesAfter(const QString &token, qint64 afterId)
{
    QSqlQuery query = m_database.prepare(
        QStringLiteral("SELECT id, userinfo FROM push_messages WHERE token = ? AND id > ? ORDER BY id"));
    query.addBindValue(text(token));
    query.addBindValue(afterId);
    m_database.exec(query);
    QList<StoredMessage> messages;
    while (query.next())
        messages.append({query.value(0).toLongLong(), query.value(1).toString().toUtf8()});
    return messages;
}

void PushGatewayStore::recordClick(const QString &token, const QString &msgId, double ts, qint64 now)
{
    QSqlQuery query = m_database.prepare(
        QStringLiteral("INSERT INTO push_clicks(token, msgid, ts, received) VALUES(?, ?, ?, ?)"));
    query.addBindValue(text(token));
    query.addBindValue(text(msgId));
    query.addBindValue(ts);
    query.addBindValue(now);
    m_database.exec(query);
}

QList<PushGatewayStore::Click> PushGatewayStore::clicks()
{
    QSqlQuery query = m_database.prepare(QStringLiteral("SELECT token, msgid, ts FROM push_clicks ORDER BY id"));
    m_database.exec(query);
    QList<Click> clicks;
    while (query.next())
        clicks.append({query.value(0).toString(), query.value(1).toString(), query.value(2).toDouble()});
    return clicks;
}
