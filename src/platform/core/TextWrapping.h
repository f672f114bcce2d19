#pragma once
// Breaks text into the lines it takes at a width, as the phone's text system does: hard
// line breaks always break, and a word too long for a line breaks at a character. Shared by
// labels (what is drawn) and text measuring (what is laid out), so the two always agree.
// Main thread (fonts).

#include <QFont>
#include <QList>
#include <QString>

namespace TextWrapping {

enum class Mode { WordsThenCharacters, Characters };

struct Line
{
    QString text;         // without its hard line break
    qsizetype start = 0;  // where it starts in the whole text
    qreal height = 0;
};

// The lines of `text` at `width` (none for empty text); at most `maxLines` when that is above 0.
QList<Line> wrap(const QString &text, const QFont &font, qreal width, Mode mode, int maxLines = 0);

// The total height of all lines of `text` at `width`.
qreal height(const QString &text, const QFont &font, qreal width, Mode mode);

} // namespace TextWrapping
