#include "LFPush.h"

#include "LFPInstallation.h"
#include "LFPushCore.h"
#include "LFPushEndpoint.h"
#include "LFPushUtils.h"

namespace {
LFPushCore &component()
{
    return LFPushCore::shared();
}
} // namespace

bool LFPush::setupWithOptions(LFPushOptions options) { return LFPushCore::setSharedOptions(std::move(options)); }
void LFPush::setPushUrl(const QString &url) { LFPushEndpoint::setUrl(url); }
QString LFPush::pushUrl() { return LFPushEndpoint::url(); }

void LFPush::startWithAppkey(const QString &appkey, const LaunchOptions &launchOptions)
{
    component().startWithAppkey(appkey, launchOptions);
}

void LFPush::startWithAppkey(const QString &appkey, const LaunchOptions &launchOptions,
                             const QStringList &withCategories)
{
    component().startWithAppkey(appkey, launchOptions, withCategories);
}

void LFPush::registerForRemoteNotifications()
{
    registerForRemoteNotifications(component().categories());
}

void LFPush::registerForRemoteNotifications(const QStringList &categories)
{
    registerForRemoteNotifications(categories, LFPInstallation::kDefaultNotificationTypes,
                                   LFPInstallation::kDefaultNotificationTypes);
}

void LFPush::registerForRemoteNotifications(const QStringList &categories, int withTypesForIos7,
                                            int withTypesForIos8)
{
    component().registerForRemoteNotifications(categories, withTypesForIos7, withTypesForIos8);
}

void LFPush::unregisterForRemoteNotifications() { component().unregisterForRemoteNotifications(); }
void LFPush::registerDeviceToken(const QByteArray &deviceToken) { component().registerDeviceToken(deviceToken); }
void LFPush::didReceiveRemoteNotification(const QJsonObject &userInfo) { component().didReceiveRemoteNotification(userInfo); }

void LFPush::sendClickReportForRemoteNotification(const QJsonObject &userInfo)
{
    component().sendClickReportForRemoteNotification(userInfo);
}

void LFPush::setLogEnabled(bool enabled) { LFPushUtils::setLogEnabled(enabled); }
void LFPush::setBadgeClear(bool enabled) { component().installation().badgeClear = enabled; }
void LFPush::setAutoAlert(bool enabled) { component().installation().autoAlert = enabled; }
void LFPush::setChannel(const QString &channel) { component().installation().channel = channel; }
void LFPush::setUniqueID(const QString &uniqueId) { component().installation().uniqueId = uniqueId; }
void LFPush::setLocation(double latitude, double longitude) { component().setLocation(latitude, longitude); }

void LFPush::getTags(Response response) { component().network().getTags(std::move(response)); }
void LFPush::addTag(const QString &tag, Response response) { component().network().addTag(tag, std::move(response)); }
void LFPush::removeTag(const QString &tag, Response response) { component().network().removeTag(tag, std::move(response)); }
void LFPush::removeAllTags(Response response) { component().network().removeAllTags(std::move(response)); }

void LFPush::addAlias(const QString &name, const QString &type, Response response)
{
    component().network().addAlias(name, type, std::move(response));
}

void LFPush::setAlias(const QString &name, const QString &type, Response response)
{
    component().network().setAlias(name, type, std::move(response));
}

void LFPush::removeAlias(const QString &name, const QString &type, Response response)
{
    component().network().removeAlias(name, type, std::move(response));
}
