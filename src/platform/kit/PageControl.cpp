#include "PageControl.h"

#include <QMouseEvent>
#include <QPainter>

namespace {
constexpr qreal kDotDiameter = 7;
constexpr qreal kDotSpacing = 9;
} // namespace

PageControl::PageControl(QWidget *parent) : View(parent) {}

PageControl::PageControl(const QRectF &frame, QWidget *parent) : PageControl(parent)
{
    setFrame(frame);
}

void PageControl::setNumberOfPages(int pages)
{
    m_numberOfPages = qMax(0, pages);
    m_currentPage = qBound(0, m_currentPage, qMax(0, m_numberOfPages - 1));
    update();
}

void PageControl::setCurrentPage(int page)
{
    m_currentPage = qBound(0, page, qMax(0, m_numberOfPages - 1));
    update();
}

void PageControl::setPageIndicatorTintColor(const QColor &color)
{
    m_dotColor = color;
    update();
}

void PageControl::setCurrentPageIndicatorTintColor(const QColor &color)
{
    m_currentDotColor = color;
    update();
}

void PageControl::setHidesForSinglePage(bool hides)
{
    m_hidesForSinglePage = hides;
    update();
}

void PageControl::paintEvent(QPaintEvent *event)
{
    View::paintEvent(event);
    if (m_numberOfPages == 0 || (m_hidesForSinglePage && m_numberOfPages == 1))
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const qreal total = m_numberOfPages * kDotDiameter + (m_numberOfPages - 1) * kDotSpacing;
    qreal x = (width() - total) / 2;
    const qreal y = (height() - kDotDiameter) / 2;
    for (int page = 0; page < m_numberOfPages; ++page) {
        painter.setBrush(page == m_currentPage ? m_currentDotColor : m_dotColor);
        painter.drawEllipse(QRectF(x, y, kDotDiameter, kDotDiameter));
        x += kDotDiameter + kDotSpacing;
    }
}

void PageControl::mousePressEvent(QMouseEvent *event)
{
    event->accept();
}

void PageControl::mouseReleaseEvent(QMouseEvent *event)
{
    if (m_numberOfPages < 2)
        return;
    const int step = event->position().x() < width() / 2 ? -1 : 1;
    const int page = qBound(0, m_currentPage + step, m_numberOfPages - 1);
    if (page == m_currentPage)
        return;
    m_currentPage = page;
    update();
    emit valueChanged();
}
