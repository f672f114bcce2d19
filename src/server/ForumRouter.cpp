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
    , m_browse(store)
    , m_post(store,
             {qint64(options.postIntervalSeconds) * 1000, options.maxTitleLength, options.maxContentLength},
             std::move(clock))
    , m_maxBodyBytes(options.maxBodyBytes)
    , m_fallbackOrigin(QStringLiteral("http://%1:%2").arg(options.host).arg(options.port))
{
    using Kind = BrowseQuery::Kind;
    const auto reading = [](PayloadUse use, Kind kind) { return Endpoint{"GET", use, kind, {}}; };
    const auto writing = [](const QByteArray &method, EndpointAnswer (PostEndpoints::*handler)(const QJsonObject &),
                            PostEndpoints &post) {
        return Endpoint{method, PayloadUse::Required, std::nullopt,
                        [&post, handler](const QJsonObject &payload) { return (post.*handler)(payload); }};
    };
    m_endpoints = {
        {QStringLiteral("GetAdRecom"), reading(PayloadUse::None, Kind::AdRecom)},
        {QStringLiteral("GetSection"), reading(PayloadUse::Optional, Kind::Sections)},
        {QStringLiteral("GetTopics"), reading(PayloadUse::Required, Kind::Topics)},
        {QStringLiteral("GetTopTopic"), reading(PayloadUse::Required, Kind::TopTopics)},
        {QStringLiteral("TopicDetail"), reading(PayloadUse::Required, Kind::TopicDetail)},
        {QStringLiteral("RepliesLog"), reading(PayloadUse::Required, Kind::RepliesLog)},
        {QStringLiteral("GetTempUserInfo"), writing("GET", &PostEndpoints::tempUserInfo, m_post)},
        {QStringLiteral("WriteTopic"), writing("POST", &PostEndpoints::writeTopic, m_post)},
        {QStringLiteral("RepliesleTopic"), writing("POST", &PostEndpoints::replyTopic, m_post)},
    };
    // This process's writes and, on a shared database, every other process's.
    m_changeListener = m_store.database().addChangeListener([this](const QStringList &tags) { m_cache.drop(tags); });
}

ForumRouter::~ForumRouter()
{
    m_store.database().removeChangeListener(m_changeListener);
}

QString ForumRouter::originOf(const ServerRequest &request) const
{
    if (usableHost(request.host))
        return QStringLiteral("http://") + QString::fromLatin1(request.host);
    return m_fallbackOrigin;
}

std::optional<ServerReply> ForumRouter::sizeFailure(const ServerRequest &request) const
{
    if (request.body.size() > m_maxBodyBytes)
        return failure(413, "payload_too_large", QStringLiteral("body over %1 bytes").arg(m_maxBodyBytes));
    if (request.rawQuery.size() > m_maxBodyBytes)
        return failure(414, "uri_too_long", QStringLiteral("query over %1 bytes").arg(m_maxBodyBytes));
    return std::nullopt;
}

ServerReply ForumRouter::handle(const ServerRequest &request)
{
    if (std::optional<ServerReply> tooLarge = sizeFailure(request))
        return *tooLarge;
    // Answers kept from before another process's write are dropped before any is used.
    m_store.database().takeChangeNotices();
    const QString path = QString::fromUtf8(QByteArray::fromPercentEncoding(request.path));
    try {
        if (path.startsWith(kApiPrefix))
            return api(request, path.mid(kApiPrefix.size()), originOf(request));
        if (request.method != "GET")
            return methodNotAllowed("GET");
        return picture(path);
    } catch (const StoreUnavailable &) {
        return failure(503, "unavailable", QStringLiteral("the database is unavailable, try again shortly"));
    } catch (const StoreError &error) {
        serverLog(QStringLiteral("storage failure: %1").arg(QString::fromStdString(error.what())));
        return failure(500, "server_error", QStringLiteral("storage failure"));
    }
}

