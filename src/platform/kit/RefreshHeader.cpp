#include "RefreshHeader.h"

#include "ScrollView.h"

RefreshHeader::RefreshHeader(RefreshingBlock block, QWidget *parent)
    : RefreshControl(kHeight, std::move(block), parent)
{
}

QString RefreshHeader::textForState(State state) const
{
    switch (state) {
    case State::Idle:
        return QStringLiteral("下拉可以刷新");
    case State::Pulling:
        return QStringLiteral("松开立即刷新");
    case State::Refreshing:
        return QStringLiteral("正在刷新数据中...");
    }
    return {};
}

qreal RefreshHeader::pullDistance() const
{
    const ScrollView *view = scrollView();
    return view ? -view->contentOffset().y() - view->insetWithoutRefresh().top : 0;
}

QRectF RefreshHeader::frameInViewport() const
{
    const ScrollView *view = scrollView();
    return QRectF(0, -kHeight - view->contentOffset().y(), view->viewport()->width(), kHeight);
}

void RefreshHeader::keepRoom(bool keep)
{
    ScrollView *view = scrollView();
    if (!view)
        return;
    view->setRefreshInset(keep ? kHeight : 0, view->adjustedContentInset().bottom - view->insetWithoutRefresh().bottom);
    const qreal top = view->minimumContentOffset().y();
    // Showing: bring the header into view unless it is pulled there already. Hiding: give back
    // the room if it is still shown.
    if ((keep && view->contentOffset().y() > top && !view->isDragging()) || (!keep && view->contentOffset().y() < top))
        view->setContentOffset(QPointF(view->contentOffset().x(), top), true);
}
