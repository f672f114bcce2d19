#include "NotificationLog.h"

Q_LOGGING_CATEGORY(lcNotifications, "quorvel.notifications")

void NotificationLog::warning(const QString &message)
{
    qCWarning(lcNotifications).noquote() << message;
}
