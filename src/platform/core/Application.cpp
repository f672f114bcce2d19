#include "Application.h"

#include <QCoreApplication>
#include <QGuiApplication>

Application &Application::shared()
{
    static Application *application = new Application;
    return *application;
}

Application::Application()
{
    if (auto *gui = qobject_cast<QGuiApplication *>(QCoreApplication::instance())) {
        connect(gui, &QGuiApplication::applicationStateChanged, this, &Application::applicationStateChanged);
        m_state = QGuiApplication::applicationState();
    }
    if (QCoreApplication::instance())
        connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this, &Application::aboutToQuit);
}

void Application::setDelegate(ApplicationDelegate *delegate)
{
    m_delegate = delegate;
}

bool Application::launch(const LaunchOptions &options)
{
    if (!m_delegate)
        return false;
    m_launched = true;
    return m_delegate->didFinishLaunchingWithOptions(options);
}

void Application::applicationStateChanged(Qt::ApplicationState state)
{
    const Qt::ApplicationState previous = std::exchange(m_state, state);
    if (!m_delegate || !m_launched || previous == state)
        return;
    // Hidden and suspended count as the background; inactive sits between active and background.
    const auto background = [](Qt::ApplicationState s) { return s == Qt::ApplicationHidden || s == Qt::ApplicationSuspended; };
    if (previous == Qt::ApplicationActive)
        m_delegate->applicationWillResignActive();
    if (background(state) && !background(previous))
        m_delegate->applicationDidEnterBackground();
    if (background(previous) && !background(state))
        m_delegate->applicationWillEnterForeground();
    if (state == Qt::ApplicationActive)
        m_delegate->applicationDidBecomeActive();
}

void Application::aboutToQuit()
{
    if (m_delegate && m_launched)
        m_delegate->applicationWillTerminate();
}
