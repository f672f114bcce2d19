#include "AnalyticsStore.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QSqlQuery>
#include <QVariant>


namespace {
QVariant optionalNumber(bool isSet, qint64 value)
{
    return isSet ? QVariant(value) : QVariant(QMetaType(QMetaType::LongLong));
}
} // namespace

AnalyticsStore::AnalyticsStore(std::unique_ptr<ForumDatabase> database)
    : m_database(std::move(database))
{
}

AnalyticsStore::~AnalyticsStore() = default;

std::unique_ptr<AnalyticsStore> AnalyticsStore::open(const QString &location, QString *error)
{
    std::unique_ptr<ForumDatabase> database = ForumDatabase::open(location, error);
    if (!database)
        return nullptr;
    return std::unique_ptr<AnalyticsStore>(new AnalyticsStore(std::move(database)));
}

QSqlDatabase &AnalyticsStore::database()
{
    return m_database->connection();
}

bool AnalyticsStore::store(const LFTUALogEntry &entry, qint64 receivedMs, QString *error)
{
    try {
        ForumDatabase::Transaction transaction(*m_database);
        storeDevice(entry, receivedMs);
        const QString deviceId = entry.device_info().device_id();
        for (const LFTSession &session : entry.sessions())
            storeSession(deviceId, session);
        for (const LFTInstantMsg &message : entry.instant_msgs())
            storeMessage(deviceId, message);
        transaction.commit();
    } catch (const StoreError &failure) {
        *error = QString::fromStdString(failure.what());
        return false;
    }
    return true;
}

void AnalyticsStore::storeDevice(const LFTUALogEntry &entry, qint64 receivedMs)
{
    const LFTDeviceInfo &device = entry.device_info();
    QSqlQuery query = m_database->prepare(QStringLiteral(
        "INSERT INTO analytics_devices(device_id, app_key, app_version, model, os, os_version, first_seen, last_seen)"
        " VALUES(?, ?, ?, ?, ?, ?, ?, ?) ON CONFLICT(device_id) DO UPDATE SET app_key = excluded.app_key,"
        " app_version = excluded.app_version, model = excluded.model, os = excluded.os,"
        " os_version = excluded.os_version, last_seen = excluded.last_seen"));
    query.addBindValue(device.device_id().isNull() ? QStringLiteral("") : device.device_id());
    query.addBindValue(entry.app_info().key());
    query.addBindValue(entry.app_info().version());
    query.addBindValue(device.model());
    query.addBindValue(device.os());
    query.addBindValue(device.os_version());
    query.addBindValue(receivedMs);
    query.addBindValue(receivedMs);
    m_database->exec(query);
}

void AnalyticsStore::storeSession(const QString &deviceId, const LFTSession &session)
{
    QSqlQuery insert = m_database->prepare(QStringLiteral(
        "INSERT INTO analytics_sessions(session_id, device_id, start_ms, end_ms, duration_ms)"
        " VALUES(?, ?, ?, ?, ?) ON CONFLICT DO NOTHING"));
    insert.addBindValue(session.id());
    insert.addBindValue(deviceId);
    insert.addBindValue(qint64(session.start_time()));
    insert.addBindValue(qint64(session.end_time()));
    insert.addBindValue(qint64(session.duration()));
    m_database->exec(insert);
    // A session sent again (its first answer was lost) keeps the pages it has.
    if (insert.numRowsAffected() == 0)
        return;
    for (const LFTPage &page : session.pages()) {
        QSqlQuery query = m_database->prepare(QStringLiteral( "INSERT INTO analytics_pages(session_id, page_name, duration_ms) VALUES(?, ?, ?)"));
        query.addBindValue(session.id());
        query.addBindValue(page.page_name());
        query.addBindValue(qint64(page.duration()));
        m_database->exec(query);
    }
}

void AnalyticsStore::storeMessage(const QString &deviceId, const LFTInstantMsg &message)
{
    for (const LFTEvent &event : message.events()) {
        QSqlQuery query = m_database->prepare(QStringLiteral(
            "INSERT INTO analytics_events(session_id, device_id, name, properties, acc, duration_ms, ts)"
            " VALUES(?, ?, ?, ?, ?, ?, ?)"));
        QJsonObject properties;
        for (auto it = event.properties().cbegin(); it != event.properties().cend(); ++it)
            properties.insert(it.key(), it->string_valueIsSet() ? QJsonValue(it->string_value())
                                                                : QJsonValue(qint64(it->long_value())));
        query.addBindValue(message.id());
        query.addBindValue(deviceId);
        query.addBindValue(event.name());
        query.addBindValue(QString::fromUtf8(QJsonDocument(properties).toJson(QJsonDocument::Compact)));
        query.addBindValue(optionalNumber(event.accIsSet(), event.acc()));
        query.addBindValue(optionalNumber(event.durationIsSet(), event.duration()));
        query.addBindValue(qint64(event.ts()));
        m_database->exec(query);
    }
    for (const LFTError &error : message.errors()) {
        QSqlQuery query = m_database->prepare(QStringLiteral(
            "INSERT INTO analytics_errors(session_id, device_id, ts, context, source) VALUES(?, ?, ?, ?, ?)"));
        query.addBindValue(message.id());
        query.addBindValue(deviceId);
        query.addBindValue(qint64(error.ts()));
        query.addBindValue(error.context());
        query.addBindValue(optionalNumber(error.sourceIsSet(), error.source()));
        m_database->exec(query);
    }
}
