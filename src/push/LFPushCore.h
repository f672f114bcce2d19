#pragma once
// The running push component: its state (current message and session, tokens, whether a
// registration is under way) and the flow between platform, decisions and network. The
// process-wide one is made on first use under a lock; tests make their own. Main thread.

#include "ApplicationDelegate.h"
#include "LFPInstallation.h"
#include "LFPMessage.h"
#include "LFPSession.h"
#include "LFPushOptions.h"

#include <QByteArray>
#include <QObject>
#include <QSet>
#include <QStringList>

#include <memory>
#include <optional>

class LFPIntermediateLogic;
class LFPMessageCache;
class LFPNetworkLogic;
class LFPushManager;

class LFPushCore : public QObject
{
    Q_OBJECT
public:
    static constexpr int kClickPolicyNoSession = 2;

    explicit LFPushCore(LFPushOptions options = {});
    ~LFPushCore() override;

    static LFPushCore &shared();
    // Options for the process-wide component; false once it exists already.
    static bool setSharedOptions(LFPushOptions options);

    void startWithAppkey(const QString &appKey, const LaunchOptions &launchOptions,
                         const QStringList &categories = {});
    void registerForRemoteNotifications(const QStringList &categories, int typesForIos7, int typesForIos8);
    void unregisterForRemoteNotifications();
    void registerDeviceToken(const QByteArray &deviceToken);
    void didReceiveRemoteNotification(const QJsonObject &userInfo);
    void sendClickReportForRemoteNotification(const QJsonObject &userInfo);
    // The app became active.
    void startApp();
    // The app stops being active: the session opened from a notification ends.
    void stopApp();
    void setLocation(double latitude, double longitude);

    const LFPushOptions &options() const { return m_options; }
    LFPInstallation &installation() { return m_installation; }
    LFPNetworkLogic &network() { return *m_network; }
    LFPMessageCache &messageCache() { return *m_messageCache; }
    QStringList categories() const { return m_categories; }

    std::optional<LFPMessage> curMessage;
    std::optional<LFPSession> curSession;
    QByteArray curToken;
    QByteArray preToken;
    bool tokenRegistering = false;
    bool todayLaunch = false;
    QString lastClickMsgId;

private:
    void clearTokenDataIfPushNotEnabled();
    // The message was opened: a session unless its policy says not, and its click report.
    void openMessage(const LFPMessage &message);
    void reportClick(const LFPMessage &message);
    void sendCachedClicks();

    LFPushOptions m_options;
    LFPInstallation m_installation;
    QStringList m_categories;
    QSet<QString> m_clicksSentOrSending;
    std::unique_ptr<LFPNetworkLogic> m_network;
    std::unique_ptr<LFPIntermediateLogic> m_intermediate;
    std::unique_ptr<LFPMessageCache> m_messageCache;
    std::unique_ptr<LFPushManager> m_manager;
};
