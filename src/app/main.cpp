// quorvel: the forum client's window. Until the home screen exists, it opens the board
// (--board) or the topic (--topic) named on the command line, as the home screen or a board
// list would.

#include "AppOptions.h"
#include "BoardLink.h"
#include "Fonts.h"
#include "HostDetailViewController.h"
#include "MainScreen.h"
#include "NavigationController.h"
#include "ScreenshotTaker.h"
#include "ServiceConfig.h"
#include "TextView.h"
#include "UserIdStore.h"
#include "Window.h"

#include <QApplication>

#include <cstdio>

namespace {

constexpr int kExitUsage = 2;
constexpr int kExitNotFound = 3;

std::shared_ptr<HostDetailViewController> topicScreen(const AppOptions &options)
{
    auto screen = std::make_shared<HostDetailViewController>();
    screen->model.setValueForKey(options.sectionId, u"sectionid");
    screen->postModel.setValueForKey(*options.topicId, u"tid");
    screen->userID = UserIdStore().userId();
    return screen;
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY")
        && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("quorvel"));
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

    Window window(options->screenSize);
    std::shared_ptr<HostDetailViewController> topic;
    if (options->boardId) {
        BoardLink::open(window, *options->boardId, [boardId = *options->boardId](bool opened) {
            if (!opened) {
                std::fprintf(stderr, "quorvel: no board %lld\n", static_cast<long long>(boardId));
                QApplication::exit(kExitNotFound);
            }
        });
    } else {
        topic = topicScreen(*options);
        window.setRootViewController(std::make_shared<NavigationController>(topic));
    }
    window.makeKeyAndVisible();

    std::unique_ptr<ScreenshotTaker> screenshot;
    if (!options->screenshotPath.isEmpty()) {
        std::function<void()> typeDraft;
        if (topic && !options->replyDraft.isEmpty()) {
            typeDraft = [topic, draft = options->replyDraft] {
                topic->textlabelAction();
                topic->replyTextView()->insertText(draft);
            };
        }
        screenshot = std::make_unique<ScreenshotTaker>(&window, options->screenshotPath, typeDraft);
        screenshot->start();
    }
    return app.exec();
}
