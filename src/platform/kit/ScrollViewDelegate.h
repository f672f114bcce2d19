#pragma once
// What a scroll view tells its delegate; every operation is optional. Main thread.

class ScrollView;

class ScrollViewDelegate
{
public:
    virtual ~ScrollViewDelegate() = default;

    virtual void scrollViewDidScroll(ScrollView *) {}
    virtual void scrollViewWillBeginDragging(ScrollView *) {}
    // The finger lifted after a drag; `willDecelerate` when the content keeps moving (bouncing
    // back into range or settling on a page).
    virtual void scrollViewDidEndDragging(ScrollView *, bool /*willDecelerate*/) {}
    virtual void scrollViewDidEndDecelerating(ScrollView *) {}
    virtual void scrollViewDidEndScrollingAnimation(ScrollView *) {}
};
