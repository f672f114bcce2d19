#pragma once
// Talks to the platform for the push component: registration in the newer form (token and
// settings apart) where the platform offers it, else the older types-and-token form; and it
// sees the token before the app delegate does, so the app need not forward it. Main thread.

#include "RemoteNotificationRegistrationObserver.h"

#include <QStringList>

#include <functional>

class Application;

class LFPushManager : public RemoteNotificationRegistrationObserver
{
public:
    using TokenReceiver = std::function<void(const QByteArray &deviceToken)>;

    LFPushManager(Application &application, TokenReceiver tokenReceiver);
    ~LFPushManager() override;
    LFPushManager(const LFPushManager &) = delete;
    LFPushManager &operator=(const LFPushManager &) = delete;

    void initWithCategories(const QStringList &categories, int typesForIos7, int typesForIos8);
    void unregisterForRemoteNotifications();
    // Whether the user allows notifications: the current settings' types, or on an older
    // system the enabled remote notification types, are not 0.
    bool pushEnabled() const;

    void didRegisterForRemoteNotificationsWithDeviceToken(const QByteArray &deviceToken) override;
    void didFailToRegisterForRemoteNotificationsWithError(const QString &error) override;

private:
    Application &m_application;
    TokenReceiver m_tokenReceiver;
};
