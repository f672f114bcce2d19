#include "PushGateway.h"

#include "ServerLog.h"

#include "HttpRequest.h"
#include "HttpResponder.h"

#include <QDateTime>
#include <QJsonDocument>

namespace {

const QString kEventsPath = QStringLiteral("/events");
const QByteArray kEventStream = QByteArrayLiteral("text/event-stream");

void answer(const HttpResponder &responder, const GatewayReply &reply)
{
    responder.respond({reply.status, QByteArrayLiteral("application/json"),
                       QJsonDocument(reply.body).toJson(QJsonDocument::Compact), {}});
}

void logLine(const QByteArray &method, const QString &path, int status, const QString &note)
{
    QString line = QStringLiteral("%1 %2 %3").arg(QString::fromLatin1(method), path).arg(status);
    if (!note.isEmpty())
        line += QStringLiteral(" (%1)").arg(note);
    serverLog(line);
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
    answer(responder, reply);
    logLine(method, path, reply.status, reply.note);
    return true;
}

void PushGateway::events(const HttpRequest &request, const HttpResponder &responder)
{
    const QString path = QString::fromUtf8(request.path);
    const QString token = QString::fromLatin1(PushGatewayRouter::bearer(request.header("Authorization"))).toLower();
    if (request.method != "GET") {
        answer(responder, {405, QJsonObject{{QStringLiteral("errors"), QStringLiteral("use GET")}}, {}});
        logLine(request.method, path, 405, QString());
        return;
    }
    if (!PushGatewayRequest::isWellFormedToken(token) || PushGatewayRequest::isNoToken(token)) {
        answer(responder, {401, QJsonObject{{QStringLiteral("errors"), QStringLiteral("a device token is needed")}}, {}});
        logLine("GET", path, 401, QStringLiteral("no device token"));
        return;
    }
    try {
        const qint64 after = m_hub.resumeAfter(request.header("Last-Event-ID"));
        if (request.query == "once=1") {
            responder.respond({200, kEventStream, m_hub.missedEvents(token, after), {}});
        } else {
            m_store.recordStreamDevice(token);
            m_hub.openStream(token, after, responder);
        }
        logLine("GET", path, 200, QStringLiteral("after %1").arg(after));
    } catch (const StoreError &error) {
        answer(responder, {500, QJsonObject{{QStringLiteral("errors"), QStringLiteral("storage failure")}}, {}});
        logLine("GET", path, 500, QString::fromStdString(error.what()));
    }
}
