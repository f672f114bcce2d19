#include "CollectorHttpServer.h"

#include "CollectorLog.h"
#include "QueuedHandler.h"
#include "RequestLogLine.h"

namespace {
HttpLimits collectorLimits(const HttpLimits &serverLimits)
{
    HttpLimits limits = serverLimits.withMaxBody(CollectorHttpServer::kMaxUploadBytes);
    limits.maxConnections = CollectorHttpServer::kMaxConnections;
    return limits;
}
} // namespace

CollectorHttpServer::CollectorHttpServer(AnalyticsCollector &collector, HttpLimits limits, QObject *parent)
    : QObject(parent)
    , m_collector(collector)
    , m_http(collectorLimits(limits),
             QueuedHandler::onThreadOf(this, [this](HttpRequest request, HttpResponder responder) {
                 answer(request, responder);
             }),
             collectorLog)
{
}

quint16 CollectorHttpServer::listen(const QString &address, quint16 port, QString *error)
{
    const quint16 bound = m_http.listen(address, port, error);
    if (bound != 0)
        m_http.start(kThreads);
    return bound;
}

void CollectorHttpServer::answer(const HttpRequest &request, const HttpResponder &responder)
{
    const AnalyticsCollector::Reply reply = m_collector.handle(request.method, request.path, request.body);
    // Logged first, so the line is there by the time the client has its answer.
    collectorLog(RequestLogLine::of(request, reply.status, reply.note));
    responder.respond({reply.status, reply.contentType, reply.body, {}});
}
