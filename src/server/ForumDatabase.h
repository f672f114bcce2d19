#pragma once
// One SQLite connection to the forum's database file (WAL mode), with its schema made on
// first open. Lives on the thread that opened it; QtSql connections are thread-bound.

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>

#include <memory>
#include <stdexcept>

// A failed statement: the store gives up on the request, which is answered 500.
class StoreError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

class ForumDatabase
{
public:
    // Opens (and creates) the file; ":memory:" gives a private in-memory database.
    // Absent, with `error` set, when the file cannot be opened or the schema not made.
    static std::unique_ptr<ForumDatabase> open(const QString &path, QString *error);
    ~ForumDatabase();

    ForumDatabase(const ForumDatabase &) = delete;
    ForumDatabase &operator=(const ForumDatabase &) = delete;

    // A prepared statement; throws StoreError when it does not prepare.
    QSqlQuery prepare(const QString &sql);
    // Runs a bound statement; throws StoreError when it fails.
    static void exec(QSqlQuery &query);

    // Everything between construction and commit() happens as one write, or not at all.
    class Transaction
    {
    public:
        explicit Transaction(ForumDatabase &database);
        ~Transaction();
        Transaction(const Transaction &) = delete;
        Transaction &operator=(const Transaction &) = delete;
        void commit();

    private:
        ForumDatabase &m_database;
        bool m_done = false;
    };

private:
    explicit ForumDatabase(const QString &connectionName);
    bool createSchema(QString *error);

    QString m_connectionName;
    QSqlDatabase m_db;
};
