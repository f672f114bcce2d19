#include "AppDelegate.h"

#include "FieldValue.h"
#include "ForumLog.h"
#include "HomeViewController.h"
#include "HostDetailViewController.h"
#include "ImageView.h"
#include "JsonChangDic.h"
#include "LFAnalytics.h"
#include "LFPush.h"
#include "NavigationController.h"
#include "NotificationTopic.h"
#include "UserDefaults.h"
#include "UserIdStore.h"
#include "Window.h"

#include <QCoreApplication>
#include <QJsonObject>
#include <QThread>

namespace {

const QString kLaunchImageName = QStringLiteral("LaunchImage");

} // namespace

AppDelegate::AppDelegate(const QSize &screenSize, int launchHoldMs)
    : m_screenSize(screenSize), m_launchHoldMs(launchHoldMs)
{
}

AppDelegate::~AppDelegate() = default;

bool AppDelegate::didFinishLaunchingWithOptions(const LaunchOptions &options)
{
    m_window = std::make_unique<Window>(m_screenSize);
    std::unique_ptr<ImageView> launchPicture = holdLaunchPicture();

    m_window->setRootViewController(std::make_shared<NavigationController>(std::make_shared<Home::ViewController>()));
    m_window->makeKeyAndVisible();
    launchPicture.reset();

    LFPush::startWithAppkey(QString::fromLatin1(kAppKey), options);
    LFPush::registerForRemoteNotifications();
    LFPush::setLogEnabled(true);

    LFAnalytics::setAppVersion(QCoreApplication::applicationVersion());
    LFAnalytics::startWithAppkey(QString::fromLatin1(kAppKey), kReportPolicy, QString());
    return true;
}

std::unique_ptr<ImageView> AppDelegate::holdLaunchPicture()
{
    auto picture = std::make_unique<ImageView>(QRectF(QPointF(0, 0), QSizeF(m_screenSize)), m_window.get());
    picture->setContentMode(ContentMode::ScaleToFill);
    picture->setImageNamed(kLaunchImageName);
    m_window->show();
    // Drawn before the main thread sleeps, so the picture is what shows meanwhile.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    picture->repaint();
    QThread::msleep(static_cast<unsigned long>(m_launchHoldMs));
    return picture;
}

void AppDelegate::didReceiveRemoteNotification(const QJsonObject &userInfo)
{
    LFPush::didReceiveRemoteNotification(userInfo);
    jsonDic = JsonChangDic::dictionaryWithJsonString(NotificationTopic::payloadText(userInfo));
    goToMessageViewController(jsonDic);
    forumLog(QStringLiteral("推送内容 %1").arg(FieldValue::describe(userInfo)));
}

void AppDelegate::goToMessageViewController(const QJsonValue &payload)
{
    result = HostDetailViewController::kOpenedFromNotification;
    UserDefaults &defaults = UserDefaults::standardUserDefaults();
    number = UserIdStore(defaults).userId();

    const NotificationTopic named = NotificationTopic::fromPayload(payload);

    defaults.setObject(QString::fromLatin1(kPushValue), QString::fromLatin1(kPushKey));
    defaults.synchronize();

    auto screen = std::make_shared<HostDetailViewController>();
    screen->postModel = named.topic;
    screen->model = named.board;
    screen->userID = number;
    screen->result = result;
    if (m_window && m_window->rootViewController())
        m_window->rootViewController()->presentViewController(std::make_shared<NavigationController>(screen), true);
}
