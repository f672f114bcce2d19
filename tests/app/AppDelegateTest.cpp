// The application delegate in this process against the project's server: the launch puts the
// home screen in a navigation stack, and every received notification presents its topic over
// whatever is on screen, also when its payload is missing or does not parse.

#include "AppDelegate.h"
#include "Application.h"
#include "EventLoop.h"
#include "ForumServerSuite.h"
#include "HomeViewController.h"
#include "HostDetailViewController.h"
#include "ImageView.h"
#include "LFPush.h"
#include "LogCapture.h"
#include "NavigationBar.h"
#include "NavigationController.h"
#include "UserDefaults.h"
#include "UserIdStore.h"
#include "WebEngineSetup.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QJsonDocument>

namespace {

[[maybe_unused]] const bool kWebEnginePrepared = (WebEngineSetup::prepareProcess(), true);

using Demo = LocalForumServer::Demo;

QJsonObject userInfoNaming(const QJsonValue &key1)
{
    QJsonObject userInfo{{QStringLiteral("aps"), QJsonObject{{QStringLiteral("alert"), QStringLiteral("新回复")}}}};
    if (!key1.isUndefined())
        userInfo.insert(QStringLiteral("key1"), key1);
    return userInfo;
}

QString payloadText(qint64 topicId, qint64 sectionId)
{
    const QJsonObject data{{QStringLiteral("topicid"), topicId},
                           {QStringLiteral("sectionid"), sectionId},
                           {QStringLiteral("username"), QStringLiteral("风中小熊")},
                           {QStringLiteral("content"), QStringLiteral("有人回复了你")},
                           {QStringLiteral("title"), QStringLiteral("通知里的话题")}};
    return QString::fromUtf8(QJsonDocument(QJsonObject{{QStringLiteral("data"), data}}).toJson(QJsonDocument::Compact));
}

class AppDelegateTest : public testsupport::ForumServerSuite
{
protected:
    void SetUp() override
    {
        ForumServerSuite::SetUp();
        LFPush::setPushUrl(s_server->origin() + QStringLiteral("/push"));
        UserDefaults::standardUserDefaults().setObject(QStringLiteral("77"), QString::fromLatin1(UserIdStore::kKey));
        UserDefaults::standardUserDefaults().removeObjectForKey(QString::fromLatin1(AppDelegate::kPushKey));
        Application::shared().setDelegate(&app);
        ASSERT_TRUE(Application::shared().launch());
    }
    void TearDown() override
    {
        Application::shared().setDelegate(nullptr);
        ForumServerSuite::TearDown();
    }

    NavigationController *root() const { return dynamic_cast<NavigationController *>(app.window()->rootViewController()); }

    // How many screens are presented over the home stack, one over the other.
    int presentedCount() const
    {
        int count = 0;
        for (ViewController *shown = root()->presentedViewController(); shown; shown = shown->presentedViewController())
            ++count;
        return count;
    }

    // The topic on top once the `count`th presentation has run.
    HostDetailViewController *presentedTopic(int count, NavigationController **stack = nullptr)
    {
        testsupport::waitUntil([&] {
            auto *top = dynamic_cast<NavigationController *>(app.window()->topmostViewController());
            return presentedCount() == count && top && !top->isTransitioning() && top->visibleViewController();
        });
        auto *top = dynamic_cast<NavigationController *>(app.window()->topmostViewController());
        if (stack)
            *stack = top;
        if (presentedCount() != count || !top)
            return nullptr;
        return dynamic_cast<HostDetailViewController *>(top->visibleViewController());
    }

