#include "SettleWatcher.h"

#include "HttpSessionManager.h"
#include "ImageLoader.h"

SettleWatcher::SettleWatcher(QObject *parent) : QObject(parent)
{
    m_timer.setInterval(kPollMs);
    connect(&m_timer, &QTimer::timeout, this, &SettleWatcher::poll);
}

void SettleWatcher::start(std::function<void(bool timedOut)> settled)
{
    m_settled = std::move(settled);
    m_quiet = false;
    m_sinceStart.start();
    m_timer.start();
}

void SettleWatcher::poll()
{
    const bool idle = HttpSessionManager::requestsInFlight() == 0 && ImageLoader::shared().loadsInFlight() == 0;
    if (idle && !m_quiet)
        m_quietFor.start();
    m_quiet = idle;
    const bool settled = idle && m_quietFor.elapsed() >= kQuietMs;
    const bool timedOut = m_sinceStart.elapsed() >= kLimitMs;
    if (!settled && !timedOut)
        return;
    m_timer.stop();
    if (const std::function<void(bool)> done = std::exchange(m_settled, {}))
        done(!settled);
}
