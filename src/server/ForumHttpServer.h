#pragma once
// The HTTP side of the server: hands every request to the ForumRouter, writes its answer
// and logs one line per request. Requests are handled one at a time on the thread the
// server lives on (the main thread), so the store sees no concurrent use.

#include "ForumRouter.h"

#include <QAbstractHttpServer>

class ForumHttpServer : public QAbstractHttpServer
{
    Q_OBJECT

public:
    explicit ForumHttpServer(ForumRouter &router, QObject *parent = nullptr);

protected:
    bool handleRequest(const QHttpServerRequest &request, QTcpSocket *socket) override;
    void missingHandler(const QHttpServerRequest &request, QTcpSocket *socket) override;

private:
    ForumRouter &m_router;
};
