#pragma once
// A text label drawn as UIKit draws one: lines centred vertically in the frame, at most
// numberOfLines of them (0 = as many as fit), broken by word or by character, the last one
// cut with an ellipsis in the truncating modes. Touches fall through it. Main thread.

#include "View.h"

#include <QFont>
#include <QStringList>

enum class LineBreakMode {
    ByWordWrapping = 0,
    ByCharWrapping = 1,
    ByClipping = 2,
    ByTruncatingHead = 3,
    ByTruncatingTail = 4,
    ByTruncatingMiddle = 5,
};

enum class TextAlignment { Left = 0, Center = 1, Right = 2 };

class Label : public View
{
    Q_OBJECT
public:
    explicit Label(QWidget *parent = nullptr);
    explicit Label(const QRectF &frame, QWidget *parent = nullptr);

    void setText(const QString &text);
    QString text() const { return m_text; }
    void setFont(const QFont &font);
    QFont font() const { return m_font; }
    void setTextColor(const QColor &color);
    QColor textColor() const { return m_textColor; }
    void setNumberOfLines(int lines);
    int numberOfLines() const { return m_numberOfLines; }
    void setLineBreakMode(LineBreakMode mode);
    LineBreakMode lineBreakMode() const { return m_lineBreakMode; }
    void setTextAlignment(TextAlignment alignment);
    TextAlignment textAlignment() const { return m_alignment; }

    // The lines drawn at the current size, in order.
    QStringList displayedLines() const;
    // The size the text needs within `size` (width and line limit respected).
    QSizeF sizeThatFits(const QSizeF &size) const;
    void sizeToFit();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QStringList linesForSize(const QSizeF &size) const;
    void invalidateLines();

    QString m_text;
    QFont m_font;
    QColor m_textColor = Qt::black;
    int m_numberOfLines = 1;
    LineBreakMode m_lineBreakMode = LineBreakMode::ByTruncatingTail;
    TextAlignment m_alignment = TextAlignment::Left;

    // Breaking Chinese text is costly; the lines are kept until text, font, mode or size change.
    mutable QStringList m_cachedLines;
    mutable QSizeF m_cachedSize{-1, -1};
};
