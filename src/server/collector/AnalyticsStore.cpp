#include "AnalyticsStore.h"

#include <QAtomicInteger>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <stdexcept>

namespace {
const char *const kSchema[] = {
    "PRAGMA busy_timeout=5000",
    "CREATE TABLE IF NOT EXISTS analytics_devices(device_id TEXT PRIMARY KEY, app_key TEXT NOT NULL,"
    " app_version TEXT, model TEXT, os TEXT, os_version TEXT, first_seen INTEGER NOT NULL,"
    " last_seen INTEGER NOT NULL)",
    "CREATE TABLE IF NOT EXISTS analytics_sessions(session_id TEXT PRIMARY KEY, device_id TEXT NOT NULL,"
    " start_ms INTEGER NOT NULL, end_ms INTEGER NOT NULL, duration_ms INTEGER NOT NULL)",
    "CREATE TABLE IF NOT EXISTS analytics_pages(id INTEGER PRIMARY KEY, session_id TEXT NOT NULL,"
    " page_name TEXT NOT NULL, duration_ms INTEGER NOT NULL)",
    "CREATE TABLE IF NOT EXISTS analytics_events(id INTEGER PRIMARY KEY, session_id TEXT NOT NULL,"
    " device_id TEXT NOT NULL, name TEXT NOT NULL, properties TEXT NOT NULL, acc INTEGER,"
    " duration_ms INTEGER, ts INTEGER NOT NULL)",
    "CREATE TABLE IF NOT EXISTS analytics_errors(id INTEGER PRIMARY KEY, session_id TEXT NOT NULL,"
    " device_id TEXT NOT NULL, ts INTEGER NOT NULL, context TEXT NOT NULL, source INTEGER)",
};

// A failed statement aborts the whole entry.
class WriteError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

void run(QSqlQuery &query)
{
    if (!query.exec())
        throw WriteError(query.lastError().text().toStdString());
}

QSqlQuery statement(QSqlDatabase &db, const char *sql)
{
    QSqlQuery query(db);
    if (!query.prepare(QString::fromLatin1(sql)))
        throw WriteError(query.lastError().text().toStdString());
    return query;
}

QVariant optionalNumber(bool isSet, qint64 value)
{
    return isSet ? QVariant(value) : QVariant(QMetaType(QMetaType::LongLong));
}

QString connectionName()
{
    static QAtomicInteger<int> counter;
    return QStringLiteral("quorvel-analytics-%1").arg(counter.fetchAndAddRelaxed(1));
}
} // namespace

AnalyticsStore::AnalyticsStore(const QString &name)
    : m_connectionName(name)
    , m_db(QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name))
{
}

AnalyticsStore::~AnalyticsStore()
{
    m_db.close();
    m_db = QSqlDatabase();
    QSqlDatabase::removeDatabase(m_connectionName);
}

std::unique_ptr<AnalyticsStore> AnalyticsStore::open(const QString &path, QString *error)
{
    std::unique_ptr<AnalyticsStore> store(new AnalyticsStore(connectionName()));
    store->m_db.setDatabaseName(path);
    if (!store->m_db.open()) {
        *error = QStringLiteral("cannot open %1: %2").arg(path, store->m_db.lastError().text());
        return nullptr;
    }
    for (const char *sql : kSchema) {
        QSqlQuery query(store->m_db);
        if (!query.exec(QString::fromLatin1(sql))) {
            *error = QStringLiteral("cannot make the analytics tables: %1").arg(query.lastError().text());
            return nullptr;
        }
    }
    return store;
}

bool AnalyticsStore::store(const LFTUALogEntry &entry, qint64 receivedMs, QString *error)
{
    if (!m_db.transaction()) {
        *error = m_db.lastError().text();
        return false;
    }
    try {
        storeDevice(entry, receivedMs);
        const QString deviceId = entry.device_info().device_id();
        for (const LFTSession &session : entry.sessions())
            storeSession(deviceId, session);
        for (const LFTInstantMsg &message : entry.instant_msgs())
            storeMessage(deviceId, message);
    } catch (const WriteError &failure) {
        m_db.rollback();
        *error = QString::fromStdString(failure.what());
        return false;
    }
    if (!m_db.commit()) {
        *error = m_db.lastError().text();
        m_db.rollback();
        return false;
    }
    return true;
}

void AnalyticsStore::storeDevice(const LFTUALogEntry &entry, qint64 receivedMs)
{
    const LFTDeviceInfo &device = entry.device_info();
    QSqlQuery query = statement(m_db,
        "INSERT INTO analytics_devices(device_id, app_key, app_version, model, os, os_version, first_seen, last_seen)"
        " VALUES(?, ?, ?, ?, ?, ?, ?, ?) ON CONFLICT(device_id) DO UPDATE SET app_key = excluded.app_key,"
        " app_version = excluded.app_version, model = excluded.model, os = excluded.os,"
        " os_version = excluded.os_version, last_seen = excluded.last_seen");
    query.addBindValue(device.device_id().isNull() ? QStringLiteral("") : device.device_id());
    query.addBindValue(entry.app_info().key());
    query.addBindValue(entry.app_info().version());
    query.addBindValue(device.model());
    query.addBindValue(device.os());
    query.addBindValue(device.os_version());
    query.addBindValue(receivedMs);
    query.addBindValue(receivedMs);
    run(query);
}

void AnalyticsStore::storeSession(const QString &deviceId, const LFTSession &session)
{
    QSqlQuery insert = statement(m_db,
        "INSERT OR IGNORE INTO analytics_sessions(session_id, device_id, start_ms, end_ms, duration_ms)"
        " VALUES(?, ?, ?, ?, ?)");
    insert.addBindValue(session.id());
    insert.addBindValue(deviceId);
    insert.addBindValue(qint64(session.start_time()));
    insert.addBindValue(qint64(session.end_time()));
    insert.addBindValue(qint64(session.duration()));
    run(insert);
    // A session sent again (its first answer was lost) keeps the pages it has.
    if (insert.numRowsAffected() == 0)
        return;
    for (const LFTPage &page : session.pages()) {
        QSqlQuery query = statement(m_db, "INSERT INTO analytics_pages(session_id, page_name, duration_ms) VALUES(?, ?, ?)");
        query.addBindValue(session.id());
        query.addBindValue(page.page_name());
        query.addBindValue(qint64(page.duration()));
        run(query);
    }
}

void AnalyticsStore::storeMessage(const QString &deviceId, const LFTInstantMsg &message)
{
    for (const LFTEvent &event : message.events()) {
        QSqlQuery query = statement(m_db,
            "INSERT INTO analytics_events(session_id, device_id, name, properties, acc, duration_ms, ts)"
            " VALUES(?, ?, ?, ?, ?, ?, ?)");
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
        run(query);
    }
    for (const LFTError &error : message.errors()) {
        QSqlQuery query = statement(m_db,
            "INSERT INTO analytics_errors(session_id, device_id, ts, context, source) VALUES(?, ?, ?, ?, ?)");
        query.addBindValue(message.id());
        query.addBindValue(deviceId);
        query.addBindValue(qint64(error.ts()));
        query.addBindValue(error.context());
        query.addBindValue(optionalNumber(error.sourceIsSet(), error.source()));
        run(query);
    }
}
