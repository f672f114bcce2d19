#pragma once
// The few places where SQLite and PostgreSQL differ, named once. Statements elsewhere use
// the common SQL both understand (ON CONFLICT, RETURNING, LIMIT/OFFSET); schema text marks
// the differing column types with placeholders that expand() fills. Any thread.

#include "DatabaseLocation.h"

#include <QString>

class SqlDialect
{
public:
    explicit SqlDialect(DatabaseLocation::Kind kind) : m_kind(kind) {}

    DatabaseLocation::Kind kind() const { return m_kind; }
    bool isPostgres() const { return m_kind == DatabaseLocation::Kind::PostgreSQL; }

    // The QtSql driver's name.
    QString driverName() const;

    // Schema text with "{id}" (a generated 64-bit key), "{int}" (a 64-bit integer) and
    // "{real}" (a double) replaced by this dialect's types.
    QString expand(QString schemaText) const;

    // Opens a transaction that writes: SQLite takes the write lock at once, so two
    // connections never both read and then fail to upgrade.
    QString beginWrite() const;
    // Appended to a SELECT inside a write transaction: the rows stay locked until commit,
    // so two processes checking the same row take turns.
    QString lockRows() const;
    // Takes a lock named by `key` for the rest of the transaction (PostgreSQL advisory
    // lock); empty for SQLite, where beginWrite() already serializes writers.
    QString transactionLock(qint64 key) const;
    // After rows were written with explicit keys, lets the generated keys continue above
    // them; empty where the database does that by itself.
    QString resyncGeneratedKey(const QString &table, const QString &column) const;

private:
    DatabaseLocation::Kind m_kind;
};
