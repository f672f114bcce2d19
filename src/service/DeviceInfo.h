#pragma once
// Who this device is to the forum server. Stateless; any thread.

#include <QString>

class DeviceInfo
{
public:
    DeviceInfo() = delete;

    // The per-device identifier sent as `imei`: 40 hex digits, made once and kept.
    static QString getMachineUDID();
};
