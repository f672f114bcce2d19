#include "LFAnalyticsThrift.h"

#include "LFAnalyticsApp.h"
#include "LFAnalyticsConfig.h"
#include "LFAnalyticsContext.h"
#include "LFAnalyticsDevice.h"
#include "LFAnalyticsInternal.h"
#include "LFAnalyticsJob.h"
#include "LFTBinaryProtocol.h"

#include <QHash>

namespace {
qint64 milliseconds(double seconds)
{
    return qint64(std::llround(seconds * 1000));
}

LFTPropertyValue stringValue(const QString &text)
{
    LFTPropertyValue value;
    value.setString_value(text.isNull() ? QStringLiteral("") : text);
    return value;
}

LFTEvent plainEvent(const LFANEvent &event)
{
    LFTEvent out;
    out.setName(event.event_id);
    out.setProperties({{event.event_id, stringValue(event.label)}});
    out.setAcc(event.acc);
    if (event.du > 0)
        out.setDuration(event.du);
    out.setTs(milliseconds(event.ts));
    return out;
}

LFTEvent attributeEvent(const LFANEkv &event)
{
    LFTEvent out;
    out.setName(event.id);
    LFTPropertyMap properties;
    for (auto it = event.values.cbegin(); it != event.values.cend(); ++it)
        properties.insert(it.key(), stringValue(it.value().toString()));
    out.setProperties(std::move(properties));
    if (event.du >= 1)
        out.setDuration(event.du);
    out.setTs(milliseconds(event.ts));
    return out;
}

LFTError errorRecord(const LFANError &error)
{
    LFTError out;
    out.setTs(milliseconds(error.ts));
    out.setContext(error.context);
    out.setSource(error.source);
    return out;
}

LFTSession sessionRecord(const LFANTerminate &record)
{
    LFTSession out;
    out.setId(record.session_id);
    out.setStart_time(milliseconds(record.startTime));
    out.setEnd_time(milliseconds(record.endTime));
    out.setDuration(milliseconds(record.duration));
    LFTPageList pages;
    pages.reserve(record.pageViews.size());
    for (const LFANPage &item : record.pageViews) {
        LFTPage page;
        page.setPage_name(item.name);
        page.setDuration(qint64(item.seconds) * 1000);
        pages.append(std::move(page));
    }
    if (!pages.isEmpty())
        out.setPages(std::move(pages));
    if (record.hasLocation()) {
        LFTLocation location;
        location.setLat(record.latitude);
        location.setLng(record.longitude);
        location.setTs(record.gps_time);
        out.setLocations({location});
    }
    return out;
}
} // namespace

LFAnalyticsThrift::LFAnalyticsThrift(LFAnalyticsContext &context)
    : m_context(context)
{
}

LFAnalyticsThrift &LFAnalyticsThrift::shared()
{
    return LFAnalyticsContext::shared().thrift();
}

QByteArray LFAnalyticsThrift::toData()
{
    const LFTUALogEntry entry = buildLogEntry();
    LFTMemoryBuffer buffer;
    LFTBinaryProtocol protocol(&buffer);
    try {
        entry.write(protocol);
    } catch (const LFTException &error) {
        m_context.log(QStringLiteral("Exception occurred: %1, %2").arg(error.name(), error.reason()));
    }
    QByteArray data = buffer.getBuffer();
    if (data.size() >= kMaxEntrySize) {
        m_context.internal().removeCacheData();
        return {};
    }
    return data;
}

std::optional<LFTResponse> LFAnalyticsThrift::fromData(const QByteArray &data) const
{
    try {
        return LFTDecode<LFTResponse>(data);
    } catch (const LFTException &error) {
        m_context.log(QStringLiteral("Exception occurred: %1, %2").arg(error.name(), error.reason()));
        return std::nullopt;
    }
}

