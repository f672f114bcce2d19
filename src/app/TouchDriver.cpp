#include "TouchDriver.h"

#include "Window.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QMouseEvent>
#include <QWidget>
#include <QWindow>

TouchDriver::TouchDriver(Window *window) : m_window(window), m_clock(QDateTime::currentMSecsSinceEpoch())
{
}

QWindow *TouchDriver::handle() const
{
    return m_window ? m_window->windowHandle() : nullptr;
}

bool TouchDriver::centreOf(QWidget *target, QPointF *windowPoint) const
{
    if (!target || !m_window || !target->isVisible() || target->window() != m_window->window())
        return false;
    const QRect inWindow(target->mapTo(m_window, QPoint(0, 0)), target->size());
    const QRect visible = inWindow.intersected(m_window->rect());
    if (visible.isEmpty())
        return false;
    *windowPoint = QRectF(visible).center();
    return true;
}

bool TouchDriver::tap(QWidget *target)
{
    QPointF point;
    if (!centreOf(target, &point))
        return false;
    tapAt(point);
    return true;
}

void TouchDriver::tapAt(const QPointF &windowPoint)
{
    send(QEvent::MouseButtonPress, windowPoint, true);
    m_clock += kRestMs;
    send(QEvent::MouseButtonRelease, windowPoint, false);
}

void TouchDriver::drag(const QPointF &from, const QPointF &to, int steps, bool flick)
{
    send(QEvent::MouseButtonPress, from, true);
    for (int step = 1; step <= steps; ++step) {
        m_clock += kStepMs;
        send(QEvent::MouseMove, from + (to - from) * (qreal(step) / steps), true);
    }
    m_clock += flick ? kStepMs : kRestMs;
    if (!flick)
        send(QEvent::MouseMove, to, true);
    send(QEvent::MouseButtonRelease, to, false);
}

bool TouchDriver::type(const QString &text)
{
    QObject *focus = QGuiApplication::focusObject();
    if (!focus)
        return false;
    QInputMethodEvent commit;
    commit.setCommitString(text);
    QCoreApplication::sendEvent(focus, &commit);
    return true;
}

void TouchDriver::send(int type, const QPointF &windowPoint, bool buttonDown)
{
    QWindow *window = handle();
    if (!window)
        return;
    const QPointF global = window->mapToGlobal(windowPoint.toPoint()) + (windowPoint - windowPoint.toPoint());
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(QEvent::Type(type), windowPoint, windowPoint, global, button,
                      buttonDown ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
    event.setTimestamp(quint64(m_clock));
    QCoreApplication::sendEvent(window, &event);
}
