#include "LFPInstallation.h"

#include "LFPushCore.h"

LFPInstallation &LFPInstallation::currentInstallation()
{
    return LFPushCore::shared().installation();
}