LFTUALogEntry LFAnalyticsThrift::buildLogEntry() const
{
    LFTUALogEntry entry;
    entry.setApp_info(buildAppInfo());
    entry.setDevice_info(buildDeviceInfo());
    entry.setMisc_info(buildMiscInfo());
    if (auto activate = buildActivateMsg())
        entry.setActivate_msg(*activate);
    entry.setClient_stats(buildClientStats());
    buildSessionsAndInstantMessages(entry);
    if (auto imprint = buildImprint())
        entry.setImprint(*imprint);
    if (auto policy = buildControlPolicy())
        entry.setControl_policy(*policy);
    const QVariantMap groups = m_context.config().configureWithKey(QStringLiteral("lfExperimentGroupInfo")).toMap();
    if (!groups.isEmpty() && !m_context.options().integratedTestMode) {
        LFTGroupInfo info;
        for (auto it = groups.cbegin(); it != groups.cend(); ++it)
            info.insert(it.key(), it.value().toInt());
        entry.setGroup_info(std::move(info));
    }
    if (auto user = buildActiveUser())
        entry.setActive_user(*user);
    if (auto tracking = buildIdTracking())
        entry.setId_tracking(*tracking);
    return entry;
}

LFTAppInfo LFAnalyticsThrift::buildAppInfo() const
{
    LFAnalyticsApp &app = m_context.app();
    LFAnalyticsInternal &internal = m_context.internal();
    LFTAppInfo info;
    info.setKey(app.appid());
    info.setVersion(app.appVersion());
    info.setPackage_name(m_context.device().bundleIdentifier());
    info.setSdk_type(kSdkType);
    info.setSdk_version(LFAnalyticsApp::kSdkVersion);
    info.setChannel(app.channel());
    if (const QString type = internal.wrapperType(); !type.isEmpty())
        info.setWrapper_type(type);
    if (const QString version = internal.wrapperVersion(); !version.isEmpty())
        info.setWrapper_version(version);
    return info;
}

LFTDeviceInfo LFAnalyticsThrift::buildDeviceInfo() const
{
    const LFAnalyticsDevice &device = m_context.device();
    LFTDeviceInfo info;
    info.setDevice_id(device.deviceId());
    info.setMac_address(device.macAddress());
    info.setModel(device.model());
    info.setOs(device.os());
    info.setOs_version(device.osVersion());
    info.setIs_jailbroken(false);
    const QSize pixels = device.resolution();
    LFTResolution resolution;
    resolution.setHeight(pixels.height());
    resolution.setWidth(pixels.width());
    info.setResolution(resolution);
    return info;
}

LFTMiscInfo LFAnalyticsThrift::buildMiscInfo() const
{
    const LFAnalyticsDevice &device = m_context.device();
    LFTMiscInfo info;
    info.setTime_zone(device.timeZoneHours());
    info.setLanguage(device.language());
    info.setCountry(device.country());
    if (const QString carrier = device.carrier(); !carrier.isEmpty())
        info.setCarrier(carrier);
    info.setDisplay_name(device.displayName());
    const QString access = device.accessText();
    info.setAccess_type(access == QStringLiteral("WiFi") ? 2 : access == QStringLiteral("CellNetwork") ? 1 : 0);
    return info;
}

LFTClientStats LFAnalyticsThrift::buildClientStats() const
{
    LFAnalyticsConfig &config = m_context.config();
    // Both counters are required by the record, so a count never stored is sent as 0.
    LFTClientStats stats;
    stats.setSuccessful_requests(int32_t(config.numberWithKey(QStringLiteral("lfSuccessfulRequests")).value_or(0)));
    stats.setFailed_requests(int32_t(config.numberWithKey(QStringLiteral("lfFailedRequests")).value_or(0)));
    if (auto spent = config.numberWithKey(QStringLiteral("lfLastRequestSpentMS")))
        stats.setLast_request_spent_ms(int32_t(*spent));
    return stats;
}

