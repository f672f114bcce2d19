#pragma once
// Validation of events and pages before they are handed to the dispatcher. Any thread.

#include "LFAnalyticsRecords.h"

#include <QString>
#include <QVariantMap>

#include <optional>

class LFAnalyticsContext;

class LFAnalyticsEvent
{
public:
    static constexpr int kMaxEventIdBytes = 128;
    static constexpr int kMaxAttributes = 10;
    static constexpr int kMaxKeyBytes = 128;
    static constexpr int kMaxValueBytes = 256;
    static constexpr qint64 kMaxDurationMs = 7200000;
    static inline const QString kCounterKey = QStringLiteral("__ct__");

    explicit LFAnalyticsEvent(LFAnalyticsContext &context);

    static LFAnalyticsEvent &shared();

    // A plain event; `label` may be null.
    void event(const QString &eventId, const QString &label, int acc, qint64 durationMs);
    // An attribute event of the given kind ("ekv" or "gkv").
    void event(const QString &eventId, const QVariantMap &attributes, qint64 durationMs,
               const QString &kind = QStringLiteral("ekv"));
    void eventAttributesCounter(const QString &eventId, const QVariantMap &attributes, int counter);
    void beginEvent(const QString &eventId, const QString &label);
    void endEvent(const QString &eventId, const QString &label);
    void beginEvent(const QString &eventId, const QString &primarykey, const QVariantMap &attributes);
    void endEventPrimarykey(const QString &eventId, const QString &primarykey);
    void logPageView(const QString &page, int seconds);
    void beginLogPageView(const QString &page);
    void endLogPageView(const QString &page);

    // Whether the id may name an event; logs the refusal of a too long one.
    bool validateEventId(const QString &eventId) const;
    // The attributes as they will be recorded, or nothing when the event must be dropped.
    std::optional<QVariantMap> validateAttributes(const QVariantMap &attributes, const QString &kind) const;

private:
    void fillBase(LFANBaseEvent &event, const QString &type) const;
    LFANEvent plainEvent(const QString &eventId, const QString &label) const;

    LFAnalyticsContext &m_context;
};
