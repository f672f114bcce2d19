#include "ScrollView.h"

#include "RefreshFooter.h"
#include "RefreshHeader.h"
#include "ScrollViewDelegate.h"
#include "ViewSupport.h"

#include <QMouseEvent>
#include <QVariantAnimation>
#include <QWheelEvent>

#include <cmath>

namespace {
constexpr qreal kDragSlop = 4;
// Beyond the content's edges the content follows the finger at this rate.
constexpr qreal kOverscrollResistance = 0.5;
constexpr qreal kWheelPointsPerNotch = 40;
// Offsets this close count as the same place.
constexpr qreal kOffsetTolerance = 0.5;
} // namespace

ScrollView::ScrollView(QWidget *parent) : QAbstractScrollArea(parent)
{
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    viewport()->setAutoFillBackground(false);
}

ScrollView::ScrollView(const QRectF &frame, QWidget *parent) : ScrollView(parent)
{
    setFrame(frame);
}

ScrollView::~ScrollView()
{
    if (m_animation)
        m_animation->stop();
}

void ScrollView::setFrame(const QRectF &frame)
{
    ViewSupport::setFrame(this, frame);
}

QRectF ScrollView::frame() const
{
    return ViewSupport::frame(this);
}

void ScrollView::setBackgroundColor(const QColor &color)
{
    QPalette palette = viewport()->palette();
    palette.setColor(QPalette::Window, color);
    viewport()->setPalette(palette);
    viewport()->setAutoFillBackground(color.isValid() && color.alpha() > 0);
}

QColor ScrollView::backgroundColor() const
{
    return viewport()->autoFillBackground() ? viewport()->palette().color(QPalette::Window) : QColor();
}

void ScrollView::addSubview(QWidget *subview)
{
    if (!m_content) {
        m_content = new QWidget(viewport());
        m_content->resize(m_contentSize.toSize().expandedTo(QSize(1, 1)));
        m_content->move((-m_offset).toPoint());
        m_content->show();
        m_content->lower();
    }
    ViewSupport::addSubview(m_content, subview);
}

void ScrollView::removeFromSuperview()
{
    ViewSupport::removeFromSuperview(this);
}

void ScrollView::setUserInteractionEnabled(bool enabled)
{
    ViewSupport::setUserInteractionEnabled(this, enabled);
}

void ScrollView::setContentOffset(const QPointF &offset, bool animated)
{
    if (animated)
        animateOffset(offset, false);
    else
        applyOffset(offset);
}

void ScrollView::setContentSize(const QSizeF &size)
{
    m_contentSize = size;
    if (m_content)
        m_content->resize(size.toSize().expandedTo(QSize(1, 1)));
    placeRefreshControls();
}

void ScrollView::setContentInset(const EdgeInsets &inset)
{
    m_contentInset = inset;
    placeRefreshControls();
}

EdgeInsets ScrollView::insetWithoutRefresh() const
{
    EdgeInsets inset = m_contentInset;
    inset.top += m_automaticTopInset;
    return inset;
}

EdgeInsets ScrollView::adjustedContentInset() const
{
    EdgeInsets inset = insetWithoutRefresh();
    inset.top += m_refreshTop;
    inset.bottom += m_refreshBottom;
    return inset;
}

void ScrollView::setAutomaticTopInset(qreal inset)
{
    if (inset == m_automaticTopInset)
        return;
    // Content resting at the top, pulled down or heading there moves down with the inset, so
    // whatever shows at the top (a refreshing header too) stays in view below the bar.
    const qreal restingTop = -adjustedContentInset().top + kOffsetTolerance;
    const QPointF shift(0, inset - m_automaticTopInset);
    m_automaticTopInset = inset;
    if (m_animation && m_animation->endValue().toPointF().y() <= restingTop)
        m_animation->setEndValue(m_animation->endValue().toPointF() - shift);
    if (m_offset.y() <= restingTop)
        applyOffset(m_offset - shift);
    else
        placeRefreshControls();
}

void ScrollView::setRefreshInset(qreal top, qreal bottom)
{
    m_refreshTop = top;
    m_refreshBottom = bottom;
    placeRefreshControls();
}

QPointF ScrollView::minimumContentOffset() const
{
    const EdgeInsets inset = adjustedContentInset();
    return QPointF(-inset.left, -inset.top);
}

QPointF ScrollView::maximumContentOffset() const
{
    const EdgeInsets inset = adjustedContentInset();
    const QPointF minimum = minimumContentOffset();
    return QPointF(qMax(minimum.x(), m_contentSize.width() + inset.right - viewport()->width()),
                   qMax(minimum.y(), m_contentSize.height() + inset.bottom - viewport()->height()));
}

QPointF ScrollView::clampedOffset(const QPointF &offset) const
{
    const QPointF minimum = minimumContentOffset();
    const QPointF maximum = maximumContentOffset();
    return QPointF(qBound(minimum.x(), offset.x(), maximum.x()), qBound(minimum.y(), offset.y(), maximum.y()));
}

QPointF ScrollView::rubberBanded(const QPointF &offset) const
{
    const QPointF clamped = clampedOffset(offset);
    return clamped + (offset - clamped) * kOverscrollResistance;
}

