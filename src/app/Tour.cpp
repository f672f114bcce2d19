#include "Tour.h"

#include "AppDelegate.h"
#include "Application.h"
#include "DetailViewController.h"
#include "FieldValue.h"
#include "HomeViewController.h"
#include "HostDetailViewController.h"
#include "IndexPath.h"
#include "NavigationBar.h"
#include "NavigationController.h"
#include "NoticeOverlay.h"
#include "NotificationTopic.h"
#include "ReleaseViewController.h"
#include "TableViewCell.h"
#include "TextView.h"
#include "VisibleScreens.h"
#include "WebViewController.h"
#include "Window.h"

#include <QDir>
#include <QElapsedTimer>
#include <QWebEngineHistory>
#include <QWebEnginePage>
#include <QEventLoop>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPointer>
#include <QTimer>

#include <cmath>
#include <cstdio>

namespace {

constexpr int kPollMs = 20;
constexpr int kPublishRetryMs = 2000;
constexpr int kPublishLimitMs = 30000;
constexpr int kMostDrags = 12;
constexpr qreal kDragDistance = 150;
constexpr int kDragSteps = 10;
constexpr int kSwipeSteps = 4;
constexpr qreal kSwipeDistance = 120;

template <class Screen>
Screen *as(ViewController *controller)
{
    return dynamic_cast<Screen *>(controller);
}

} // namespace

Tour::Tour(AppDelegate &app, QString folder) : m_app(app), m_folder(std::move(folder)), m_finger(app.window())
{
}

int Tour::run()
{
    if (!QDir().mkpath(m_folder)) {
        std::fprintf(stderr, "tour: cannot make the folder %s\n", qPrintable(m_folder));
        return 1;
    }
    const Step steps[] = {
        {"01-home", [this] { return home(); }},
        {"02-board", [this] { return board(); }},
        {"03-topic", [this] { return topic(); }},
        {"04-reply", [this] { return reply(); }},
        {"05-compose", [this] { return compose(); }},
        {"06-board-after-publish", [this] { return publish(); }},
        {"07-banner-topic", [this] { return bannerTopic(); }},
        {"08-web-page", [this] { return webPage(); }},
        {"09-notification", [this] { return notification(); }},
    };
    for (const Step &step : steps) {
        m_problem.clear();
        if (!step.reach() || !shoot(step.name)) {
            std::fprintf(stderr, "tour: step %s was not reached: %s\n", step.name, qPrintable(m_problem));
            return 1;
        }
        std::printf("tour: %s\n", qPrintable(QDir(m_folder).filePath(QString::fromLatin1(step.name) + QStringLiteral(".png"))));
        std::fflush(stdout);
    }
    return 0;
}

NavigationController *Tour::navigation() const
{
    return VisibleScreens::rootStack(m_app.window());
}

ViewController *Tour::top() const
{
    return VisibleScreens::top(m_app.window());
}

bool Tour::fail(const QString &why)
{
    m_problem = why;
    return false;
}

bool Tour::waitFor(const std::function<bool()> &condition, const QString &what)
{
    QElapsedTimer clock;
    clock.start();
    QEventLoop loop;
    QTimer poll;
    poll.setInterval(kPollMs);
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        if (condition() || clock.elapsed() > kStepLimitMs)
            loop.quit();
    });
    poll.start();
    if (!condition())
        loop.exec();
    if (!condition())
        return fail(QStringLiteral("waited %1 s for %2 (on screen: %3)")
                        .arg(kStepLimitMs / 1000)
                        .arg(what, top() ? QString::fromLatin1(top()->metaObject()->className()) : QStringLiteral("nothing")));
    return true;
}

bool Tour::settle()
{
    bool timedOut = false;
    QEventLoop loop;
    m_settle.start([&](bool late) {
        timedOut = late;
        loop.quit();
    });
    loop.exec();
    return timedOut ? fail(QStringLiteral("the forum server kept requests open")) : true;
}

bool Tour::shoot(const char *name)
{
    const QString path = QDir(m_folder).filePath(QString::fromLatin1(name) + QStringLiteral(".png"));
    return m_app.window()->grabToPng(path) || fail(QStringLiteral("cannot save %1").arg(path));
}

bool Tour::goBack()
{
    NavigationController *stack = navigation();
    if (!stack)
        return fail(QStringLiteral("no navigation stack"));
    const int depth = static_cast<int>(stack->viewControllers().size());
    if (!m_finger.tap(stack->navigationBar()->backButton()))
        return fail(QStringLiteral("no back button to tap"));
    return waitFor([stack, depth] { return stack->viewControllers().size() < depth && !stack->isTransitioning(); },
                   QStringLiteral("the previous screen"));
}

bool Tour::backToHome()
{
    while (navigation() && navigation()->viewControllers().size() > 1) {
        if (!goBack())
            return false;
    }
    return settle();
}

bool Tour::home()
{
    return waitFor(
               [this] {
                   auto *screen = as<Home::ViewController>(top());
                   return screen && !screen->listArray.isEmpty() && screen->circleView();
               },
               QStringLiteral("the boards and the banner")) &&
           settle();
}

