#pragma once
// The component's settings: application key, channel, switches, report policy and send
// interval. Any thread; fields are guarded by a lock.

#include <QMutex>
#include <QString>

#include <cstdint>

class LFAnalyticsContext;

class LFAnalyticsApp
{
public:
    // Report policies: send every 15 s, at launch only, every interval, or in background.
    static constexpr uint32_t kPolicyRealtime = 0;
    static constexpr uint32_t kPolicyLaunch = 1;
    static constexpr uint32_t kPolicyInterval = 6;
    static constexpr uint32_t kPolicyBackground = 8;
    static constexpr double kMinReportInterval = 90;
    static constexpr double kMaxReportInterval = 86400;
    static inline const QString kSdkVersion = QStringLiteral("3.6.6");
    // The SDK type named in the upload's "X-Lefiseix-Sdk" header.
    static inline const QString kSdkTypeName = QStringLiteral("Qt");

    explicit LFAnalyticsApp(LFAnalyticsContext &context);

    static LFAnalyticsApp &shared();

    // Starts the component with the application key; an empty key only logs.
    void startWithAppkey(const QString &appKey, uint32_t reportPolicy, const QString &channelId);
    // Keeps an own send interval (seconds); below 90 it is refused.
    void setLogSendInterval(double seconds);

    QString appid() const;
    void setAppid(QString appid);
    QString channel() const;
    void setChannel(QString channel);
    QString appVersion() const;
    void setAppVersion(QString version);
    bool logEnabled() const;
    void setLogEnabled(bool enabled);
    bool encryptEnabled() const;
    void setEncryptEnabled(bool enabled);
    bool backgroundTaskEnabled() const;
    void setBackgroundTaskEnabled(bool enabled);
    bool crashReportEnabled() const;
    void setCrashReportEnabled(bool enabled);
    // Installs or removes the crash handlers as crashReportEnabled says.
    void applyCrashReportSetting();
    // Removes the crash handlers this component installed (it is going away).
    void forgetCrashHandlers();
    bool appCrashedHandlerInstalled() const;
    double logSendInterval() const;
    // Whether a background task is running (desktop background tasks do nothing).
    bool backgroundTaskRunning() const;
    void setBackgroundTaskRunning(bool running);

    // The policy in force: experiment, server, stored, given; normalised to 0, 1, 6 or 8.
    uint32_t reportPolicy() const;
    void setReportPolicy(uint32_t policy);

    // The send interval in force from the server, older and own settings, within 90..86400.
    double minReportInterval() const;
    // Recomputes logSendInterval from minReportInterval.
    void updateLogSendInterval();

private:
    uint32_t storedReportPolicy() const;

    LFAnalyticsContext &m_context;
    mutable QMutex m_mutex;
    QString m_appid;
    QString m_channel = QStringLiteral("App Store");
    QString m_appVersion;
    bool m_logEnabled = false;
    bool m_encryptEnabled = false;
    bool m_backgroundTaskEnabled = true;
    bool m_crashReportEnabled = true;
    bool m_appCrashedHandlerInstalled = false;
    bool m_backgroundTaskRunning = false;
    double m_logSendInterval = kMinReportInterval;
    uint32_t m_reportPolicy = 1;
};
