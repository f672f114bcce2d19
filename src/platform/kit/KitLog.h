#pragma once
// The kit's one way to report input it refused or could not use: one warning line under the
// "quorvel.kit" logging category, so logging rules and tests can pick the kit's lines out.
// Called on the main thread, like the rest of the kit.

#include <QLoggingCategory>
#include <QString>

Q_DECLARE_LOGGING_CATEGORY(lcKit)

namespace KitLog {

// Logs "<source>: <message>" as a single line.
void warning(const char *source, const QString &message);

} // namespace KitLog
