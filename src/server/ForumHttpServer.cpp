#include "ForumHttpServer.h"

#include "QueuedHandler.h"
#include "ServerLog.h"

namespace {

ServerRequest forumRequest(const HttpRequest &request)
{
    return {request.method, request.path, request.query, request.body, request.header("Host")};
}

void respond(const HttpResponder &responder, const ServerReply &reply)
{
    HttpResponse response{reply.status, reply.contentType, reply.body, {}};
    if (!reply.allow.isEmpty())
        response.headers.append({QByteArrayLiteral("Allow"), reply.allow});
    responder.respond(std::move(response));
}

void logRequest(const HttpRequest &request, const ServerReply &reply)
{
    QString line = QStringLiteral("%1 %2 %3 %4 ms")
                       .arg(QString::fromLatin1(request.method), QString::fromUtf8(request.path))
                       .arg(reply.status)
                       .arg(double(request.ageNs()) / 1e6, 0, 'f', 1);
    if (!reply.note.isEmpty())
        line += QStringLiteral(" (%1)").arg(reply.note);
    serverLog(line);
}

} // namespace

ForumHttpServer::ForumHttpServer(ForumRouter &router, const HttpLimits &limits, QObject *parent)
    : QObject(parent)
    , m_router(router)
    , m_onMainThread(QueuedHandler::onThreadOf(this, [this](HttpRequest request, HttpResponder responder) {
        answer(request, responder);
    }))
    , m_http(limits, [this](HttpRequest request, HttpResponder responder) { take(std::move(request), std::move(responder)); },
             serverLog)
{
}

quint16 ForumHttpServer::listen(const QString &address, quint16 port, QString *error)
{
    return m_http.listen(address, port, error);
}

void ForumHttpServer::take(HttpRequest request, HttpResponder responder)
{
    if (const std::optional<ServerReply> cached = m_router.cachedReply(forumRequest(request))) {
        respond(responder, *cached);
        logRequest(request, *cached);
        return;
    }
    m_onMainThread(std::move(request), std::move(responder));
}

void ForumHttpServer::answer(const HttpRequest &request, const HttpResponder &responder)
{
    if (m_taker && m_taker(request, responder))
        return;
    const ServerReply reply = m_router.handle(forumRequest(request));
    respond(responder, reply);
    logRequest(request, reply);
}
