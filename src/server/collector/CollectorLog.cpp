#include "CollectorLog.h"

#include <cstdio>

void collectorLog(const QString &line)
{
    const QByteArray bytes = line.toUtf8();
    std::fprintf(stderr, "quorvel-server: analytics: %s\n", bytes.constData());
    std::fflush(stderr);
}
