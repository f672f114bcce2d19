#pragma once
// The server's one logging routine: a line on stderr, flushed. Any thread.

#include <QString>

void serverLog(const QString &line);
