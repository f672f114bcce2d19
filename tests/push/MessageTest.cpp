// Received notifications: the message id, click policy and alert forms, malformed payloads
// logged and survived, sessions by click policy, and the foreground alert dialog.
#include "LFPAlertView.h"
#include "LFPMessage.h"
#include "LFPMessageCache.h"
#include "PushFixture.h"

#include <QAbstractButton>
#include <private/qguiapplication_p.h>
#include <QJsonDocument>
#include <QMessageBox>

namespace {

QJsonObject json(const char *text)
{
    return QJsonDocument::fromJson(QByteArray(text)).object();
}

class Messages : public PushFixture
{
};

TEST_F(Messages, AlertsComeAsTextOrAsADictionarysBody)
{
    const LFPMessage text(json(R"({"d":"m1","p":2,"aps":{"alert":"新回复","badge":3}})"), 100.5);
    EXPECT_EQ(text.msgId, QStringLiteral("m1"));
    EXPECT_EQ(text.clickPolicy, 2);
    EXPECT_EQ(text.alert, QStringLiteral("新回复"));
    EXPECT_EQ(text.badge.toInt(), 3);
    EXPECT_EQ(text.ts, 100.5);
    EXPECT_TRUE(text.isFromLefiseix());

    const LFPMessage dictionary(json(R"({"d":42,"aps":{"alert":{"title":"t","body":"正文"}}})"), 1);
    EXPECT_EQ(dictionary.msgId, QStringLiteral("42"));
    EXPECT_EQ(dictionary.alert, QStringLiteral("正文"));
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST_F(Messages, MalformedPayloadsAreLoggedAndLeaveAnEmptyMessage)
{
    const LFPMessage numberAlert(json(R"({"d":"m2","aps":{"alert":5}})"), 1);
    EXPECT_TRUE(numberAlert.alert.isEmpty());
    EXPECT_EQ(numberAlert.msgId, QStringLiteral("m2"));
    const LFPMessage listAlert(json(R"({"d":"m3","aps":{"alert":["a"]}})"), 1);
    EXPECT_TRUE(listAlert.alert.isEmpty());
    const LFPMessage apsText(json(R"({"d":"m4","aps":"alert"})"), 1);
    EXPECT_FALSE(apsText.isFromLefiseix());
    const LFPMessage idObject(json(R"({"d":{"x":1}})"), 1);
    EXPECT_FALSE(idObject.isFromLefiseix());
    EXPECT_EQ(log.lines(), QStringList({QStringLiteral("error:apsAlert [5]"), QStringLiteral("error:apsAlert [[\"a\"]]"),
                                        QStringLiteral("LFPMessage init exception [{\"aps\":\"alert\",\"d\":\"m4\"}]"),
                                        QStringLiteral("LFPMessage init exception [{\"d\":{\"x\":1}}]")}));
}

TEST_F(Messages, ANotificationWithoutAMessageIdIsNotTheComponentsAndReportsNothing)
{
    const auto core = makeCore();
    core->didReceiveRemoteNotification(json(R"({"aps":{"alert":"hi"},"key1":"not json"})"));
    EXPECT_TRUE(log.lines().contains(
        QStringLiteral("didReceiveRemoteNotification return,because of userInfo did't have lefiseix msgid!")));
    ASSERT_TRUE(core->curMessage.has_value());
    EXPECT_FALSE(core->curSession.has_value());
    core->messageCache().waitForQueue();
    testsupport::spinFor(300);
    EXPECT_FALSE(server.log().contains("push_logs"));
}

TEST_F(Messages, AnOpenedMessageStartsASessionUnlessItsClickPolicyIs2)
{
    const auto core = makeCore();
    core->didReceiveRemoteNotification(json(R"({"d":"s1","p":2,"aps":{"alert":"a"}})"));
    EXPECT_FALSE(core->curSession.has_value());
    core->didReceiveRemoteNotification(json(R"({"d":"s2","p":1,"aps":{"alert":"a"}})"));
    ASSERT_TRUE(core->curSession.has_value());
    EXPECT_EQ(core->curSession->message.msgId, QStringLiteral("s2"));
    EXPECT_EQ(core->curSession->startTime, clock->now());
    EXPECT_EQ(core->lastClickMsgId, QStringLiteral("s2"));
}

TEST_F(Messages, APolicyThatIsNotANumberReadsAs0SoTheMessageIsStillOpenedAndItsClickSent)
{
    EXPECT_EQ(LFPMessage(json(R"({"d":"n1","p":"soon"})"), 1).clickPolicy, 0);
    EXPECT_EQ(LFPMessage(json(R"({"d":"n1","p":"2"})"), 1).clickPolicy, 2);
    const auto core = makeCore();
    core->didReceiveRemoteNotification(json(R"({"d":"n2","p":[2],"aps":{"alert":"a"}})"));
    ASSERT_TRUE(core->curSession.has_value());
    EXPECT_EQ(core->curSession->message.msgId, QStringLiteral("n2"));
    EXPECT_EQ(core->curSession->message.clickPolicy, 0);
    ASSERT_TRUE(testsupport::waitUntil([&] { return rows(QStringLiteral("SELECT msgid FROM push_clicks")).size() == 1; }));
    EXPECT_EQ(rows(QStringLiteral("SELECT msgid FROM push_clicks")), QStringList({QStringLiteral("n2")}));
    EXPECT_FALSE(log.lines().join(QLatin1Char('\n')).contains(QStringLiteral("init exception")));
}

TEST_F(Messages, TheForegroundAlertIsTitledNotificationWithTheTextAndAnOkButton)
{
    QMessageBox *alert = LFPAlertView::show(QStringLiteral("新回复"));
    ASSERT_NE(alert, nullptr);
    EXPECT_EQ(alert->windowTitle(), QStringLiteral("Notification"));
    EXPECT_EQ(alert->text(), QStringLiteral("新回复"));
    ASSERT_EQ(alert->buttons().size(), 1);
    EXPECT_EQ(alert->buttons().first()->text(), QStringLiteral("OK"));
    QPointer<QMessageBox> watched(alert);
    alert->buttons().first()->click();
    EXPECT_TRUE(testsupport::waitUntil([&] { return watched.isNull(); }));
}

} // namespace

namespace {

struct QuietDelegate final : ApplicationDelegate
{
    bool didFinishLaunchingWithOptions(const LaunchOptions &) override { return true; }
};

class Activity : public PushFixture
{
protected:
    static void become(Qt::ApplicationState state)
    {
        QGuiApplicationPrivate::setApplicationState(state, true);
        QCoreApplication::processEvents();
    }
};

TEST_F(Activity, BecomingActiveClearsTheBadgeAndLeavingEndsTheNotificationsSession)
{
    QuietDelegate delegate;
    Application::shared().setDelegate(&delegate);
    Application::shared().launch();
    become(Qt::ApplicationInactive);
    const auto core = makeCore();
    core->didReceiveRemoteNotification(QJsonDocument::fromJson(R"({"d":"a1","p":1,"aps":{"alert":"x"}})").object());
    ASSERT_TRUE(testsupport::waitUntil([&] { return rows(QStringLiteral("SELECT msgid FROM push_clicks")).size() == 1; }));

    Application::shared().setApplicationIconBadgeNumber(5);
    become(Qt::ApplicationActive);
    EXPECT_EQ(Application::shared().applicationIconBadgeNumber(), 0);
    core->installation().badgeClear = false;
    Application::shared().setApplicationIconBadgeNumber(5);
    clock->advanceSeconds(30);
    become(Qt::ApplicationInactive);
    become(Qt::ApplicationActive);
    EXPECT_EQ(Application::shared().applicationIconBadgeNumber(), 5);

    const double opened = core->curSession->startTime;
    become(Qt::ApplicationInactive);
    EXPECT_EQ(core->curSession->duration(), 30.0);
    EXPECT_EQ(clock->now() - opened, 30.0);
    // Becoming active again with the same message opened counts no second click.
    become(Qt::ApplicationActive);
    core->messageCache().waitForQueue();
    testsupport::spinFor(300);
    EXPECT_EQ(rows(QStringLiteral("SELECT msgid FROM push_clicks")), QStringList(QStringLiteral("a1")));
    Application::shared().setDelegate(nullptr);
}

} // namespace
