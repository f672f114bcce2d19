#include "ForumRouter.h"

#include "AnswerEnvelope.h"
#include "PromoPages.h"
#include "RequestPayload.h"
#include "ServerLog.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

namespace {

const QByteArray kJson = QByteArrayLiteral("application/json");
const QByteArray kPng = QByteArrayLiteral("image/png");
const QByteArray kHtml = QByteArrayLiteral("text/html; charset=utf-8");
const QString kApiPrefix = QStringLiteral("/api/");

ServerReply failure(int status, const char *code, const QString &message)
{
    const QJsonObject error{{QStringLiteral("error"), QLatin1String(code)},
                            {QStringLiteral("message"), message}};
    return {status, kJson, QJsonDocument(error).toJson(QJsonDocument::Compact), QByteArray(), message};
}

ServerReply methodNotAllowed(const QByteArray &allowed)
{
    ServerReply reply = failure(405, "method_not_allowed", QStringLiteral("use %1").arg(QLatin1String(allowed)));
    reply.allow = allowed;
    return reply;
}

// A Host header fit to put into addresses: a name or IPv4 address, or a bracketed IPv6
// address, with an optional port.
bool usableHost(const QByteArray &host)
{
    static const QRegularExpression pattern(
        QStringLiteral("^([A-Za-z0-9.-]{1,253}|\\[[0-9A-Fa-f:.]{2,45}\\])(:[0-9]{1,5})?$"));
    return pattern.match(QString::fromLatin1(host)).hasMatch();
}

} // namespace

ForumRouter::ForumRouter(ForumStore &store, const ServerOptions &options, PostEndpoints::Clock clock)
    : m_store(store)
    , m_browse(store, ServerOptions::kMaxPageSize)
    , m_post(store,
             {qint64(options.postIntervalSeconds) * 1000, options.maxTitleLength, options.maxContentLength},
             std::move(clock))
    , m_maxBodyBytes(options.maxBodyBytes)
    , m_fallbackOrigin(QStringLiteral("http://%1:%2").arg(options.host).arg(options.port))
{
    using Payload = std::optional<QJsonObject>;
    m_endpoints = {
        {QStringLiteral("GetAdRecom"), {"GET", PayloadUse::None,
            [this](const Payload &, const QString &origin) { return m_browse.adRecom(origin); }}},
        {QStringLiteral("GetSection"), {"GET", PayloadUse::Optional,
            [this](const Payload &p, const QString &origin) { return m_browse.sections(p, origin); }}},
        {QStringLiteral("GetTopics"), {"GET", PayloadUse::Required,
            [this](const Payload &p, const QString &) { return m_browse.topics(*p); }}},
        {QStringLiteral("GetTopTopic"), {"GET", PayloadUse::Required,
            [this](const Payload &p, const QString &) { return m_browse.topTopics(*p); }}},
        {QStringLiteral("GetTempUserInfo"), {"GET", PayloadUse::Required,
            [this](const Payload &p, const QString &) { return m_post.tempUserInfo(*p); }}},
        {QStringLiteral("TopicDetail"), {"GET", PayloadUse::Required,
            [this](const Payload &p, const QString &) { return m_browse.topicDetail(*p); }}},
        {QStringLiteral("RepliesLog"), {"GET", PayloadUse::Required,
            [this](const Payload &p, const QString &) { return m_browse.repliesLog(*p); }}},
        {QStringLiteral("WriteTopic"), {"POST", PayloadUse::Required,
            [this](const Payload &p, const QString &) { return m_post.writeTopic(*p); }}},
        {QStringLiteral("RepliesleTopic"), {"POST", PayloadUse::Required,
            [this](const Payload &p, const QString &) { return m_post.replyTopic(*p); }}},
    };
}

QString ForumRouter::originOf(const ServerRequest &request) const
{
    if (usableHost(request.host))
        return QStringLiteral("http://") + QString::fromLatin1(request.host);
    return m_fallbackOrigin;
}

ServerReply ForumRouter::handle(const ServerRequest &request)
{
    if (request.body.size() > m_maxBodyBytes)
        return failure(413, "payload_too_large", QStringLiteral("body over %1 bytes").arg(m_maxBodyBytes));
    if (request.rawQuery.size() > m_maxBodyBytes)
        return failure(414, "uri_too_long", QStringLiteral("query over %1 bytes").arg(m_maxBodyBytes));

    const QString path = QString::fromUtf8(QByteArray::fromPercentEncoding(request.path));
    try {
        if (path.startsWith(kApiPrefix))
            return api(request, path.mid(kApiPrefix.size()), originOf(request));
        if (request.method != "GET")
            return methodNotAllowed("GET");
        return picture(path);
    } catch (const StoreError &error) {
        serverLog(QStringLiteral("storage failure: %1").arg(QString::fromStdString(error.what())));
        return failure(500, "server_error", QStringLiteral("storage failure"));
    }
}

ServerReply ForumRouter::api(const ServerRequest &request, const QString &name, const QString &origin)
{
    const auto endpoint = m_endpoints.constFind(name);
    if (endpoint == m_endpoints.constEnd())
        return failure(404, "unknown_endpoint", QStringLiteral("no endpoint %1").arg(name.left(64)));
    if (request.method != endpoint->method)
        return methodNotAllowed(endpoint->method);

    std::optional<QJsonObject> payload;
    if (endpoint->payload != PayloadUse::None) {
        const std::optional<QByteArray> data = RequestPayload::dataParameter(request.rawQuery);
        if (!data && endpoint->payload == PayloadUse::Required)
            return failure(400, "bad_request", QStringLiteral("missing data parameter"));
        if (data) {
            RequestPayload::Decoded decoded = RequestPayload::decode(*data);
            if (!decoded.object)
                return failure(400, "bad_request", decoded.error);
            payload = std::move(decoded.object);
        }
    }

    const EndpointAnswer answer = endpoint->handler(payload, origin);
    if (!answer.badRequest.isEmpty())
        return failure(400, "bad_request", answer.badRequest);
    return {200, kJson, AnswerEnvelope::wrap(answer.rdata), QByteArray(), QString()};
}

ServerReply ForumRouter::picture(const QString &path)
{
    static const QRegularExpression pattern(
        QStringLiteral("^/(img/section|img/header|img/banner|pages)/([0-9]{1,9})\\.(png|html)$"));
    const QRegularExpressionMatch match = pattern.match(path);
    const QString kind = match.captured(1);
    const qint64 id = match.captured(2).toLongLong();
    const bool html = match.captured(3) == QLatin1String("html");
    if (match.hasMatch() && html == (kind == QLatin1String("pages"))) {
        if (kind == QLatin1String("pages")) {
            if (const std::optional<QByteArray> page = PromoPages::page(int(id)))
                return {200, kHtml, *page, QByteArray(), QString()};
        } else if (kind == QLatin1String("img/banner")) {
            if (const std::optional<BannerRow> banner = m_store.banner(id))
                return {200, kPng, m_images.banner(id, banner->title), QByteArray(), QString()};
        } else if (const std::optional<SectionRow> section = m_store.section(id)) {
            const QByteArray image = kind == QLatin1String("img/section")
                ? m_images.sectionIcon(id, section->name)
                : m_images.sectionHeader(id);
            return {200, kPng, image, QByteArray(), QString()};
        }
    }
    return failure(404, "not_found", QStringLiteral("nothing at %1").arg(path.left(64)));
}
