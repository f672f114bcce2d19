#pragma once
// The analytics component's only interface for the app: class operations that forward to the
// process-wide component. Safe from any thread; never throws; work happens on the main thread.

#include "LFAnalyticsLocation.h"
#include "LFAnalyticsOptions.h"

#include <QString>
#include <QVariantMap>

class LFAnalytics
{
public:
    LFAnalytics() = delete;

    // Options for the component; effective only before its first use.
    static bool setupWithOptions(LFAnalyticsOptions options);

    static void startWithAppkey(const QString &appKey);
    static void startWithAppkey(const QString &appKey, uint32_t reportPolicy, const QString &channelId);

    static void setAppVersion(const QString &appVersion);
    static void setCrashReportEnabled(bool enabled);
    static void setLogEnabled(bool enabled);
    static void setBackgroundTaskEnabled(bool enabled);
    static void setEncryptEnabled(bool enabled);
    static void setLogSendInterval(double seconds);

    static void event(const QString &eventId);
    static void event(const QString &eventId, const QString &label);
    static void event(const QString &eventId, int acc);
    static void event(const QString &eventId, const QString &label, int acc);
    static void eventDurations(const QString &eventId, int durations);
    static void eventLabelDurations(const QString &eventId, const QString &label, int durations);
    static void event(const QString &eventId, const QVariantMap &attributes);
    static void event(const QString &eventId, const QVariantMap &attributes, int durations);
    static void eventAttributesCounter(const QString &eventId, const QVariantMap &attributes, int counter);

    static void beginEvent(const QString &eventId);
    static void endEvent(const QString &eventId);
    static void beginEvent(const QString &eventId, const QString &label);
    static void endEvent(const QString &eventId, const QString &label);
    static void beginEvent(const QString &eventId, const QString &primarykey, const QVariantMap &attributes);
    static void endEventPrimarykey(const QString &eventId, const QString &primarykey);

    static void logPageView(const QString &pageName, int seconds);
    static void beginLogPageView(const QString &pageName);
    static void endLogPageView(const QString &pageName);

    static void setLatitude(double latitude, double longitude);
    static void setLocation(const LFAnalyticsLocation::Fix &location);

    static void profileSignInWithPUID(const QString &puid);
    static void profileSignInWithPUID(const QString &puid, const QString &provider);
    static void profileSignOff();

    static void setWrapperType(const QString &wrapperType);
    static void setWrapperVersion(const QString &wrapperVersion);
    static void setWrapperType(const QString &wrapperType, const QString &wrapperVersion);

    static void setLatency(int seconds);
    static void startSession();

    // Points uploads at other analytics log endpoints: base URLs to which "/app_logs" is
    // appended (the app's --analytics-url and --analytics-fallback-url). An empty URL keeps the
    // one in force: QUORVEL_ANALYTICS_URL / QUORVEL_ANALYTICS_FALLBACK_URL, else
    // http://127.0.0.1:8081.
    static void setLogUrls(const QString &primaryUrl, const QString &fallbackUrl);
    // For the app's quit: lets a running post finish within the time (2 s by default) and
    // ends the upload worker. True when nothing was left running.
    static bool finishUploads(int timeoutMs = 2000);
};
