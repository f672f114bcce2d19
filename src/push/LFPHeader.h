#pragma once
// The "header" dictionary every push request carries: device, system, app and SDK facts, the
// app key and channel, and the last known location. Stateless; main thread.

#include <QJsonObject>

class LFPInstallation;
class UserDefaults;
struct LFPushOptions;

class LFPHeader
{
public:
    LFPHeader() = delete;

    static constexpr const char *kSdkVersion = "1.0.0";
    static constexpr const char *kSdkType = "qt";

    static QJsonObject dictionary(const LFPInstallation &installation, const LFPushOptions &options);
};
