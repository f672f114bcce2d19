#include "LFPushManager.h"

#include "Application.h"
#include "LFPushUtils.h"

LFPushManager::LFPushManager(Application &application, TokenReceiver tokenReceiver)
    : m_application(application)
    , m_tokenReceiver(std::move(tokenReceiver))
{
    m_application.addRegistrationObserver(this);
}

LFPushManager::~LFPushManager()
{
    m_application.removeRegistrationObserver(this);
}

void LFPushManager::initWithCategories(const QStringList &categories, int typesForIos7, int typesForIos8)
{
    if (m_application.respondsToRegisterUserNotificationSettings()) {
        m_application.registerForRemoteNotifications();
        m_application.registerUserNotificationSettings({typesForIos8, categories});
    } else {
        m_application.registerForRemoteNotificationTypes(typesForIos7);
    }
}

void LFPushManager::unregisterForRemoteNotifications()
{
    m_application.unregisterForRemoteNotifications();
}

bool LFPushManager::pushEnabled() const
{
    if (m_application.respondsToRegisterUserNotificationSettings())
        return m_application.currentUserNotificationSettings().types != 0;
    return m_application.enabledRemoteNotificationTypes() != 0;
}

void LFPushManager::didRegisterForRemoteNotificationsWithDeviceToken(const QByteArray &deviceToken)
{
    if (m_tokenReceiver)
        m_tokenReceiver(deviceToken);
}

void LFPushManager::didFailToRegisterForRemoteNotificationsWithError(const QString &error)
{
    LFPushUtils::outLog(QStringLiteral("didFailToRegisterForRemoteNotificationsWithError [%1]").arg(error));
}
