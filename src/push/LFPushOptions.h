#pragma once
// Everything the push component takes from outside: time, the settings store, the push
// message endpoint, the application and the device identifier. Plain value, filled in on the
// main thread before the component is made.

#include "LFPushClock.h"

#include <QString>

#include <memory>

class Application;
class UserDefaults;

struct LFPushOptions
{
    // Empty members take their defaults when the component is created.
    std::shared_ptr<LFPushClock> clock;       // LFPushSystemClock
    UserDefaults *defaults = nullptr;         // UserDefaults::standardUserDefaults()
    QString pushUrl;                          // LFPushEndpoint::url()
    Application *application = nullptr;       // Application::shared()
    QString deviceIdentifier;                 // DeviceIdentifier::value()
};
