#pragma once
// The HTTP side of the server: hands every request to the ForumRouter, writes its answer
// and logs one line per request. Requests are handled one at a time on the thread the
// server lives on (the main thread), so the store sees no concurrent use.

#include "ForumRouter.h"

#include <QAbstractHttpServer>

#include <functional>

class ForumHttpServer : public QAbstractHttpServer
{
    Q_OBJECT

public:
    explicit ForumHttpServer(ForumRouter &router, QObject *parent = nullptr);

    // Sees every request before the router; true when it answered it (or keeps it open).
    using RequestTaker = std::function<bool(const QHttpServerRequest &, QHttpServerResponder &)>;
    void setRequestTaker(RequestTaker taker) { m_taker = std::move(taker); }

protected:
    bool handleRequest(const QHttpServerRequest &request, QTcpSocket *socket) override;
    void missingHandler(const QHttpServerRequest &request, QTcpSocket *socket) override;

private:
    ForumRouter &m_router;
    RequestTaker m_taker;
};
