#include "ServerLog.h"

#include <cstdio>

void serverLog(const QString &line)
{
    const QByteArray bytes = line.toUtf8();
    std::fprintf(stderr, "quorvel-server: %s\n", bytes.constData());
    std::fflush(stderr);
}
