// quorvel-logtool: makes a sample analytics log entry and prints entries, envelope files and
// replies as JSON.

#include "LogTool.h"

#include <QCoreApplication>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("quorvel-logtool"));
    QStringList arguments = QCoreApplication::arguments();
    arguments.removeFirst();
    return LogTool::run(arguments);
}
