#include "ScreenshotTaker.h"

#include "HttpSessionManager.h"
#include "Window.h"

#include <QCoreApplication>

#include <cstdio>

ScreenshotTaker::ScreenshotTaker(Window *window, QString path, std::function<void()> beforeShot, QObject *parent)
    : QObject(parent), m_window(window), m_path(std::move(path)), m_beforeShot(std::move(beforeShot))
{
    m_timer.setInterval(kPollMs);
    connect(&m_timer, &QTimer::timeout, this, &ScreenshotTaker::poll);
}

void ScreenshotTaker::start()
{
    m_sinceStart.start();
    m_timer.start();
}

void ScreenshotTaker::poll()
{
    const bool idle = HttpSessionManager::requestsInFlight() == 0;
    if (idle && !m_quiet)
        m_quietFor.start();
    m_quiet = idle;
    if ((idle && m_quietFor.elapsed() >= kQuietMs) || m_sinceStart.elapsed() >= kLimitMs)
        settled();
}

void ScreenshotTaker::settled()
{
    if (m_beforeShot) {
        const std::function<void()> action = std::exchange(m_beforeShot, {});
        action();
        m_quiet = false;
        m_sinceStart.start();
        return;
    }
    m_timer.stop();
    const bool saved = m_window->grabToPng(m_path);
    if (!saved)
        std::fprintf(stderr, "could not save the screenshot to %s\n", qPrintable(m_path));
    QCoreApplication::exit(saved ? 0 : 1);
}
