#pragma once
// The collector's one logging routine: "quorvel-server: analytics: " and the line on stderr,
// flushed. Any thread.

#include <QString>

void collectorLog(const QString &line);
