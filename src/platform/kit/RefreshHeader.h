#pragma once
// Pull-down refresh header: sits above the content; pulled down past its height and let go,
// it begins refreshing and keeps itself in view until endRefreshing(). Main thread.

#include "RefreshControl.h"

class RefreshHeader : public RefreshControl
{
    Q_OBJECT
public:
    static constexpr qreal kHeight = 54;

    explicit RefreshHeader(RefreshingBlock block = {}, QWidget *parent = nullptr);
    template <class Target>
    RefreshHeader(Target *target, void (Target::*action)(), QWidget *parent = nullptr) : RefreshHeader({}, parent)
    {
        setRefreshingTarget(target, action);
    }

protected:
    QString textForState(State state) const override;
    qreal pullDistance() const override;
    QRectF frameInViewport() const override;
    void keepRoom(bool keep) override;
};
