#pragma once
// The collector's tables in a SQLite file (devices, sessions, pages, events, errors), written
// one log entry at a time, all or nothing, and read back for the report. Lives on the thread
// that opened it; QtSql connections are thread-bound.

#include "LFTRecords.h"

#include <QSqlDatabase>
#include <QString>

#include <memory>

class AnalyticsStore
{
public:
    // Opens (and creates) the file and its tables; nothing, with `error` set, when it cannot.
    static std::unique_ptr<AnalyticsStore> open(const QString &path, QString *error);
    ~AnalyticsStore();
    AnalyticsStore(const AnalyticsStore &) = delete;
    AnalyticsStore &operator=(const AnalyticsStore &) = delete;

    // Stores what one log entry holds; false, with nothing stored, when a write fails.
    bool store(const LFTUALogEntry &entry, qint64 receivedMs, QString *error);

    QSqlDatabase &database() { return m_db; }

private:
    explicit AnalyticsStore(const QString &connectionName);
    void storeDevice(const LFTUALogEntry &entry, qint64 receivedMs);
    void storeSession(const QString &deviceId, const LFTSession &session);
    void storeMessage(const QString &deviceId, const LFTInstantMsg &message);

    QString m_connectionName;
    QSqlDatabase m_db;
};
