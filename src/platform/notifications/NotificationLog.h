#pragma once
// The notification platform's one logging routine: a warning under the "quorvel.notifications"
// category, so logging rules and tests can pick its lines out. Any thread.

#include <QLoggingCategory>
#include <QString>

Q_DECLARE_LOGGING_CATEGORY(lcNotifications)

namespace NotificationLog {
void warning(const QString &message);
}
