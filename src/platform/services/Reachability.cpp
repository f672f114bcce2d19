#include "Reachability.h"

namespace {
std::optional<Reachability::NetworkStatus> g_forcedStatus;

QNetworkInformation *networkInformation()
{
    static const bool loaded =
        QNetworkInformation::loadBackendByFeatures(QNetworkInformation::Feature::Reachability);
    return loaded ? QNetworkInformation::instance() : nullptr;
}
} // namespace

Reachability Reachability::reachabilityWithHostName(const QString &hostName)
{
    return Reachability(hostName);
}

Reachability::NetworkStatus Reachability::currentReachabilityStatus() const
{
    if (g_forcedStatus)
        return *g_forcedStatus;
    QNetworkInformation *info = networkInformation();
    if (!info)
        return ReachableViaWiFi;
    return statusFor(info->reachability(), info->transportMedium());
}

void Reachability::setForcedStatus(std::optional<NetworkStatus> status)
{
    g_forcedStatus = status;
}

Reachability::NetworkStatus Reachability::statusFor(QNetworkInformation::Reachability reachability,
                                                    QNetworkInformation::TransportMedium medium)
{
    switch (reachability) {
    case QNetworkInformation::Reachability::Disconnected:
        return NotReachable;
    // A server on the local network or this machine is reachable without the internet.
    case QNetworkInformation::Reachability::Local:
    case QNetworkInformation::Reachability::Site:
    case QNetworkInformation::Reachability::Online:
    case QNetworkInformation::Reachability::Unknown:
        break;
    }
    return medium == QNetworkInformation::TransportMedium::Cellular ? ReachableViaWWAN
                                                                    : ReachableViaWiFi;
}
