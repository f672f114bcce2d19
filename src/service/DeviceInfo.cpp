#include "DeviceInfo.h"

#include "DeviceIdentifier.h"

QString DeviceInfo::getMachineUDID()
{
    return DeviceIdentifier::value();
}
