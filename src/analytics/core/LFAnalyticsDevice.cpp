#include "LFAnalyticsDevice.h"

#include "DeviceIdentifier.h"
#include "LFAnalyticsContext.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QUuid>
#include <QDateTime>
#include <QFile>
#include <QGuiApplication>
#include <QLocale>
#include <QNetworkInformation>
#include <QScreen>
#include <QSysInfo>
#include <QTimeZone>

namespace {
// The platform's network facts, loaded once; null when the platform has no backend.
QNetworkInformation *networkInformation()
{
    static QNetworkInformation *information = [] {
        QNetworkInformation::loadBackendByFeatures(QNetworkInformation::Feature::Reachability);
        return QNetworkInformation::instance();
    }();
    return information;
}
} // namespace

LFAnalyticsDevice::LFAnalyticsDevice(LFAnalyticsContext &context)
    : m_context(context)
{
}

QString LFAnalyticsDevice::deviceId() const
{
    return DeviceIdentifier::value();
}

QString LFAnalyticsDevice::vendorIdentifier() const
{
    const QByteArray digest = QCryptographicHash::hash((bundleIdentifier() + deviceId()).toUtf8(),
                                                       QCryptographicHash::Sha1);
    return QUuid::fromRfc4122(digest.left(16)).toString(QUuid::WithoutBraces).toUpper();
}

QString LFAnalyticsDevice::model() const
{
    QFile product(QStringLiteral("/sys/class/dmi/id/product_name"));
    if (product.open(QIODevice::ReadOnly)) {
        const QString name = QString::fromUtf8(product.readAll()).trimmed();
        if (!name.isEmpty())
            return name;
    }
    return QSysInfo::currentCpuArchitecture();
}

QString LFAnalyticsDevice::cpu() const
{
    return QSysInfo::currentCpuArchitecture();
}

QString LFAnalyticsDevice::os() const
{
    return QSysInfo::productType();
}

QString LFAnalyticsDevice::osVersion() const
{
    return QSysInfo::productVersion();
}

QString LFAnalyticsDevice::macAddress() const
{
    return QStringLiteral("02:00:00:00:00:00");
}

QSize LFAnalyticsDevice::resolution() const
{
    if (m_context.options().screenPixels.isValid())
        return m_context.options().screenPixels;
    if (qobject_cast<QGuiApplication *>(QCoreApplication::instance())) {
        if (const QScreen *screen = QGuiApplication::primaryScreen())
            return (QSizeF(screen->size()) * screen->devicePixelRatio()).toSize();
    }
    return kFallbackScreenPixels;
}

int LFAnalyticsDevice::timeZoneHours() const
{
    const QDateTime now = QDateTime::fromMSecsSinceEpoch(qint64(m_context.now() * 1000));
    return now.offsetFromUtc() / 3600;
}

QString LFAnalyticsDevice::language() const
{
    return QLocale::languageToCode(QLocale::system().language());
}

QString LFAnalyticsDevice::country() const
{
    return QLocale::territoryToCode(QLocale::system().territory());
}

QString LFAnalyticsDevice::displayName() const
{
    const QString &name = m_context.options().displayName;
    return name.isEmpty() ? QCoreApplication::applicationName() : name;
}

QString LFAnalyticsDevice::carrier() const
{
    const auto &carrierName = m_context.options().carrierName;
    return carrierName ? carrierName() : QString();
}

QString LFAnalyticsDevice::bundleIdentifier() const
{
    return m_context.options().bundleIdentifier;
}

bool LFAnalyticsDevice::networkReachable() const
{
    if (const auto &reachable = m_context.options().networkReachable)
        return reachable();
    const QNetworkInformation *information = networkInformation();
    return !information
           || information->reachability() != QNetworkInformation::Reachability::Disconnected;
}

QString LFAnalyticsDevice::accessText() const
{
    if (const auto &access = m_context.options().accessText)
        return access();
    const QNetworkInformation *information = networkInformation();
    if (!information)
        return {};
    switch (information->transportMedium()) {
    case QNetworkInformation::TransportMedium::WiFi:
    case QNetworkInformation::TransportMedium::Ethernet:
        return QStringLiteral("WiFi");
    case QNetworkInformation::TransportMedium::Cellular:
        return QStringLiteral("CellNetwork");
    default:
        return {};
    }
}