bool Tour::board()
{
    auto *screen = as<Home::ViewController>(top());
    if (!screen || !m_finger.tap(screen->tableView()->cellForRowAtIndexPath(IndexPath::indexPathForRow(0, 0))))
        return fail(QStringLiteral("no board row to tap"));
    return waitFor(
               [this] {
                   auto *boardScreen = as<DetailViewController>(top());
                   return boardScreen && !boardScreen->datasource.isEmpty();
               },
               QStringLiteral("the board's topics")) &&
           settle();
}

bool Tour::topic()
{
    // Views may go while the tour waits; every wait is followed by a check.
    const QPointer<DetailViewController> screen = as<DetailViewController>(top());
    if (!screen || screen->datasource.isEmpty())
        return fail(QStringLiteral("no board on screen"));
    const IndexPath firstTopic = IndexPath::indexPathForRow(0, 2);
    const QPointer<TableView> table = screen->tableView();
    const qreal barBottom = NavigationBar::kHeight;
    for (int drag = 0; drag <= kMostDrags; ++drag) {
        if (!screen || !table)
            return fail(QStringLiteral("the board went away"));
        QWidget *cell = table->cellForRowAtIndexPath(firstTopic);
        if (cell && cell->isVisible()) {
            const QRect inWindow(cell->mapTo(m_app.window(), QPoint(0, 0)), cell->size());
            if (inWindow.top() >= barBottom && inWindow.bottom() <= m_app.window()->height())
                break;
        }
        const QPointF middle(m_app.window()->width() / 2.0, m_app.window()->height() * 0.7);
        m_finger.drag(middle, middle - QPointF(0, kDragDistance), kDragSteps, false);
        if (!waitFor([table] { return !table || !table->isDecelerating(); }, QStringLiteral("the list to stop")))
            return false;
    }
    if (!screen || !table)
        return fail(QStringLiteral("the board went away"));
    m_topic = screen->datasource.first();
    m_sectionId = screen->model.sectionid();
    if (!m_finger.tap(table->cellForRowAtIndexPath(firstTopic)))
        return fail(QStringLiteral("the first topic row is not on screen"));
    return waitFor([this] { return as<HostDetailViewController>(top()) != nullptr; }, QStringLiteral("the topic")) &&
           settle();
}

bool Tour::reply()
{
    const QPointer<HostDetailViewController> screen = as<HostDetailViewController>(top());
    if (!screen || !m_finger.tap(screen->textlabel()))
        return fail(QStringLiteral("no reply bar to tap"));
    if (!waitFor([screen] { return !screen || (screen->replyTextView() && screen->replyTextView()->hasFocus()); },
                 QStringLiteral("the reply box to take the keyboard")) ||
        !screen)
        return fail(QStringLiteral("the topic went away"));
    if (!m_finger.type(QString::fromUtf8(kReplyText)))
        return fail(QStringLiteral("nothing took the typing"));
    if (!m_finger.tap(screen->sender()))
        return fail(QStringLiteral("no \"发送\" button to tap"));
    // The notice shows for a second only: the picture is taken as soon as it is up.
    return waitFor([this] { return noticeShown(); }, QStringLiteral("the notice after sending"));
}

bool Tour::noticeShown() const
{
    for (NoticeOverlay *notice : m_app.window()->findChildren<NoticeOverlay *>()) {
        if (notice->isVisible())
            return true;
    }
    return false;
}

bool Tour::compose()
{
    // A notice takes the touches while it shows, as on the phone.
    if (!waitFor([this] { return !noticeShown(); }, QStringLiteral("the notice to go")) || !goBack() || !settle())
        return false;
    return writeTopic() && settle();
}

bool Tour::writeTopic()
{
    auto *boardScreen = as<DetailViewController>(top());
    if (!boardScreen || !m_finger.tap(navigation()->navigationBar()->rightButton()))
        return fail(QStringLiteral("no \"发布\" button on the board"));
    m_newestBefore = boardScreen->datasource.value(0).tid();
    if (!waitFor([this] { return as<ReleaseViewController>(top()) != nullptr; }, QStringLiteral("the composer")))
        return false;
    auto *composer = as<ReleaseViewController>(top());
    if (!m_finger.tap(composer->titleText()) || !m_finger.type(QString::fromUtf8(kTopicTitle)))
        return fail(QStringLiteral("the title box took no text"));
    if (!m_finger.tap(composer->content()) || !m_finger.type(QString::fromUtf8(kTopicBody)))
        return fail(QStringLiteral("the body box took no text"));
    return true;
}

