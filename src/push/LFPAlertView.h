#pragma once
// The alert shown for a notification that arrives while the app is in the foreground: a plain
// dialog titled "Notification" with the alert text and an "OK" button that closes it.
// Main thread.

#include <QString>

class QMessageBox;

class LFPAlertView
{
public:
    LFPAlertView() = delete;

    // Shows the alert without blocking; none without a widget application. The dialog deletes
    // itself when closed.
    static QMessageBox *show(const QString &message);
};
