#pragma once
// The operator's secret for sending pushes: made once per database and kept in it, so every
// server process on that database takes the same one; `push send --db` reads it from there,
// or from a file the operator keeps. Stateless; the database's thread.

#include <QByteArray>
#include <QString>

#include <optional>

class ForumDatabase;

class PushGatewaySecret
{
public:
    PushGatewaySecret() = delete;

    static constexpr int kBytes = 32;

    // The database's secret, made by whichever process asks first. Throws StoreError.
    static QByteArray ofDatabase(ForumDatabase &database);
    // The database's secret if a server has made one. Throws StoreError.
    static std::optional<QByteArray> storedIn(ForumDatabase &database);
    // The secret in `filePath`; empty, with `error` set, when there is none.
    static QByteArray read(const QString &filePath, QString *error);
    // Compares without leaking where two texts differ.
    static bool matches(const QByteArray &expected, const QByteArray &given);
};
