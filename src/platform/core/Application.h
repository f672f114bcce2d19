#pragma once
// The running application as the platform sees it: holds the delegate, launches it, and turns
// Qt's application-state changes and quit into the delegate's life-cycle callbacks. It also
// fronts the remote-notification service: registration, settings, the badge number and the
// delivery of notifications to the delegate. Lives on the main thread.

#include "ApplicationDelegate.h"
#include "RemoteNotificationRegistrationObserver.h"
#include "RemoteNotificationService.h"

#include <QList>
#include <QObject>

class Application : public QObject
{
    Q_OBJECT
public:
    static Application &shared();

    // The delegate is owned by the caller and must outlive the application object's use of it.
    void setDelegate(ApplicationDelegate *delegate);
    ApplicationDelegate *delegate() const { return m_delegate; }

    // Calls the delegate's launch, then follows the application state until quit.
    bool launch(const LaunchOptions &options = {});

    Qt::ApplicationState applicationState() const { return m_state; }

    // The notification service in use (owned by the caller); none means registration fails.
    void setRemoteNotificationService(RemoteNotificationService *service);

    // Newer form: token and settings registered apart.
    void registerForRemoteNotifications();
    void registerUserNotificationSettings(const UserNotificationSettings &settings);
    UserNotificationSettings currentUserNotificationSettings() const;
    bool respondsToRegisterUserNotificationSettings() const;
    // Older form: types and token together.
    void registerForRemoteNotificationTypes(int types);
    int enabledRemoteNotificationTypes() const;

    void unregisterForRemoteNotifications();
    bool isRegisteredForRemoteNotifications() const;

    int applicationIconBadgeNumber() const { return m_badgeNumber; }
    void setApplicationIconBadgeNumber(int number) { m_badgeNumber = number; }

    // Observers (not owned) see each registration outcome before the delegate does.
    void addRegistrationObserver(RemoteNotificationRegistrationObserver *observer);
    void removeRegistrationObserver(RemoteNotificationRegistrationObserver *observer);

    // A notification from the service, for the delegate once it has launched.
    void receiveRemoteNotification(const QJsonObject &userInfo);

signals:
    // After the delegate's own callbacks, as the phone's notification centre posts them.
    void didBecomeActive();
    void willResignActive();

private:
    Application();
    void applicationStateChanged(Qt::ApplicationState state);
    void aboutToQuit();
    void registrationFinished(const QByteArray &deviceToken, const QString &error);

    ApplicationDelegate *m_delegate = nullptr;
    RemoteNotificationService *m_notificationService = nullptr;
    QList<RemoteNotificationRegistrationObserver *> m_registrationObservers;
    Qt::ApplicationState m_state = Qt::ApplicationInactive;
    int m_badgeNumber = 0;
    bool m_launched = false;
};
