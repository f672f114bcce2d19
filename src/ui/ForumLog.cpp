#include "ForumLog.h"

Q_LOGGING_CATEGORY(lcForum, "quorvel")

void forumLog(const QString &line)
{
    qCInfo(lcForum).noquote() << line;
}
