#pragma once
// The operator's secret for sending pushes: made afresh at every server start and written
// next to the database, readable only by the server's user; `push send` reads it from
// there. Stateless; any thread.

#include <QByteArray>
#include <QString>

class PushGatewaySecret
{
public:
    PushGatewaySecret() = delete;

    static constexpr int kBytes = 32;

    // "<database>.push-secret".
    static QString filePathFor(const QString &databasePath);
    // A new secret written to `filePath` (mode 0600); empty, with `error` set, when it cannot be.
    static QByteArray create(const QString &filePath, QString *error);
    // The secret in `filePath`; empty, with `error` set, when there is none.
    static QByteArray read(const QString &filePath, QString *error);
    // Compares without leaking where two texts differ.
    static bool matches(const QByteArray &expected, const QByteArray &given);
};
