#pragma once
// Posting times as the forum shows them: China Standard Time whatever the machine's zone,
// `time` with seconds and `timeformat` to the minute. Stateless; any thread.

#include <QString>

namespace ForumTime {

QString timeText(qint64 msecsSinceEpoch);        // "2025-06-18 20:00:00"
QString timeFormatText(qint64 msecsSinceEpoch);  // "2025-06-18 20:00"

} // namespace ForumTime
