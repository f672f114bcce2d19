#include "ForumHttpServer.h"

#include "QueuedHandler.h"
#include "RequestLogLine.h"
#include "ServerLog.h"

namespace {

ServerRequest forumRequest(const HttpRequest &request)
{
    // HEAD is answered as GET; the HTTP layer leaves the body out.
    const QByteArray method = request.method == "HEAD" ? QByteArrayLiteral("GET") : request.method;
    return {method, request.path, request.query, request.body, request.header("Host")};
}

void respond(const HttpResponder &responder, const ServerReply &reply)
{
    HttpResponse response{reply.status, reply.contentType, reply.body, {}};
    if (!reply.allow.isEmpty())
        response.headers.append({QByteArrayLiteral("Allow"), reply.allow});
    responder.respond(std::move(response));
}

// Logged before the answer goes, so the line is there by the time the client has it.
void logRequest(const HttpRequest &request, const ServerReply &reply)
{
    serverLog(RequestLogLine::of(request, reply.status, reply.note, double(request.ageNs()) / 1e6));
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
        logRequest(request, *cached);
        respond(responder, *cached);
        return;
    }
    m_onMainThread(std::move(request), std::move(responder));
}

void ForumHttpServer::answer(const HttpRequest &request, const HttpResponder &responder)
{
    if (m_taker && m_taker(request, responder))
        return;
    const ServerReply reply = m_router.handle(forumRequest(request));
    logRequest(request, reply);
    respond(responder, reply);
}