void LFAnalyticsThrift::buildSessionsAndInstantMessages(LFTUALogEntry &entry) const
{
    const LFANContainers memory = m_context.internal().containers();

    struct Messages
    {
        LFTErrorList errors;
        LFTEventList events;
    };
    QList<QString> order;
    QHash<QString, Messages> bySession;
    auto messagesOf = [&](const QString &sessionId) -> Messages & {
        auto it = bySession.find(sessionId);
        if (it == bySession.end()) {
            order.append(sessionId);
            it = bySession.insert(sessionId, {});
        }
        return *it;
    };
    for (const LFANEvent &event : memory.events)
        messagesOf(event.session_id).events.append(plainEvent(event));
    for (const LFANEkv &event : memory.ekvs)
        messagesOf(event.session_id).events.append(attributeEvent(event));
    for (const LFANError &error : memory.errors)
        messagesOf(error.session_id).errors.append(errorRecord(error));

    if (!order.isEmpty()) {
        LFTInstantMsgList messages;
        messages.reserve(order.size());
        for (const QString &sessionId : order) {
            Messages &found = bySession[sessionId];
            LFTInstantMsg message;
            message.setId(sessionId);
            if (!found.errors.isEmpty())
                message.setErrors(std::move(found.errors));
            if (!found.events.isEmpty())
                message.setEvents(std::move(found.events));
            messages.append(std::move(message));
        }
        entry.setInstant_msgs(std::move(messages));
    }

    if (!memory.terminates.isEmpty()) {
        LFTSessionList sessions;
        sessions.reserve(memory.terminates.size());
        for (const LFANTerminate &record : memory.terminates)
            sessions.append(sessionRecord(record));
        entry.setSessions(std::move(sessions));
    }
}

std::optional<LFTImprint> LFAnalyticsThrift::buildImprint() const
{
    const QByteArray stored = m_context.config().configureWithKey(QStringLiteral("lfImprint")).toByteArray();
    if (stored.isEmpty())
        return std::nullopt;
    try {
        return LFTDecode<LFTImprint>(stored);
    } catch (const LFTException &error) {
        m_context.log(QStringLiteral("Exception occurred: %1, %2").arg(error.name(), error.reason()));
        return std::nullopt;
    }
}

std::optional<LFTControlPolicy> LFAnalyticsThrift::buildControlPolicy() const
{
    const LFAnalyticsJob &job = m_context.job();
    const uint32_t latency = job.latency();
    if (job.defconLevel() == 0 && !job.disguisedLatency() && latency < 1)
        return std::nullopt;
    const std::optional<double> lastPost = m_context.config().numberWithKey(QStringLiteral("lastPostInterval"));
    LFTLatent latent;
    latent.setLatency(int32_t(latency));
    latent.setInterval(lastPost ? milliseconds(m_context.now() - *lastPost) : 0);
    LFTControlPolicy policy;
    policy.setLatent(latent);
    return policy;
}

std::optional<LFTActiveUser> LFAnalyticsThrift::buildActiveUser() const
{
    LFAnalyticsConfig &config = m_context.config();
    const QString puid = config.stringWithKey(QStringLiteral("LFProfilePUID"));
    if (puid.isNull())
        return std::nullopt;
    const QString provider = config.stringWithKey(QStringLiteral("LFProfileProvider"));
    LFTActiveUser user;
    user.setProvider(provider.isNull() ? QStringLiteral("") : provider);
    user.setPuid(puid);
    return user;
}

std::optional<LFTActivateMsg> LFAnalyticsThrift::buildActivateMsg() const
{
    if (m_context.config().configureWithKey(QStringLiteral("lfActivateMsg")).isValid())
        return std::nullopt;
    LFTActivateMsg message;
    message.setTs(milliseconds(m_context.now()));
    return message;
}

std::optional<LFTIdTracking> LFAnalyticsThrift::buildIdTracking() const
{
    // Identity tracking between posts is kept by the upload code; nothing is tracked yet.
    return std::nullopt;
}

QString LFAnalyticsThrift::imprintPropertyValueWithKey(const QString &key) const
{
    const std::optional<LFTImprint> imprint = buildImprint();
    if (!imprint)
        return {};
    const auto found = imprint->property().constFind(key);
    if (found == imprint->property().constEnd() || !found->valueIsSet())
        return {};
    return found->value();
}
