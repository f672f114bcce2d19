#pragma once
// The per-device identifier: 40 lowercase hexadecimal digits, made once per user and kept
// in the user's data folder so it stays stable across launches. Thread-safe.

#include <QString>

class DeviceIdentifier
{
public:
    DeviceIdentifier() = delete;

    // The identifier, creating and storing it on first use. Kept in
    // "$XDG_DATA_HOME/<application>/device-id"; a damaged file is replaced by a new one.
    static QString value();

    // The same rule against an explicit file, for callers with their own storage.
    static QString valueStoredIn(const QString &filePath);

    static bool isWellFormed(const QString &identifier);
};
