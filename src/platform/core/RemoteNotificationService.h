#pragma once
// What the platform's notification service offers an application: notification types and
// settings, and registration for a device token. The desktop build installs its own service
// (src/platform/notifications). Main thread.

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>

// Kinds of user-visible notification an app may ask for; combined as bits.
enum UserNotificationType : int {
    UserNotificationTypeNone = 0,
    UserNotificationTypeBadge = 1 << 0,
    UserNotificationTypeSound = 1 << 1,
    UserNotificationTypeAlert = 1 << 2,
};

struct UserNotificationSettings
{
    int types = UserNotificationTypeNone;
    QStringList categories;
};

class RemoteNotificationService
{
public:
    // Exactly one of the two is set: the device token, or why there is none.
    using RegistrationResult = std::function<void(const QByteArray &deviceToken, const QString &error)>;

    virtual ~RemoteNotificationService() = default;

    // Answers later, from the event loop, never from within the call.
    virtual void registerForRemoteNotifications(RegistrationResult done) = 0;
    virtual void unregisterForRemoteNotifications() = 0;
    virtual bool isRegisteredForRemoteNotifications() const = 0;

    // Whether the newer registration form (settings registered apart from the token) exists;
    // without it apps register types and token together.
    virtual bool supportsUserNotificationSettings() const = 0;
    virtual void registerUserNotificationSettings(const UserNotificationSettings &settings) = 0;
    virtual UserNotificationSettings currentUserNotificationSettings() const = 0;
};
