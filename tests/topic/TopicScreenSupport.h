#pragma once
// Opens topic screens in a phone-sized window against a running forum server, and waits
// for them to load.

#include "EventLoop.h"
#include "HostDetailViewController.h"
#include "HttpSessionManager.h"
#include "Label.h"
#include "NavigationController.h"
#include "RefreshHeader.h"
#include "TableView.h"
#include "Window.h"

#include <QRegularExpression>

namespace topictest {

// The screen has had its appearance, and every request it made has been answered.
inline bool waitUntilLoaded(const std::shared_ptr<HostDetailViewController> &screen)
{
    return testsupport::waitUntil([&screen] {
        return screen->isViewLoaded() && screen->page >= 2 && HttpSessionManager::requestsInFlight() == 0
               && !screen->tableView()->header()->isRefreshing();
    });
}

inline std::shared_ptr<HostDetailViewController> makeScreen(qint64 tid, qint64 section,
                                                            const QString &username = QStringLiteral("楼主"))
{
    auto screen = std::make_shared<HostDetailViewController>();
    screen->model.setValueForKey(section, u"sectionid");
    screen->postModel.setValueForKey(tid, u"tid");
    screen->postModel.setValueForKey(username, u"username");
    return screen;
}

// Shows `screen` as the root of a navigation controller in `window`.
inline void show(Window &window, const std::shared_ptr<HostDetailViewController> &screen)
{
    window.setRootViewController(std::make_shared<NavigationController>(screen));
    window.makeKeyAndVisible();
}

// The label of the header view the screen makes for `section` (whether or not the table
// shows it now).
inline QString sectionHeaderText(const std::shared_ptr<HostDetailViewController> &screen, int section)
{
    const std::unique_ptr<QWidget> header(screen->viewForHeaderInSection(screen->tableView(), section));
    const Label *label = header ? header->findChild<Label *>() : nullptr;
    return label ? label->text() : QString();
}

// How many requests the server logged for an endpoint.
inline int requestCount(const QByteArray &serverLog, const char *endpoint)
{
    return int(QString::fromUtf8(serverLog).count(QStringLiteral("/api/%1").arg(QString::fromLatin1(endpoint))));
}

} // namespace topictest
