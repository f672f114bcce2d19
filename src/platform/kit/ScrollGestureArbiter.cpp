#include "ScrollGestureArbiter.h"

#include "ScrollView.h"

#include <QApplication>
#include <QMouseEvent>
#include <QWidget>
#include <QWindow>

#include <cmath>

void ScrollGestureArbiter::install()
{
    static ScrollGestureArbiter *arbiter = [] {
        auto *created = new ScrollGestureArbiter;
        created->setParent(qApp);
        qApp->installEventFilter(created);
        return created;
    }();
    Q_UNUSED(arbiter);
}

bool ScrollGestureArbiter::eventFilter(QObject *watched, QEvent *event)
{
    auto *window = qobject_cast<QWindow *>(watched);
    if (m_replaying || !window)
        return false;
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        return press(window, static_cast<QMouseEvent *>(event));
    case QEvent::MouseMove:
        return m_tracking && move(static_cast<QMouseEvent *>(event));
    case QEvent::MouseButtonRelease:
        return m_tracking && release(static_cast<QMouseEvent *>(event));
    case QEvent::MouseButtonDblClick:
        // The second press of a double click is held like the first; its tap replays it.
        return m_tracking;
    default:
        return false;
    }
}

namespace {
QWidget *widgetOfWindow(const QWindow *window)
{
    for (QWidget *topLevel : QApplication::topLevelWidgets()) {
        if (topLevel->windowHandle() == window)
            return topLevel;
    }
    return nullptr;
}
} // namespace

bool ScrollGestureArbiter::press(QWindow *window, QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return m_tracking;
    // A press while tracking means the last release never came (it went to another window).
    reset();
    QWidget *root = widgetOfWindow(window);
    if (!root)
        return false;
    QWidget *target = root->childAt(event->position().toPoint());
    for (QWidget *widget = target; widget && widget != root; widget = widget->parentWidget()) {
        if (auto *scrollView = qobject_cast<ScrollView *>(widget))
            m_chain.append(scrollView);
    }
    if (m_chain.isEmpty())
        return false;
    for (const QPointer<ScrollView> &scrollView : std::as_const(m_chain))
        m_stoppedMotion = scrollView->stopScrolling() || m_stoppedMotion;
    ScrollView *innermost = m_chain.first();
    if (!QApplication::focusWidget())
        innermost->setFocus(Qt::MouseFocusReason);
    m_tracking = true;
    m_window = window;
    m_pressLocal = event->position();
    m_pressGlobal = event->globalPosition();
    m_pressTime = qint64(event->timestamp());
    m_pressModifiers = event->modifiers();
    return true;
}

bool ScrollGestureArbiter::move(QMouseEvent *event)
{
    const QPointF moved = event->globalPosition() - m_pressGlobal;
    if (!m_dragStarted) {
        if (std::hypot(moved.x(), moved.y()) < kTouchSlop)
            return true;
        m_dragStarted = true;
        Qt::Orientation axis = Qt::Vertical;
        m_dragged = scrollViewFor(moved, axis);
        if (m_dragged)
            m_dragged->beginDragging(m_pressGlobal, m_pressTime, axis);
    }
    // The dragged view may have gone meanwhile; the drag still ends without a tap.
    if (m_dragged)
        m_dragged->dragTo(event->globalPosition(), event->timestamp());
    return true;
}

ScrollView *ScrollGestureArbiter::scrollViewFor(const QPointF &moved, Qt::Orientation &axis) const
{
    axis = std::abs(moved.x()) > std::abs(moved.y()) ? Qt::Horizontal : Qt::Vertical;
    const Qt::Orientation other = axis == Qt::Vertical ? Qt::Horizontal : Qt::Vertical;
    for (const Qt::Orientation candidate : {axis, other}) {
        for (const QPointer<ScrollView> &scrollView : m_chain) {
            if (scrollView && scrollView->canScroll(candidate)) {
                axis = candidate;
                return scrollView;
            }
        }
    }
    // Nothing can move: the innermost view still takes the drag, so the press is cancelled.
    return m_chain.first();
}

bool ScrollGestureArbiter::release(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return true;
    const bool tap = !m_dragStarted && !m_stoppedMotion;
    if (m_dragged)
        m_dragged->endDragging(event->globalPosition(), event->timestamp());
    if (tap && m_window) {
        // The held press goes to the window as it came: Qt finds the widget under it, gives it
        // focus and the press; this release then follows it there.
        QMouseEvent press(QEvent::MouseButtonPress, m_pressLocal, m_pressLocal, m_pressGlobal, Qt::LeftButton,
                          Qt::LeftButton, m_pressModifiers, event->pointingDevice());
        press.setTimestamp(quint64(m_pressTime));
        m_replaying = true;
        QCoreApplication::sendEvent(m_window, &press);
        m_replaying = false;
    }
    reset();
    return !tap;
}

void ScrollGestureArbiter::reset()
{
    m_tracking = false;
    m_stoppedMotion = false;
    m_window = nullptr;
    m_chain.clear();
    m_dragStarted = false;
    m_dragged = nullptr;
}
