#include "CollectorLog.h"

#include "ServerLog.h"

void collectorLog(const QString &line)
{
    writeServerLogLine("quorvel-server: analytics: ", line);
}
