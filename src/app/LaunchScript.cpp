#include "LaunchScript.h"

#include "AppDelegate.h"
#include "Application.h"
#include "FieldValue.h"
#include "HomeViewController.h"
#include "HostDetailViewController.h"
#include "IndexPath.h"
#include "NavigationController.h"
#include "TextView.h"
#include "UserIdStore.h"
#include "VisibleScreens.h"
#include "Window.h"

#include <QCoreApplication>

#include <cstdio>


LaunchScript::LaunchScript(AppDelegate &app, const AppOptions &options) : m_app(app)
{
    if (options.boardId)
        m_steps.push_back([this, id = *options.boardId] { openBoard(id); });
    if (options.topicId)
        m_steps.push_back([this, id = *options.topicId, section = options.sectionId] { openTopic(id, section); });
    if (options.notification) {
        m_steps.push_back([userInfo = *options.notification] { Application::shared().receiveRemoteNotification(userInfo); });
    }
    if (!options.replyDraft.isEmpty())
        m_steps.push_back([this, draft = options.replyDraft] { typeReplyDraft(draft); });
    m_savesPicture = !options.screenshotPath.isEmpty();
    if (m_savesPicture)
        m_steps.push_back([this, path = options.screenshotPath] { saveScreenshot(path); });
}

void LaunchScript::start()
{
    next();
}

void LaunchScript::next()
{
    if (m_next >= m_steps.size())
        return;
    m_settle.start([this](bool timedOut) {
        // A picture of a screen whose answers never came would only mislead.
        if (timedOut && m_savesPicture) {
            std::fprintf(stderr, "quorvel: the server did not answer within %d s; no picture saved\n",
                         SettleWatcher::kLimitMs / 1000);
            QCoreApplication::exit(kExitUnanswered);
            return;
        }
        const std::function<void()> step = m_steps[m_next++];
        step();
        next();
    });
}

void LaunchScript::openBoard(qint64 sectionId)
{
    Home::ViewController *home = VisibleScreens::home(m_app.window());
    for (int row = 0; home && row < home->listArray.size(); ++row) {
        if (FieldValue::integerValue(home->listArray.at(row).sectionid()) == sectionId) {
            home->didSelectRowAtIndexPath(home->tableView(), IndexPath::indexPathForRow(row, 0));
            return;
        }
    }
    std::fprintf(stderr, "quorvel: no board %lld\n", static_cast<long long>(sectionId));
    m_steps.clear();
    QCoreApplication::exit(kExitNotFound);
}

void LaunchScript::openTopic(qint64 topicId, qint64 sectionId)
{
    Home::ViewController *home = VisibleScreens::home(m_app.window());
    if (!home || !home->navigationController())
        return;
    auto screen = std::make_shared<HostDetailViewController>();
    screen->model.setValueForKey(sectionId, u"sectionid");
    screen->postModel.setValueForKey(topicId, u"tid");
    screen->userID = UserIdStore().userId();
    home->navigationController()->pushViewController(screen, false);
}

void LaunchScript::typeReplyDraft(const QString &draft)
{
    auto *topic = dynamic_cast<HostDetailViewController *>(VisibleScreens::top(m_app.window()));
    if (!topic)
        return;
    topic->textlabelAction();
    topic->replyTextView()->insertText(draft);
}

void LaunchScript::saveScreenshot(const QString &path)
{
    const bool saved = m_app.window()->grabToPng(path);
    if (!saved)
        std::fprintf(stderr, "quorvel: could not save the screenshot to %s\n", qPrintable(path));
    QCoreApplication::exit(saved ? 0 : 1);
}
