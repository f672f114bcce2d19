#include "ForumHttpServer.h"

#include "ServerLog.h"

#include <QElapsedTimer>
#include <QHttpServerRequest>
#include <QHttpServerResponder>
#include <QMetaEnum>

namespace {

QByteArray methodName(QHttpServerRequest::Method method)
{
    const char *key = QMetaEnum::fromType<QHttpServerRequest::Method>().valueToKey(int(method));
    return key ? QByteArray(key).toUpper() : QByteArrayLiteral("UNKNOWN");
}

} // namespace

ForumHttpServer::ForumHttpServer(ForumRouter &router, QObject *parent)
    : QAbstractHttpServer(parent)
    , m_router(router)
{
}

bool ForumHttpServer::handleRequest(const QHttpServerRequest &request, QTcpSocket *socket)
{
    QHttpServerResponder responder = makeResponder(request, socket);
    if (m_taker && m_taker(request, responder))
        return true;
    QElapsedTimer timer;
    timer.start();
    const QUrl url = request.url();
    const ServerRequest forumRequest{methodName(request.method()), url.path(QUrl::FullyEncoded).toUtf8(),
                                     url.query(QUrl::FullyEncoded).toUtf8(), request.body(),
                                     request.value(QByteArrayLiteral("Host"))};
    const ServerReply reply = m_router.handle(forumRequest);

    const auto status = static_cast<QHttpServerResponder::StatusCode>(reply.status);
    if (reply.allow.isEmpty())
        responder.write(reply.body, {{"Content-Type", reply.contentType}}, status);
    else
        responder.write(reply.body, {{"Content-Type", reply.contentType}, {"Allow", reply.allow}}, status);

    QString line = QStringLiteral("%1 %2 %3 %4 ms")
                       .arg(QString::fromLatin1(forumRequest.method), QString::fromUtf8(forumRequest.path))
                       .arg(reply.status)
                       .arg(double(timer.nsecsElapsed()) / 1e6, 0, 'f', 1);
    if (!reply.note.isEmpty())
        line += QStringLiteral(" (%1)").arg(reply.note);
    serverLog(line);
    return true;
}

void ForumHttpServer::missingHandler(const QHttpServerRequest &request, QTcpSocket *socket)
{
    // Unreached: handleRequest answers everything. Kept answering so no client hangs.
    makeResponder(request, socket).write(QHttpServerResponder::StatusCode::NotFound);
}
