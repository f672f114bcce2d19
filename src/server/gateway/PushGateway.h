#pragma once
// The push gateway as the HTTP server sees it: takes the requests under "/push/", answers the
// JSON calls through the router, and keeps "/push/events" connections open as delivery
// streams (or, with "?once=1", answers what the device missed and closes). One log line per
// request. Main thread.

#include "PushDeliveryHub.h"
#include "PushGatewayRouter.h"
#include "PushGatewayStore.h"

class ForumDatabase;
class HttpResponder;
struct HttpRequest;

class PushGateway
{
public:
    static constexpr const char *kRoot = "/push";

    struct Options
    {
        QByteArray secret;
        PushGatewayRouter::Policies policies;
    };

    PushGateway(ForumDatabase &database, Options options);

    // True when the request was the gateway's: answered, or kept as a stream.
    bool take(const HttpRequest &request, const HttpResponder &responder);

    PushGatewayStore &store() { return m_store; }
    PushDeliveryHub &hub() { return m_hub; }

private:
    void events(const HttpRequest &request, const HttpResponder &responder);

    PushGatewayStore m_store;
    PushDeliveryHub m_hub;
    PushGatewayRouter m_router;
};
