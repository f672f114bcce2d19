#pragma once
// What the new-topic screen tells the screen that opened it. Main thread.

#include <QtGlobal>

class ReleaseViewControllerDelegate
{
public:
    virtual ~ReleaseViewControllerDelegate() = default;

    // A topic was sent; `value` is ReleaseViewController::kPublishedValue.
    virtual void passValue(qint64 value) = 0;
};
