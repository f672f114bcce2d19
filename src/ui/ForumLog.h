#pragma once
// The forum client's one logging routine: every log line of the app's own code (service,
// screens, helpers) goes through here, under the "quorvel" logging category. Any thread.

#include <QLoggingCategory>
#include <QString>

Q_DECLARE_LOGGING_CATEGORY(lcForum)

void forumLog(const QString &line);
