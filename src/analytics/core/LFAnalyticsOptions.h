#pragma once
// Everything the analytics component takes from outside: time, settings store, folders, hosts,
// network facts, and the two upload seams (by default the envelope files and the upload
// worker). Plain value.

#include "LFAnalyticsClock.h"
#include "UserDefaults.h"

#include <QByteArray>
#include <QSize>
#include <QString>

#include <functional>
#include <memory>

struct LFAnalyticsOptions
{
    // Null members take their defaults when the component is created.
    std::shared_ptr<LFAnalyticsClock> clock;          // LFSystemClock
    std::shared_ptr<UserDefaults> configStore;        // LFAnalyticsConfig::defaultStore()
    QString cacheDirectory;                           // QStandardPaths::CacheLocation
    QString bundleIdentifier;                         // organisation domain + application name
    QString appVersion;                               // QCoreApplication::applicationVersion()
    QString displayName;                              // QCoreApplication::applicationName()
    QSize screenPixels;                               // the primary screen, when there is one

    // Analytics log endpoints (base URLs to which "/app_logs" is appended). Empty ones come
    // from QUORVEL_ANALYTICS_URL and QUORVEL_ANALYTICS_FALLBACK_URL, else the local server's
    // analytics port.
    QString primaryLogHost;
    QString fallbackLogHost;

    // Network facts; by default the platform's reachability (reachable when it cannot tell).
    std::function<bool()> networkReachable;
    // "WiFi", "CellNetwork" or anything else for other or unknown access.
    std::function<QString()> accessText;
    // The mobile carrier's name; a desktop has none.
    std::function<QString()> carrierName;

    bool integratedTestMode = false;
    bool debugging = false;

    // Turns an encoded log entry into an envelope file; true when one was written. Empty:
    // LFAnalyticsEnvelope::writeEnvelopeFile.
    std::function<bool(const QByteArray &logEntry)> envelopeWriter;
    // Starts posting the waiting envelope files. Empty: LFAnalyticsSender::beginPerformJob.
    std::function<void()> performJob;
};
