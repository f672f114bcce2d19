#include "ForumDatabase.h"

#include <QAtomicInteger>
#include <QSqlError>
#include <QStringList>

namespace {

const char *const kPragmas[] = {
    "PRAGMA journal_mode=WAL",
    "PRAGMA synchronous=NORMAL",
    "PRAGMA foreign_keys=ON",
    "PRAGMA busy_timeout=5000",
};

const char *const kSchema[] = {
    "CREATE TABLE IF NOT EXISTS meta(key TEXT PRIMARY KEY, value TEXT NOT NULL)",
    "CREATE TABLE IF NOT EXISTS sections(sectionid INTEGER PRIMARY KEY, name TEXT NOT NULL,"
    " tag TEXT NOT NULL, tagid INTEGER NOT NULL, sortorder INTEGER NOT NULL)",
    "CREATE TABLE IF NOT EXISTS users(userid INTEGER PRIMARY KEY AUTOINCREMENT, imei TEXT UNIQUE,"
    " devicetype TEXT NOT NULL DEFAULT '', username TEXT NOT NULL, created INTEGER NOT NULL,"
    " lastpost INTEGER)",
    "CREATE TABLE IF NOT EXISTS topics(tid INTEGER PRIMARY KEY,"
    " sectionid INTEGER NOT NULL REFERENCES sections(sectionid),"
    " userid INTEGER NOT NULL REFERENCES users(userid), title TEXT NOT NULL, content TEXT NOT NULL,"
    " topictype INTEGER NOT NULL DEFAULT 0, featured INTEGER NOT NULL DEFAULT 0,"
    " created INTEGER NOT NULL)",
    "CREATE INDEX IF NOT EXISTS topics_by_section ON topics(sectionid, created DESC, tid DESC)",
    "CREATE TABLE IF NOT EXISTS replies(rid INTEGER PRIMARY KEY,"
    " tid INTEGER NOT NULL REFERENCES topics(tid), userid INTEGER NOT NULL REFERENCES users(userid),"
    " content TEXT NOT NULL, istop INTEGER NOT NULL DEFAULT 0, created INTEGER NOT NULL)",
    "CREATE INDEX IF NOT EXISTS replies_by_topic ON replies(tid, istop, created DESC)",
    "CREATE TABLE IF NOT EXISTS banners(bid INTEGER PRIMARY KEY, title TEXT NOT NULL,"
    " tid INTEGER NOT NULL, urltype INTEGER NOT NULL, page INTEGER NOT NULL DEFAULT 0)",
};

QString uniqueConnectionName()
{
    static QAtomicInteger<int> counter;
    return QStringLiteral("quorvel-forum-%1").arg(counter.fetchAndAddRelaxed(1));
}

} // namespace

std::unique_ptr<ForumDatabase> ForumDatabase::open(const QString &path, QString *error)
{
    std::unique_ptr<ForumDatabase> database(new ForumDatabase(uniqueConnectionName()));
    database->m_db.setDatabaseName(path);
    if (!database->m_db.open()) {
        *error = QStringLiteral("cannot open %1: %2").arg(path, database->m_db.lastError().text());
        return nullptr;
    }
    if (!database->createSchema(error))
        return nullptr;
    return database;
}

ForumDatabase::ForumDatabase(const QString &connectionName)
    : m_connectionName(connectionName)
    , m_db(QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connectionName))
{
}

ForumDatabase::~ForumDatabase()
{
    m_db.close();
    m_db = QSqlDatabase();
    QSqlDatabase::removeDatabase(m_connectionName);
}

bool ForumDatabase::createSchema(QString *error)
{
    QSqlQuery query(m_db);
    for (const char *pragma : kPragmas)
        query.exec(QString::fromLatin1(pragma));  // best effort: ":memory:" has no WAL
    for (const char *statement : kSchema) {
        if (!query.exec(QString::fromLatin1(statement))) {
            *error = QStringLiteral("cannot create the schema: %1").arg(query.lastError().text());
            return false;
        }
    }
    return true;
}

QSqlQuery ForumDatabase::prepare(const QString &sql)
{
    QSqlQuery query(m_db);
    if (!query.prepare(sql))
        throw StoreError(QStringLiteral("cannot prepare %1: %2").arg(sql, query.lastError().text()).toStdString());
    return query;
}

void ForumDatabase::exec(QSqlQuery &query)
{
    if (!query.exec())
        throw StoreError(QStringLiteral("statement failed: %1: %2")
                             .arg(query.lastQuery(), query.lastError().text())
                             .toStdString());
}

ForumDatabase::Transaction::Transaction(ForumDatabase &database)
    : m_database(database)
{
    if (!m_database.m_db.transaction())
        throw StoreError("cannot begin a transaction: " + m_database.m_db.lastError().text().toStdString());
}

ForumDatabase::Transaction::~Transaction()
{
    if (!m_done)
        m_database.m_db.rollback();
}

void ForumDatabase::Transaction::commit()
{
    if (!m_database.m_db.commit())
        throw StoreError("cannot commit: " + m_database.m_db.lastError().text().toStdString());
    m_done = true;
}
