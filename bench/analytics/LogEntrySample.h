#pragma once
// The benchmarks' log entry: 1,000 events in 10 sessions with 5 pages each. The events
// alternate: a plain event with a label, then an attribute event with three values.

#include "LFTRecords.h"

#include <string>

namespace benchentry {

constexpr int kSessions = 10;
constexpr int kEventsPerSession = 100;
constexpr int kPagesPerSession = 5;
constexpr int64_t kStartMs = 1700000000000;

inline std::string sessionId(int session)
{
    return "5f2b8c1e9a7d4e6b8c0a1f3e5d7b9c" + std::to_string(10 + session);
}

inline LFTUALogEntry ourEntry()
{
    LFTUALogEntry entry;
    LFTClientStats stats;
    stats.setSuccessful_requests(10);
    stats.setFailed_requests(1);
    entry.setClient_stats(stats);
    LFTAppInfo app;
    app.setKey(QStringLiteral("3c1f9a27b84e0d65a2f7c913"));
    app.setVersion(QStringLiteral("1.0.0"));
    app.setSdk_type(1);
    app.setSdk_version(QStringLiteral("3.6.6"));
    app.setChannel(QStringLiteral("App Store"));
    entry.setApp_info(app);
    LFTDeviceInfo device;
    device.setDevice_id(QStringLiteral("699ea1fa5adbd7cb5d6741621e931b622d99c077"));
    device.setModel(QStringLiteral("x86_64"));
    device.setOs(QStringLiteral("debian"));
    entry.setDevice_info(device);
    entry.setMisc_info({});

    LFTInstantMsgList messages;
    LFTSessionList sessions;
    for (int s = 0; s < kSessions; ++s) {
        const QString id = QString::fromStdString(sessionId(s));
        LFTEventList events;
        for (int e = 0; e < kEventsPerSession; ++e) {
            LFTEvent event;
            const QString name = QStringLiteral("event_%1").arg(e % 20);
            event.setName(name);
            LFTPropertyMap properties;
            if (e % 2 == 0) {
                LFTPropertyValue label;
                label.setString_value(QStringLiteral("label_%1").arg(e));
                properties.insert(name, label);
                event.setAcc(1);
            } else {
                for (int k = 0; k < 3; ++k) {
                    LFTPropertyValue value;
                    value.setString_value(QStringLiteral("value_%1").arg(e * 3 + k));
                    properties.insert(QStringLiteral("key_%1").arg(k), value);
                }
                event.setDuration(250 + e);
            }
            event.setProperties(properties);
            event.setTs(kStartMs + s * 600000 + e * 1000);
            events.append(event);
        }
        LFTInstantMsg message;
        message.setId(id);
        message.setEvents(events);
        messages.append(message);

        LFTPageList pages;
        for (int p = 0; p < kPagesPerSession; ++p) {
            LFTPage page;
            page.setPage_name(QStringLiteral("ViewController%1").arg(p));
            page.setDuration(1000 * (p + 3));
            pages.append(page);
        }
        LFTSession session;
        session.setId(id);
        session.setStart_time(kStartMs + s * 600000);
        session.setEnd_time(kStartMs + s * 600000 + 300000);
        session.setDuration(300000);
        session.setPages(pages);
        sessions.append(session);
    }
    entry.setInstant_msgs(messages);
    entry.setSessions(sessions);
    return entry;
}

} // namespace benchentry
