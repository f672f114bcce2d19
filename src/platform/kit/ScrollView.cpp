#include "ScrollView.h"

#include "RefreshFooter.h"
#include "RefreshHeader.h"
#include "ScrollGestureArbiter.h"
#include "ScrollViewDelegate.h"
#include "ViewSupport.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QVariantAnimation>
#include <QWheelEvent>

#include <cmath>

namespace {
// Beyond the content's edges the content follows the pointer at this rate.
constexpr qreal kOverscrollResistance = 0.5;
constexpr qreal kWheelPointsPerNotch = 40;
constexpr qreal kDegreesPerNotch = 120;
constexpr qreal kKeyLineStep = 40;
// Page Up / Page Down keep this much of the old page in view.
constexpr qreal kKeyPageOverlap = 40;
// Offsets this close count as the same place.
constexpr qreal kOffsetTolerance = 0.5;
// Released faster than this (points per millisecond), a paging view turns the page.
constexpr qreal kPageFlickVelocity = 0.3;
// Released slower than this, the content stops where it is.
constexpr qreal kMinGlideVelocity = 0.05;
// How far released content glides per unit of speed: the phone's normal deceleration, which
// keeps 99.8% of the speed each millisecond, travels v * 0.998 / 0.002.
constexpr qreal kGlideMsPerVelocity = 0.998 / 0.002;
constexpr int kMaxGlideMs = 1500;
// An ease-out cubic curve starts at three times its mean speed: a glide of distance d that
// starts at the release speed v lasts 3d / v.
constexpr qreal kEaseOutStartSpeedRatio = 3;

const QEvent::Type kLayoutEvent = QEvent::Type(QEvent::registerEventType());
} // namespace

ScrollView::ScrollView(QWidget *parent) : QAbstractScrollArea(parent)
{
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // Keys reach a scroll view that was tabbed to or touched while nothing else had focus;
    // a touch never takes focus from an editing text view, as on the phone.
    setFocusPolicy(Qt::TabFocus);
    viewport()->setAutoFillBackground(false);
    ScrollGestureArbiter::install();
    m_wheelStrokeEnd.setSingleShot(true);
    m_wheelStrokeEnd.setInterval(kWheelStrokeEndMs);
    connect(&m_wheelStrokeEnd, &QTimer::timeout, this, &ScrollView::endWheelStroke);
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
    if (animated) {
        animateOffset(offset, kDecelerationMs, false);
        return;
    }
    stopScrolling();
    applyOffset(offset);
}

void ScrollView::setContentSize(const QSizeF &size)
{
    m_contentSize = size;
    if (m_content)
        m_content->resize(size.toSize().expandedTo(QSize(1, 1)));
    keepAnimationInRange();
    placeRefreshControls();
    setNeedsLayout();
}

void ScrollView::setContentInset(const EdgeInsets &inset)
{
    m_contentInset = inset;
    placeRefreshControls();
    setNeedsLayout();
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
    setNeedsLayout();
}

void ScrollView::setRefreshInset(qreal top, qreal bottom)
{
    m_refreshTop = top;
    m_refreshBottom = bottom;
    placeRefreshControls();
    setNeedsLayout();
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
    // Along the drag's axis only: the other axis stays where it was.
    const qreal value = along(offset);
    const qreal clamped = along(clampedOffset(offset));
    return withAlong(offset, clamped + (value - clamped) * kOverscrollResistance);
}

qreal ScrollView::along(const QPointF &point) const
{
    return m_axis == Qt::Vertical ? point.y() : point.x();
}

QPointF ScrollView::withAlong(const QPointF &point, qreal value) const
{
    return m_axis == Qt::Vertical ? QPointF(point.x(), value) : QPointF(value, point.y());
}

