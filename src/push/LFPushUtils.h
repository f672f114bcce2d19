#pragma once
// The push component's one logging routine and its small text helpers. Any thread.

#include <QByteArray>
#include <QJsonValue>
#include <QLoggingCategory>
#include <QString>

Q_DECLARE_LOGGING_CATEGORY(lcPush)

class LFPushUtils
{
public:
    LFPushUtils() = delete;

    static void setLogEnabled(bool enabled);
    static bool logEnabled();
    // Prints `message` under "quorvel.push", only while logging is on.
    static void outLog(const QString &message);

    // Lower-case hexadecimal text of `bytes`.
    static QString hexText(const QByteArray &bytes);
    // Compact JSON text of any value, for log lines and stored settings.
    static QString jsonText(const QJsonValue &value);
};
