#include "RefreshFooter.h"

#include "ScrollView.h"

RefreshFooter::RefreshFooter(RefreshingBlock block, QWidget *parent)
    : RefreshControl(kHeight, std::move(block), parent)
{
}

QString RefreshFooter::textForState(State state) const
{
    switch (state) {
    case State::Idle:
        return QStringLiteral("上拉可以加载更多");
    case State::Pulling:
        return QStringLiteral("松开立即加载更多");
    case State::Refreshing:
        return QStringLiteral("正在加载更多的数据...");
    }
    return {};
}

qreal RefreshFooter::contentTop() const
{
    const ScrollView *view = scrollView();
    const EdgeInsets inset = view->insetWithoutRefresh();
    return qMax(view->contentSize().height(), view->viewport()->height() - inset.top - inset.bottom);
}

qreal RefreshFooter::pullDistance() const
{
    const ScrollView *view = scrollView();
    if (!view)
        return 0;
    const EdgeInsets inset = view->insetWithoutRefresh();
    const qreal restingBottom = contentTop() + inset.bottom - view->viewport()->height();
    return view->contentOffset().y() - restingBottom;
}

QRectF RefreshFooter::frameInViewport() const
{
    const ScrollView *view = scrollView();
    return QRectF(0, contentTop() - view->contentOffset().y(),
                  view->viewport()->width(), kHeight);
}

void RefreshFooter::keepRoom(bool keep)
{
    ScrollView *view = scrollView();
    if (!view)
        return;
    const EdgeInsets inset = view->insetWithoutRefresh();
    const qreal shortfall = contentTop() - view->contentSize().height();
    view->setRefreshInset(view->adjustedContentInset().top - inset.top, keep ? kHeight + shortfall : 0);
    const qreal bottom = view->maximumContentOffset().y();
    if (!keep && view->contentOffset().y() > bottom)
        view->setContentOffset(QPointF(view->contentOffset().x(), bottom), true);
}
