// quorvel: the forum client. Launches as on a phone (home screen, banner, boards); options can
// open a board or a topic, receive a notification, save a picture, or tour the whole app.

#include "AppDelegate.h"
#include "AppOptions.h"
#include "Application.h"
#include "DesktopNotificationService.h"
#include "Fonts.h"
#include "LFAnalytics.h"
#include "LFPush.h"
#include "LaunchScript.h"
#include "MainScreen.h"
#include "ServiceConfig.h"
#include "Tour.h"
#include "WebEngineSetup.h"

#include <QApplication>
#include <QTimer>
#include <QUrl>

#include <cstdio>

namespace {

constexpr int kExitUsage = 2;

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY")
        && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    WebEngineSetup::prepareProcess();
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("quorvel"));
    QApplication::setApplicationVersion(QStringLiteral(QUORVEL_VERSION));
    QApplication::setFont(Fonts::systemFontOfSize(Fonts::kLabelDefaultSize));

    QString problem;
    bool help = false;
    const std::optional<AppOptions> options = AppOptions::parse(QApplication::arguments(), &problem, &help);
    if (!options) {
        std::fprintf(help ? stdout : stderr, "%s\n", qPrintable(problem));
        return help ? 0 : kExitUsage;
    }
    if (!options->apiRoot.isEmpty())
        ServiceConfig::setApiRoot(options->apiRoot);
    MainScreen::setSize(options->screenSize);

    if (!options->pushUrl.isEmpty())
        LFPush::setPushUrl(options->pushUrl);
    LFAnalytics::setLogUrls(options->analyticsUrl, options->analyticsFallbackUrl);

    // The desktop's notification service: the device token, and delivery from the push gateway.
    DesktopNotificationService::Options notificationOptions;
    notificationOptions.gateway = QUrl(LFPush::pushUrl());
    DesktopNotificationService notifications(notificationOptions);
    Application::shared().setRemoteNotificationService(&notifications);

    AppDelegate delegate(options->screenSize);
    Application::shared().setDelegate(&delegate);
    Application::shared().launch(notifications.launchOptions());
    notifications.startDelivery();

    LaunchScript script(delegate, *options);
    script.start();
    if (!options->tourFolder.isEmpty()) {
        QTimer::singleShot(0, &app, [&delegate, folder = options->tourFolder] {
            QApplication::exit(Tour(delegate, folder).run());
        });
    }
    return app.exec();
}
