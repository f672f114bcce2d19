#include "LFAnalyticsEvent.h"

#include "LFANUtil.h"
#include "LFAnalyticsContext.h"
#include "LFWorkDispatch.h"

#include <QDateTime>
#include <QStringList>

namespace {
const QString kReservedKeysMessage = QStringLiteral(
    "LFLOG: (ERROR) 关键字id, ts, du是LefiseixSDK保留字段，不能作为key使用。");
const QString kEkvTypeMessage = QStringLiteral(
    "LFLOG: (ERROR) Lefiseix event's keys and values must be string ,key's max length 128 and "
    "value's max length 256");
const QString kGkvTypeMessage = QStringLiteral(
    "LFLOG: (ERROR) Lefiseix event's keys and values must be string ,key's max length 64 and "
    "value's max length 256");
const QString kReservedKeys[] = {QStringLiteral("id"), QStringLiteral("ts"), QStringLiteral("du")};
} // namespace

LFAnalyticsEvent::LFAnalyticsEvent(LFAnalyticsContext &context)
    : m_context(context)
{
}

LFAnalyticsEvent &LFAnalyticsEvent::shared()
{
    return LFAnalyticsContext::shared().event();
}

bool LFAnalyticsEvent::validateEventId(const QString &eventId) const
{
    if (LFANUtil::isBlank(eventId))
        return false;
    if (LFANUtil::utf8Length(eventId) > kMaxEventIdBytes) {
        m_context.logAlways(QStringLiteral("LFLOG: (Warning) event_id (%1) max bytes length > %2")
                                .arg(eventId)
                                .arg(kMaxEventIdBytes));
        return false;
    }
    return true;
}

std::optional<QVariantMap> LFAnalyticsEvent::validateAttributes(const QVariantMap &attributes,
                                                                const QString &kind) const
{
    if (attributes.isEmpty())
        return std::nullopt;
    for (const QString &reserved : kReservedKeys) {
        if (attributes.contains(reserved)) {
            m_context.logAlways(kReservedKeysMessage);
            return std::nullopt;
        }
    }
    QVariantMap kept;
    int others = 0;
    for (auto it = attributes.cbegin(); it != attributes.cend(); ++it) {
        if (it.key() == kCounterKey) {
            kept.insert(it.key(), it.value());
        } else if (others < kMaxAttributes) {
            kept.insert(it.key(), it.value());
            ++others;
        }
    }

    const bool appEvent = kind != QStringLiteral("gkv");
    QVariantMap cleaned;
    for (auto it = kept.cbegin(); it != kept.cend(); ++it) {
        // A null key stands for a missing one; an empty key is still a string and is kept.
        const bool keyIsString = !it.key().isNull();
        if (!appEvent) {
            if (!keyIsString) {
                m_context.logAlways(kGkvTypeMessage);
                continue;
            }
            cleaned.insert(LFANUtil::getString(it.key(), kMaxKeyBytes), it.value());
            continue;
        }
        if (!keyIsString || it.value().typeId() != QMetaType::QString) {
            m_context.logAlways(kEkvTypeMessage);
            continue;
        }
        cleaned.insert(LFANUtil::getString(it.key(), kMaxKeyBytes),
                       LFANUtil::getString(it.value().toString(), kMaxValueBytes));
    }
    return cleaned;
}

void LFAnalyticsEvent::fillBase(LFANBaseEvent &event, const QString &type) const
{
    const double now = m_context.now();
    const QDateTime local = QDateTime::fromMSecsSinceEpoch(qint64(now * 1000));
    event.type = type;
    event.ts = now;
    event.date = local.toString(QStringLiteral("yyyy-MM-dd"));
    event.time = local.toString(QStringLiteral("HH:mm:ss"));
}

LFANEvent LFAnalyticsEvent::plainEvent(const QString &eventId, const QString &label) const
{
    LFANEvent event;
    fillBase(event, QStringLiteral("event"));
    event.event_id = eventId;
    event.label = label;
    return event;
}

void LFAnalyticsEvent::event(const QString &eventId, const QString &label, int acc, qint64 durationMs)
{
    if (!validateEventId(eventId) || durationMs >= kMaxDurationMs)
        return;
    LFANEvent event = plainEvent(eventId, label);
    event.acc = acc;
    event.du = durationMs;
    m_context.dispatch().send(std::move(event), LFEventTypePlainEvent);
}

void LFAnalyticsEvent::event(const QString &eventId, const QVariantMap &attributes,
                             qint64 durationMs, const QString &kind)
{
    if (!validateEventId(eventId))
        return;
    const std::optional<QVariantMap> values = validateAttributes(attributes, kind);
    if (!values)
        return;
    LFANEkv event;
    fillBase(event, kind);
    event.id = eventId;
    event.values = *values;
    event.du = durationMs >= 1 ? durationMs : 0;
    event.kind = kind;
    m_context.dispatch().send(std::move(event), LFEventTypeEkv);
}

void LFAnalyticsEvent::eventAttributesCounter(const QString &eventId, const QVariantMap &attributes,
                                              int counter)
{
    QVariantMap counted = attributes;
    counted.insert(kCounterKey, QString::number(counter));
    event(eventId, counted, 0);
}

void LFAnalyticsEvent::beginEvent(const QString &eventId, const QString &label)
{
    if (validateEventId(eventId))
        m_context.dispatch().send(plainEvent(eventId, label), LFEventTypeBeginEvent);
}

void LFAnalyticsEvent::endEvent(const QString &eventId, const QString &label)
{
    if (validateEventId(eventId))
        m_context.dispatch().send(plainEvent(eventId, label), LFEventTypeEndEvent);
}

void LFAnalyticsEvent::beginEvent(const QString &eventId, const QString &primarykey,
                                  const QVariantMap &attributes)
{
    if (!validateEventId(eventId))
        return;
    const std::optional<QVariantMap> values = validateAttributes(attributes, QStringLiteral("ekv"));
    if (!values)
        return;
    LFANEkv event;
    fillBase(event, QStringLiteral("ekv"));
    event.id = eventId;
    event.key = primarykey;
    event.values = *values;
    m_context.dispatch().send(std::move(event), LFEventTypeBeginEkv);
}

void LFAnalyticsEvent::endEventPrimarykey(const QString &eventId, const QString &primarykey)
{
    if (!validateEventId(eventId))
        return;
    LFANEkv event;
    fillBase(event, QStringLiteral("ekv"));
    event.id = eventId;
    event.key = primarykey;
    m_context.dispatch().send(std::move(event), LFEventTypeEndEkv);
}

void LFAnalyticsEvent::logPageView(const QString &page, int seconds)
{
    if (!LFANUtil::isBlank(page))
        m_context.dispatch().send(LFANPage{page, seconds}, LFEventTypePageDuration);
}

void LFAnalyticsEvent::beginLogPageView(const QString &page)
{
    if (!LFANUtil::isBlank(page))
        m_context.dispatch().send(page, LFEventTypePageBegin);
}

void LFAnalyticsEvent::endLogPageView(const QString &page)
{
    if (!LFANUtil::isBlank(page))
        m_context.dispatch().send(page, LFEventTypePageEnd);
}
