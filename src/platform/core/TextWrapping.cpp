#include "TextWrapping.h"

#include <QTextLayout>

namespace TextWrapping {

QList<Line> wrap(const QString &text, const QFont &font, qreal width, Mode mode, int maxLines)
{
    if (text.isEmpty())
        return {};
    // QTextLayout breaks lines only at U+2028, so hard line breaks are turned into that.
    QString laid = text;
    laid.replace(QLatin1Char('\n'), QChar(QChar::LineSeparator));
    QTextLayout layout(laid, font);
    QTextOption option;
    option.setWrapMode(mode == Mode::Characters ? QTextOption::WrapAnywhere
                                                : QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);

    QList<Line> lines;
    layout.beginLayout();
    for (;;) {
        QTextLine line = layout.createLine();
        if (!line.isValid() || (maxLines > 0 && lines.size() == maxLines))
            break;
        line.setLineWidth(width);
        QString lineText = laid.mid(line.textStart(), line.textLength());
        if (lineText.endsWith(QChar(QChar::LineSeparator)))
            lineText.chop(1);
        lines.append(Line{lineText, line.textStart(), line.height()});
    }
    layout.endLayout();
    return lines;
}

qreal height(const QString &text, const QFont &font, qreal width, Mode mode)
{
    qreal total = 0;
    for (const Line &line : wrap(text, font, width, mode))
        total += line.height;
    return total;
}

} // namespace TextWrapping
