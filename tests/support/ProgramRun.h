#pragma once
// Runs one of the project's programs to its end, as a test step.

#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

#include <map>

namespace testsupport {

struct ProgramResult
{
    int exitCode = -1; // -1 when it crashed or did not finish
    QString out;
    QString errors;
};

// `environment` entries are added to (or replace) the test's own environment.
inline ProgramResult runProgram(const QString &program, const QStringList &arguments,
                                const std::map<QString, QString> &environment = {}, int timeoutMs = 30000)
{
    QProcess process;
    QProcessEnvironment merged = QProcessEnvironment::systemEnvironment();
    for (const auto &[name, value] : environment)
        merged.insert(name, value);
    process.setProcessEnvironment(merged);
    process.start(program, arguments);
    const bool finished = process.waitForFinished(timeoutMs);
    if (!finished)
        process.kill();
    const bool normal = finished && process.exitStatus() == QProcess::NormalExit;
    return {normal ? process.exitCode() : -1, QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

} // namespace testsupport
