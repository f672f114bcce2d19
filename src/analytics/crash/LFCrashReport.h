#pragma once
// What a crash handler hands to the recorder: the exception's name and reason and its call
// stack as symbol lines. Plain value; any thread.

#include <QString>
#include <QStringList>
#include <QVariantMap>

struct LFCrashReport
{
    QString name;
    QString reason;
    QStringList callStackSymbols;
    // The app version and image facts of the process that crashed; empty when it is the
    // running one.
    QString appVersion;
    QVariantMap imageInfo;
};
