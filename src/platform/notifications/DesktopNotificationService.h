#pragma once
// The desktop build's notification service: registration hands the kept device token to the
// application (and through it to the delegate) as the phone's service would, the registered
// settings are kept across launches, and the delivery channel from the push gateway hands
// every notification to the application's delegate, at launch as the launch options' remote
// notification or while running. Main thread.
//
//   DesktopNotificationService notifications({gatewayUrl});
//   Application::shared().setRemoteNotificationService(&notifications);
//   Application::shared().launch(notifications.launchOptions());
//   notifications.startDelivery();

#include "ApplicationDelegate.h"
#include "NotificationChannel.h"
#include "RemoteNotificationService.h"
#include "UserDefaults.h"

#include <QObject>
#include <QUrl>

#include <memory>

class Application;

class DesktopNotificationService : public QObject, public RemoteNotificationService
{
    Q_OBJECT
public:
    // How long launch waits for notifications that came while the app was not running.
    static constexpr int kLaunchWaitMs = 3000;

    struct Options
    {
        QUrl gateway;                    // the push root, "http://127.0.0.1:8080/push"
        QString tokenFile;               // DeviceToken::defaultFilePath()
        QString stateFile;               // "notifications.ini" in the configuration folder
        Application *application = nullptr;  // Application::shared()
        // False behaves as an older system: only the types-and-token registration form.
        bool offersUserNotificationSettings = true;
    };

    explicit DesktopNotificationService(Options options, QObject *parent = nullptr);
    ~DesktopNotificationService() override;

    QByteArray deviceToken() const { return m_token; }

    // Launch options holding the oldest notification missed while the app was not running.
    LaunchOptions launchOptions(int waitMs = kLaunchWaitMs);
    // Opens the delivery channel; notifications then reach the application's delegate. While
    // the app is unregistered for remote notifications the channel stays closed.
    void startDelivery();
    void stopDelivery();
    NotificationChannel &channel() { return *m_channel; }

    void registerForRemoteNotifications(RegistrationResult done) override;
    void unregisterForRemoteNotifications() override;
    bool isRegisteredForRemoteNotifications() const override;
    bool supportsUserNotificationSettings() const override;
    void registerUserNotificationSettings(const UserNotificationSettings &settings) override;
    UserNotificationSettings currentUserNotificationSettings() const override;

private:
    Options m_options;
    QByteArray m_token;
    std::unique_ptr<UserDefaults> m_state;
    std::unique_ptr<NotificationChannel> m_channel;
    bool m_deliveryStarted = false;  // the app asked for delivery
};
