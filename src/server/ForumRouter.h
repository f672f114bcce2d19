#pragma once
// Turns one HTTP request into one answer: the forum API under /api/, pictures under /img/
// and promotion pages under /pages/. Knows nothing of sockets, so tests and the fuzzer
// call it directly. Reading answers are cached until a write (of any process sharing the
// database) changes them. Lives on the store's thread, except cachedReply(), which any
// thread may call.

#include "AnswerCache.h"
#include "BrowseEndpoints.h"
#include "ImageFactory.h"
#include "PostEndpoints.h"
#include "RequestKeyMemo.h"
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
    ~ForumRouter();
    ForumRouter(const ForumRouter &) = delete;
    ForumRouter &operator=(const ForumRouter &) = delete;

    // The origin ("http://127.0.0.1:8080") used when a request has no usable Host header.
    void setFallbackOrigin(const QString &origin) { m_fallbackOrigin = origin; }

    ServerReply handle(const ServerRequest &request);
    // The cached answer to a reading request, if there is one; never touches the store.
    std::optional<ServerReply> cachedReply(const ServerRequest &request) const;

    const AnswerCache &cache() const { return m_cache; }

private:
    enum class PayloadUse { None, Optional, Required };
    struct Endpoint
    {
        QByteArray method;
        PayloadUse payload = PayloadUse::None;
        std::optional<BrowseQuery::Kind> reads;  // a reading endpoint answers this query
        // A writing endpoint's handler, given the (required) payload.
        std::function<EndpointAnswer(const QJsonObject &)> writes;
    };
    // A request's payload as its endpoint takes it, or the 400 answer it gets.
    struct PayloadRead
    {
        std::optional<QJsonObject> payload;
        std::optional<ServerReply> failure;
    };

    static PayloadRead payloadOf(const ServerRequest &request, PayloadUse use);
    std::optional<ServerReply> sizeFailure(const ServerRequest &request) const;
    // The cache key of a well-formed reading request with a Host of its own.
    std::optional<QByteArray> readingKey(const ServerRequest &request) const;
    ServerReply api(const ServerRequest &request, const QString &name, const QString &origin);
    ServerReply browse(BrowseQuery::Kind kind, const std::optional<QJsonObject> &payload, const QString &origin);
    ServerReply picture(const QString &path);
    QString originOf(const ServerRequest &request) const;

    ForumStore &m_store;
    AnswerCache m_cache;
    mutable RequestKeyMemo m_keyMemo;
    int m_changeListener = 0;
    BrowseEndpoints m_browse;
    PostEndpoints m_post;
    ImageFactory m_images;
    int m_maxBodyBytes;
    QString m_fallbackOrigin;
    QHash<QString, Endpoint> m_endpoints;
};
