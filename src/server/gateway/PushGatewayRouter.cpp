#include "PushGatewayRouter.h"

#include "PushGatewaySecret.h"
#include "PushGatewayStore.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace {

const QString kSendPath = QStringLiteral("/send");

GatewayReply refused(int status, const QString &reason)
{
    return {status, QJsonObject{{QStringLiteral("errors"), reason}}, reason};
}

} // namespace

PushGatewayRouter::PushGatewayRouter(PushGatewayStore &store, QByteArray secret, Policies policies,
                                     Clock clock, Delivery delivery)
    : m_store(store)
    , m_secret(std::move(secret))
    , m_policies(policies)
    , m_clock(std::move(clock))
    , m_delivery(std::move(delivery))
{
}

QByteArray PushGatewayRouter::bearer(const QByteArray &authorization)
{
    const QByteArray prefix = QByteArrayLiteral("Bearer ");
    return authorization.startsWith(prefix) ? authorization.mid(prefix.size()).trimmed() : QByteArray();
}

QJsonObject PushGatewayRouter::success() const
{
    return {{QStringLiteral("success"), true}};
}

GatewayReply PushGatewayRouter::handle(const QByteArray &method, const QString &path,
                                       const QByteArray &authorization, const QByteArray &body)
{
    const std::optional<PushGatewayRequest::Kind> kind = PushGatewayRequest::kindForPath(path);
    if (!kind && path != kSendPath)
        return refused(404, QStringLiteral("no gateway call %1").arg(path.left(64)));
    if (method != "POST")
        return refused(405, QStringLiteral("use POST"));
    return kind ? device(*kind, body) : send(authorization, body);
}

GatewayReply PushGatewayRouter::device(PushGatewayRequest::Kind kind, const QByteArray &body)
{
    using Kind = PushGatewayRequest::Kind;
    const PushGatewayRequest::Parsed<PushGatewayRequest::Device> parsed = PushGatewayRequest::parseDevice(kind, body);
    if (!parsed.request)
        return refused(400, parsed.error);
    const PushGatewayRequest::Device &request = *parsed.request;
    const QString &token = request.deviceToken;
    QJsonObject answer = success();
    switch (kind) {
    case Kind::Register:
    case Kind::Launch:
        if (!PushGatewayRequest::isNoToken(token))
            m_store.reportDevice(token, kind == Kind::Register, request.header, m_clock());
        answer.insert(QStringLiteral("launch_policy"), m_policies.launchPolicy);
        answer.insert(QStringLiteral("tag_policy"), m_policies.tagPolicy);
        break;
    case Kind::PushLogs:
        m_store.recordClick(token, request.msgId, request.ts, m_clock());
        break;
    case Kind::TagGet:
        break;
    case Kind::TagAdd:
        m_store.addTags(token, request.tags);
        break;
    case Kind::TagDelete:
        m_store.removeTags(token, request.tags);
        break;
    case Kind::TagReset:
        m_store.resetTags(token);
        break;
    case Kind::AliasAdd:
        m_store.addAlias(token, request.alias, request.type);
        break;
    case Kind::AliasSet:
        m_store.setAlias(token, request.alias, request.type);
        break;
    case Kind::AliasDelete:
        m_store.removeAlias(token, request.alias, request.type);
        break;
    }
    if (kind == Kind::TagGet || kind == Kind::TagAdd || kind == Kind::TagDelete || kind == Kind::TagReset)
        answer.insert(QStringLiteral("tags"), QJsonArray::fromStringList(m_store.tags(token)));
    return {200, answer, QString()};
}

GatewayReply PushGatewayRouter::send(const QByteArray &authorization, const QByteArray &body)
{
    if (!PushGatewaySecret::matches(m_secret, bearer(authorization)))
        return refused(401, QStringLiteral("sending needs the gateway's secret"));
    const PushGatewayRequest::Parsed<PushGatewayRequest::Send> parsed = PushGatewayRequest::parseSend(body);
    if (!parsed.request)
        return refused(400, parsed.error);
    const QStringList tokens = m_store.recipients(parsed.request->target);
    if (tokens.isEmpty())
        return refused(404, QStringLiteral("no registered device matches the target"));
    const QByteArray userInfo = QJsonDocument(parsed.request->userInfo).toJson(QJsonDocument::Compact);
    const QList<qint64> ids = m_store.storeMessage(tokens, parsed.request->msgId, userInfo, m_clock());
    for (qsizetype i = 0; i < ids.size(); ++i) {
        if (m_delivery)
            m_delivery(tokens[i], ids[i], userInfo);
    }
    QJsonObject answer = success();
    answer.insert(QStringLiteral("devices"), int(tokens.size()));
    answer.insert(QStringLiteral("msg_id"), parsed.request->msgId);
    return {200, answer, QString()};
}
