#include "View.h"

#include "ViewSupport.h"

#include <QPainter>

View::View(QWidget *parent) : QWidget(parent)
{
    setFocusPolicy(Qt::NoFocus);
}

View::View(const QRectF &frame, QWidget *parent) : View(parent)
{
    setFrame(frame);
}

void View::setFrame(const QRectF &frame)
{
    ViewSupport::setFrame(this, frame);
}

QRectF View::frame() const
{
    return ViewSupport::frame(this);
}

void View::setBackgroundColor(const QColor &color)
{
    m_backgroundColor = color;
    update();
}

void View::addSubview(QWidget *subview)
{
    ViewSupport::addSubview(this, subview);
}

void View::removeFromSuperview()
{
    ViewSupport::removeFromSuperview(this);
}

void View::setUserInteractionEnabled(bool enabled)
{
    ViewSupport::setUserInteractionEnabled(this, enabled);
}

bool View::isUserInteractionEnabled() const
{
    return ViewSupport::isUserInteractionEnabled(this);
}

void View::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    layoutSubviews();
}

void View::paintEvent(QPaintEvent *)
{
    if (m_backgroundColor.isValid() && m_backgroundColor.alpha() > 0) {
        QPainter painter(this);
        painter.fillRect(rect(), m_backgroundColor);
    }
}