bool ScrollView::canScroll(Qt::Orientation axis) const
{
    if (!m_scrollEnabled)
        return false;
    const QPointF room = maximumContentOffset() - minimumContentOffset();
    if (axis == Qt::Vertical)
        return room.y() > kOffsetTolerance || m_alwaysBounceVertical;
    return room.x() > kOffsetTolerance || m_alwaysBounceHorizontal;
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

void ScrollView::endRefreshing()
{
    if (m_header)
        m_header->endRefreshing();
    if (m_footer)
        m_footer->endRefreshing();
}

void ScrollView::releaseRefreshControl(RefreshControl *control)
{
    // Its room goes with it. Deleted later: the replacing may come from the control's own signal.
    control->endRefreshing();
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

void ScrollView::animateOffset(const QPointF &target, int durationMs, bool decelerating)
{
    stopScrolling();
    if ((target - m_offset).manhattanLength() < kOffsetTolerance) {
        if (target != m_offset)
            applyOffset(target);
        if (m_delegate) {
            if (decelerating)
                m_delegate->scrollViewDidEndDecelerating(this);
            else
                m_delegate->scrollViewDidEndScrollingAnimation(this);
        }
        return;
    }
    m_animation = new QVariantAnimation(this);
    m_animationDecelerates = decelerating;
    m_animation->setDuration(durationMs);
    m_animation->setStartValue(m_offset);
    m_animation->setEndValue(target);
    m_animation->setEasingCurve(QEasingCurve::OutCubic);
    connect(m_animation, &QVariantAnimation::valueChanged, this,
            [this](const QVariant &value) { applyOffset(value.toPointF()); });
    connect(m_animation, &QVariantAnimation::finished, this, [this, decelerating] {
        // Over by now: the delegate sees a scroll view at rest and may start a new animation.
        m_animation = nullptr;
        if (!m_delegate)
            return;
        if (decelerating)
            m_delegate->scrollViewDidEndDecelerating(this);
        else
            m_delegate->scrollViewDidEndScrollingAnimation(this);
    });
    m_animation->start(QAbstractAnimation::DeleteWhenStopped);
}

bool ScrollView::stopScrolling()
{
    if (!m_animation)
        return false;
    m_animation->stop();
    m_animation = nullptr;
    return true;
}

void ScrollView::settle()
{
    if (m_dragging)
        return;
    animateOffset(releaseTarget(0), kDecelerationMs, true);
}

void ScrollView::keepAnimationInRange()
{
    if (!m_animation)
        return;
    const QPointF end = m_animation->endValue().toPointF();
    const QPointF inRange = clampedOffset(end);
    if (inRange != end)
        m_animation->setEndValue(inRange);
}

bool ScrollView::isDecelerating() const
{
    return m_animation && m_animationDecelerates;
}

void ScrollView::beginDragging(const QPointF &pressPosition, qint64 pressTime, Qt::Orientation axis)
{
    stopScrolling();
    m_wheelStrokeEnd.stop();
    m_wheelStroke = false;
    m_dragging = true;
    m_axis = axis;
    // A view that cannot move this way still takes the drag (its children lose the press).
    m_dragMoves = canScroll(axis);
    m_pressPosition = pressPosition;
    m_pressOffset = m_offset;
    m_velocity.reset();
    m_velocity.addSample(along(pressPosition), pressTime);
    if (m_delegate)
        m_delegate->scrollViewWillBeginDragging(this);
}

void ScrollView::dragTo(const QPointF &position, qint64 time)
{
    if (!m_dragging || m_wheelStroke)
        return;
    m_velocity.addSample(along(position), time);
    if (!m_dragMoves)
        return;
    const qreal moved = along(position - m_pressPosition);
    applyOffset(rubberBanded(withAlong(m_pressOffset, along(m_pressOffset) - moved)));
}

void ScrollView::endDragging(const QPointF &position, qint64 time)
{
    if (!m_dragging || m_wheelStroke)
        return;
    dragTo(position, time);
    // The content moves against the pointer.
    finishDragging(-m_velocity.velocity());
}

void ScrollView::endDraggingInPlace()
{
    if (!m_dragging || m_wheelStroke)
        return;
    finishDragging(0);
}

void ScrollView::finishDragging(qreal velocity)
{
    m_dragging = false;
    // Refresh actions and the delegate may delete this view.
    const QPointer<ScrollView> alive(this);
    // A header or footer pulled far enough begins refreshing and takes its room first, so the
    // content settles with it in view.
    if (m_header)
        m_header->scrollViewDidEndDragging();
    if (alive && m_footer)
        m_footer->scrollViewDidEndDragging();
    if (!alive)
        return;
    const bool willDecelerate = (releaseTarget(velocity) - m_offset).manhattanLength() >= kOffsetTolerance;
    if (m_delegate)
        m_delegate->scrollViewDidEndDragging(this, willDecelerate);
    if (!alive || !willDecelerate)
        return;
    // Asked again: the delegate may have resized the view.
    const QPointF target = releaseTarget(velocity);
    const qreal distance = std::abs(along(target - m_offset));
    const qreal speed = std::abs(velocity);
    const int duration = speed > kMinGlideVelocity
        ? qBound(kDecelerationMs, int(kEaseOutStartSpeedRatio * distance / speed), kMaxGlideMs)
        : kDecelerationMs;
    animateOffset(target, duration, true);
}

QPointF ScrollView::releaseTarget(qreal velocity) const
{
    const QPointF resting = clampedOffset(m_offset);
    const qreal current = along(m_offset);
    qreal target = current;
    if (m_pagingEnabled) {
        // Pages count from where the content rests at the start.
        const qreal origin = along(minimumContentOffset());
        const qreal page = qMax(1, m_axis == Qt::Vertical ? viewport()->height() : viewport()->width());
        const qreal position = (current - origin) / page;
        qreal index = std::round(position);
        if (velocity > kPageFlickVelocity)
            index = std::floor(position) + 1;
        else if (velocity < -kPageFlickVelocity)
            index = std::ceil(position) - 1;
        target = origin + index * page;
    } else if (along(resting) == current && std::abs(velocity) > kMinGlideVelocity) {
        target = current + velocity * kGlideMsPerVelocity;
    }
    return clampedOffset(withAlong(resting, target));
}

void ScrollView::setNeedsLayout()
{
    if (m_layoutPending)
        return;
    m_layoutPending = true;
    // Ahead of the paint that the same change asked for.
    QCoreApplication::postEvent(this, new QEvent(kLayoutEvent), Qt::HighEventPriority);
}

void ScrollView::layoutIfNeeded()
{
    if (!m_layoutPending)
        return;
    m_layoutPending = false;
    layoutSubviews();
}

bool ScrollView::event(QEvent *event)
{
    if (event->type() == kLayoutEvent) {
        layoutIfNeeded();
        return true;
    }
    return QAbstractScrollArea::event(event);
}

void ScrollView::mousePressEvent(QMouseEvent *event)
{
    // Drags never get here (ScrollGestureArbiter takes them): what arrives is a tap.
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    m_tapTracking = true;
}

void ScrollView::mouseReleaseEvent(QMouseEvent *event)
{
    if (!m_tapTracking || event->button() != Qt::LeftButton)
        return;
    m_tapTracking = false;
    if (viewport()->rect().contains(event->position().toPoint()))
        handleTap(event->position());
}

void ScrollView::beginWheelStroke(Qt::Orientation axis)
{
    stopScrolling();
    m_wheelStroke = true;
    m_dragging = true;
    m_axis = axis;
    m_wheelPosition = m_offset;
    m_wheelStart = m_offset;
    // Pulling past an edge is for content that rested there: a fast stroke that runs into
    // the top stops at it instead of refreshing by accident.
    m_wheelMayPassStart = along(m_offset) <= along(minimumContentOffset()) + kOffsetTolerance;
    m_wheelMayPassEnd = along(m_offset) >= along(maximumContentOffset()) - kOffsetTolerance;
    if (m_delegate)
        m_delegate->scrollViewWillBeginDragging(this);
}

void ScrollView::endWheelStroke()
{
    if (!m_wheelStroke)
        return;
    m_wheelStroke = false;
    // A stroke on a paging view turns the page its way, as a flick does.
    const qreal moved = along(m_offset - m_wheelStart);
    finishDragging(m_pagingEnabled && moved != 0 ? std::copysign(2 * kPageFlickVelocity, moved) : 0);
}

void ScrollView::wheelEvent(QWheelEvent *event)
{
    const QPointF delta = event->pixelDelta().isNull()
        ? QPointF(event->angleDelta()) / kDegreesPerNotch * kWheelPointsPerNotch
        : QPointF(event->pixelDelta());
    // Touchpads end their strokes with an empty event.
    if (event->phase() == Qt::ScrollEnd && m_wheelStroke) {
        event->accept();
        m_wheelStrokeEnd.stop();
        endWheelStroke();
        return;
    }
    const Qt::Orientation axis = std::abs(delta.y()) >= std::abs(delta.x()) ? Qt::Vertical : Qt::Horizontal;
    // Left to an enclosing scroll view: a vertical wheel over a horizontal strip scrolls the list.
    if (!canScroll(axis) || delta.isNull()) {
        event->ignore();
        return;
    }
    event->accept();
    if (m_dragging && !m_wheelStroke)
        return;
    if (!m_wheelStroke || m_axis != axis)
        beginWheelStroke(axis);
    const bool momentum = event->phase() == Qt::ScrollMomentum;
    qreal position = along(m_wheelPosition) - (axis == Qt::Vertical ? delta.y() : delta.x());
    const qreal start = along(minimumContentOffset());
    const qreal end = along(maximumContentOffset());
    if (position < start && (!m_wheelMayPassStart || momentum))
        position = start;
    if (position > end && (!m_wheelMayPassEnd || momentum))
        position = end;
    m_wheelPosition = withAlong(m_wheelPosition, position);
    applyOffset(rubberBanded(m_wheelPosition));
    if (event->phase() == Qt::ScrollEnd) {
        m_wheelStrokeEnd.stop();
        endWheelStroke();
    } else {
        m_wheelStrokeEnd.start();
    }
}

void ScrollView::keyPressEvent(QKeyEvent *event)
{
    const QPointF start = minimumContentOffset();
    const QPointF end = maximumContentOffset();
    const qreal page = qMax(kKeyLineStep, viewport()->height() - adjustedContentInset().top
                                              - adjustedContentInset().bottom - kKeyPageOverlap);
    QPointF target = m_animation ? m_animation->endValue().toPointF() : m_offset;
    switch (event->key()) {
    case Qt::Key_Up: target.ry() -= kKeyLineStep; break;
    case Qt::Key_Down: target.ry() += kKeyLineStep; break;
    case Qt::Key_PageUp: target.ry() -= page; break;
    case Qt::Key_PageDown: target.ry() += page; break;
    case Qt::Key_Home: target.setY(start.y()); break;
    case Qt::Key_End: target.setY(end.y()); break;
    default:
        QAbstractScrollArea::keyPressEvent(event);
        return;
    }
    if (!canScroll(Qt::Vertical)) {
        event->ignore();
        return;
    }
    setContentOffset(clampedOffset(target), true);
}

void ScrollView::resizeEvent(QResizeEvent *event)
{
    QAbstractScrollArea::resizeEvent(event);
    keepAnimationInRange();
    contentOffsetDidChange();
    placeRefreshControls();
    setNeedsLayout();
}
