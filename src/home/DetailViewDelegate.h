#pragma once
// What the board's header card tells its owner: which of its two areas was tapped.
// Main thread.

class DetailViewDelegate
{
public:
    virtual ~DetailViewDelegate() = default;

    // `tag` is the tapped area's tag: 101 for the top-left area, 102 for the top-right one.
    virtual void back(int tag) = 0;
};
