#pragma once
// Common part of the pull-to-refresh controls: the state (idle, pulling far enough, refreshing),
// the action run when refreshing begins (a block, or a target and member function), a short
// state text with a spinner, and the link to the scroll view that owns the control. Beginning
// to refresh shows the control at once and runs the action after its slide-in, once control
// has returned to the event loop, so requests the caller sends right after beginRefreshing()
// go out before the action's; beginning again while refreshing does nothing. Main thread.

#include "View.h"

#include <QPointer>
#include <QTimer>

#include <functional>

class ScrollView;

class RefreshControl : public View
{
    Q_OBJECT
public:
    enum class State { Idle = 1, Pulling = 2, Refreshing = 3 };
    // How long the control takes to slide into view before its action runs: the scroll
    // view's settling time.
    static constexpr int kSlideInMs = 250;
    using RefreshingBlock = std::function<void()>;

    void setRefreshingBlock(RefreshingBlock block) { m_block = std::move(block); }
    // The action runs only while `target` exists.
    template <class Target>
    void setRefreshingTarget(Target *target, void (Target::*action)())
    {
        QPointer<Target> guard(target);
        m_block = [guard, action] {
            if (guard)
                (guard.data()->*action)();
        };
    }

    void beginRefreshing();
    void endRefreshing();
    bool isRefreshing() const { return m_state == State::Refreshing; }
    State state() const { return m_state; }
    QString stateText() const { return textForState(m_state); }
    qreal controlHeight() const { return m_height; }

    // Fades the control in with the pull while idle.
    void setAutomaticallyChangeAlpha(bool changes);
    bool automaticallyChangeAlpha() const { return m_changesAlpha; }

    ScrollView *scrollView() const { return m_scrollView; }

    // Called by the owning scroll view.
    void attach(ScrollView *scrollView);
    void scrollViewDidChange();
    void scrollViewDidEndDragging();

signals:
    void stateChanged(RefreshControl::State state);

protected:
    RefreshControl(qreal height, RefreshingBlock block, QWidget *parent);

    virtual QString textForState(State state) const = 0;
    // How far the content is pulled past the control's edge.
    virtual qreal pullDistance() const = 0;
    // The control's place in the scroll view's viewport.
    virtual QRectF frameInViewport() const = 0;
    // Keeps (or gives back) the room that shows the control while it refreshes.
    virtual void keepRoom(bool keep) = 0;

    void paintEvent(QPaintEvent *event) override;

private:
    void setState(State state);

    qreal m_height;
    RefreshingBlock m_block;
    State m_state = State::Idle;
    QPointer<ScrollView> m_scrollView;
    bool m_changesAlpha = false;
    QTimer m_spinTimer;
    int m_spinAngle = 0;
};
