#pragma once
// Waiting helpers for tests of asynchronous code that calls back on the main thread.

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>

#include <functional>

namespace testsupport {

// Runs the event loop until `done` holds or `timeoutMs` passes; returns whether it held.
inline bool waitUntil(const std::function<bool()> &done, int timeoutMs = 5000)
{
    QDeadlineTimer deadline(timeoutMs);
    while (!done()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    return true;
}

// Runs the event loop for `ms` milliseconds, for checking that something does NOT happen.
inline void spinFor(int ms)
{
    QDeadlineTimer deadline(ms);
    while (!deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
}

} // namespace testsupport
