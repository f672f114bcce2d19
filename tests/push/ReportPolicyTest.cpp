// Token reports on an injected clock against the gateway: a new token registers, a known one
// follows the gateway's policy (0 register once a day, 1 nothing, 2 launch), no token sends
// the daily launch, and the header carries every key.
#include "LFPHeader.h"
#include "LFPushKeys.h"
#include "MainScreen.h"
#include "PushFixture.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QScopeGuard>

namespace {

const char *const kRegistered = "POST /push/register 200";
const char *const kLaunched = "POST /push/launch 200";

class ReportPolicy : public PushFixture
{
protected:
    QString tokenHex() const { return QString::fromLatin1(service.deviceToken().toHex()); }
    QString registeredLine() const { return QStringLiteral("register ok for token [%1]!").arg(tokenHex()); }
};

TEST_F(ReportPolicy, Policy0RegistersANewTokenAndAKnownOneOnceADayAndLaunchesDaily)
{
    {
        const auto first = launch();
        ASSERT_TRUE(logged(QStringLiteral("launch ok!")));
        ASSERT_TRUE(logged(registeredLine()));
    }
    EXPECT_EQ(defaults.objectForKey(LFPushKeys::kDeviceToken).toByteArray(), service.deviceToken());
    EXPECT_EQ(defaults.stringForKey(LFPushKeys::kLatestDate), QStringLiteral("2026-03-02"));
    EXPECT_EQ(defaults.stringForKey(LFPushKeys::kLatestLaunchDate), QStringLiteral("2026-03-02"));
    EXPECT_EQ(defaults.objectForKey(LFPushKeys::kReportPolicy).toInt(), 0);

    log.clear();
    {
        const auto sameDay = launch();
        EXPECT_TRUE(logged(QStringLiteral("Today has already being reported for launch!")));
        EXPECT_TRUE(logged(QStringLiteral("Today has already being reported for register!")));
        testsupport::spinFor(300);
    }
    EXPECT_EQ(answered(kRegistered), 1);
    EXPECT_EQ(answered(kLaunched), 1);

    clock->advanceDays(1);
    log.clear();
    {
        const auto nextDay = launch();
        ASSERT_TRUE(logged(QStringLiteral("launch ok!")));
        ASSERT_TRUE(logged(registeredLine()));
    }
    EXPECT_EQ(answered(kRegistered), 2);
    EXPECT_EQ(answered(kLaunched), 2);
    EXPECT_EQ(defaults.stringForKey(LFPushKeys::kLatestDate), QStringLiteral("2026-03-03"));

    // Another token the same day is registered at once, and kept.
    const QByteArray other(32, '\x42');
    const auto core = makeCore();
    core->registerDeviceToken(other);
    ASSERT_TRUE(logged(QStringLiteral("register ok for token [%1]!").arg(QString::fromLatin1(other.toHex()))));
    EXPECT_EQ(answered(kRegistered), 3);
    EXPECT_EQ(defaults.objectForKey(LFPushKeys::kDeviceToken).toByteArray(), other);
}

TEST_F(ReportPolicy, ANewTokenWhoseRegisterFailedIsRegisteredLaterTheSameDay)
{
    const QByteArray first(32, '\x01');
    const QByteArray second(32, '\x02');
    const auto registered = [](const QByteArray &token) {
        return QStringLiteral("register ok for token [%1]!").arg(QString::fromLatin1(token.toHex()));
    };
    {
        const auto core = makeCore();
        core->registerDeviceToken(first);
        ASSERT_TRUE(logged(registered(first)));
    }
    {
        // The day's register was for the old token: the new one's must not count as done.
        const auto offline = makeCore(QStringLiteral("http://127.0.0.1:9/push"));
        offline->registerDeviceToken(second);
        ASSERT_TRUE(testsupport::waitUntil([&] { return log.lines().join(QLatin1Char('\n')).contains(QStringLiteral("register error [")); }));
    }
    const auto core = makeCore();
    core->registerDeviceToken(second);
    ASSERT_TRUE(logged(registered(second)));
    EXPECT_EQ(answered(kRegistered), 2);
}

TEST_F(ReportPolicy, AKeptTokenIsDroppedAtStartWhileNotificationsAreOff)
{
    const QByteArray kept(32, '\x05');
    defaults.setObject(kept, LFPushKeys::kDeviceToken);
    {
        // Notification settings never granted (types 0): the kept token is stale.
        const auto off = makeCore();
        off->startWithAppkey(QLatin1String(kAppKey), {});
        EXPECT_FALSE(defaults.objectForKey(LFPushKeys::kDeviceToken).isValid());
        EXPECT_TRUE(off->installation().deviceToken.isEmpty());
    }
    defaults.setObject(kept, LFPushKeys::kDeviceToken);
    Application::shared().registerUserNotificationSettings({7, {}});
    const auto on = makeCore();
    on->startWithAppkey(QLatin1String(kAppKey), {});
    EXPECT_EQ(defaults.objectForKey(LFPushKeys::kDeviceToken).toByteArray(), kept);
    EXPECT_EQ(on->installation().deviceToken, QString::fromLatin1(kept.toHex()));
}

TEST_F(ReportPolicy, TheRegisterBodyCarriesTheTokenAndEveryHeaderKey)
{
    const auto core = launch();
    ASSERT_TRUE(logged(registeredLine()));
    const QStringList devices = rows(QStringLiteral("SELECT token, appkey, header FROM push_devices"));
    ASSERT_EQ(devices.size(), 1);
    const QStringList columns = devices.first().split(QLatin1Char('|'));
    EXPECT_EQ(columns[0], tokenHex());
    EXPECT_EQ(columns[1], QLatin1String(kAppKey));
    const QJsonObject header = QJsonDocument::fromJson(columns.mid(2).join(QLatin1Char('|')).toUtf8()).object();
    for (const char *key : {"lfdid", "idfa", "oid", "idfv", "device_model", "is_jailbroken", "resolution", "os",
                            "os_version", "country", "carrier", "access", "language", "timezone", "package_name",
                            "app_version", "short_version", "display_name", "sdk_version", "appkey", "channel",
                            "sdk_type", "unique_id", "req_time"})
        EXPECT_TRUE(header.contains(QLatin1String(key))) << key;
    EXPECT_EQ(header.value(QStringLiteral("os")).toString(), QStringLiteral("iOS"));
    EXPECT_EQ(header.value(QStringLiteral("lfdid")).toString(), QString(40, QLatin1Char('d')));
    EXPECT_EQ(header.value(QStringLiteral("req_time")).toInteger(), qint64(clock->now()));
    EXPECT_FALSE(header.contains(QStringLiteral("lat")));
}

TEST_F(ReportPolicy, TheHeaderGivesTheAppsScreenInPointsAndKeepsHalfHourZones)
{
    const QByteArray zone = qgetenv("TZ");
    const auto restore = qScopeGuard([zone] {
        MainScreen::setSize(MainScreen::kDefaultSize);
        if (zone.isNull())
            qunsetenv("TZ");
        else
            qputenv("TZ", zone);
    });
    MainScreen::setSize({414, 896});
    qputenv("TZ", "Asia/Kolkata");
    const auto core = makeCore();
    const QJsonObject header = LFPHeader::dictionary(core->installation(), core->options());
    EXPECT_EQ(header.value(QStringLiteral("resolution")).toString(), QStringLiteral("414*896"));
    EXPECT_EQ(header.value(QStringLiteral("timezone")).toDouble(), 5.5);
}

TEST_F(ReportPolicy, AKnownLocationTravelsOnceInTheHeader)
{
    auto core = makeCore();
    core->setLocation(31.5, 121.25);
    core->startWithAppkey(QLatin1String(kAppKey), {});
    ASSERT_TRUE(logged(QStringLiteral("launch ok!")));
    EXPECT_TRUE(defaults.stringForKey(LFPushKeys::kLocation).isNull());
    core->registerForRemoteNotifications({}, 7, 7);
    ASSERT_TRUE(logged(registeredLine()));
    const QStringList header = rows(QStringLiteral("SELECT header FROM push_devices"));
    ASSERT_EQ(header.size(), 1);
    // The launch had no token, so the device the gateway knows is the register's: no location.
    EXPECT_FALSE(header.first().contains(QStringLiteral("\"lat\"")));
    EXPECT_TRUE(log.lines().filter(QStringLiteral("register param")).first().contains(QStringLiteral("\"lat\":31.5")));
}

// Records, at the moment the delegate hears of the token, what the component knew of it.
struct TokenWitness final : ApplicationDelegate
{
    explicit TokenWitness(const LFPushCore &core) : core(core) {}
    bool didFinishLaunchingWithOptions(const LaunchOptions &) override { return true; }
    void didRegisterForRemoteNotificationsWithDeviceToken(const QByteArray &deviceToken) override
    {
        componentHadIt = core.curToken == deviceToken;
        heard = true;
    }
    const LFPushCore &core;
    bool heard = false;
    bool componentHadIt = false;
};

TEST_F(ReportPolicy, TheTokenReachesTheComponentBeforeTheAppDelegateInEitherRegistrationForm)
{
    for (const bool newer : {true, false}) {
        QTemporaryDir own;
        DesktopNotificationService platform({QUrl(pushRoot()), own.filePath(QStringLiteral("token")),
                                             own.filePath(QStringLiteral("state.ini")), &Application::shared(), newer});
        Application::shared().setRemoteNotificationService(&platform);
        const auto core = makeCore();
        TokenWitness delegate(*core);
        Application::shared().setDelegate(&delegate);
        core->registerForRemoteNotifications({}, UserNotificationTypeBadge, UserNotificationTypeAlert);
        ASSERT_TRUE(testsupport::waitUntil([&] { return delegate.heard; }));
        EXPECT_TRUE(delegate.componentHadIt) << "newer form: " << newer;
        // The newer form registers the iOS 8 types, the older one the iOS 7 types.
        EXPECT_EQ(Application::shared().currentUserNotificationSettings().types,
                  newer ? int(UserNotificationTypeAlert) : int(UserNotificationTypeBadge));
        EXPECT_TRUE(logged(QStringLiteral("register ok for token [%1]!").arg(QString::fromLatin1(platform.deviceToken().toHex()))));
        Application::shared().setDelegate(nullptr);
    }
    Application::shared().setRemoteNotificationService(&service);
}

class PolicyServer : public PushFixture
{
protected:
    explicit PolicyServer(int policy)
        : PushFixture({QStringLiteral("--push-launch-policy"), QString::number(policy)})
    {
    }
    QString registeredLine() const
    {
        return QStringLiteral("register ok for token [%1]!").arg(QString::fromLatin1(service.deviceToken().toHex()));
    }
};

class Policy1 : public PolicyServer
{
protected:
    Policy1() : PolicyServer(1) {}
};

class Policy2 : public PolicyServer
{
protected:
    Policy2() : PolicyServer(2) {}
};

TEST_F(Policy1, AKnownTokenIsNeverReportedAgainButTheDailyLaunchGoesOn)
{
    {
        // The launch and the register go out at once and may be answered in either order;
        // the day counts as launched only once the launch's answer is in.
        const auto first = launch();
        ASSERT_TRUE(logged(QStringLiteral("launch ok!")));
        ASSERT_TRUE(logged(registeredLine()));
    }
    EXPECT_EQ(defaults.objectForKey(LFPushKeys::kReportPolicy).toInt(), 1);
    clock->advanceDays(1);
    log.clear();
    {
        const auto nextDay = launch();
        ASSERT_TRUE(logged(QStringLiteral("We don't report anything for this policy!")));
        ASSERT_TRUE(logged(QStringLiteral("launch ok!")));
        testsupport::spinFor(300);
    }
    EXPECT_EQ(answered(kRegistered), 1);
    EXPECT_EQ(answered(kLaunched), 2);
}

TEST_F(Policy2, AKnownTokenSendsALaunchEveryTime)
{
    {
        // The launch and the register go out at once and may be answered in either order;
        // the day counts as launched only once the launch's answer is in.
        const auto first = launch();
        ASSERT_TRUE(logged(QStringLiteral("launch ok!")));
        ASSERT_TRUE(logged(registeredLine()));
    }
    const QString launchedWithToken =
        QStringLiteral("launch ok for token [%1]!").arg(QString::fromLatin1(service.deviceToken().toHex()));
    for (int again = 0; again < 2; ++again) {
        log.clear();
        const auto sameDay = launch();
        ASSERT_TRUE(logged(launchedWithToken));
    }
    EXPECT_EQ(answered(kRegistered), 1);
    // The first launch without a token, then one per later launch with it.
    EXPECT_EQ(answered(kLaunched), 3);
}

} // namespace
