#include "TapGestureRecognizer.h"

#include "ScrollGestureArbiter.h"

#include <QMouseEvent>
#include <QWidget>

#include <cmath>

TapGestureRecognizer::TapGestureRecognizer(QWidget *view, Action action)
    : QObject(view), m_view(view), m_action(std::move(action))
{
    view->installEventFilter(this);
}

bool TapGestureRecognizer::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_view)
        return false;
    if (event->type() == QEvent::MouseButtonPress) {
        auto *mouse = static_cast<QMouseEvent *>(event);
        if (mouse->button() != Qt::LeftButton)
            return false;
        m_pressed = true;
        m_pressPosition = mouse->position();
        return true;
    }
    if (event->type() == QEvent::MouseButtonRelease && m_pressed) {
        auto *mouse = static_cast<QMouseEvent *>(event);
        m_pressed = false;
        const QPointF moved = mouse->position() - m_pressPosition;
        const bool tapped = std::hypot(moved.x(), moved.y()) < ScrollGestureArbiter::kTouchSlop
            && m_view->rect().contains(mouse->position().toPoint());
        if (tapped && m_action)
            m_action(this);
        return true;
    }
    return false;
}
