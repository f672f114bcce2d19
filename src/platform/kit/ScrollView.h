#pragma once
// A UIKit-style scroll view on QAbstractScrollArea: a content offset (the visible top-left in
// content coordinates, -inset at rest), content size and insets, dragging with the mouse
// (overscroll with resistance, bouncing back), the wheel, optional paging, and slots for a
// pull-down refresh header and a pull-up refresh footer. Subviews added to it scroll with the
// content. Main thread.

#include "EdgeInsets.h"

#include <QAbstractScrollArea>
#include <QPointer>

#include "RefreshFooter.h"
#include "RefreshHeader.h"
class ScrollViewDelegate;
class QVariantAnimation;

class ScrollView : public QAbstractScrollArea
{
    Q_OBJECT
public:
    static constexpr int kDecelerationMs = 250;

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
    bool isDragging() const { return m_dragging; }
    QPointF minimumContentOffset() const;
    QPointF maximumContentOffset() const;

    // The scroll view owns its refresh controls; setting one replaces the old one, which is
    // deleted once control returns to the event loop.
    void setHeader(RefreshHeader *header);
    RefreshHeader *header() const { return m_header; }
    void setFooter(RefreshFooter *footer);
    RefreshFooter *footer() const { return m_footer; }
    // Room kept for a refreshing header (top) or footer (bottom).
    void setRefreshInset(qreal top, qreal bottom);
    EdgeInsets insetWithoutRefresh() const;

protected:
    // The offset (or the viewport) changed: place what is shown.
    virtual void contentOffsetDidChange();
    // A press released without dragging, at a viewport position.
    virtual void handleTap(const QPointF &) {}

    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void applyOffset(const QPointF &offset);
    void animateOffset(const QPointF &target, bool decelerating);
    QPointF clampedOffset(const QPointF &offset) const;
    QPointF rubberBanded(const QPointF &offset) const;
    QPointF pageTarget() const;
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
    bool m_tracking = false;
    bool m_dragging = false;
    QPointF m_pressPosition;
    QPointF m_pressOffset;
    QPointer<QVariantAnimation> m_animation;
    QPointer<RefreshHeader> m_header;
    QPointer<RefreshFooter> m_footer;
};
