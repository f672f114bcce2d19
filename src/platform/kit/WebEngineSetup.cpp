#include "WebEngineSetup.h"

#include <QCoreApplication>

#include <unistd.h>

namespace WebEngineSetup {

void prepareProcess()
{
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    // Chromium's sandbox refuses to start as root, and then no page loads at all.
    if (geteuid() == 0 && !qEnvironmentVariableIsSet("QTWEBENGINE_DISABLE_SANDBOX"))
        qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
}

} // namespace WebEngineSetup
