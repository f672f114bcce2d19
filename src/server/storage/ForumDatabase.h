#pragma once
// One connection to the server's database: a SQLite file (WAL mode) or a PostgreSQL
// database shared by several server processes. Opening it brings its schema up to date.
// A lost PostgreSQL connection is retried with back-off; meanwhile every use throws
// StoreUnavailable (answered 503) and the loss is logged once. Writes announce what they
// changed: to this process at once and, on PostgreSQL, to every other process through
// NOTIFY. Lives on the thread that opened it; QtSql connections are thread-bound.

#include "DatabaseLocation.h"
#include "SqlDialect.h"

#include <QDeadlineTimer>
#include <QMap>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QStringList>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>

// A failed statement: the store gives up on the request, which is answered 500.
class StoreError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

// The database cannot be reached just now: the request is answered 503.
class StoreUnavailable : public StoreError
{
public:
    using StoreError::StoreError;
};

class ForumDatabase
{
public:
    static constexpr int kFirstRetryMs = 250;
    static constexpr int kLongestRetryMs = 30'000;
    static constexpr int kConnectTimeoutSeconds = 3;
    // The NOTIFY channel that carries what other processes changed.
    static constexpr const char *kChangeChannel = "quorvel_changes";
    // Tells a listener that anything may have changed (changes were missed while away).
    static constexpr const char *kEverything = "*";

    // Opens (and creates) the database and brings its schema up to date. `location` is a
    // file path (":memory:" for a private in-memory one) or a postgresql:// address.
    // Absent, with `error` set, when it cannot be opened or its schema not made.
    static std::unique_ptr<ForumDatabase> open(const QString &location, QString *error);
    static std::unique_ptr<ForumDatabase> open(const DatabaseLocation &location, QString *error);
    ~ForumDatabase();

    ForumDatabase(const ForumDatabase &) = delete;
    ForumDatabase &operator=(const ForumDatabase &) = delete;

    const SqlDialect &dialect() const { return m_dialect; }
    const DatabaseLocation &location() const { return m_location; }
    QSqlDatabase &connection() { return m_db; }

    // A prepared statement; throws StoreError when it does not prepare.
    QSqlQuery prepare(const QString &sql);
    // Runs a bound statement; throws StoreError when it fails.
    void exec(QSqlQuery &query);
    // Runs a bound INSERT ... RETURNING of one generated key: the key, or absent when no
    // row was written (ON CONFLICT DO NOTHING). Throws StoreError when it fails.
    std::optional<qint64> execReturningKey(QSqlQuery &query);
    // Runs a statement without preparing it (schema, transaction control, locks).
    void run(const QString &sql);

    // A value of the database's own settings, or absent.
    std::optional<QString> meta(const QString &key);
    // The stored value of `key`, storing `proposed` first when there is none: whichever
    // process stores first decides for all.
    QString metaOrStore(const QString &key, const QString &proposed);

    // Called with the tags of what changed: after this connection's commits, and on
    // PostgreSQL for other processes' commits as their notices arrive.
    using ChangeListener = std::function<void(const QStringList &tags)>;
    // Returns a number for removeChangeListener().
    int addChangeListener(ChangeListener listener);
    void removeChangeListener(int id);

    // Whether another process's change notice has reached this connection but is not read
    // yet, so answers kept from before it may be stale. Any thread.
    bool changeNoticesPending() const;
    // Reads the notices that have arrived (telling the listeners) at once, rather than when
    // the event loop comes to them. Main thread.
    void takeChangeNotices();

    // Everything between construction and commit() happens as one write, or not at all.
    class Transaction
    {
    public:
        explicit Transaction(ForumDatabase &database);
        ~Transaction();
        Transaction(const Transaction &) = delete;
        Transaction &operator=(const Transaction &) = delete;

        // Holds a lock named by `key` until the transaction ends (across processes).
        void lock(qint64 key);
        // Tags of what this write changes, announced once it commits.
        void announce(const QStringList &tags) { m_changes += tags; }
        void commit();

    private:
        ForumDatabase &m_database;
        QStringList m_changes;
        bool m_done = false;
    };

private:
    ForumDatabase(const DatabaseLocation &location, const QString &connectionName);
    bool connect(QString *error);
    bool migrate(QString *error);
    // Throws StoreUnavailable when the connection is gone, else StoreError.
    [[noreturn]] void fail(const QString &what, const QString &failure);
    // After a failed statement: true when the connection itself is gone (then marked lost).
    bool connectionLost(const QString &failure);
    // Throws StoreUnavailable while lost, reconnecting once the back-off has passed.
    void ensureConnected();
    void changed(const QStringList &tags);

    DatabaseLocation m_location;
    SqlDialect m_dialect;
    QString m_connectionName;
    QSqlDatabase m_db;
    QMap<int, ChangeListener> m_changeListeners;
    int m_nextListenerId = 1;
    bool m_lost = false;
    int m_retryMs = kFirstRetryMs;
    QDeadlineTimer m_nextAttempt;
    // The socket change notices arrive on, or -1 (SQLite, or no connection).
    std::atomic<int> m_noticeSocket{-1};
};
