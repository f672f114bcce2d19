#include "ForumDatabase.h"

#include "ForumSchema.h"
#include "ServerLog.h"

#include <QAtomicInteger>
#include <QCoreApplication>
#include <QSocketNotifier>
#include <QSqlDriver>
#include <QSqlError>
#include <QVariant>

#include <poll.h>

namespace {

const char *const kSqlitePragmas[] = {
    "PRAGMA journal_mode=WAL",
    "PRAGMA synchronous=NORMAL",
    "PRAGMA foreign_keys=ON",
    "PRAGMA busy_timeout=5000",
};

const QString kMetaTable = QStringLiteral("CREATE TABLE IF NOT EXISTS meta(key TEXT PRIMARY KEY, value TEXT NOT NULL)");

QString uniqueConnectionName()
{
    static QAtomicInteger<int> counter;
    return QStringLiteral("quorvel-forum-%1").arg(counter.fetchAndAddRelaxed(1));
}

} // namespace

std::unique_ptr<ForumDatabase> ForumDatabase::open(const QString &location, QString *error)
{
    const std::optional<DatabaseLocation> parsed = DatabaseLocation::parse(location, error);
    return parsed ? open(*parsed, error) : nullptr;
}

std::unique_ptr<ForumDatabase> ForumDatabase::open(const DatabaseLocation &location, QString *error)
{
    std::unique_ptr<ForumDatabase> database(new ForumDatabase(location, uniqueConnectionName()));
    if (!database->connect(error) || !database->migrate(error))
        return nullptr;
    return database;
}

ForumDatabase::ForumDatabase(const DatabaseLocation &location, const QString &connectionName)
    : m_location(location)
    , m_dialect(location.kind)
    , m_connectionName(connectionName)
    , m_db(QSqlDatabase::addDatabase(m_dialect.driverName(), connectionName))
{
    if (m_dialect.isPostgres()) {
        m_db.setHostName(location.host);
        m_db.setPort(location.port);
        m_db.setUserName(location.user);
        m_db.setPassword(location.password);
        m_db.setDatabaseName(location.databaseName);
        m_db.setConnectOptions(QStringLiteral("connect_timeout=%1").arg(kConnectTimeoutSeconds));
        if (QSqlDriver *driver = m_db.driver()) {
            QObject::connect(driver, &QSqlDriver::notification, driver,
                             [this](const QString &, QSqlDriver::NotificationSource source, const QVariant &payload) {
                                 // This connection's own commits were announced as they happened.
                                 if (source != QSqlDriver::SelfSource)
                                     changed(payload.toString().split(QLatin1Char(' '), Qt::SkipEmptyParts));
                             });
        }
    } else {
        m_db.setDatabaseName(location.path);
    }
}

ForumDatabase::~ForumDatabase()
{
    m_db.close();
    m_db = QSqlDatabase();
    QSqlDatabase::removeDatabase(m_connectionName);
}

bool ForumDatabase::connect(QString *error)
{
    if (!m_db.isValid()) {
        *error = QStringLiteral("no Qt SQL driver %1 (install libqt6sql6-psql / libqt6sql6-sqlite)")
                     .arg(m_dialect.driverName());
        return false;
    }
    if (!m_db.open()) {
        *error = QStringLiteral("cannot open %1: %2").arg(m_location.describe(), m_db.lastError().text());
        return false;
    }
    QSqlQuery query(m_db);
    if (!m_dialect.isPostgres()) {
        for (const char *pragma : kSqlitePragmas)
            query.exec(QString::fromLatin1(pragma));  // best effort: ":memory:" has no WAL
        return true;
    }
    // "already exists, skipping" notices of the schema's IF NOT EXISTS are not news.
    query.exec(QStringLiteral("SET client_min_messages TO WARNING"));
    QSqlDriver *driver = m_db.driver();
    if (!driver->subscribeToNotification(QLatin1String(kChangeChannel))) {
        *error = QStringLiteral("cannot listen on %1: %2").arg(m_location.describe(), driver->lastError().text());
        return false;
    }
    // The driver watches the connection's socket for notices with a notifier of its own.
    const auto *notifier = driver->findChild<QSocketNotifier *>();
    m_noticeSocket = notifier ? int(notifier->socket()) : -1;
    return true;
}

bool ForumDatabase::changeNoticesPending() const
{
    const int socket = m_noticeSocket.load();
    if (socket < 0)
        return false;
    pollfd watched{socket, POLLIN, 0};
    return ::poll(&watched, 1, 0) > 0 && (watched.revents & POLLIN);
}

void ForumDatabase::takeChangeNotices()
{
    if (!changeNoticesPending())
        return;
    if (auto *notifier = m_db.driver()->findChild<QSocketNotifier *>()) {
        QEvent activation(QEvent::SockAct);
        QCoreApplication::sendEvent(notifier, &activation);
    }
}

bool ForumDatabase::migrate(QString *error)
{
    try {
        Transaction transaction(*this);
        transaction.lock(ForumSchema::kSetupLock);
        run(kMetaTable);
        const int reached = meta(QLatin1String(ForumSchema::kVersionKey)).value_or(QStringLiteral("0")).toInt();
        for (const ForumSchema::Step &step : ForumSchema::steps()) {
            if (step.version <= reached)
                continue;
            for (const QString &statement : step.statements)
                run(m_dialect.expand(statement));
        }
        if (reached < ForumSchema::latestVersion()) {
            QSqlQuery write = prepare(QStringLiteral(
                "INSERT INTO meta(key, value) VALUES(?, ?) ON CONFLICT(key) DO UPDATE SET value = excluded.value"));
            write.addBindValue(QLatin1String(ForumSchema::kVersionKey));
            write.addBindValue(QString::number(ForumSchema::latestVersion()));
            exec(write);
        } else if (reached > ForumSchema::latestVersion()) {
            *error = QStringLiteral("%1 has schema version %2, newer than this server's %3")
                         .arg(m_location.describe())
                         .arg(reached)
                         .arg(ForumSchema::latestVersion());
            return false;
        }
        transaction.commit();
    } catch (const StoreError &failure) {
        *error = QStringLiteral("cannot make the schema: %1").arg(QString::fromStdString(failure.what()));
        return false;
    }
    return true;
}

