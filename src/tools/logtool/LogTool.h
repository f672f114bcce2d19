#pragma once
// The commands of quorvel-logtool. Main thread of a QCoreApplication.

#include <QString>
#include <QStringList>

class LogTool
{
public:
    LogTool() = delete;

    // Runs the command line (without the program name); returns the exit code.
    static int run(const QStringList &arguments);

private:
    static int sample(const QString &outPath);
    // A log entry, a reply, or an envelope file (opened as the collector opens it).
    static int decode(const QString &path, bool response);
    static int decodeEnvelope(const QString &path, const QByteArray &bytes);
    static int usage();
};
