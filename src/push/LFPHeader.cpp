#include "LFPHeader.h"

#include "LFPInstallation.h"
#include "LFPushKeys.h"
#include "LFPushOptions.h"
#include "UserDefaults.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QJsonDocument>
#include <QLocale>
#include <QScreen>
#include <QSysInfo>
#include <QTimeZone>

namespace {

QString resolution()
{
    const QScreen *screen = qobject_cast<QGuiApplication *>(QCoreApplication::instance())
                                ? QGuiApplication::primaryScreen()
                                : nullptr;
    if (!screen)
        return {};
    const QSize pixels = screen->size() * screen->devicePixelRatio();
    return QStringLiteral("%1*%2").arg(pixels.width()).arg(pixels.height());
}

} // namespace

QJsonObject LFPHeader::dictionary(const LFPInstallation &installation, const LFPushOptions &options)
{
    const QLocale locale = QLocale::system();
    const QString version = QCoreApplication::applicationVersion();
    const int offsetHours = QTimeZone::systemTimeZone().offsetFromUtc(QDateTime::currentDateTime()) / 3600;
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
        {QStringLiteral("timezone"), offsetHours},
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
