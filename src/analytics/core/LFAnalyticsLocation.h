#pragma once
// The last location the app reported, attached to the next session-end record only.
// Any thread; guarded by a lock.

#include <QMutex>

class LFAnalyticsContext;

class LFAnalyticsLocation
{
public:
    struct Fix
    {
        double latitude = 0;
        double longitude = 0;
        double timestamp = 0;   // seconds since 1970
    };

    explicit LFAnalyticsLocation(LFAnalyticsContext &context);

    static LFAnalyticsLocation &shared();

    // A fix taken now.
    void setLatitude(double latitude, double longitude);
    void setLocation(const Fix &fix);
    Fix location() const;
    // Hands out the fix when both coordinates are set, and forgets the coordinates.
    bool takeLocation(Fix &fix);

private:
    LFAnalyticsContext &m_context;
    mutable QMutex m_mutex;
    Fix m_fix;
};
