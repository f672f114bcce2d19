#pragma once
// Facts about the device and its network, from Qt or the options. Any thread; the platform's
// reachability is set up once, on first use.

#include <QSize>
#include <QString>

class LFAnalyticsContext;

class LFAnalyticsDevice
{
public:
    // Used when there is no screen to ask (a command-line program): a phone's 375 x 667 points.
    static constexpr QSize kFallbackScreenPixels{375, 667};

    explicit LFAnalyticsDevice(LFAnalyticsContext &context);

    QString deviceId() const;
    // The identifier this app's vendor sees on this device: a UUID text made from the bundle
    // identifier and the device identifier, stable across launches.
    QString vendorIdentifier() const;
    QString model() const;
    QString cpu() const;
    QString os() const;
    QString osVersion() const;
    // A fixed placeholder: the real hardware address is not reported.
    QString macAddress() const;
    // Main screen size in pixels.
    QSize resolution() const;
    // Whole hours east of UTC.
    int timeZoneHours() const;
    QString language() const;
    QString country() const;
    QString displayName() const;
    // The mobile carrier's name, or an empty text when the platform knows none.
    QString carrier() const;
    QString bundleIdentifier() const;

    bool networkReachable() const;
    // "WiFi", "CellNetwork", or an empty text.
    QString accessText() const;

private:
    LFAnalyticsContext &m_context;
};
