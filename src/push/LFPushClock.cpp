#include "LFPushClock.h"

#include <QDateTime>

QString LFPushClock::dateText() const
{
    return QDateTime::fromMSecsSinceEpoch(qint64(now() * 1000.0)).toString(QStringLiteral("yyyy-MM-dd"));
}
