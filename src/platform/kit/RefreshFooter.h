#pragma once
// Pull-up refresh footer that sits below the last row: pulled up past its height and let go,
// it begins refreshing (typically loading the next page) and stays in view until
// endRefreshing(). Main thread.

#include "RefreshControl.h"

class RefreshFooter : public RefreshControl
{
    Q_OBJECT
public:
    static constexpr qreal kHeight = 44;

    explicit RefreshFooter(RefreshingBlock block = {}, QWidget *parent = nullptr);

protected:
    QString textForState(State state) const override;
    qreal pullDistance() const override;
    QRectF frameInViewport() const override;
    void keepRoom(bool keep) override;

private:
    // Where the footer starts, in content coordinates: under the content, or at the bottom of
    // the visible area when the content is shorter.
    qreal contentTop() const;
};
