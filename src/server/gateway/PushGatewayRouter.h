#pragma once
// Answers the gateway's JSON calls: the push component's reports, tags, aliases and click
// reports, and the operator's send (which needs the secret). Every answer is a JSON object
// with "success" or "errors"; a refused call changes nothing. Knows no sockets, so tests and
// the fuzzer call it directly. Lives on the store's thread.

#include "PushGatewayRequest.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <functional>

class PushGatewayStore;

struct GatewayReply
{
    int status = 200;
    QJsonObject body;
    QString note;  // why a call was refused, for the log line
};

class PushGatewayRouter
{
public:
    using Clock = std::function<qint64()>;  // seconds since 1970
    // A stored message to hand to the device's open stream.
    using Delivery = std::function<void(const QString &token, qint64 id, const QByteArray &userInfo)>;

    struct Policies
    {
        int launchPolicy = 0;
        int tagPolicy = 0;
    };

    PushGatewayRouter(PushGatewayStore &store, QByteArray secret, Policies policies, Clock clock,
                      Delivery delivery);

    // `path` is below the gateway's root ("/register"); `authorization` the header's value.
    GatewayReply handle(const QByteArray &method, const QString &path, const QByteArray &authorization,
                        const QByteArray &body);

    // The bearer credential of an Authorization header value, or empty.
    static QByteArray bearer(const QByteArray &authorization);

private:
    GatewayReply device(PushGatewayRequest::Kind kind, const QByteArray &body);
    GatewayReply send(const QByteArray &authorization, const QByteArray &body);
    QJsonObject success() const;

    PushGatewayStore &m_store;
    QByteArray m_secret;
    Policies m_policies;
    Clock m_clock;
    Delivery m_delivery;
};
