#include "PushGateway.h"

#include "ServerLog.h"

#include "HttpRequest.h"
#include "HttpResponder.h"
#include "RequestLogLine.h"

#include <QDateTime>
#include <QJsonDocument>

namespace {

const QString kEventsPath = QStringLiteral("/events");

void logLine(const HttpRequest &request, int status, const QString &note)
{
    serverLog(RequestLogLine::of(request, status, note));
}

// Logged first, so the line is there by the time the client has its answer.
void answer(const HttpRequest &request, const HttpResponder &responder, const GatewayReply &reply)
{
    logLine(request, reply.status, reply.note);
    responder.respond({reply.status, QByteArrayLiteral("application/json"),
                       QJsonDocument(reply.body).toJson(QJsonDocument::Compact), {}});
}

} // namespace

PushGateway::PushGateway(ForumDatabase &database, Options options)
    : m_store(database)
    , m_hub(m_store)
    , m_router(m_store, options.secret, options.policies, [] { return QDateTime::currentSecsSinceEpoch(); },
               [this](const QString &token, qint64 id, const QByteArray &userInfo) { m_hub.deliver(token, id, userInfo); })
{
}

bool PushGateway::take(const HttpRequest &request, const HttpResponder &responder)
{
    const QString path = QString::fromUtf8(QByteArray::fromPercentEncoding(request.path));
    const QString root = QLatin1String(kRoot);
    if (path != root && !path.startsWith(root + QLatin1Char('/')))
        return false;
    const QString below = path.mid(root.size());
    const QByteArray &method = request.method;
    if (below == kEventsPath) {
        events(request, responder);
        return true;
    }
    // Bodies over the server's limit never get here: the HTTP layer refuses them as they come.
    GatewayReply reply;
    try {
        reply = m_router.handle(method, below, request.header("Authorization"), request.body);
    } catch (const StoreError &error) {
        reply = {500, QJsonObject{{QStringLiteral("errors"), QStringLiteral("storage failure")}},
                 QString::fromStdString(error.what())};
    }
    answer(request, responder, reply);
    return true;
}

void PushGateway::events(const HttpRequest &request, const HttpResponder &responder)
{
    const QString token = QString::fromLatin1(PushGatewayRouter::bearer(request.header("Authorization"))).toLower();
    if (request.method != "GET") {
        answer(request, responder, {405, QJsonObject{{QStringLiteral("errors"), QStringLiteral("use GET")}}, {}});
        return;
    }
    if (!PushGatewayRequest::isWellFormedToken(token) || PushGatewayRequest::isNoToken(token)) {
        answer(request, responder,
               {401, QJsonObject{{QStringLiteral("errors"), QStringLiteral("a device token is needed")}},
                QStringLiteral("no device token")});
        return;
    }
    try {
        const qint64 after = m_hub.resumeAfter(request.header("Last-Event-ID"));
        if (request.query == "once=1") {
            const QByteArray missed = m_hub.missedEvents(token, after);
            logLine(request, 200, QStringLiteral("after %1").arg(after));
            responder.respond({200, PushDeliveryHub::kContentType, missed, {}});
        } else {
            m_store.recordStreamDevice(token);
            const QByteArray missed = m_hub.missedEvents(token, after);
            logLine(request, 200, QStringLiteral("after %1").arg(after));
            m_hub.openStream(token, missed, responder);
        }
    } catch (const StoreError &error) {
        answer(request, responder,
               {500, QJsonObject{{QStringLiteral("errors"), QStringLiteral("storage failure")}},
                QString::fromStdString(error.what())});
    }
}
