#pragma once
// Owns the analytics companions of one running component and the routines they share
// (logging, time). The process-wide one is created on first use under a lock; tests and tools
// may create their own. Any thread; the companions say where their work runs.

#include "LFAnalyticsOptions.h"

#include <QMutex>
#include <QString>

#include <memory>
#include <utility>

class LFAnalyticsApp;
class LFAnalyticsConfig;
class LFAnalyticsDevice;
class LFAnalyticsEnvelope;
class LFAnalyticsEvent;
class LFAnalyticsInternal;
class LFAnalyticsJob;
class LFAnalyticsLocation;
class LFAnalyticsSender;
class LFAnalyticsSession;
class LFAnalyticsThrift;
class LFWorkDispatch;

class LFAnalyticsContext
{
public:
    explicit LFAnalyticsContext(LFAnalyticsOptions options = {});
    ~LFAnalyticsContext();
    LFAnalyticsContext(const LFAnalyticsContext &) = delete;
    LFAnalyticsContext &operator=(const LFAnalyticsContext &) = delete;

    // The process-wide component, made on first use from the options given to
    // setSharedOptions (or the defaults).
    static LFAnalyticsContext &shared();
    // Options for the process-wide component; false once it exists already.
    static bool setSharedOptions(LFAnalyticsOptions options);

    const LFAnalyticsOptions &options() const { return m_options; }
    LFAnalyticsClock &clock() const { return *m_options.clock; }
    double now() const { return m_options.clock->now(); }

    LFAnalyticsApp &app() const { return *m_app; }
    LFAnalyticsConfig &config() const { return *m_config; }
    LFAnalyticsDevice &device() const { return *m_device; }
    LFAnalyticsEnvelope &envelope() const { return *m_envelope; }
    LFAnalyticsEvent &event() const { return *m_event; }
    LFAnalyticsInternal &internal() const { return *m_internal; }
    LFAnalyticsJob &job() const { return *m_job; }
    LFAnalyticsLocation &location() const { return *m_location; }
    LFAnalyticsSender &sender() const { return *m_sender; }
    LFAnalyticsSession &session() const { return *m_session; }
    LFAnalyticsThrift &thrift() const { return *m_thrift; }
    LFWorkDispatch &dispatch() const { return *m_dispatch; }

    static inline const QString kDefaultLogHost = QStringLiteral("http://127.0.0.1:8081");
    // The primary and fallback analytics log endpoints in force.
    std::pair<QString, QString> logHosts() const;
    // Points uploads at other endpoints; an empty URL keeps the one in force.
    void setLogHosts(const QString &primary, const QString &fallback);

    // Ends the upload worker, letting a running post finish within the time.
    bool shutdownUploads(int timeoutMs);

    // The component's one logging routine: "LFLOG: " and the message, only when logging is on.
    void log(const QString &message) const;
    // Messages that carry their own prefix and are printed whether logging is on or not.
    void logAlways(const QString &message) const;

private:
    LFAnalyticsOptions m_options;
    std::unique_ptr<LFAnalyticsConfig> m_config;
    std::unique_ptr<LFAnalyticsApp> m_app;
    std::unique_ptr<LFAnalyticsDevice> m_device;
    std::unique_ptr<LFAnalyticsLocation> m_location;
    std::unique_ptr<LFAnalyticsSession> m_session;
    std::unique_ptr<LFAnalyticsInternal> m_internal;
    std::unique_ptr<LFAnalyticsEvent> m_event;
    std::unique_ptr<LFAnalyticsEnvelope> m_envelope;
    std::unique_ptr<LFAnalyticsSender> m_sender;
    std::unique_ptr<LFAnalyticsJob> m_job;
    std::unique_ptr<LFAnalyticsThrift> m_thrift;
    std::unique_ptr<LFWorkDispatch> m_dispatch;
    mutable QMutex m_hostsMutex;
    QString m_primaryLogHost;
    QString m_fallbackLogHost;
};
