#include "ConnectionCheck.h"

#include "Reachability.h"

#include <QString>

namespace {

// Any well-known public host serves; only the platform's reachability is read.
const QString kReachabilityHost = QStringLiteral("www.debian.org");

} // namespace

namespace ConnectionCheck {

bool isConnectionAvailable()
{
    return Reachability::reachabilityWithHostName(kReachabilityHost).currentReachabilityStatus()
           != Reachability::NotReachable;
}

} // namespace ConnectionCheck
