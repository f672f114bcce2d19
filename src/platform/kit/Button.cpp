#include "Button.h"

#include "Fonts.h"

#include <QFontMetricsF>
#include <QMouseEvent>
#include <QPainter>

namespace {
constexpr qreal kImageTitleSpacing = 4;
constexpr qreal kHighlightedOpacity = 0.4;
} // namespace

Button::Button(QWidget *parent) : View(parent), m_font(Fonts::systemFontOfSize(Fonts::kButtonDefaultSize)) {}

Button::Button(const QRectF &frame, QWidget *parent) : Button(parent)
{
    setFrame(frame);
}

void Button::setTitle(const QString &title)
{
    m_title = title;
    update();
}

void Button::setTitleColor(const QColor &color)
{
    m_titleColor = color;
    update();
}

void Button::setTitleFont(const QFont &font)
{
    m_font = font;
    update();
}

void Button::setImage(const QImage &image)
{
    m_image = image;
    update();
}

void Button::setContentHorizontalAlignment(ContentHorizontalAlignment alignment)
{
    m_alignment = alignment;
    update();
}

void Button::paintEvent(QPaintEvent *event)
{
    View::paintEvent(event);
    QPainter painter(this);
    if (isHighlighted())
        painter.setOpacity(kHighlightedOpacity);
    const QFontMetricsF metrics(m_font);
    const QSizeF imageSize = m_image.isNull() ? QSizeF() : QSizeF(m_image.size()) / m_image.devicePixelRatio();
    const qreal titleWidth = metrics.horizontalAdvance(m_title);
    const qreal spacing = (!m_image.isNull() && !m_title.isEmpty()) ? kImageTitleSpacing : 0;
    const qreal contentWidth = imageSize.width() + spacing + titleWidth;
    qreal x = 0;
    if (m_alignment == ContentHorizontalAlignment::Center)
        x = (width() - contentWidth) / 2;
    else if (m_alignment == ContentHorizontalAlignment::Right)
        x = width() - contentWidth;
    if (!m_image.isNull()) {
        painter.drawImage(QRectF(QPointF(x, (height() - imageSize.height()) / 2), imageSize), m_image);
        x += imageSize.width() + spacing;
    }
    if (!m_title.isEmpty()) {
        painter.setFont(m_font);
        painter.setPen(m_titleColor);
        painter.drawText(QRectF(x, 0, titleWidth + 1, height()), Qt::AlignLeft | Qt::AlignVCenter, m_title);
    }
}

void Button::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    m_pressed = true;
    m_inside = true;
    update();
}

void Button::mouseMoveEvent(QMouseEvent *event)
{
    const bool inside = rect().contains(event->position().toPoint());
    if (m_pressed && inside != m_inside) {
        m_inside = inside;
        update();
    }
}

void Button::mouseReleaseEvent(QMouseEvent *event)
{
    if (!m_pressed || event->button() != Qt::LeftButton)
        return;
    const bool inside = rect().contains(event->position().toPoint());
    m_pressed = false;
    m_inside = false;
    update();
    if (inside)
        emit touchUpInside();
}