std::optional<ServerReply> ForumRouter::cachedReply(const ServerRequest &request) const
{
    // Only what handle() would answer from the cache: no size failure, a reading endpoint
    // asked the right way, and a Host of its own (the fallback origin is the store thread's).
    // A change notice not yet read may make the kept answer stale: the store's thread reads
    // it first.
    if (request.method != "GET" || sizeFailure(request) || m_store.database().changeNoticesPending())
        return std::nullopt;
    const QByteArray digest = RequestKeyMemo::digest(request.path, request.rawQuery, request.host);
    std::optional<QByteArray> key = m_keyMemo.find(digest);
    if (!key) {
        key = readingKey(request);
        if (!key)
            return std::nullopt;
        m_keyMemo.remember(digest, *key);
    }
    const std::optional<QByteArray> body = m_cache.find(*key);
    if (!body)
        return std::nullopt;
    return ServerReply{200, kJson, *body, QByteArray(), QStringLiteral("cached")};
}

std::optional<QByteArray> ForumRouter::readingKey(const ServerRequest &request) const
{
    if (!usableHost(request.host))
        return std::nullopt;
    const QString path = QString::fromUtf8(QByteArray::fromPercentEncoding(request.path));
    if (!path.startsWith(kApiPrefix))
        return std::nullopt;
    const auto endpoint = m_endpoints.constFind(path.mid(kApiPrefix.size()));
    if (endpoint == m_endpoints.constEnd() || !endpoint->reads)
        return std::nullopt;
    const PayloadRead read = payloadOf(request, endpoint->payload);
    if (read.failure)
        return std::nullopt;
    const BrowseQueryRead query =
        BrowseQueryRead::read(*endpoint->reads, read.payload, originOf(request), ServerOptions::kMaxPageSize);
    if (!query.query)
        return std::nullopt;
    return query.query->cacheKey();
}

ForumRouter::PayloadRead ForumRouter::payloadOf(const ServerRequest &request, PayloadUse use)
{
    if (use == PayloadUse::None)
        return {};
    const std::optional<QByteArray> data = RequestPayload::dataParameter(request.rawQuery);
    if (!data) {
        if (use == PayloadUse::Required)
            return {std::nullopt, failure(400, "bad_request", QStringLiteral("missing data parameter"))};
        return {};
    }
    RequestPayload::Decoded decoded = RequestPayload::decode(*data);
    if (!decoded.object)
        return {std::nullopt, failure(400, "bad_request", decoded.error)};
    return {std::move(decoded.object), std::nullopt};
}

ServerReply ForumRouter::api(const ServerRequest &request, const QString &name, const QString &origin)
{
    const auto endpoint = m_endpoints.constFind(name);
    if (endpoint == m_endpoints.constEnd())
        return failure(404, "unknown_endpoint", QStringLiteral("no endpoint %1").arg(name.left(64)));
    if (request.method != endpoint->method)
        return methodNotAllowed(endpoint->method);
    PayloadRead read = payloadOf(request, endpoint->payload);
    if (read.failure)
        return *read.failure;
    if (endpoint->reads)
        return browse(*endpoint->reads, read.payload, origin);
    const EndpointAnswer answer = endpoint->writes(*read.payload);
    if (!answer.badRequest.isEmpty())
        return failure(400, "bad_request", answer.badRequest);
    return {200, kJson, AnswerEnvelope::wrap(answer.rdata), QByteArray(), QString()};
}

ServerReply ForumRouter::browse(BrowseQuery::Kind kind, const std::optional<QJsonObject> &payload,
                                const QString &origin)
{
    const BrowseQueryRead read = BrowseQueryRead::read(kind, payload, origin, ServerOptions::kMaxPageSize);
    if (!read.query)
        return failure(400, "bad_request", read.rejection);
    const QByteArray key = read.query->cacheKey();
    if (const std::optional<QByteArray> cached = m_cache.find(key))
        return {200, kJson, *cached, QByteArray(), QStringLiteral("cached")};
    const EndpointAnswer answer = m_browse.answer(*read.query);
    const QByteArray body = AnswerEnvelope::wrap(answer.rdata);
    if (!answer.tags.isEmpty())
        m_cache.insert(key, body, answer.tags);
    return {200, kJson, body, QByteArray(), QString()};
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
