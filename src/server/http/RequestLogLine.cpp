#include "RequestLogLine.h"

namespace RequestLogLine {

namespace {
QString cut(const QByteArray &text, qsizetype most)
{
    QString shown = QString::fromUtf8(text.left(most));
    if (text.size() > most)
        shown += QStringLiteral("...");
    return shown;
}
} // namespace

QString of(const HttpRequest &request, int status, const QString &note, std::optional<double> milliseconds)
{
    // Pieces are joined, not substituted in turn, so a "%1" in a path stays as it is.
    QString line = cut(request.method, kMaxMethodCharacters) + QLatin1Char(' ') + cut(request.path, kMaxPathCharacters)
        + QLatin1Char(' ') + QString::number(status);
    if (milliseconds)
        line += QLatin1Char(' ') + QString::number(*milliseconds, 'f', 1) + QStringLiteral(" ms");
    if (!note.isEmpty())
        line += QStringLiteral(" (") + note + QLatin1Char(')');
    return line;
}

} // namespace RequestLogLine
