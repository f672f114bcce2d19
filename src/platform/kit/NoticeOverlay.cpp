#include "NoticeOverlay.h"

#include "Fonts.h"
#include "ViewSupport.h"
#include "Window.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QTimer>

namespace {
constexpr int kFontSize = 16;
constexpr qreal kPadding = 20;
constexpr qreal kCornerRadius = 8;
constexpr qreal kMaximumWidthShare = 0.8;
const QColor kBoxColor(0, 0, 0, 204);
const QColor kTextColor(Qt::white);
} // namespace

NoticeOverlay::NoticeOverlay(QWidget *host) : View(host)
{
    setUserInteractionEnabled(false);
}

NoticeOverlay *NoticeOverlay::showHUDAddedTo(QWidget *host, bool)
{
    if (!host)
        return nullptr;
    auto *notice = new NoticeOverlay(host);
    if (auto *window = qobject_cast<Window *>(host))
        window->addOverlayView(notice);
    else
        ViewSupport::addSubview(host, notice);
    notice->place();
    return notice;
}

NoticeOverlay *NoticeOverlay::showText(QWidget *view, const QString &text, double seconds)
{
    Window *window = Window::of(view);
    if (!window)
        return nullptr;
    NoticeOverlay *notice = showHUDAddedTo(window);
    notice->setLabelText(text);
    notice->hideAfterDelay(seconds);
    return notice;
}

void NoticeOverlay::setLabelText(const QString &text)
{
    m_text = text;
    place();
    update();
}

void NoticeOverlay::hideAfterDelay(double seconds)
{
    QTimer::singleShot(qMax(0, int(seconds * 1000)), this, [this] { hide(); });
}

void NoticeOverlay::hide(bool)
{
    if (m_hiding)
        return;
    m_hiding = true;
    QWidget::hide();
    emit hidden();
    deleteLater();
}

void NoticeOverlay::place()
{
    const QWidget *host = parentWidget();
    if (!host)
        return;
    const QFont font = Fonts::systemFontOfSize(kFontSize);
    const QFontMetricsF metrics(font);
    const qreal maximumTextWidth = host->width() * kMaximumWidthShare - 2 * kPadding;
    const QRectF textBounds =
        metrics.boundingRect(QRectF(0, 0, maximumTextWidth, 1e4), Qt::TextWordWrap | Qt::AlignCenter, m_text);
    const QSizeF size(textBounds.width() + 2 * kPadding, textBounds.height() + 2 * kPadding);
    setFrame(QRectF(QPointF((host->width() - size.width()) / 2, (host->height() - size.height()) / 2), size));
}

void NoticeOverlay::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(kBoxColor);
    painter.drawRoundedRect(rect(), kCornerRadius, kCornerRadius);
    painter.setFont(Fonts::systemFontOfSize(kFontSize));
    painter.setPen(kTextColor);
    painter.drawText(QRectF(rect()).adjusted(kPadding, kPadding, -kPadding, -kPadding),
                     Qt::TextWordWrap | Qt::AlignCenter, m_text);
}
