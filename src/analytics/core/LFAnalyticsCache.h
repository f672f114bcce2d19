#pragma once
// The archive file of the in-memory containers: a checked header and a digest over the body, so
// a damaged file is recognised before it is read. Any thread; one caller per file at a time.

#include "LFAnalyticsRecords.h"

#include <QString>

#include <optional>

namespace LFAnalyticsCache {

// Writes atomically; on failure `problem` says why.
bool write(const QString &path, const LFANContainers &containers, QString &problem);
struct ReadResult
{
    std::optional<LFANContainers> containers;   // nothing when absent, unreadable or damaged
    QString problem;                            // why not, when the file is there
    // The file was read and is not a sound archive; a file that could not be opened is not.
    bool damaged = false;
};

ReadResult read(const QString &path);

} // namespace LFAnalyticsCache
