#pragma once
// Decides whether and when to send: report policy, back-off level, delayed and disguised sends.
// Decisions run on the main thread (from dispatched work); the fields are guarded by a lock
// because setLatency may come from any thread.

#include <QMutex>

#include <cstdint>
#include <optional>

class LFAnalyticsContext;

class LFAnalyticsJob
{
public:
    // What asked for a send: a session start or a session end.
    static constexpr int kTriggerSessionStart = 0;
    static constexpr int kTriggerSessionEnd = 1;
    // Seconds since the last post that back-off levels 1, 2 and 3 ask for before the next one.
    static constexpr double kDefconLevel1Delay = 14400;
    static constexpr double kDefconLevel2Delay = 28800;
    static constexpr double kDefconLevel3Delay = 86400;
    static constexpr uint32_t kMaxLatency = 1800;
    static constexpr uint32_t kDefaultLatencyLimit = 10;
    static constexpr double kLatentThreshold = 1296000;      // 15 days
    static constexpr double kDisguisedThreshold = 129600;    // 36 hours
    static constexpr double kMinLatentHours = 48;
    static constexpr double kRealtimeInterval = 15;
    static constexpr double kBackgroundInterval = 129600;
    static constexpr double kForegroundInterval = 10800;

    explicit LFAnalyticsJob(LFAnalyticsContext &context);

    static LFAnalyticsJob &shared();

    // kTriggerSessionStart or kTriggerSessionEnd.
    void preparePerformJob(int trigger);
    bool shouldCommitJob(int trigger) const;
    bool ready() const;
    bool defconPass() const;
    bool checkLatentCondition();
    uint32_t calculateLatency() const;
    uint32_t latencySeed() const;

    void setLatency(int seconds);
    int defconLevel() const;
    void setDefconLevel(int level);
    // The delay that the next envelope's control policy carries.
    uint32_t latency() const;
    bool latencyJobPending() const;
    bool disguisedLatency() const;

private:
    void beginPerformJobDelay();
    // Seconds since the last post, or nothing when there was none.
    std::optional<double> sinceLastPost() const;

    LFAnalyticsContext &m_context;
    mutable QMutex m_mutex;
    int m_defconLevel = 0;
    std::optional<uint32_t> m_latencyLimit;
    uint32_t m_latency = 0;
    bool m_bLatencyJob = false;
    bool m_bDisguisedLatency = false;
};
