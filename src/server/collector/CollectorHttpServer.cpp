#include "CollectorHttpServer.h"

#include "CollectorLog.h"
#include "QueuedHandler.h"

namespace {
HttpLimits withUploadLimit(HttpLimits limits)
{
    limits.maxBodyBytes = CollectorHttpServer::kMaxUploadBytes;
    return limits;
}
} // namespace

CollectorHttpServer::CollectorHttpServer(AnalyticsCollector &collector, HttpLimits limits, QObject *parent)
    : QObject(parent)
    , m_collector(collector)
    , m_http(withUploadLimit(limits),
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
    responder.respond({reply.status, reply.contentType, reply.body, {}});
    QString line = QStringLiteral("%1 %2 %3").arg(QString::fromLatin1(request.method), QString::fromUtf8(request.path)).arg(reply.status);
    if (!reply.note.isEmpty())
        line += QStringLiteral(" (%1)").arg(reply.note);
    collectorLog(line);
}