void ForumDatabase::run(const QString &sql)
{
    // Not prepared: PostgreSQL prepares only queries, not BEGIN or schema statements.
    ensureConnected();
    QSqlQuery query(m_db);
    if (query.exec(sql))
        return;
    fail(QStringLiteral("statement failed: ") + sql, query.lastError().text());
}

QSqlQuery ForumDatabase::prepare(const QString &sql)
{
    ensureConnected();
    QSqlQuery query(m_db);
    if (!query.prepare(sql))
        fail(QStringLiteral("cannot prepare ") + sql, query.lastError().text());
    return query;
}

void ForumDatabase::exec(QSqlQuery &query)
{
    if (query.exec())
        return;
    fail(QStringLiteral("statement failed: ") + query.lastQuery(), query.lastError().text());
}

std::optional<qint64> ForumDatabase::execReturningKey(QSqlQuery &query)
{
    exec(query);
    const std::optional<qint64> key = query.next() ? std::optional<qint64>(query.value(0).toLongLong()) : std::nullopt;
    // SQLite finishes the write only when the statement is done; a live one blocks COMMIT.
    query.finish();
    return key;
}

void ForumDatabase::fail(const QString &what, const QString &failure)
{
    if (connectionLost(failure))
        throw StoreUnavailable("database unavailable: " + failure.toStdString());
    throw StoreError(QStringLiteral("%1: %2").arg(what, failure).toStdString());
}

bool ForumDatabase::connectionLost(const QString &failure)
{
    if (!m_dialect.isPostgres())
        return false;
    QSqlQuery ping(m_db);
    if (ping.exec(QStringLiteral("SELECT 1")))
        return false;
    m_lost = true;
    m_retryMs = kFirstRetryMs;
    m_nextAttempt.setRemainingTime(m_retryMs);
    serverLog(QStringLiteral("database connection lost (%1); answering 503 until it is back")
                  .arg(failure.simplified()));
    return true;
}

void ForumDatabase::ensureConnected()
{
    if (!m_lost)
        return;
    if (!m_nextAttempt.hasExpired())
        throw StoreUnavailable("database unavailable");
    m_noticeSocket = -1;
    m_db.close();
    QString error;
    if (!connect(&error)) {
        m_retryMs = std::min(m_retryMs * 2, kLongestRetryMs);
        m_nextAttempt.setRemainingTime(m_retryMs);
        throw StoreUnavailable("database unavailable");
    }
    m_lost = false;
    serverLog(QStringLiteral("database connection back"));
    // Other processes' notices were missed meanwhile.
    changed({QLatin1String(kEverything)});
}

std::optional<QString> ForumDatabase::meta(const QString &key)
{
    QSqlQuery query = prepare(QStringLiteral("SELECT value FROM meta WHERE key = ?"));
    query.addBindValue(key);
    exec(query);
    if (!query.next())
        return std::nullopt;
    return query.value(0).toString();
}

QString ForumDatabase::metaOrStore(const QString &key, const QString &proposed)
{
    QSqlQuery write = prepare(QStringLiteral("INSERT INTO meta(key, value) VALUES(?, ?) ON CONFLICT(key) DO NOTHING"));
    write.addBindValue(key);
    write.addBindValue(proposed);
    exec(write);
    return meta(key).value_or(proposed);
}

int ForumDatabase::addChangeListener(ChangeListener listener)
{
    m_changeListeners.insert(m_nextListenerId, std::move(listener));
    return m_nextListenerId++;
}

void ForumDatabase::removeChangeListener(int id)
{
    m_changeListeners.remove(id);
}

void ForumDatabase::changed(const QStringList &tags)
{
    if (tags.isEmpty())
        return;
    // A copy: a listener may add or remove listeners.
    const QMap<int, ChangeListener> listeners = m_changeListeners;
    for (const ChangeListener &listener : listeners)
        listener(tags);
}

ForumDatabase::Transaction::Transaction(ForumDatabase &database)
    : m_database(database)
{
    m_database.run(m_database.m_dialect.beginWrite());
}

ForumDatabase::Transaction::~Transaction()
{
    if (!m_done) {
        QSqlQuery rollback(m_database.m_db);
        rollback.exec(QStringLiteral("ROLLBACK"));  // best effort: a lost connection rolled back already
    }
}

void ForumDatabase::Transaction::lock(qint64 key)
{
    const QString sql = m_database.m_dialect.transactionLock(key);
    if (!sql.isEmpty())
        m_database.run(sql);
}

void ForumDatabase::Transaction::commit()
{
    m_changes.removeDuplicates();
    if (m_database.m_dialect.isPostgres() && !m_changes.isEmpty()) {
        // Delivered to the other processes only if, and when, the write commits.
        QSqlQuery notice = m_database.prepare(QStringLiteral("SELECT pg_notify(?, ?)"));
        notice.addBindValue(QLatin1String(kChangeChannel));
        notice.addBindValue(m_changes.join(QLatin1Char(' ')));
        m_database.exec(notice);
    }
    m_database.run(QStringLiteral("COMMIT"));
    m_done = true;
    m_database.changed(m_changes);
}
