#pragma once
// The forum's HTTP side: takes requests from the HTTP layer's pool, answers cached reading
// requests there at once, and hands the rest to the store's thread (the main thread): first
// to the request taker (the push gateway), then to the ForumRouter. One log line per request.
// Lives on the main thread; take() runs on the pool.

#include "ForumRouter.h"
#include "HttpServer.h"

#include <QObject>

#include <functional>

class ForumHttpServer : public QObject
{
    Q_OBJECT

public:
    ForumHttpServer(ForumRouter &router, const HttpLimits &limits, QObject *parent = nullptr);

    // Sees every uncached request before the router, on the main thread; true when it
    // answered it (or keeps it open as a stream).
    using RequestTaker = std::function<bool(const HttpRequest &, const HttpResponder &)>;
    void setRequestTaker(RequestTaker taker) { m_taker = std::move(taker); }

    quint16 listen(const QString &address, quint16 port, QString *error);
    void start(int threads) { m_http.start(threads); }

private:
    void take(HttpRequest request, HttpResponder responder);
    void answer(const HttpRequest &request, const HttpResponder &responder);

    ForumRouter &m_router;
    RequestTaker m_taker;
    const HttpServer::Handler m_onMainThread;
    HttpServer m_http;
};
