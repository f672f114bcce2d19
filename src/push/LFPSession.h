#pragma once
// Times a session opened from a notification. Plain value; main thread.

#include "LFPMessage.h"

class LFPSession
{
public:
    LFPSession() = default;
    explicit LFPSession(LFPMessage message) : message(std::move(message)) {}

    void startSession(double now);
    void stopSession(double now);
    // Seconds from start to stop (or 0 before a stop).
    double duration() const { return durationTime; }

    LFPMessage message;
    double startTime = 0;
    double durationTime = 0;
};
