#pragma once
// What the banner carousel tells its owner. Main thread.

class CircleView;

class CircleViewDelegate
{
public:
    virtual ~CircleViewDelegate() = default;

    // A picture was tapped; `index` counts the pictures from 0 in the order they were given.
    virtual void cycleScrollView(CircleView *view, int didSelectItemAtIndex) = 0;
};
