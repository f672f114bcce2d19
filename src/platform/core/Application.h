#pragma once
// The running application as the platform sees it: holds the delegate, launches it, and turns
// Qt's application-state changes and quit into the delegate's life-cycle callbacks.
// Lives on the main thread.

#include "ApplicationDelegate.h"

#include <QObject>

class Application : public QObject
{
    Q_OBJECT
public:
    static Application &shared();

    // The delegate is owned by the caller and must outlive the application object's use of it.
    void setDelegate(ApplicationDelegate *delegate);
    ApplicationDelegate *delegate() const { return m_delegate; }

    // Calls the delegate's launch, then follows the application state until quit.
    bool launch(const LaunchOptions &options = {});

private:
    Application();
    void applicationStateChanged(Qt::ApplicationState state);
    void aboutToQuit();

    ApplicationDelegate *m_delegate = nullptr;
    Qt::ApplicationState m_state = Qt::ApplicationInactive;
    bool m_launched = false;
};
