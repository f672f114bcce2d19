#include "LFPSession.h"

#include <algorithm>

void LFPSession::startSession(double now)
{
    startTime = now;
    durationTime = 0;
}

void LFPSession::stopSession(double now)
{
    // A clock set back never makes a negative duration.
    durationTime = std::max(0.0, now - startTime);
}
