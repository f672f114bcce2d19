#pragma once
// Turns one HTTP request into one answer: the forum API under /api/, pictures under /img/
// and promotion pages under /pages/. Knows nothing of sockets, so tests and the fuzzer
// call it directly. Lives on the store's thread.

#include "BrowseEndpoints.h"
#include "ImageFactory.h"
#include "PostEndpoints.h"
#include "ServerOptions.h"

#include <QByteArray>
#include <QHash>
#include <QJsonObject>
#include <QString>

#include <functional>
#include <optional>

struct ServerRequest
{
    QByteArray method;    // "GET", "POST", ...
    QByteArray path;      // percent-escaped as received
    QByteArray rawQuery;  // as received: "+" is still "+"
    QByteArray body;
    QByteArray host;      // the Host header, empty when none
};

struct ServerReply
{
    int status = 200;
    QByteArray contentType;
    QByteArray body;
    QByteArray allow;  // the Allow header of a 405 answer
    QString note;      // why a request failed, for the log line
};

class ForumRouter
{
public:
    ForumRouter(ForumStore &store, const ServerOptions &options, PostEndpoints::Clock clock);

    // The origin ("http://127.0.0.1:8080") used when a request has no usable Host header.
    void setFallbackOrigin(const QString &origin) { m_fallbackOrigin = origin; }

    ServerReply handle(const ServerRequest &request);

private:
    enum class PayloadUse { None, Optional, Required };
    struct Endpoint
    {
        QByteArray method;
        PayloadUse payload = PayloadUse::None;
        // Given the payload (absent for a plain request) and the origin for addresses.
        std::function<EndpointAnswer(const std::optional<QJsonObject> &, const QString &)> handler;
    };

    ServerReply api(const ServerRequest &request, const QString &name, const QString &origin);
    ServerReply picture(const QString &path);
    QString originOf(const ServerRequest &request) const;

    ForumStore &m_store;
    BrowseEndpoints m_browse;
    PostEndpoints m_post;
    ImageFactory m_images;
    int m_maxBodyBytes;
    QString m_fallbackOrigin;
    QHash<QString, Endpoint> m_endpoints;
};
