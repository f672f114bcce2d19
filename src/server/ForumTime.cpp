#include "ForumTime.h"

#include <QDateTime>
#include <QTimeZone>

namespace {

constexpr int kChinaOffsetSeconds = 8 * 3600;

QString formatted(qint64 msecsSinceEpoch, const QString &format)
{
    const QTimeZone china = QTimeZone(kChinaOffsetSeconds);
    return QDateTime::fromMSecsSinceEpoch(msecsSinceEpoch, china).toString(format);
}

} // namespace

QString ForumTime::timeText(qint64 msecsSinceEpoch)
{
    return formatted(msecsSinceEpoch, QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

QString ForumTime::timeFormatText(qint64 msecsSinceEpoch)
{
    return formatted(msecsSinceEpoch, QStringLiteral("yyyy-MM-dd HH:mm"));
}
