#pragma once
// The push component's clock in normal runs: the system's time. Any thread.

#include "LFPushClock.h"

class LFPushSystemClock final : public LFPushClock
{
public:
    double now() const override;
};