void ScrollView::setHeader(RefreshHeader *header)
{
    if (m_header && m_header != header)
        releaseRefreshControl(m_header);
    m_header = header;
    if (header) {
        header->setParent(viewport());
        header->attach(this);
        header->show();
    }
    placeRefreshControls();
}

void ScrollView::setFooter(RefreshFooter *footer)
{
    if (m_footer && m_footer != footer)
        releaseRefreshControl(m_footer);
    m_footer = footer;
    if (footer) {
        footer->setParent(viewport());
        footer->attach(this);
        footer->show();
    }
    placeRefreshControls();
}

void ScrollView::releaseRefreshControl(RefreshControl *control)
{
    // Deleted later: the replacing may come from the control's own signal.
    control->attach(nullptr);
    ViewSupport::removeFromSuperview(control);
}

void ScrollView::applyOffset(const QPointF &offset)
{
    m_offset = offset;
    contentOffsetDidChange();
    placeRefreshControls();
    if (m_delegate)
        m_delegate->scrollViewDidScroll(this);
}

void ScrollView::contentOffsetDidChange()
{
    if (m_content)
        m_content->move(QPoint(qRound(-m_offset.x()), qRound(-m_offset.y())));
}

void ScrollView::placeRefreshControls()
{
    if (m_header)
        m_header->scrollViewDidChange();
    if (m_footer)
        m_footer->scrollViewDidChange();
}

void ScrollView::animateOffset(const QPointF &target, bool decelerating)
{
    if (m_animation)
        m_animation->stop();
    if (target == m_offset) {
        if (m_delegate) {
            if (decelerating)
                m_delegate->scrollViewDidEndDecelerating(this);
            else
                m_delegate->scrollViewDidEndScrollingAnimation(this);
        }
        return;
    }
    m_animation = new QVariantAnimation(this);
    m_animation->setDuration(kDecelerationMs);
    m_animation->setStartValue(m_offset);
    m_animation->setEndValue(target);
    m_animation->setEasingCurve(QEasingCurve::OutCubic);
    connect(m_animation, &QVariantAnimation::valueChanged, this,
            [this](const QVariant &value) { applyOffset(value.toPointF()); });
    connect(m_animation, &QVariantAnimation::finished, this, [this, decelerating] {
        if (!m_delegate)
            return;
        if (decelerating)
            m_delegate->scrollViewDidEndDecelerating(this);
        else
            m_delegate->scrollViewDidEndScrollingAnimation(this);
    });
    m_animation->start(QAbstractAnimation::DeleteWhenStopped);
}

QPointF ScrollView::pageTarget() const
{
    const QPointF clamped = clampedOffset(m_offset);
    if (!m_pagingEnabled)
        return clamped;
    const qreal pageWidth = qMax(1, viewport()->width());
    const qreal pageHeight = qMax(1, viewport()->height());
    return clampedOffset(QPointF(std::round(m_offset.x() / pageWidth) * pageWidth,
                                 std::round(m_offset.y() / pageHeight) * pageHeight));
}

void ScrollView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    if (m_animation)
        m_animation->stop();
    m_tracking = true;
    m_dragging = false;
    m_pressPosition = event->position();
    m_pressOffset = m_offset;
}

void ScrollView::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_tracking || !m_scrollEnabled)
        return;
    QPointF delta = event->position() - m_pressPosition;
    if (!m_dragging) {
        if (delta.manhattanLength() < kDragSlop)
            return;
        m_dragging = true;
        if (m_delegate)
            m_delegate->scrollViewWillBeginDragging(this);
    }
    // Sideways only when there is something to the side, as on the phone.
    if (m_contentSize.width() <= viewport()->width())
        delta.setX(0);
    applyOffset(rubberBanded(m_pressOffset - delta));
}

void ScrollView::mouseReleaseEvent(QMouseEvent *event)
{
    if (!m_tracking || event->button() != Qt::LeftButton)
        return;
    m_tracking = false;
    if (!m_dragging) {
        handleTap(event->position());
        return;
    }
    m_dragging = false;
    if (m_header)
        m_header->scrollViewDidEndDragging();
    if (m_footer)
        m_footer->scrollViewDidEndDragging();
    const QPointF target = pageTarget();
    const bool willDecelerate = target != m_offset;
    if (m_delegate)
        m_delegate->scrollViewDidEndDragging(this, willDecelerate);
    if (willDecelerate)
        animateOffset(target, true);
}

void ScrollView::wheelEvent(QWheelEvent *event)
{
    if (!m_scrollEnabled) {
        event->ignore();
        return;
    }
    QPointF delta = event->pixelDelta().isNull() ? QPointF(event->angleDelta()) / 120 * kWheelPointsPerNotch
                                                 : QPointF(event->pixelDelta());
    if (m_animation)
        m_animation->stop();
    applyOffset(clampedOffset(m_offset - delta));
    event->accept();
}

void ScrollView::resizeEvent(QResizeEvent *event)
{
    QAbstractScrollArea::resizeEvent(event);
    contentOffsetDidChange();
    placeRefreshControls();
}
