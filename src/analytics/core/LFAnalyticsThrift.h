#pragma once
// Builds the log entry from the component's state and encodes it; decodes server replies and
// reads the stored imprint. Encoding runs on the main thread; imprint lookups on any thread.

#include "LFTRecords.h"

#include <QByteArray>
#include <QString>

#include <optional>

class LFAnalyticsContext;

class LFAnalyticsThrift
{
public:
    // An encoded entry this large or larger is thrown away with everything in memory.
    static constexpr qsizetype kMaxEntrySize = 0x400000;
    static constexpr int32_t kSdkType = 1;

    explicit LFAnalyticsThrift(LFAnalyticsContext &context);

    static LFAnalyticsThrift &shared();

    // The encoded log entry, or a null array when there is none to send.
    QByteArray toData();
    // The decoded reply, or nothing (logged) when it cannot be read.
    std::optional<LFTResponse> fromData(const QByteArray &data) const;

    LFTUALogEntry buildLogEntry() const;
    LFTAppInfo buildAppInfo() const;
    LFTDeviceInfo buildDeviceInfo() const;
    LFTMiscInfo buildMiscInfo() const;
    LFTClientStats buildClientStats() const;
    void buildSessionsAndInstantMessages(LFTUALogEntry &entry) const;
    std::optional<LFTImprint> buildImprint() const;
    std::optional<LFTControlPolicy> buildControlPolicy() const;
    std::optional<LFTActiveUser> buildActiveUser() const;
    std::optional<LFTActivateMsg> buildActivateMsg() const;
    std::optional<LFTIdTracking> buildIdTracking() const;

    // A value of the stored imprint ("lfImprint"), or a null string.
    QString imprintPropertyValueWithKey(const QString &key) const;

    // Back-off levels from this one on are stored as level 0.
    static constexpr int kMaxDefconLevel = 4;
    // The reply, or nothing when it cannot be read.
    std::optional<LFTResponse> verifyResponseData(const QByteArray &data) const { return fromData(data); }
    // MD5 over each key in case-insensitive order ("%@%@%qi%@" key, value, ts, guid, or
    // "%@%qi%@" without a value) and then the version ("%d"), in lowercase hex.
    static QString generateImprintChecksum(const LFTImprint &imprint);
    static bool validateImprintChecksum(const LFTImprint &imprint);
    // Merges a server imprint into the stored one and applies its back-off level, experiment
    // and intervals. Any thread.
    void updateImprint(const LFTImprint &imprint);
    // Reads "client_test": groups split by "|", each "KEY:VALUE" pairs split by ",".
    void configureExperimentWithString(const QString &text);

private:
    LFAnalyticsContext &m_context;
};
