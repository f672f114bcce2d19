#pragma once
// The one schema of the server's database: the forum, the push gateway and the analytics
// collector, as numbered steps that only go forward. A database remembers the last step it
// took; opening it takes the missing ones, under a lock, so parallel server processes
// starting at once migrate it once. Stateless; any thread.

#include <QList>
#include <QStringList>

class ForumSchema
{
public:
    ForumSchema() = delete;

    struct Step
    {
        int version;
        // Statements in the dialects' common SQL, with SqlDialect::expand placeholders.
        QStringList statements;
    };

    // Every step, oldest first; versions count up from 1.
    static const QList<Step> &steps();
    static int latestVersion();

    // The meta row holding the version a database has reached.
    static constexpr const char *kVersionKey = "schema_version";
    // The advisory lock key that serializes migrations and seeding across processes.
    static constexpr qint64 kSetupLock = 0x51756f7276656c;
};