    AppDelegate app{QSize(375, 667), 0};
};

TEST_F(AppDelegateTest, theLaunchShowsTheHomeScreenInANavigationStack)
{
    NavigationController *stack = root();
    ASSERT_NE(stack, nullptr);
    ASSERT_EQ(stack->viewControllers().size(), 1);
    auto *home = dynamic_cast<Home::ViewController *>(stack->viewControllers().first());
    ASSERT_NE(home, nullptr);
    EXPECT_TRUE(app.window()->isVisible());
    EXPECT_EQ(Window::keyWindow(), app.window());
    EXPECT_TRUE(testsupport::waitUntil([&] { return !home->listArray.isEmpty(); }));
}

TEST_F(AppDelegateTest, aNotificationPresentsItsTopicWithTheMarkAndTheStoredUser)
{
    const LogCapture log("quorvel");
    const QJsonObject userInfo = userInfoNaming(payloadText(Demo::kManyRepliesTopicId, Demo::kManyRepliesSectionId));
    Application::shared().delegate()->didReceiveRemoteNotification(userInfo);

    NavigationController *stack = nullptr;
    HostDetailViewController *topic = presentedTopic(1, &stack);
    ASSERT_NE(topic, nullptr);
    EXPECT_EQ(topic->result, 110);
    EXPECT_EQ(app.result, 110);
    EXPECT_EQ(topic->postModel.tid(), QJsonValue(Demo::kManyRepliesTopicId));
    EXPECT_EQ(topic->postModel.title(), QJsonValue(QStringLiteral("通知里的话题")));
    EXPECT_EQ(topic->postModel.username(), QJsonValue(QStringLiteral("风中小熊")));
    EXPECT_EQ(topic->postModel.topiccontent(), QJsonValue(QStringLiteral("有人回复了你")));
    EXPECT_EQ(topic->model.sectionid(), QJsonValue(Demo::kManyRepliesSectionId));
    EXPECT_EQ(topic->userID, QJsonValue(77));
    EXPECT_EQ(app.number, 77);
    EXPECT_EQ(UserDefaults::standardUserDefaults().stringForKey(QString::fromLatin1(AppDelegate::kPushKey)),
              QStringLiteral("push"));
    EXPECT_TRUE(app.jsonDic.isObject());
    EXPECT_EQ(stack->presentingViewController(), root());
    EXPECT_EQ(stack->navigationBar()->leftButton()->title(), QStringLiteral("返回"));
    EXPECT_TRUE(log.contains(QStringLiteral("推送内容 {\"aps\":{\"alert\":\"新回复\"},\"key1\":")));
    EXPECT_TRUE(testsupport::waitUntil([&] { return !topic->dataSource.isEmpty(); })) << "the topic's replies load";
}

TEST_F(AppDelegateTest, aMissingOrBrokenPayloadStillPresentsTheTopicScreenWithEmptyRecords)
{
    int presented = 0;
    // An object where the JSON text should be counts as no payload, like a missing one.
    const QJsonValue objectInsteadOfText = QJsonDocument::fromJson(payloadText(1001, 1).toUtf8()).object();
    for (const QJsonValue &key1 : {QJsonValue(QJsonValue::Undefined), QJsonValue(QStringLiteral("{not json")), objectInsteadOfText}) {
        const LogCapture log("quorvel");
        Application::shared().delegate()->didReceiveRemoteNotification(userInfoNaming(key1));
        HostDetailViewController *topic = presentedTopic(++presented);
        ASSERT_NE(topic, nullptr);
        EXPECT_EQ(topic->result, 110);
        EXPECT_TRUE(topic->postModel.tid().isUndefined());
        EXPECT_TRUE(topic->model.sectionid().isUndefined());
        EXPECT_TRUE(app.jsonDic.isUndefined());
        EXPECT_EQ(log.contains(QStringLiteral("json解析失败：")), key1.isString());
        EXPECT_TRUE(log.contains(QStringLiteral("推送内容 ")));
    }
}

TEST_F(AppDelegateTest, notificationsInARowStackTheirTopicsOverWhateverIsOnScreen)
{
    Application::shared().delegate()->didReceiveRemoteNotification(
        userInfoNaming(payloadText(Demo::kManyRepliesTopicId, Demo::kManyRepliesSectionId)));
    NavigationController *first = nullptr;
    ASSERT_NE(presentedTopic(1, &first), nullptr);

    Application::shared().delegate()->didReceiveRemoteNotification(userInfoNaming(payloadText(1001, 1)));
    NavigationController *second = nullptr;
    HostDetailViewController *topic = presentedTopic(2, &second);
    ASSERT_NE(topic, nullptr);
    EXPECT_NE(second, first);
    EXPECT_EQ(second->presentingViewController(), first);
    EXPECT_EQ(topic->postModel.tid(), QJsonValue(1001));
}

} // namespace

namespace {

TEST(AppLaunch, theLaunchPictureHoldsForTwoSecondsBeforeTheHomeScreenShows)
{
    AppDelegate held(QSize(375, 667));
    QElapsedTimer clock;
    clock.start();
    ASSERT_TRUE(held.didFinishLaunchingWithOptions({}));
    EXPECT_GE(clock.elapsed(), AppDelegate::kLaunchHoldMs);
    EXPECT_EQ(AppDelegate::kLaunchHoldMs, 2000);
    // The picture goes as the window shows the home stack.
    EXPECT_TRUE(held.window()->findChildren<ImageView *>(Qt::FindDirectChildrenOnly).isEmpty());
    EXPECT_NE(dynamic_cast<NavigationController *>(held.window()->rootViewController()), nullptr);
}

} // namespace
