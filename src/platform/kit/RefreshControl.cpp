#include "RefreshControl.h"

#include "Fonts.h"
#include "ScrollView.h"

#include <QFontMetricsF>
#include <QPainter>

static_assert(RefreshControl::kSlideInMs == ScrollView::kDecelerationMs,
              "the action runs once the slide-in has ended");

namespace {
constexpr int kTextFontSize = 14;
const QColor kTextColor(90, 90, 90);
constexpr qreal kSpinnerDiameter = 18;
constexpr qreal kSpinnerGap = 12;
constexpr int kSpinIntervalMs = 50;
constexpr int kSpinStepDegrees = 30;
} // namespace

RefreshControl::RefreshControl(qreal height, RefreshingBlock block, QWidget *parent)
    : View(parent), m_height(height), m_block(std::move(block))
{
    m_spinTimer.setInterval(kSpinIntervalMs);
    connect(&m_spinTimer, &QTimer::timeout, this, [this] {
        m_spinAngle = (m_spinAngle + kSpinStepDegrees) % 360;
        update();
    });
}

void RefreshControl::attach(ScrollView *scrollView)
{
    m_scrollView = scrollView;
    // A short list must still be pullable.
    if (scrollView)
        scrollView->setAlwaysBounceVertical(true);
}

void RefreshControl::setAutomaticallyChangeAlpha(bool changes)
{
    m_changesAlpha = changes;
    update();
}

void RefreshControl::beginRefreshing()
{
    if (m_state == State::Refreshing)
        return;
    setState(State::Refreshing);
    keepRoom(true);
    // Runs even when refreshing ended meanwhile, as a begun refresh always does; not once the
    // control is gone.
    QTimer::singleShot(kSlideInMs, this, [this] {
        if (m_block)
            m_block();
    });
}

void RefreshControl::endRefreshing()
{
    if (m_state != State::Refreshing)
        return;
    setState(State::Idle);
    keepRoom(false);
}

void RefreshControl::setState(State state)
{
    if (state == m_state)
        return;
    m_state = state;
    if (state == State::Refreshing)
        m_spinTimer.start();
    else
        m_spinTimer.stop();
    update();
    emit stateChanged(state);
}

void RefreshControl::scrollViewDidChange()
{
    if (!m_scrollView)
        return;
    setFrame(frameInViewport());
    if (m_state == State::Refreshing)
        return;
    if (m_scrollView->isDragging())
        setState(pullDistance() >= m_height ? State::Pulling : State::Idle);
    if (m_changesAlpha)
        update();
}

void RefreshControl::scrollViewDidEndDragging()
{
    if (m_state == State::Pulling)
        beginRefreshing();
}

void RefreshControl::paintEvent(QPaintEvent *event)
{
    View::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (m_changesAlpha && m_state != State::Refreshing)
        painter.setOpacity(qBound<qreal>(0, pullDistance() / m_height, 1));
    const QFont font = Fonts::systemFontOfSize(kTextFontSize);
    const QString text = stateText();
    const qreal textWidth = QFontMetricsF(font).horizontalAdvance(text);
    painter.setFont(font);
    painter.setPen(kTextColor);
    painter.drawText(QRectF(0, 0, width(), height()), Qt::AlignCenter, text);
    if (m_state != State::Refreshing)
        return;
    const QRectF spinner((width() - textWidth) / 2 - kSpinnerGap - kSpinnerDiameter,
                         (height() - kSpinnerDiameter) / 2, kSpinnerDiameter, kSpinnerDiameter);
    painter.setPen(QPen(kTextColor, 2));
    painter.drawArc(spinner, -m_spinAngle * 16, 270 * 16);
}
