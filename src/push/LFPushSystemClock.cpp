#include "LFPushSystemClock.h"

#include <QDateTime>

namespace {
constexpr double kMsecsPerSecond = 1000.0;
}

double LFPushSystemClock::now() const
{
    return double(QDateTime::currentMSecsSinceEpoch()) / kMsecsPerSecond;
}
