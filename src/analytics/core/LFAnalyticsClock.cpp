#include "LFAnalyticsClock.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QMutexLocker>
#include <QTimer>

#include <cmath>

uint32_t LFAnalyticsClock::randomNumFrom(uint32_t from, uint32_t to)
{
    if (to <= from)
        return from;
    const uint64_t span = uint64_t(to) - from + 1;
    return from + uint32_t(random32() % span);
}

double LFSystemClock::now() const
{
    return double(QDateTime::currentMSecsSinceEpoch()) / 1000.0;
}

uint32_t LFSystemClock::random32()
{
    return QRandomGenerator::global()->generate();
}

void LFSystemClock::runAfter(double seconds, QObject *owner, std::function<void()> task)
{
    if (!QCoreApplication::instance()) {
        // Dropping the task would leave whoever waits for it waiting for good.
        task();
        return;
    }
    const int ms = int(std::clamp(seconds * 1000.0, 0.0, double(INT_MAX)));
    // The timer starts on the owner's thread and dies with the owner, and the task with it.
    QMetaObject::invokeMethod(owner, [ms, owner, task = std::move(task)] {
        QTimer::singleShot(ms, owner, task);
    }, Qt::QueuedConnection);
}

LFManualClock::LFManualClock(double start, quint32 seed)
    : m_now(start), m_random(seed)
{
}

double LFManualClock::now() const
{
    QMutexLocker lock(&m_mutex);
    return m_now;
}

uint32_t LFManualClock::random32()
{
    QMutexLocker lock(&m_mutex);
    return m_random.generate();
}

void LFManualClock::runAfter(double seconds, QObject *owner, std::function<void()> task)
{
    QMutexLocker lock(&m_mutex);
    m_tasks.emplace(m_now + seconds, Task{owner, std::move(task)});
}

void LFManualClock::setNow(double seconds)
{
    {
        QMutexLocker lock(&m_mutex);
        m_now = seconds;
    }
    // Due tasks run outside the lock: they read the clock themselves.
    for (;;) {
        Task task;
        {
            QMutexLocker lock(&m_mutex);
            auto due = m_tasks.begin();
            if (due == m_tasks.end() || due->first > m_now)
                return;
            task = std::move(due->second);
            m_tasks.erase(due);
        }
        if (task.owner)
            task.run();
    }
}

void LFManualClock::advance(double seconds)
{
    setNow(now() + seconds);
}

int LFManualClock::pendingTasks() const
{
    QMutexLocker lock(&m_mutex);
    return int(m_tasks.size());
}
