#pragma once
// The archive file of the in-memory containers: a checked header and a digest over the body, so
// a damaged file is recognised before it is read. Any thread; one caller per file at a time.

#include "LFAnalyticsRecords.h"

#include <QString>

#include <optional>

namespace LFAnalyticsCache {

// Writes atomically; on failure `problem` says why.
bool write(const QString &path, const LFANContainers &containers, QString &problem);
// The archived containers; nothing when the file is absent, or when it is damaged, in which
// case `problem` says why.
std::optional<LFANContainers> read(const QString &path, QString &problem);

} // namespace LFAnalyticsCache
