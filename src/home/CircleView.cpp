#include "CircleView.h"

#include "ImageView.h"
#include "PageControl.h"
#include "ScrollView.h"
#include "TapGestureRecognizer.h"
#include "UIColorAdd.h"

#include <QTimer>
#include <QUrl>

#include <cmath>

namespace {

const QString kCurrentDotColor = QStringLiteral("ffdf00");
const QString kDotColor = QStringLiteral("81878f");
constexpr qreal kDotsInset = 100;
constexpr qreal kDotsHeight = 20;
// Offsets are fractional after animations; within this they count as the same page position.
constexpr qreal kOffsetTolerance = 0.5;

} // namespace

CircleView::CircleView(const QRectF &frame, int count, QWidget *parent)
    : View(frame, parent), m_count(qMax(0, count))
{
    const qreal w = frame.width();
    const qreal h = frame.height();
    const int pages = m_count + 2;

    m_scrollV = new ScrollView(QRectF(0, 0, w, h));
    m_scrollV->setContentOffset(QPointF(w, 0), false);
    m_scrollV->setPagingEnabled(true);
    m_scrollV->setDelegate(this);
    m_scrollV->setContentSize(QSizeF(pages * w, h));
    m_scrollV->setBackgroundColor(Qt::white);

    for (int page = 0; page < pages; ++page) {
        auto *photo = new ImageView(QRectF(page * w, 0, w, h));
        photo->setUserInteractionEnabled(true);
        new TapGestureRecognizer(photo, [this, page](TapGestureRecognizer *) { tapPage(page); });
        m_scrollV->addSubview(photo);
        m_photoArray.append(photo);
    }

    m_pageC = new PageControl(QRectF(kDotsInset, h - kDotsHeight, w - 2 * kDotsInset, kDotsHeight));
    m_pageC->setCurrentPageIndicatorTintColor(UIColorAdd::colorWithHexString(kCurrentDotColor));
    m_pageC->setPageIndicatorTintColor(UIColorAdd::colorWithHexString(kDotColor));
    m_pageC->setNumberOfPages(m_count);
    m_pageC->setCurrentPage(0);
    connect(m_pageC, &PageControl::valueChanged, this, &CircleView::changeAction);

    addSubview(m_scrollV);
    addSubview(m_pageC);
    // A single picture shows no dots.
    m_pageC->setVisible(m_count != 1);

    startTimerFiredAtOnce();

    m_observing = true;
}

CircleView::~CircleView()
{
    m_observing = false;
    m_photoArray.clear();
}

void CircleView::setImageIndex(int imageIndex)
{
    m_imageIndex = imageIndex;
    if (m_observing)
        observeImageIndex(imageIndex);
}

void CircleView::observeImageIndex(int value)
{
    if (value == 0 || value == kTimerRestartIndex)
        restartTimer();
}

void CircleView::restartTimer()
{
    m_timer->stop();
    m_timer->deleteLater();
    startTimerFiredAtOnce();
}

void CircleView::startTimerFiredAtOnce()
{
    m_timer = new QTimer(this);
    m_timer->setInterval(kAdvanceMs);
    connect(m_timer, &QTimer::timeout, this, &CircleView::exchangePages);
    m_timer->start();
    exchangePages();
}

void CircleView::getDataFromArray(const QStringList &array)
{
    const int pages = static_cast<int>(m_photoArray.size());
    for (int page = 0; page < pages; ++page) {
        QString address;
        if (!array.isEmpty())
            address = page == 0 ? array.last() : page == pages - 1 ? array.first() : array.value(page - 1);
        m_photoArray[page]->setImageWithURL(QUrl(address), QString::fromLatin1(kPlaceholderName));
    }
}

qreal CircleView::pageWidth() const
{
    return m_scrollV->frame().width();
}

void CircleView::exchangePages()
{
    // The phone's run loop holds timers while a finger moves a scroll view; a tick that would
    // fight a swipe is dropped and the next one comes as usual.
    if (m_scrollV->isDragging() || m_scrollV->isDecelerating())
        return;
    const qreal w = pageWidth();
    const qreal x = m_scrollV->contentOffset().x();
    if (std::abs(x - m_count * w) < kOffsetTolerance) {
        m_scrollV->setContentOffset(QPointF(0, 0), false);
        setImageIndex(0);
        return;
    }
    setImageIndex(m_imageIndex + 1);
    m_pageC->setCurrentPage(m_imageIndex - 1);
    m_scrollV->setContentOffset(QPointF((m_pageC->currentPage() + 1) * w, 0), true);
}

void CircleView::changeAction()
{
    const int dot = m_pageC->currentPage();
    m_scrollV->setContentOffset(QPointF((dot + 1) * pageWidth(), 0), true);
    setImageIndex(dot + 1);
}

void CircleView::scrollViewDidEndDecelerating(ScrollView *scrollView)
{
    const qreal w = pageWidth();
    const qreal q = scrollView->contentOffset().x() / w;
    if (q > m_count) {
        scrollView->setContentOffset(QPointF(w, 0), false);
        m_pageC->setCurrentPage(0);
    } else if (q < 1) {
        scrollView->setContentOffset(QPointF(m_count * w, 0), false);
        m_pageC->setCurrentPage(m_count - 1);
    } else {
        m_pageC->setCurrentPage(static_cast<int>(q) - 1);
    }
    setImageIndex(m_pageC->currentPage() + 1);
}

int CircleView::itemIndexOfPage(int page) const
{
    if (m_count == 0)
        return -1;
    if (page <= 0)
        return m_count - 1;
    if (page > m_count)
        return 0;
    return page - 1;
}

int CircleView::currentItemIndex() const
{
    const int page = static_cast<int>(std::lround(m_scrollV->contentOffset().x() / pageWidth()));
    return itemIndexOfPage(page);
}

void CircleView::tapPage(int page)
{
    const int index = itemIndexOfPage(page);
    if (index >= 0 && m_delegate)
        m_delegate->cycleScrollView(this, index);
}
