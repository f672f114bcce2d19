#pragma once
// The collector's tables in the server's database (devices, sessions, pages, events, errors),
// written one log entry at a time, all or nothing, and read back for the report. Lives on the
// thread that opened it; QtSql connections are thread-bound.

#include "ForumDatabase.h"
#include "LFTRecords.h"

#include <QSqlDatabase>
#include <QString>

#include <memory>

class AnalyticsStore
{
public:
    // Opens (and creates) the database (a file path or a postgresql:// address) with its
    // tables; nothing, with `error` set, when it cannot.
    static std::unique_ptr<AnalyticsStore> open(const QString &location, QString *error);
    ~AnalyticsStore();
    AnalyticsStore(const AnalyticsStore &) = delete;
    AnalyticsStore &operator=(const AnalyticsStore &) = delete;

    // Stores what one log entry holds; false, with nothing stored, when a write fails.
    bool store(const LFTUALogEntry &entry, qint64 receivedMs, QString *error);

    QSqlDatabase &database();

private:
    explicit AnalyticsStore(std::unique_ptr<ForumDatabase> database);
    void storeDevice(const LFTUALogEntry &entry, qint64 receivedMs);
    void storeSession(const QString &deviceId, const LFTSession &session);
    void storeMessage(const QString &deviceId, const LFTInstantMsg &message);

    std::unique_ptr<ForumDatabase> m_database;
};
