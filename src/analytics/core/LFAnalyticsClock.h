#pragma once
// The one source of time, randomness and delayed work for the analytics component, so tests
// and tools can run hours of it at once. Any thread; delayed work runs on the main thread.

#include <QMutex>
#include <QObject>
#include <QPointer>
#include <QRandomGenerator>

#include <functional>
#include <map>

class LFAnalyticsClock
{
public:
    virtual ~LFAnalyticsClock() = default;

    // Seconds since 1970.
    virtual double now() const = 0;
    virtual uint32_t random32() = 0;
    // Runs `task` on the main thread once `seconds` have passed, unless `owner` (an object on
    // the main thread that outlives whatever the task touches) is gone by then.
    virtual void runAfter(double seconds, QObject *owner, std::function<void()> task) = 0;

    // A number from `from` to `to`, both included; `from` when the range is empty.
    uint32_t randomNumFrom(uint32_t from, uint32_t to);
};

// Wall-clock time, the system's random source and real timers. Without an application object
// there is no event loop to wait in, so delayed work runs at once.
class LFSystemClock final : public LFAnalyticsClock
{
public:
    double now() const override;
    uint32_t random32() override;
    void runAfter(double seconds, QObject *owner, std::function<void()> task) override;
};

// Time that moves only when told, a seeded random source, and delayed work that runs when
// the time passes its moment (on the thread that advances the clock).
class LFManualClock final : public LFAnalyticsClock
{
public:
    explicit LFManualClock(double start, quint32 seed = 1);

    double now() const override;
    uint32_t random32() override;
    void runAfter(double seconds, QObject *owner, std::function<void()> task) override;

    void setNow(double seconds);
    void advance(double seconds);
    int pendingTasks() const;

private:
    mutable QMutex m_mutex;
    double m_now;
    QRandomGenerator m_random;
    struct Task
    {
        QPointer<QObject> owner;
        std::function<void()> run;
    };
    std::multimap<double, Task> m_tasks;
};
