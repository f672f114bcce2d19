#include "KitLog.h"

Q_LOGGING_CATEGORY(lcKit, "quorvel.kit")

namespace KitLog {

void warning(const char *source, const QString &message)
{
    qCWarning(lcKit, "%s: %s", source, qUtf8Printable(message));
}

} // namespace KitLog
