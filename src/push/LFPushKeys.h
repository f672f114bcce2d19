#pragma once
// The push component's persisted user-defaults keys, spelled as stored. Constants; any thread.

#include <QString>

namespace LFPushKeys {
inline const QString kDeviceToken = QStringLiteral("kLFPushUserDefaultKeyForDeviceToken");
inline const QString kLocation = QStringLiteral("kLFPushUserDefaultKeyForLocation");
inline const QString kMsgs = QStringLiteral("kLFPushUserDefaultKeyForMsgs");
inline const QString kLatestDate = QStringLiteral("kLFPushUserDefaultKeyForLatestDate");
inline const QString kLatestLaunchDate = QStringLiteral("kLFPushUserDefaultKeyForLatestLaunchDate");
inline const QString kLatestLocDate = QStringLiteral("kLFPushUserDefaultKeyForLatestLocDate");
inline const QString kReportPolicy = QStringLiteral("lfmsg_report_policy");
} // namespace LFPushKeys
