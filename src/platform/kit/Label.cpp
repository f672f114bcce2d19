#include "Label.h"

#include "TextWrapping.h"

#include "Fonts.h"

#include <QFontMetricsF>
#include <QPainter>

#include <cmath>

Label::Label(QWidget *parent) : View(parent), m_font(Fonts::systemFontOfSize(Fonts::kLabelDefaultSize))
{
    setUserInteractionEnabled(false);
}

Label::Label(const QRectF &frame, QWidget *parent) : Label(parent)
{
    setFrame(frame);
}

void Label::setText(const QString &text)
{
    if (text == m_text)
        return;
    m_text = text;
    invalidateLines();
}

void Label::setFont(const QFont &font)
{
    m_font = font;
    invalidateLines();
}

void Label::setTextColor(const QColor &color)
{
    m_textColor = color;
    update();
}

void Label::setNumberOfLines(int lines)
{
    m_numberOfLines = qMax(0, lines);
    invalidateLines();
}

void Label::setLineBreakMode(LineBreakMode mode)
{
    m_lineBreakMode = mode;
    invalidateLines();
}

void Label::setTextAlignment(TextAlignment alignment)
{
    m_alignment = alignment;
    update();
}

void Label::invalidateLines()
{
    m_cachedSize = QSizeF(-1, -1);
    update();
}

QStringList Label::displayedLines() const
{
    const QSizeF size = frame().size();
    if (size != m_cachedSize) {
        m_cachedLines = linesForSize(size);
        m_cachedSize = size;
    }
    return m_cachedLines;
}

QStringList Label::linesForSize(const QSizeF &size) const
{
    if (m_text.isEmpty() || size.width() <= 0)
        return {};
    const QFontMetricsF metrics(m_font);
    const int fitting = qMax(1, int(std::floor(size.height() / metrics.lineSpacing())));
    const int limit = m_numberOfLines == 0 ? fitting : qMin(m_numberOfLines, fitting);

    // One line more than the limit tells whether the text was cut.
    const TextWrapping::Mode mode = m_lineBreakMode == LineBreakMode::ByCharWrapping
                                        ? TextWrapping::Mode::Characters
                                        : TextWrapping::Mode::WordsThenCharacters;
    QList<TextWrapping::Line> wrapped = TextWrapping::wrap(m_text, m_font, size.width(), mode, limit + 1);
    const bool cut = wrapped.size() > limit;
    if (cut)
        wrapped.removeLast();
    QStringList lines;
    for (const TextWrapping::Line &line : wrapped)
        lines << line.text;

    const bool truncates = m_lineBreakMode >= LineBreakMode::ByTruncatingHead;
    if (cut && truncates && !lines.isEmpty()) {
        const qsizetype lastStart = wrapped.last().start;
        const Qt::TextElideMode elide = m_lineBreakMode == LineBreakMode::ByTruncatingHead ? Qt::ElideLeft
            : m_lineBreakMode == LineBreakMode::ByTruncatingMiddle                         ? Qt::ElideMiddle
                                                                                           : Qt::ElideRight;
        lines.last() = metrics.elidedText(m_text.mid(lastStart).simplified(), elide, size.width());
    }
    return lines;
}

QSizeF Label::sizeThatFits(const QSizeF &size) const
{
    const QFontMetricsF metrics(m_font);
    const QSizeF bounds(size.width() > 0 ? size.width() : 1e6, 1e6);
    const QStringList lines = linesForSize(bounds);
    qreal width = 0;
    for (const QString &line : lines)
        width = qMax(width, metrics.horizontalAdvance(line));
    return QSizeF(std::ceil(width), std::ceil(lines.size() * metrics.lineSpacing()));
}

void Label::sizeToFit()
{
    const QRectF current = frame();
    setFrame(QRectF(current.topLeft(), sizeThatFits(QSizeF(0, 0))));
}

void Label::paintEvent(QPaintEvent *event)
{
    View::paintEvent(event);
    const QStringList lines = displayedLines();
    if (lines.isEmpty())
        return;
    const QFontMetricsF metrics(m_font);
    const QSizeF size = frame().size();
    const qreal lineHeight = metrics.lineSpacing();
    qreal y = (size.height() - lines.size() * lineHeight) / 2;
    const Qt::Alignment horizontal = m_alignment == TextAlignment::Center ? Qt::AlignHCenter
        : m_alignment == TextAlignment::Right                             ? Qt::AlignRight
                                                                          : Qt::AlignLeft;
    QPainter painter(this);
    painter.setFont(m_font);
    painter.setPen(m_textColor);
    for (const QString &line : lines) {
        painter.drawText(QRectF(0, y, size.width(), lineHeight), horizontal | Qt::AlignVCenter | Qt::TextSingleLine,
                         line);
        y += lineHeight;
    }
}
