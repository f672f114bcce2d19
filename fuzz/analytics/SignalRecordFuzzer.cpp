// Feeds arbitrary file contents to the reader of the record a fatal signal leaves for the next
// launch (a file on disk is outside input): it gives a record or nothing, and empties the file.

#include "LefiseixUncaughtExceptionHandler.h"

#include <QFile>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("signal.log"));
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            std::abort();
        file.write(reinterpret_cast<const char *>(data), qint64(size));
    }
    const std::optional<LFCrashReport> report = LefiseixUncaughtExceptionHandler::takeSignalRecord(path);
    if (report && !report->reason.startsWith(QStringLiteral("Application received signal ")))
        std::abort();
    if (QFile(path).size() != 0)
        std::abort();
    return 0;
}
