#pragma once
// The foreground/background life cycle: session start and end, session ids and durations.
// Any thread; fields are guarded by a lock. Work it triggers runs on the main thread.

#include <QMutex>
#include <QString>

#include <cstdint>

class LFAnalyticsContext;

class LFAnalyticsSession
{
public:
    enum Status : int32_t { NeverStarted = 0, Active = 1, Ended = 2 };
    // A session left open this long is recorded as kLongSessionRecorded, by design.
    static constexpr double kLongSession = 7200;
    static constexpr double kLongSessionRecorded = 3600;

    explicit LFAnalyticsSession(LFAnalyticsContext &context);

    static LFAnalyticsSession &shared();

    // Session start (the app became active).
    void appActivate();
    // Session end (the app resigns active or terminates).
    void appInactivate(bool terminating = false);
    // Observes the application's life cycle; once per component.
    void registerObservers();

    bool observerRegistered() const;
    bool appInBackGround() const;
    bool appBeKilling() const;
    bool appCrashed() const;
    void setAppCrashed(bool crashed);
    int32_t sessionStatus() const;
    double lastLaunchTime() const;

    // Seconds since the session began, by the long-session rule.
    double currentSessionDuration() const;
    static double recordedDuration(double seconds);
    // Starts a new session time: a new session id and a launch time of now.
    void beginNewSessionTime();
    // MD5 of the time, application key and two random numbers, as hexadecimal text.
    QString generateSessionId() const;

private:
    LFAnalyticsContext &m_context;
    mutable QMutex m_mutex;
    bool m_observerRegistered = false;
    bool m_appInBackGround = false;
    bool m_appBeKilling = false;
    bool m_appCrashed = false;
    int32_t m_sessionStatus = NeverStarted;
    double m_lastLaunchTime = 0;
};
