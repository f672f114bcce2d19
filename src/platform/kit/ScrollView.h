#pragma once
// A UIKit-style scroll view on QAbstractScrollArea: a content offset (the visible top-left in
// content coordinates, -inset at rest), content size and insets, and slots for a pull-down
// refresh header and a pull-up refresh footer. Subviews added to it scroll with the content.
//
// Touch: ScrollGestureArbiter decides which scroll view a pointer drag belongs to (presses on
// children are held until the pointer moves) and drives it through beginDragging(), dragTo()
// and endDragging(): the content follows along one axis, with resistance past its edges; on
// release it glides on with the pointer's speed, settles on a page when paging, or bounces
// back. The wheel and touchpad drag it too (pulling past an edge where the content rested),
// and Page Up / Page Down / Home / End / arrows scroll it when focused.
//
// Layout: moving or resizing marks the view; subclasses place what is shown in
// layoutSubviews(), once, when control returns to the event loop or at layoutIfNeeded().
// Main thread.

#include "EdgeInsets.h"
#include "VelocityTracker.h"

#include <QAbstractScrollArea>
#include <QPointer>
#include <QTimer>

#include "RefreshFooter.h"
#include "RefreshHeader.h"
class ScrollViewDelegate;
class QVariantAnimation;

class ScrollView : public QAbstractScrollArea
{
    Q_OBJECT
public:
    // Bouncing back into range and settling on a page.
    static constexpr int kDecelerationMs = 250;
    // A wheel stroke ends when no wheel event came for this long (wheels report no phases).
    static constexpr int kWheelStrokeEndMs = 150;

    explicit ScrollView(QWidget *parent = nullptr);
    explicit ScrollView(const QRectF &frame, QWidget *parent = nullptr);
    ~ScrollView() override;

    void setFrame(const QRectF &frame);
    QRectF frame() const;
    void setBackgroundColor(const QColor &color);
    QColor backgroundColor() const;
    // Adds to the scrolling content.
    void addSubview(QWidget *subview);
    void removeFromSuperview();
    void setUserInteractionEnabled(bool enabled);

    void setDelegate(ScrollViewDelegate *delegate) { m_delegate = delegate; }
    ScrollViewDelegate *delegate() const { return m_delegate; }

    QPointF contentOffset() const { return m_offset; }
    void setContentOffset(const QPointF &offset, bool animated = false);
    QSizeF contentSize() const { return m_contentSize; }
    void setContentSize(const QSizeF &size);
    EdgeInsets contentInset() const { return m_contentInset; }
    void setContentInset(const EdgeInsets &inset);
    // The inset in force: the screen's own, plus the bar's inset given by the navigation
    // controller, plus the room of a refreshing header or footer.
    EdgeInsets adjustedContentInset() const;
    void setAutomaticTopInset(qreal inset);

    void setPagingEnabled(bool enabled) { m_pagingEnabled = enabled; }
    bool isPagingEnabled() const { return m_pagingEnabled; }
    void setScrollEnabled(bool enabled) { m_scrollEnabled = enabled; }
    bool isScrollEnabled() const { return m_scrollEnabled; }
    // Drags along an axis whose content fits still move (and bounce) when set.
    void setAlwaysBounceVertical(bool bounces) { m_alwaysBounceVertical = bounces; }
    bool alwaysBounceVertical() const { return m_alwaysBounceVertical; }
    void setAlwaysBounceHorizontal(bool bounces) { m_alwaysBounceHorizontal = bounces; }
    bool alwaysBounceHorizontal() const { return m_alwaysBounceHorizontal; }
    // Whether a drag along `axis` moves this view's content.
    bool canScroll(Qt::Orientation axis) const;

    // A pointer drag (or a wheel or touchpad stroke) is moving the content.
    bool isDragging() const { return m_dragging; }
    // The content glides on or settles after a drag.
    bool isDecelerating() const;
    QPointF minimumContentOffset() const;
    QPointF maximumContentOffset() const;

    // Driven by ScrollGestureArbiter; positions are global, times in milliseconds.
    void beginDragging(const QPointF &pressPosition, qint64 pressTime, Qt::Orientation axis);
    void dragTo(const QPointF &position, qint64 time);
    void endDragging(const QPointF &position, qint64 time);
    // Ends a drag whose release never came: where the content is, without speed.
    void endDraggingInPlace();
    // Stops a running animation where the content is; true when one was running.
    bool stopScrolling();
    // Brings content left out of place (past an edge, between pages) back where it rests.
    void settle();

    void setNeedsLayout();
    void layoutIfNeeded();

    // The scroll view owns its refresh controls; setting one replaces the old one, which is
    // deleted once control returns to the event loop.
    void setHeader(RefreshHeader *header);
    RefreshHeader *header() const { return m_header; }
    void setFooter(RefreshFooter *footer);
    RefreshFooter *footer() const { return m_footer; }
    // Ends refreshing on whichever refresh controls the view has.
    void endRefreshing();
    // Room kept for a refreshing header (top) or footer (bottom).
    void setRefreshInset(qreal top, qreal bottom);
    EdgeInsets insetWithoutRefresh() const;

protected:
    // The offset (or the viewport) changed: place what moves at once.
    virtual void contentOffsetDidChange();
    // Places what is shown; called once per marked layout pass.
    virtual void layoutSubviews() {}
    // A press released without dragging, at a viewport position.
    virtual void handleTap(const QPointF &) {}

    bool event(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void applyOffset(const QPointF &offset);
    void animateOffset(const QPointF &target, int durationMs, bool decelerating);
    // A running animation heading out of range (the content shrank) stops at its edge.
    void keepAnimationInRange();
    void finishDragging(qreal velocity);
    QPointF clampedOffset(const QPointF &offset) const;
    QPointF rubberBanded(const QPointF &offset) const;
    QPointF releaseTarget(qreal velocity) const;
    qreal along(const QPointF &point) const;
    QPointF withAlong(const QPointF &point, qreal value) const;
    void beginWheelStroke(Qt::Orientation axis);
    void endWheelStroke();
    void placeRefreshControls();
    void releaseRefreshControl(RefreshControl *control);

    ScrollViewDelegate *m_delegate = nullptr;
    QWidget *m_content = nullptr;
    QPointF m_offset;
    QSizeF m_contentSize;
    EdgeInsets m_contentInset;
    qreal m_automaticTopInset = 0;
    qreal m_refreshTop = 0;
    qreal m_refreshBottom = 0;
    bool m_pagingEnabled = false;
    bool m_scrollEnabled = true;
    bool m_alwaysBounceVertical = false;
    bool m_alwaysBounceHorizontal = false;

    // The drag in progress: its axis, where the pointer and the content were when it began.
    bool m_dragging = false;
    Qt::Orientation m_axis = Qt::Vertical;
    bool m_dragMoves = true;
    QPointF m_pressPosition;
    QPointF m_pressOffset;
    VelocityTracker m_velocity;
    // A wheel stroke drags an unbounded position; past an edge only where it began resting.
    bool m_wheelStroke = false;
    QPointF m_wheelPosition;
    QPointF m_wheelStart;
    bool m_wheelMayPassStart = false;
    bool m_wheelMayPassEnd = false;
    QTimer m_wheelStrokeEnd;

    bool m_tapTracking = false;
    bool m_layoutPending = false;
    QPointer<QVariantAnimation> m_animation;
    bool m_animationDecelerates = false;
    QPointer<RefreshHeader> m_header;
    QPointer<RefreshFooter> m_footer;
};
