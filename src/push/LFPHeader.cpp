#include "LFPHeader.h"

#include "LFPInstallation.h"
#include "LFPushKeys.h"
#include "LFPushOptions.h"
#include "MainScreen.h"
#include "UserDefaults.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QLocale>
#include <QSysInfo>
#include <QTimeZone>

namespace {

constexpr double kSecondsPerHour = 3600.0;

// The app's screen in points, as the phone reports its bounds ("375*667").
QString resolution()
{
    const QSizeF points = MainScreen::size();
    return QStringLiteral("%1*%2").arg(points.width()).arg(points.height());
}

// Hours from UTC; half-hour and quarter-hour zones keep their fraction (5.5, 5.75).
double timezoneHours()
{
    return QTimeZone::systemTimeZone().offsetFromUtc(QDateTime::currentDateTime()) / kSecondsPerHour;
}

} // namespace

QJsonObject LFPHeader::dictionary(const LFPInstallation &installation, const LFPushOptions &options)
{
    const QLocale locale = QLocale::system();
    const QString version = QCoreApplication::applicationVersion();
    QJsonObject header{
        {QStringLiteral("lfdid"), installation.lfdid},
        {QStringLiteral("idfa"), QString()},
        {QStringLiteral("oid"), options.deviceIdentifier},
        {QStringLiteral("idfv"), options.deviceIdentifier},
        {QStringLiteral("device_model"), QSysInfo::currentCpuArchitecture()},
        {QStringLiteral("is_jailbroken"), 0},
        {QStringLiteral("resolution"), resolution()},
        {QStringLiteral("os"), QStringLiteral("iOS")},
        {QStringLiteral("os_version"), QSysInfo::productVersion()},
        {QStringLiteral("country"), QLocale::territoryToCode(locale.territory())},
        {QStringLiteral("carrier"), QString()},
        {QStringLiteral("access"), QStringLiteral("WiFi")},
        {QStringLiteral("language"), QLocale::languageToCode(locale.language())},
        {QStringLiteral("timezone"), timezoneHours()},
        {QStringLiteral("package_name"), QCoreApplication::applicationName()},
        {QStringLiteral("app_version"), version},
        {QStringLiteral("short_version"), version},
        {QStringLiteral("display_name"), QCoreApplication::applicationName()},
        {QStringLiteral("sdk_version"), QLatin1String(kSdkVersion)},
        {QStringLiteral("appkey"), installation.appKey},
        {QStringLiteral("channel"), installation.channel},
        {QStringLiteral("sdk_type"), QLatin1String(kSdkType)},
        {QStringLiteral("unique_id"), installation.uniqueId},
        {QStringLiteral("req_time"), qint64(options.clock->now())},
    };
    const QJsonObject location =
        QJsonDocument::fromJson(options.defaults->stringForKey(LFPushKeys::kLocation).toUtf8()).object();
    for (const char *key : {"lng", "lat", "gps_time"}) {
        const QString name = QLatin1String(key);
        if (location.contains(name))
            header.insert(name, location.value(name));
    }
    return header;
}
