#pragma once
// The device token of the desktop notification platform: 32 random bytes made once per user
// and kept in the user's data folder, so the gateway knows the device across launches.
// Thread-safe.

#include <QByteArray>
#include <QString>

class DeviceToken
{
public:
    DeviceToken() = delete;

    static constexpr int kSize = 32;

    // The token kept in "$XDG_DATA_HOME/<application>/push-token", made on first use.
    static QByteArray value();
    // The same rule against an explicit file; a damaged file is replaced by a new token.
    static QByteArray valueStoredIn(const QString &filePath);
    static QString defaultFilePath();
};
