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
    const QEvent::Type type = event->type();
    if (m_replaying
        || (type != QEvent::MouseButtonPress && type != QEvent::MouseMove && type != QEvent::MouseButtonRelease
            && type != QEvent::MouseButtonDblClick)) {
        return false;
    }
    auto *window = qobject_cast<QWindow *>(watched);
    if (!window)
        return false;
    auto *mouse = static_cast<QMouseEvent *>(event);
    if (m_tracking && !m_window) {
        // The window went away under the pointer.
        finishWithoutTap(nullptr);
        reset();
    }
    switch (type) {
    case QEvent::MouseButtonPress:
        return press(window, mouse);
    case QEvent::MouseMove:
        return m_tracking && move(mouse);
    case QEvent::MouseButtonRelease:
        return m_tracking && release(mouse);
    default:
        // The second press of a double click is held like the first, and replayed with it.
        if (!m_tracking)
            return false;
        m_doubleClick = mouse->button() == Qt::LeftButton;
        return true;
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
    if (m_tracking) {
        finishWithoutTap(nullptr);
        reset();
    }
    // An open popup takes every press, to close itself.
    if (QApplication::activePopupWidget())
        return false;
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
    for (const QPointer<ScrollView> &scrollView : std::as_const(m_chain)) {
        if (scrollView->stopScrolling())
            m_stopped.append(scrollView);
    }
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
    // The release was lost (a modal dialog took it, say): nothing is pressed any more.
    if (!(event->buttons() & Qt::LeftButton)) {
        finishWithoutTap(nullptr);
        reset();
        return false;
    }
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
    const bool tap = !m_dragStarted && m_stopped.isEmpty();
    if (tap)
        replayTap(event);
    else
        finishWithoutTap(event);
    reset();
    // A tap's release follows its replayed press to the widget.
    return !tap;
}

void ScrollGestureArbiter::finishWithoutTap(QMouseEvent *release)
{
    if (m_dragged && release)
        m_dragged->endDragging(release->globalPosition(), release->timestamp());
    else if (m_dragged)
        m_dragged->endDraggingInPlace();
    for (const QPointer<ScrollView> &scrollView : std::as_const(m_stopped)) {
        if (scrollView && scrollView != m_dragged)
            scrollView->settle();
    }
}

void ScrollGestureArbiter::replayTap(QMouseEvent *release)
{
    if (!m_window)
        return;
    // The held press goes to the window as it came: Qt finds the widget under it and gives it
    // focus and the press; the release then follows it there.
    QMouseEvent press(QEvent::MouseButtonPress, m_pressLocal, m_pressLocal, m_pressGlobal, Qt::LeftButton,
                      Qt::LeftButton, m_pressModifiers, release->pointingDevice());
    press.setTimestamp(quint64(m_pressTime));
    QMouseEvent doubleClick(QEvent::MouseButtonDblClick, m_pressLocal, m_pressLocal, m_pressGlobal,
                            Qt::LeftButton, Qt::LeftButton, m_pressModifiers, release->pointingDevice());
    doubleClick.setTimestamp(quint64(m_pressTime));
    QPointer<QWindow> window = m_window;
    m_replaying = true;
    QCoreApplication::sendEvent(window, &press);
    if (m_doubleClick && window)
        QCoreApplication::sendEvent(window, &doubleClick);
    m_replaying = false;
}

void ScrollGestureArbiter::reset()
{
    m_tracking = false;
    m_doubleClick = false;
    m_window = nullptr;
    m_stopped.clear();
    m_chain.clear();
    m_dragStarted = false;
    m_dragged = nullptr;
}
