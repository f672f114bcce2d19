#include "ScrollGestureArbiter.h"

#include "ScrollView.h"

#include <QApplication>
#include <QMouseEvent>
#include <QWidget>

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
    if (m_replaying || !watched->isWidgetType())
        return false;
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        return press(static_cast<QWidget *>(watched), static_cast<QMouseEvent *>(event));
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

bool ScrollGestureArbiter::press(QWidget *target, QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return m_tracking;
    // A press while tracking means the last release never came (it went to another window).
    reset();
    for (QWidget *widget = target; widget; widget = widget->parentWidget()) {
        if (auto *scrollView = qobject_cast<ScrollView *>(widget))
            m_chain.append(scrollView);
        if (widget->isWindow())
            break;
    }
    if (m_chain.isEmpty())
        return false;
    for (const QPointer<ScrollView> &scrollView : std::as_const(m_chain))
        m_stoppedMotion = scrollView->stopScrolling() || m_stoppedMotion;
    ScrollView *innermost = m_chain.first();
    if (!QApplication::focusWidget() && innermost->isVisible())
        innermost->setFocus(Qt::MouseFocusReason);
    m_tracking = true;
    m_target = target;
    m_heldPress.reset(static_cast<QMouseEvent *>(event->clone()));
    return true;
}

bool ScrollGestureArbiter::move(QMouseEvent *event)
{
    const QPointF moved = event->globalPosition() - m_heldPress->globalPosition();
    if (!m_dragged) {
        if (std::hypot(moved.x(), moved.y()) < kTouchSlop)
            return true;
        Qt::Orientation axis = Qt::Vertical;
        m_dragged = scrollViewFor(moved, axis);
        if (!m_dragged)
            return true;
        m_dragged->beginDragging(m_heldPress->globalPosition(), m_heldPress->timestamp(), axis);
    }
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
    if (m_dragged)
        m_dragged->endDragging(event->globalPosition(), event->timestamp());
    else if (!m_stoppedMotion)
        replayTap(event);
    reset();
    return true;
}

void ScrollGestureArbiter::replayTap(QMouseEvent *release)
{
    if (!m_target)
        return;
    QPointer<QWidget> target = m_target;
    const QPointF local = target->mapFromGlobal(release->globalPosition());
    QMouseEvent releaseHere(QEvent::MouseButtonRelease, local, release->scenePosition(),
                            release->globalPosition(), release->button(), release->buttons(),
                            release->modifiers(), release->pointingDevice());
    releaseHere.setTimestamp(release->timestamp());
    m_replaying = true;
    QApplication::sendEvent(target, m_heldPress.get());
    if (target)
        QApplication::sendEvent(target, &releaseHere);
    m_replaying = false;
}

void ScrollGestureArbiter::reset()
{
    m_tracking = false;
    m_stoppedMotion = false;
    m_target = nullptr;
    m_heldPress.reset();
    m_chain.clear();
    m_dragged = nullptr;
}
