#include "DesktopNotificationService.h"

#include "Application.h"
#include "DeviceToken.h"

#include <QPointer>
#include <QStandardPaths>

namespace {
const QString kRegisteredKey = QStringLiteral("registered");
const QString kTypesKey = QStringLiteral("types");
const QString kCategoriesKey = QStringLiteral("categories");
} // namespace

DesktopNotificationService::DesktopNotificationService(Options options, QObject *parent)
    : QObject(parent)
    , m_options(std::move(options))
{
    if (!m_options.application)
        m_options.application = &Application::shared();
    if (m_options.tokenFile.isEmpty())
        m_options.tokenFile = DeviceToken::defaultFilePath();
    if (m_options.stateFile.isEmpty())
        m_options.stateFile = QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation)
                              + QStringLiteral("/notifications.ini");
    m_token = DeviceToken::valueStoredIn(m_options.tokenFile);
    m_state = std::make_unique<UserDefaults>(m_options.stateFile);
    Application *application = m_options.application;
    m_channel = std::make_unique<NotificationChannel>(
        m_options.gateway, m_token, *m_state,
        [application](const QJsonObject &userInfo) { application->receiveRemoteNotification(userInfo); });
}

DesktopNotificationService::~DesktopNotificationService()
{
    m_channel.reset();
    if (m_options.application)
        m_options.application->setRemoteNotificationService(nullptr);
}

LaunchOptions DesktopNotificationService::launchOptions(int waitMs)
{
    LaunchOptions options;
    if (std::optional<QJsonObject> missed = m_channel->takeLaunchNotification(waitMs))
        options.remoteNotification = *missed;
    return options;
}

void DesktopNotificationService::startDelivery()
{
    m_deliveryStarted = true;
    m_channel->start();
}

void DesktopNotificationService::stopDelivery()
{
    m_deliveryStarted = false;
    m_channel->stop();
}

void DesktopNotificationService::registerForRemoteNotifications(RegistrationResult done)
{
    m_state->setObject(true, kRegisteredKey);
    m_state->synchronize();
    if (m_deliveryStarted)
        m_channel->start();
    QMetaObject::invokeMethod(this, [token = m_token, done = std::move(done)] { done(token, QString()); },
                              Qt::QueuedConnection);
}

void DesktopNotificationService::unregisterForRemoteNotifications()
{
    m_state->setObject(false, kRegisteredKey);
    m_state->synchronize();
    // An unregistered app receives nothing, as on the phone; messages wait for registration.
    m_channel->stop();
}

bool DesktopNotificationService::isRegisteredForRemoteNotifications() const
{
    return m_state->objectForKey(kRegisteredKey).toBool();
}

bool DesktopNotificationService::supportsUserNotificationSettings() const
{
    return m_options.offersUserNotificationSettings;
}

void DesktopNotificationService::registerUserNotificationSettings(const UserNotificationSettings &settings)
{
    // The desktop asks nobody: what the app asks for is granted, and kept for later launches.
    m_state->setObject(settings.types, kTypesKey);
    m_state->setObject(settings.categories, kCategoriesKey);
    m_state->synchronize();
}

UserNotificationSettings DesktopNotificationService::currentUserNotificationSettings() const
{
    return {m_state->objectForKey(kTypesKey).toInt(), m_state->objectForKey(kCategoriesKey).toStringList()};
}
