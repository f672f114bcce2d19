#include "CollectorHttpServer.h"

#include "CollectorLog.h"

#include <QHttpServerRequest>
#include <QHttpServerResponder>
#include <QMetaEnum>

CollectorHttpServer::CollectorHttpServer(AnalyticsCollector &collector, QObject *parent)
    : QAbstractHttpServer(parent)
    , m_collector(collector)
{
}

bool CollectorHttpServer::handleRequest(const QHttpServerRequest &request, QTcpSocket *socket)
{
    const char *key = QMetaEnum::fromType<QHttpServerRequest::Method>().valueToKey(int(request.method()));
    const QByteArray method = key ? QByteArray(key).toUpper() : QByteArrayLiteral("UNKNOWN");
    const QByteArray path = request.url().path(QUrl::FullyEncoded).toUtf8();
    const AnalyticsCollector::Reply reply = m_collector.handle(method, path, request.body());
    makeResponder(request, socket)
        .write(reply.body, {{"Content-Type", reply.contentType}},
               static_cast<QHttpServerResponder::StatusCode>(reply.status));
    QString line = QStringLiteral("%1 %2 %3").arg(QString::fromLatin1(method), QString::fromUtf8(path)).arg(reply.status);
    if (!reply.note.isEmpty())
        line += QStringLiteral(" (%1)").arg(reply.note);
    collectorLog(line);
    return true;
}

void CollectorHttpServer::missingHandler(const QHttpServerRequest &request, QTcpSocket *socket)
{
    // Unreached: handleRequest answers everything. Kept answering so no client hangs.
    makeResponder(request, socket).write(QHttpServerResponder::StatusCode::NotFound);
}
