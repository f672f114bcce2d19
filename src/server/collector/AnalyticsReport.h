#pragma once
// `quorvel-server analytics-report --db PATH`: events per name, sessions with their durations
// and pages, and errors with their first lines, as plain text. Main thread.

#include <QString>
#include <QStringList>

class AnalyticsStore;

class AnalyticsReport
{
public:
    AnalyticsReport() = delete;

    static inline const QString kCommand = QStringLiteral("analytics-report");

    // Runs the command (its arguments after the command name); returns the exit code.
    static int run(const QStringList &arguments);
    static QString render(AnalyticsStore &store);
};
