#include "LFPushCore.h"

#include "Application.h"
#include "DeviceIdentifier.h"
#include "LFPAlertView.h"
#include "LFPIntermediateLogic.h"
#include "LFPMessageCache.h"
#include "LFPNetworkLogic.h"
#include "LFPushEndpoint.h"
#include "LFPushKeys.h"
#include "LFPushManager.h"
#include "LFPushSystemClock.h"
#include "LFPushUtils.h"
#include "UserDefaults.h"

#include <QJsonDocument>
#include <QMutex>
#include <QMutexLocker>

namespace {

QMutex g_sharedMutex;
LFPushCore *g_shared = nullptr;
LFPushOptions g_sharedOptions;

LFPushOptions withDefaults(LFPushOptions options)
{
    if (!options.clock)
        options.clock = std::make_shared<LFPushSystemClock>();
    if (!options.defaults)
        options.defaults = &UserDefaults::standardUserDefaults();
    if (options.pushUrl.isEmpty())
        options.pushUrl = LFPushEndpoint::url();
    if (!options.application)
        options.application = &Application::shared();
    if (options.deviceIdentifier.isEmpty())
        options.deviceIdentifier = DeviceIdentifier::value();
    return options;
}

} // namespace

LFPushCore::LFPushCore(LFPushOptions options)
    : m_options(withDefaults(std::move(options)))
    , m_network(std::make_unique<LFPNetworkLogic>(m_options, m_installation))
    , m_intermediate(std::make_unique<LFPIntermediateLogic>(m_options, *m_network))
    , m_messageCache(std::make_unique<LFPMessageCache>(*m_options.defaults))
    , m_manager(std::make_unique<LFPushManager>(
          *m_options.application, [this](const QByteArray &deviceToken) { registerDeviceToken(deviceToken); }))
{
    m_installation.lfdid = m_options.deviceIdentifier;
    connect(m_options.application, &Application::didBecomeActive, this, &LFPushCore::startApp);
    connect(m_options.application, &Application::willResignActive, this, &LFPushCore::stopApp);
}

LFPushCore::~LFPushCore() = default;

LFPushCore &LFPushCore::shared()
{
    QMutexLocker lock(&g_sharedMutex);
    // Lives as long as the process: the app may call in until its very end.
    if (!g_shared)
        g_shared = new LFPushCore(g_sharedOptions);
    return *g_shared;
}

bool LFPushCore::setSharedOptions(LFPushOptions options)
{
    QMutexLocker lock(&g_sharedMutex);
    if (g_shared)
        return false;
    g_sharedOptions = std::move(options);
    return true;
}

void LFPushCore::startWithAppkey(const QString &appKey, const LaunchOptions &launchOptions,
                                 const QStringList &categories)
{
    m_installation.appKey = appKey;
    m_categories = categories;
    clearTokenDataIfPushNotEnabled();
    const QByteArray stored = m_options.defaults->objectForKey(LFPushKeys::kDeviceToken).toByteArray();
    m_installation.deviceToken = LFPushUtils::hexText(stored);
    registerDeviceToken({});
    if (!launchOptions.remoteNotification.isEmpty()) {
        curMessage = LFPMessage(launchOptions.remoteNotification, m_options.clock->now());
        LFPushUtils::outLog(QStringLiteral("payload is [%1]").arg(LFPushUtils::jsonText(launchOptions.remoteNotification)));
    } else {
        LFPushUtils::outLog(QStringLiteral("launchOptions is nil or class [%1] not NSDictionary").arg(QStringLiteral("(null)")));
    }
}

void LFPushCore::clearTokenDataIfPushNotEnabled()
{
    if (m_manager->pushEnabled())
        return;
    m_options.defaults->removeObjectForKey(LFPushKeys::kDeviceToken);
    m_options.defaults->synchronize();
}

void LFPushCore::registerForRemoteNotifications(const QStringList &categories, int typesForIos7, int typesForIos8)
{
    m_installation.registerRemoteNotificationTypes = typesForIos8;
    m_manager->initWithCategories(categories.isEmpty() ? m_categories : categories, typesForIos7, typesForIos8);
}

void LFPushCore::unregisterForRemoteNotifications()
{
    m_manager->unregisterForRemoteNotifications();
    // The token is given up: tags and aliases wait for the next registration.
    curToken.clear();
    preToken.clear();
    m_installation.deviceToken.clear();
}