bool Tour::publish()
{
    const QString title = QString::fromUtf8(kTopicTitle);
    // A topic of the same title from an earlier tour does not count: the new one has a new id.
    const auto published = [this, title] {
        auto *boardScreen = as<DetailViewController>(top());
        if (!boardScreen || boardScreen->datasource.isEmpty())
            return false;
        const PostModel &newest = boardScreen->datasource.first();
        return newest.tid() != m_newestBefore && FieldValue::displayText(newest.title()) == title;
    };
    QElapsedTimer clock;
    clock.start();
    for (;;) {
        if (!m_finger.tap(navigation()->navigationBar()->rightButton()))
            return fail(QStringLiteral("no \"发布\" button in the composer"));
        if (!waitFor([this] { return as<DetailViewController>(top()) != nullptr; }, QStringLiteral("the board")) ||
            !settle())
            return false;
        if (published())
            return true;
        // The server refuses a post that comes too soon after the reply ("操作太频繁请稍后再试"):
        // a person waits a moment and writes it again.
        if (clock.elapsed() > kPublishLimitMs)
            return fail(QStringLiteral("the server kept refusing the new topic"));
        QEventLoop pause;
        QTimer::singleShot(kPublishRetryMs, &pause, &QEventLoop::quit);
        pause.exec();
        if (!writeTopic())
            return false;
    }
}

bool Tour::openBannerItem(bool topicItem)
{
    auto *screen = as<Home::ViewController>(top());
    if (!screen || !screen->circleView())
        return fail(QStringLiteral("no banner on the home screen"));
    int wanted = -1;
    for (int index = 0; index < screen->mutableArray.size() && wanted < 0; ++index) {
        if ((FieldValue::integerValue(screen->mutableArray.at(index).urltype()) == 0) == topicItem)
            wanted = index;
    }
    if (wanted < 0)
        return fail(topicItem ? QStringLiteral("no banner item opens a topic") : QStringLiteral("no banner item opens a page"));

    const QPointer<CircleView> carousel = screen->circleView();
    const QPointer<ScrollView> strip = carousel->scrollV();
    const auto atRest = [strip] {
        if (!strip)
            return true;
        const qreal pages = strip->contentOffset().x() / strip->frame().width();
        return !strip->isDragging() && !strip->isDecelerating() && std::abs(pages - std::round(pages)) < 0.01;
    };
    for (int swipe = 0; swipe <= carousel->count() + 2; ++swipe) {
        if (!waitFor(atRest, QStringLiteral("the banner to rest")))
            return false;
        if (!carousel)
            return fail(QStringLiteral("the banner went away"));
        if (carousel->currentItemIndex() == wanted) {
            if (!m_finger.tap(carousel))
                return fail(QStringLiteral("the banner is not on screen"));
            return true;
        }
        QPointF middle;
        if (!m_finger.centreOf(carousel, &middle))
            return fail(QStringLiteral("the banner is not on screen"));
        m_finger.drag(middle + QPointF(kSwipeDistance / 2, 0), middle - QPointF(kSwipeDistance / 2, 0), kSwipeSteps, true);
    }
    return fail(QStringLiteral("the banner never showed item %1").arg(wanted));
}

bool Tour::bannerTopic()
{
    if (!backToHome() || !openBannerItem(true))
        return false;
    return waitFor(
               [this] {
                   auto *screen = as<HostDetailViewController>(top());
                   return screen && screen->result == HostDetailViewController::kOpenedFromBanner;
               },
               QStringLiteral("the banner's topic")) &&
           settle();
}

bool Tour::webPage()
{
    if (!backToHome() || !openBannerItem(false))
        return false;
    if (!waitFor(
            [this] {
                auto *screen = as<WebViewController>(top());
                if (!screen || !screen->webV())
                    return false;
                // Loaded: a page was committed to the history and nothing is loading any more.
                const QWebEnginePage *page = screen->webV()->page();
                return !page->isLoading() && page->history()->count() > 0;
            },
            QStringLiteral("the web page to load")))
        return false;
    return settle();
}

bool Tour::notification()
{
    if (!backToHome())
        return false;
    const QJsonObject data{{QStringLiteral("topicid"), m_topic.tid()},
                           {QStringLiteral("sectionid"), m_sectionId},
                           {QStringLiteral("title"), m_topic.title()},
                           {QStringLiteral("username"), m_topic.username()},
                           {QStringLiteral("content"), m_topic.topiccontent()}};
    const QString payload = QString::fromUtf8(QJsonDocument(QJsonObject{{QStringLiteral("data"), data}}).toJson(QJsonDocument::Compact));
    const QJsonObject userInfo{{QString::fromLatin1(NotificationTopic::kPayloadKey), payload},
                               {QStringLiteral("aps"), QJsonObject{{QStringLiteral("alert"), QString::fromUtf8(kNotificationAlert)}}}};
    // Delivered the way the notification service delivers one.
    Application::shared().receiveRemoteNotification(userInfo);
    return waitFor(
               [this] {
                   auto *screen = as<HostDetailViewController>(top());
                   auto *stack = as<NavigationController>(m_app.window()->topmostViewController());
                   return screen && stack && stack != navigation() &&
                          screen->result == HostDetailViewController::kOpenedFromNotification &&
                          stack->navigationBar()->leftButton()->isVisible() &&
                          stack->navigationBar()->leftButton()->title() ==
                              QString::fromUtf8(HostDetailViewController::kNotificationBackTitle);
               },
               QStringLiteral("the notification's topic with \"返回\"")) &&
           settle();
}
