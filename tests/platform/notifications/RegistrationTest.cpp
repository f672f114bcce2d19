// The device token and registration: made once and kept, handed to registration observers and
// then to the application delegate, in the newer and older forms, with settings kept across
// launches.
#include "Application.h"
#include "DesktopNotificationService.h"
#include "DeviceToken.h"
#include "EventLoop.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

namespace {

struct Recorder final : ApplicationDelegate, RemoteNotificationRegistrationObserver
{
    explicit Recorder(QStringList &calls, QString who) : calls(calls), who(std::move(who)) {}
    bool didFinishLaunchingWithOptions(const LaunchOptions &) override { return true; }
    void didRegisterForRemoteNotificationsWithDeviceToken(const QByteArray &deviceToken) override
    {
        calls << who + QStringLiteral(" token ") + QString::fromLatin1(deviceToken.toHex());
    }
    void didFailToRegisterForRemoteNotificationsWithError(const QString &error) override
    {
        calls << who + QStringLiteral(" error ") + error;
    }
    QStringList &calls;
    QString who;
};

class Registration : public ::testing::Test
{
protected:
    DesktopNotificationService::Options options(bool newer = true) const
    {
        return {QUrl(QStringLiteral("http://127.0.0.1:9/push")), folder.filePath(QStringLiteral("token")),
                folder.filePath(QStringLiteral("state.ini")), &Application::shared(), newer};
    }
    void TearDown() override
    {
        Application::shared().setDelegate(nullptr);
        Application::shared().setRemoteNotificationService(nullptr);
    }

    QTemporaryDir folder;
    QStringList calls;
};

TEST_F(Registration, TheTokenIs32RandomBytesMadeOnceAndKeptForTheUserOnly)
{
    const QString path = folder.filePath(QStringLiteral("token"));
    const QByteArray token = DeviceToken::valueStoredIn(path);
    EXPECT_EQ(token.size(), 32);
    EXPECT_EQ(DeviceToken::valueStoredIn(path), token);
    EXPECT_EQ(QFile(path).permissions() & (QFileDevice::ReadGroup | QFileDevice::ReadOther), QFileDevice::Permissions());
    EXPECT_NE(DeviceToken::valueStoredIn(folder.filePath(QStringLiteral("other"))), token);

    QFile damaged(path);
    ASSERT_TRUE(damaged.open(QIODevice::WriteOnly));
    damaged.write("not a token");
    damaged.close();
    const QByteArray replaced = DeviceToken::valueStoredIn(path);
    EXPECT_EQ(replaced.size(), 32);
    EXPECT_NE(replaced, token);
    EXPECT_EQ(DeviceToken::valueStoredIn(path), replaced);
}

TEST_F(Registration, TheTokenReachesObserversBeforeTheDelegateAndNeverWithinTheCall)
{
    DesktopNotificationService service(options());
    Application::shared().setRemoteNotificationService(&service);
    Recorder delegate(calls, QStringLiteral("delegate"));
    Recorder observer(calls, QStringLiteral("observer"));
    Application::shared().setDelegate(&delegate);
    Application::shared().addRegistrationObserver(&observer);

    Application::shared().registerForRemoteNotifications();
    EXPECT_TRUE(calls.isEmpty());
    ASSERT_TRUE(testsupport::waitUntil([&] { return calls.size() == 2; }));
    const QString hex = QString::fromLatin1(service.deviceToken().toHex());
    EXPECT_EQ(calls, QStringList({QStringLiteral("observer token ") + hex, QStringLiteral("delegate token ") + hex}));
    EXPECT_TRUE(Application::shared().isRegisteredForRemoteNotifications());
    Application::shared().removeRegistrationObserver(&observer);
}

TEST_F(Registration, WithoutANotificationServiceRegistrationFailsToTheDelegate)
{
    Recorder delegate(calls, QStringLiteral("delegate"));
    Application::shared().setDelegate(&delegate);
    Application::shared().registerForRemoteNotifications();
    ASSERT_TRUE(testsupport::waitUntil([&] { return !calls.isEmpty(); }));
    EXPECT_EQ(calls, QStringList(QStringLiteral("delegate error remote notifications are not available on this system")));
}

TEST_F(Registration, RegisteredSettingsAreKeptForTheNextLaunch)
{
    {
        DesktopNotificationService service(options());
        Application::shared().setRemoteNotificationService(&service);
        EXPECT_TRUE(Application::shared().respondsToRegisterUserNotificationSettings());
        EXPECT_EQ(Application::shared().currentUserNotificationSettings().types, 0);
        Application::shared().registerUserNotificationSettings({UserNotificationTypeAlert | UserNotificationTypeBadge,
                                                                {QStringLiteral("topic")}});
    }
    DesktopNotificationService nextLaunch(options());
    Application::shared().setRemoteNotificationService(&nextLaunch);
    const UserNotificationSettings kept = Application::shared().currentUserNotificationSettings();
    EXPECT_EQ(kept.types, UserNotificationTypeAlert | UserNotificationTypeBadge);
    EXPECT_EQ(kept.categories, QStringList(QStringLiteral("topic")));
}

TEST_F(Registration, AnOlderSystemRegistersTypesAndTokenTogether)
{
    DesktopNotificationService service(options(false));
    Application::shared().setRemoteNotificationService(&service);
    Recorder delegate(calls, QStringLiteral("delegate"));
    Application::shared().setDelegate(&delegate);
    EXPECT_FALSE(Application::shared().respondsToRegisterUserNotificationSettings());
    EXPECT_EQ(Application::shared().enabledRemoteNotificationTypes(), 0);

    Application::shared().registerForRemoteNotificationTypes(UserNotificationTypeSound);
    ASSERT_TRUE(testsupport::waitUntil([&] { return !calls.isEmpty(); }));
    EXPECT_EQ(Application::shared().enabledRemoteNotificationTypes(), int(UserNotificationTypeSound));
    Application::shared().unregisterForRemoteNotifications();
    EXPECT_EQ(Application::shared().enabledRemoteNotificationTypes(), 0);
}

} // namespace