void LFPushCore::registerDeviceToken(const QByteArray &deviceToken)
{
    if (!deviceToken.isEmpty()) {
        curToken = deviceToken;
        m_installation.deviceToken = LFPushUtils::hexText(deviceToken);
        if (deviceToken == preToken)
            return;
        preToken = deviceToken;
        tokenRegistering = true;
    }
    m_intermediate->handleToken(deviceToken, [this, registering = !deviceToken.isEmpty()](bool launchReported) {
        if (registering)
            tokenRegistering = false;
        if (launchReported)
            todayLaunch = true;
        // A report got through or was not needed: clicks kept from earlier may follow.
        sendCachedClicks();
    });
}

void LFPushCore::didReceiveRemoteNotification(const QJsonObject &userInfo)
{
    const LFPMessage message(userInfo, m_options.clock->now());
    curMessage = message;
    if (!message.isFromLefiseix()) {
        LFPushUtils::outLog(QStringLiteral("didReceiveRemoteNotification return,because of userInfo did't have lefiseix msgid!"));
        return;
    }
    if (m_options.application->applicationState() == Qt::ApplicationActive) {
        LFPushUtils::outLog(QStringLiteral("msg incoming![%1]").arg(LFPushUtils::jsonText(userInfo)));
        if (m_installation.autoAlert)
            LFPAlertView::show(message.alert);
    }
    // On the desktop a delivered notification is opened at once (the app shows its topic):
    // that is the phone's tap on it, so it counts as a click.
    openMessage(message);
}

void LFPushCore::sendClickReportForRemoteNotification(const QJsonObject &userInfo)
{
    const LFPMessage message(userInfo, m_options.clock->now());
    if (message.isFromLefiseix())
        reportClick(message);
}

void LFPushCore::startApp()
{
    if (m_installation.badgeClear)
        m_options.application->setApplicationIconBadgeNumber(0);
    if (!curToken.isEmpty() && !tokenRegistering)
        registerDeviceToken(curToken);
    if (curMessage && curMessage->isFromLefiseix())
        openMessage(*curMessage);
    else
        sendCachedClicks();
}

void LFPushCore::stopApp()
{
    if (curSession)
        curSession->stopSession(m_options.clock->now());
}

void LFPushCore::openMessage(const LFPMessage &message)
{
    // Becoming active after a notification was opened must not count it twice.
    if (message.msgId == lastClickMsgId)
        return;
    lastClickMsgId = message.msgId;
    if (message.clickPolicy != kClickPolicyNoSession) {
        curSession = LFPSession(message);
        curSession->startSession(m_options.clock->now());
    }
    reportClick(message);
}

void LFPushCore::reportClick(const LFPMessage &message)
{
    // Already sent (or on its way) in this run: kept again, it would go out at the next launch.
    if (m_clicksSentOrSending.contains(message.msgId))
        return;
    m_messageCache->saveCacheMessage(message.msgId, message.ts);
    sendCachedClicks();
}

void LFPushCore::sendCachedClicks()
{
    m_messageCache->cachedMessages([this](const QList<LFHashArray::Entry> &entries) {
        for (const LFHashArray::Entry &entry : entries) {
            // A report sent (or on its way) stays here: a snapshot taken before its removal
            // from the cache reached the queue must not send it again.
            if (m_clicksSentOrSending.contains(entry.msgId))
                continue;
            m_clicksSentOrSending.insert(entry.msgId);
            m_network->sendClickMsgId(entry.msgId, entry.ts, [this, msgId = entry.msgId](bool sent) {
                if (sent)
                    m_messageCache->removeCacheMessage(msgId);
                else
                    m_clicksSentOrSending.remove(msgId);
            });
        }
    });
}

void LFPushCore::setLocation(double latitude, double longitude)
{
    const QJsonObject location{{QStringLiteral("lat"), latitude},
                               {QStringLiteral("lng"), longitude},
                               {QStringLiteral("gps_time"), qint64(m_options.clock->now())}};
    m_options.defaults->setObject(LFPushUtils::jsonText(location), LFPushKeys::kLocation);
    m_options.defaults->setObject(m_options.clock->dateText(), LFPushKeys::kLatestLocDate);
    m_options.defaults->synchronize();
}
