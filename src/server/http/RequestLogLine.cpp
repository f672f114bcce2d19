#include "RequestLogLine.h"

namespace RequestLogLine {

QString of(const HttpRequest &request, int status, const QString &note, std::optional<double> milliseconds)
{
    QString path = QString::fromUtf8(request.path.left(kMaxPathCharacters));
    if (request.path.size() > kMaxPathCharacters)
        path += QStringLiteral("...");
    // Pieces are joined, not substituted in turn, so a "%1" in a path stays as it is.
    QString line = QString::fromLatin1(request.method) + QLatin1Char(' ') + path + QLatin1Char(' ')
        + QString::number(status);
    if (milliseconds)
        line += QLatin1Char(' ') + QString::number(*milliseconds, 'f', 1) + QStringLiteral(" ms");
    if (!note.isEmpty())
        line += QStringLiteral(" (") + note + QLatin1Char(')');
    return line;
}

} // namespace RequestLogLine
