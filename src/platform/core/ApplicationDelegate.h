#pragma once
// What the platform tells the application: launch, life-cycle changes, remote-notification
// registration and delivery. Implemented by the app; called on the main thread.

#include <QByteArray>
#include <QJsonObject>
#include <QString>

// The launch options: a remote notification's user info when the app was launched to show it.
struct LaunchOptions
{
    QJsonObject remoteNotification;
};

class ApplicationDelegate
{
public:
    virtual ~ApplicationDelegate() = default;

    virtual bool didFinishLaunchingWithOptions(const LaunchOptions &options) = 0;

    virtual void applicationWillResignActive() {}
    virtual void applicationDidEnterBackground() {}
    virtual void applicationWillEnterForeground() {}
    virtual void applicationDidBecomeActive() {}
    virtual void applicationWillTerminate() {}

    virtual void didRegisterForRemoteNotificationsWithDeviceToken(const QByteArray &deviceToken) { Q_UNUSED(deviceToken) }
    virtual void didFailToRegisterForRemoteNotificationsWithError(const QString &error) { Q_UNUSED(error) }
    virtual void didReceiveRemoteNotification(const QJsonObject &userInfo) { Q_UNUSED(userInfo) }
};
