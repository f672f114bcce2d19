#pragma once
// The installation's identity and settings as the push component reports them.
// Plain value owned by the component; main thread.

#include <QString>
#include <QStringList>

class LFPInstallation
{
public:
    // The process-wide component's installation.
    static LFPInstallation &currentInstallation();

    // Badge, sound and alert: what the component asks the platform for by default.
    static constexpr int kDefaultNotificationTypes = 7;

    QString appKey;
    QString channel;
    QString uniqueId;
    QString deviceToken;  // hex text of the token bytes; empty while none is known
    QStringList tags;
    QString alias;
    int registerRemoteNotificationTypes = kDefaultNotificationTypes;
    int badge = 0;
    // The badge is cleared when the app becomes active.
    bool badgeClear = true;
    // Off: the app shows notifications itself (it opens their topic), an extra alert would repeat it.
    bool autoAlert = false;
    QString lfdid;
    int tagPolicy = 0;
};
