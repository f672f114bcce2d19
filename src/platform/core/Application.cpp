#include "Application.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QPointer>

namespace {
const QString kNoNotificationService = QStringLiteral("remote notifications are not available on this system");
}

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
    if (previous == Qt::ApplicationActive) {
        m_delegate->applicationWillResignActive();
        emit willResignActive();
    }
    if (background(state) && !background(previous))
        m_delegate->applicationDidEnterBackground();
    if (background(previous) && !background(state))
        m_delegate->applicationWillEnterForeground();
    if (state == Qt::ApplicationActive) {
        m_delegate->applicationDidBecomeActive();
        emit didBecomeActive();
    }
}

void Application::aboutToQuit()
{
    if (m_delegate && m_launched)
        m_delegate->applicationWillTerminate();
}

void Application::setRemoteNotificationService(RemoteNotificationService *service)
{
    m_notificationService = service;
}

void Application::registerForRemoteNotifications()
{
    if (!m_notificationService) {
        // Answered from the event loop, as a service would.
        QMetaObject::invokeMethod(this, [this] { registrationFinished({}, kNoNotificationService); },
                                  Qt::QueuedConnection);
        return;
    }
    QPointer<Application> self(this);
    m_notificationService->registerForRemoteNotifications(
        [self](const QByteArray &deviceToken, const QString &error) {
            if (self)
                self->registrationFinished(deviceToken, error);
        });
}

void Application::registerUserNotificationSettings(const UserNotificationSettings &settings)
{
    if (m_notificationService)
        m_notificationService->registerUserNotificationSettings(settings);
}

UserNotificationSettings Application::currentUserNotificationSettings() const
{
    return m_notificationService ? m_notificationService->currentUserNotificationSettings()
                                 : UserNotificationSettings{};
}

bool Application::respondsToRegisterUserNotificationSettings() const
{
    return m_notificationService && m_notificationService->supportsUserNotificationSettings();
}

void Application::registerForRemoteNotificationTypes(int types)
{
    registerUserNotificationSettings({types, {}});
    registerForRemoteNotifications();
}

int Application::enabledRemoteNotificationTypes() const
{
    return isRegisteredForRemoteNotifications() ? currentUserNotificationSettings().types : 0;
}

void Application::unregisterForRemoteNotifications()
{
    if (m_notificationService)
        m_notificationService->unregisterForRemoteNotifications();
}

bool Application::isRegisteredForRemoteNotifications() const
{
    return m_notificationService && m_notificationService->isRegisteredForRemoteNotifications();
}

void Application::addRegistrationObserver(RemoteNotificationRegistrationObserver *observer)
{
    if (!m_registrationObservers.contains(observer))
        m_registrationObservers.append(observer);
}

void Application::removeRegistrationObserver(RemoteNotificationRegistrationObserver *observer)
{
    m_registrationObservers.removeAll(observer);
}

void Application::registrationFinished(const QByteArray &deviceToken, const QString &error)
{
    // A copy: an observer may remove itself while being told.
    const QList<RemoteNotificationRegistrationObserver *> observers = m_registrationObservers;
    for (RemoteNotificationRegistrationObserver *observer : observers) {
        if (error.isEmpty())
            observer->didRegisterForRemoteNotificationsWithDeviceToken(deviceToken);
        else
            observer->didFailToRegisterForRemoteNotificationsWithError(error);
    }
    if (!m_delegate)
        return;
    if (error.isEmpty())
        m_delegate->didRegisterForRemoteNotificationsWithDeviceToken(deviceToken);
    else
        m_delegate->didFailToRegisterForRemoteNotificationsWithError(error);
}

void Application::receiveRemoteNotification(const QJsonObject &userInfo)
{
    if (m_delegate && m_launched)
        m_delegate->didReceiveRemoteNotification(userInfo);
}
