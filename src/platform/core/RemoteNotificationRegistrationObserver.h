#pragma once
// Sees a registration's outcome before the application delegate does. Main thread.

#include <QByteArray>
#include <QString>

class RemoteNotificationRegistrationObserver
{
public:
    virtual ~RemoteNotificationRegistrationObserver() = default;
    virtual void didRegisterForRemoteNotificationsWithDeviceToken(const QByteArray &deviceToken) = 0;
    virtual void didFailToRegisterForRemoteNotificationsWithError(const QString &error) = 0;
};
