#pragma once
// Whether the network can reach a host, read from QNetworkInformation (loaded by its
// reachability feature, since the default backend needs a system bus). When the platform has
// no backend, or the backend does not know, the network counts as reachable. Main thread.

#include <QNetworkInformation>
#include <QString>

#include <optional>

class Reachability
{
public:
    enum NetworkStatus { NotReachable = 0, ReachableViaWiFi = 1, ReachableViaWWAN = 2 };

    static Reachability reachabilityWithHostName(const QString &hostName);

    NetworkStatus currentReachabilityStatus() const;
    QString hostName() const { return m_hostName; }

    // Pins every probe's answer (tests pull the plug this way); std::nullopt goes back to the
    // platform's own answer.
    static void setForcedStatus(std::optional<NetworkStatus> status);

    // The status a platform reading maps to.
    static NetworkStatus statusFor(QNetworkInformation::Reachability reachability,
                                   QNetworkInformation::TransportMedium medium);

private:
    explicit Reachability(QString hostName) : m_hostName(std::move(hostName)) {}

    QString m_hostName;
};
