#pragma once
// Gives pointer drags to scroll views, as a phone's touch system does. A left press on
// anything inside a scroll view is held back from the widget under the pointer: released
// without moving, the press and release reach that widget as they were (a tap); moved past
// kTouchSlop, the drag goes to the innermost enclosing scroll view that can move along the
// drag's main direction (so a horizontal strip in a vertical list pages sideways and lets
// vertical drags scroll the list), locked to that direction, and the held press is dropped:
// the widget sees no click, no tap and takes no focus. A press on moving content only stops
// it. One application-wide event filter, installed by the first scroll view. Main thread.

#include <QList>
#include <QObject>
#include <QPointF>
#include <QPointer>

#include <memory>

class QMouseEvent;
class QWidget;
class ScrollView;

class ScrollGestureArbiter : public QObject
{
    Q_OBJECT
public:
    // How far (points) the pointer moves before a press becomes a drag.
    static constexpr qreal kTouchSlop = 10;

    static void install();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    ScrollGestureArbiter() = default;

    bool press(QWidget *target, QMouseEvent *event);
    bool move(QMouseEvent *event);
    bool release(QMouseEvent *event);
    ScrollView *scrollViewFor(const QPointF &moved, Qt::Orientation &axis) const;
    void replayTap(QMouseEvent *release);
    void reset();

    bool m_tracking = false;
    bool m_replaying = false;
    // The press landed on moving content: it stops it and does nothing else.
    bool m_stoppedMotion = false;
    QPointer<QWidget> m_target;
    std::unique_ptr<QMouseEvent> m_heldPress;
    // Enclosing scroll views, innermost first.
    QList<QPointer<ScrollView>> m_chain;
    QPointer<ScrollView> m_dragged;
};
