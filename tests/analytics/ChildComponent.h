#pragma once
// The component settings a test and its child process share: settings file, caches folder and
// bundle identifier under one folder, as AnalyticsFixture lays them out.

#include "LFAnalyticsOptions.h"

#include <QDir>

#include <memory>

namespace ChildComponent {

inline LFAnalyticsOptions options(const QString &folder)
{
    const QDir dir(folder);
    LFAnalyticsOptions options;
    options.configStore = std::make_shared<UserDefaults>(dir.filePath(QStringLiteral("config.ini")));
    options.cacheDirectory = dir.filePath(QStringLiteral("caches"));
    options.bundleIdentifier = QStringLiteral("org.quorvel.test");
    options.appVersion = QStringLiteral("1.0.0");
    options.networkReachable = [] { return false; };
    return options;
}

} // namespace ChildComponent
