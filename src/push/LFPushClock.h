#pragma once
// The push component's source of time, injectable so tests can move through days.
// Any thread.

#include <QString>

class LFPushClock
{
public:
    virtual ~LFPushClock() = default;
    // Seconds since 1970.
    virtual double now() const = 0;
    // Today's date text in local time ("2026-11-23"): a report is done for the day while the
    // text it was stored with is still today's.
    QString dateText() const;
};
