#pragma once
// The server's one logging routine: a line on stderr, flushed. Any thread.

#include <QString>

void serverLog(const QString &line);

// Writes `prefix` and `line` as one line of stderr, flushed: control characters in `line`
// (which may carry what a client sent) are written as escapes, so no client can break a
// record or forge one. The routine under every component's logging. Any thread.
void writeServerLogLine(const char *prefix, const QString &line);
