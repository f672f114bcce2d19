// The app's notification path end to end: the app launched in this process with the desktop
// notification service, the project's server as forum and push gateway, and `quorvel-server
// push send` naming a demo topic. The topic is asked for and presented modally with "返回",
// and the gateway records the click.

#include "AppDelegate.h"
#include "Application.h"
#include "DesktopNotificationService.h"
#include "EventLoop.h"
#include "HostDetailViewController.h"
#include "LFPush.h"
#include "LocalForumServer.h"
#include "NavigationBar.h"
#include "NavigationController.h"
#include "ProgramRun.h"
#include "ServiceConfig.h"
#include "WebEngineSetup.h"
#include "Window.h"

#include <gtest/gtest.h>

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>

namespace {

[[maybe_unused]] const bool kWebEnginePrepared = (WebEngineSetup::prepareProcess(), true);

using Demo = LocalForumServer::Demo;

int clicksRecorded(const LocalForumServer &server)
{
    int clicks = 0;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("clicks"));
        db.setDatabaseName(server.databasePath());
        if (db.open()) {
            QSqlQuery query(QStringLiteral("SELECT COUNT(*) FROM push_clicks"), db);
            if (query.next())
                clicks = query.value(0).toInt();
        }
    }
    QSqlDatabase::removeDatabase(QStringLiteral("clicks"));
    return clicks;
}

TEST(NotificationEndToEnd, aSentNotificationOpensItsTopicModallyAndItsClickIsRecorded)
{
    LocalForumServer server;
    ASSERT_TRUE(server.isRunning()) << server.errorString().toStdString();
    ServiceConfig::setApiRoot(server.apiRoot());
    const QString pushRoot = server.origin() + QStringLiteral("/push");
    LFPush::setPushUrl(pushRoot);
    QTemporaryDir state;
    DesktopNotificationService::Options options;
    options.gateway = QUrl(pushRoot);
    options.tokenFile = state.filePath(QStringLiteral("push-token"));
    options.stateFile = state.filePath(QStringLiteral("notifications.ini"));
    DesktopNotificationService notifications(options);
    Application::shared().setRemoteNotificationService(&notifications);

    AppDelegate app(QSize(375, 667), 0);
    Application::shared().setDelegate(&app);
    ASSERT_TRUE(Application::shared().launch(notifications.launchOptions()));
    notifications.startDelivery();
    ASSERT_TRUE(testsupport::waitUntil([&] { return notifications.channel().isConnected(); }));
    // Registered with the gateway by the push component's start.
    ASSERT_TRUE(testsupport::waitUntil([&] { return server.log().contains("/push/register"); })) << server.log().toStdString();

    const testsupport::ProgramResult sent = testsupport::runProgram(
        QStringLiteral(QUORVEL_SERVER_BINARY),
        {QStringLiteral("push"), QStringLiteral("send"), QStringLiteral("--gateway"), pushRoot,
         QStringLiteral("--device"), QString::fromLatin1(notifications.deviceToken().toHex()),
         QStringLiteral("--topic"), QString::number(Demo::kManyRepliesTopicId), QStringLiteral("--section"),
         QString::number(Demo::kManyRepliesSectionId), QStringLiteral("--title"), QStringLiteral("热帖"),
         QStringLiteral("--db"), server.databasePath()});
    ASSERT_EQ(sent.exitCode, 0) << sent.errors.toStdString();

    NavigationController *presented = nullptr;
    ASSERT_TRUE(testsupport::waitUntil([&] {
        presented = dynamic_cast<NavigationController *>(app.window()->topmostViewController());
        return presented && presented != app.window()->rootViewController() && !presented->isTransitioning();
    }));
    auto *topic = dynamic_cast<HostDetailViewController *>(presented->visibleViewController());
    ASSERT_NE(topic, nullptr);
    EXPECT_EQ(topic->result, 110);
    EXPECT_EQ(topic->postModel.tid(), QJsonValue(Demo::kManyRepliesTopicId));
    EXPECT_EQ(presented->navigationBar()->leftButton()->title(), QStringLiteral("返回"));
    EXPECT_TRUE(testsupport::waitUntil([&] { return !topic->dataSource.isEmpty(); }));
    EXPECT_TRUE(server.log().contains("/api/TopicDetail"));
    EXPECT_TRUE(testsupport::waitUntil([&] { return clicksRecorded(server) == 1; }));

    Application::shared().setDelegate(nullptr);
    Application::shared().setRemoteNotificationService(nullptr);
    ServiceConfig::setApiRoot({});
}

} // namespace
