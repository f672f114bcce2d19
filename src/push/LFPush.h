#pragma once
// The push component's only interface for the app: class operations that forward to the
// process-wide component. Call from the main thread; never throws.

#include "ApplicationDelegate.h"
#include "LFPNetworkLogic.h"
#include "LFPushOptions.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>

class LFPush
{
public:
    LFPush() = delete;

    using Response = LFPNetworkLogic::Response;

    // Options for the component; effective only before its first use.
    static bool setupWithOptions(LFPushOptions options);
    // The push message endpoint (the app's --push-url); else QUORVEL_PUSH_URL, else the
    // local server's gateway. Effective only before the component's first use.
    static void setPushUrl(const QString &url);
    static QString pushUrl();

    static void startWithAppkey(const QString &appkey, const LaunchOptions &launchOptions);
    static void startWithAppkey(const QString &appkey, const LaunchOptions &launchOptions,
                                const QStringList &withCategories);

    static void registerForRemoteNotifications();
    static void registerForRemoteNotifications(const QStringList &categories);
    static void registerForRemoteNotifications(const QStringList &categories, int withTypesForIos7,
                                               int withTypesForIos8);
    static void unregisterForRemoteNotifications();
    static void registerDeviceToken(const QByteArray &deviceToken);

    static void didReceiveRemoteNotification(const QJsonObject &userInfo);
    static void sendClickReportForRemoteNotification(const QJsonObject &userInfo);

    static void setLogEnabled(bool enabled);
    static void setBadgeClear(bool enabled);
    static void setAutoAlert(bool enabled);
    static void setChannel(const QString &channel);
    static void setUniqueID(const QString &uniqueId);
    static void setLocation(double latitude, double longitude);

    static void getTags(Response response);
    static void addTag(const QString &tag, Response response);
    static void removeTag(const QString &tag, Response response);
    static void removeAllTags(Response response);

    static void addAlias(const QString &name, const QString &type, Response response);
    static void setAlias(const QString &name, const QString &type, Response response);
    static void removeAlias(const QString &name, const QString &type, Response response);
};
