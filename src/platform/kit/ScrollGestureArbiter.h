#pragma once
// Gives pointer drags to scroll views, as a phone's touch system does. A left press on
// anything inside a scroll view is held back from the widget under the pointer: released
// without moving, the press (and a double click's second press) and the release reach that
// widget as they were (a tap); moved past kTouchSlop, the drag goes to the innermost
// enclosing scroll view that can move along the drag's main direction (so a horizontal strip
// in a vertical list pages sideways and lets vertical drags scroll the list), locked to that
// direction, and the held press is dropped: the widget sees no click, no tap and takes no
// focus. A press on moving content stops it, and its release lets the content settle.
// It filters the events the window system hands to windows, before Qt finds their widget and
// gives it focus; a tap is handed back to the window as it came. One application-wide event
// filter, installed by the first scroll view. Main thread.

#include <QList>
#include <QObject>
#include <QPointF>
#include <QPointer>

class QMouseEvent;
class QWindow;
class ScrollView;

class ScrollGestureArbiter : public QObject
{
    Q_OBJECT
public:
    // How far (points, in a straight line) the pointer moves before a press becomes a drag;
    // tap recognisers use the same distance.
    static constexpr qreal kTouchSlop = 10;

    static void install();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    ScrollGestureArbiter() = default;

    bool press(QWindow *window, QMouseEvent *event);
    bool move(QMouseEvent *event);
    bool release(QMouseEvent *event);
    // The gesture is over without a tap: the drag ends (where the pointer let go, or where the
    // content is when the release was lost), stopped content settles.
    void finishWithoutTap(QMouseEvent *release);
    ScrollView *scrollViewFor(const QPointF &moved, Qt::Orientation &axis) const;
    void replayTap(QMouseEvent *release);
    void reset();

    bool m_tracking = false;
    bool m_replaying = false;
    // The held press, by value: an event's point is shared with later events of the device.
    QPointer<QWindow> m_window;
    QPointF m_pressLocal;
    QPointF m_pressGlobal;
    qint64 m_pressTime = 0;
    Qt::KeyboardModifiers m_pressModifiers;
    bool m_doubleClick = false;
    // Views the press stopped; a press on moving content is no tap.
    QList<QPointer<ScrollView>> m_stopped;
    // Enclosing scroll views, innermost first.
    QList<QPointer<ScrollView>> m_chain;
    bool m_dragStarted = false;
    QPointer<ScrollView> m_dragged;
};
