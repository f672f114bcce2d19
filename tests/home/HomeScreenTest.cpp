// The home screen against a scripted forum server that records what arrives: the cold-start
// requests on a first and a later launch, the board list again on every appearance, the
// banner built from the ads answer (also an empty one), board and banner routing, and failures.

#include "DetailViewController.h"
#include "DeviceInfo.h"
#include "EventLoop.h"
#include "FieldValue.h"
#include "ForumAnswer.h"
#include "HomeViewController.h"
#include "HostDetailViewController.h"
#include "HttpSessionManager.h"
#include "NavigationBar.h"
#include "NavigationController.h"
#include "Pointer.h"
#include "RecordingHttpServer.h"
#include "RefreshControl.h"
#include "ServiceConfig.h"
#include "TextView.h"
#include "UserDefaults.h"
#include "UserIdStore.h"
#include "WebEngineSetup.h"
#include "WebViewController.h"
#include "Window.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QTest>

namespace {

[[maybe_unused]] const bool kWebEnginePrepared = (WebEngineSetup::prepareProcess(), true);

constexpr qint64 kIssuedUserId = 4242;
const QString kStoredKey = QString::fromLatin1(UserIdStore::kKey);

QJsonObject board(int id, const QString &name, int tag)
{
    return {{QStringLiteral("sectionid"), id}, {QStringLiteral("sectionname"), name},
            {QStringLiteral("sectiontopic"), 10 + id}, {QStringLiteral("sectiontag"), tag},
            {QStringLiteral("sectionico"), QString()}};
}

const QJsonArray kBoards{board(1, QStringLiteral("新手攻略"), 101), board(2, QStringLiteral("版本资讯"), 102),
                         board(3, QStringLiteral("综合讨论"), 103), board(4, QStringLiteral("同人创作"), 104),
                         board(5, QStringLiteral("组队交友"), 105), board(6, QStringLiteral("意见反馈"), 106)};

QJsonObject bannerItem(const QJsonValue &urltype, int tid, const QString &adurl = {})
{
    QJsonObject item{{QStringLiteral("tid"), tid},
                     {QStringLiteral("title"), QStringLiteral("推荐 %1").arg(tid)},
                     {QStringLiteral("username"), QStringLiteral("作者%1").arg(tid)},
                     {QStringLiteral("adico"), QStringLiteral("http://127.0.0.1:9/banner/%1.png").arg(tid)},
                     {QStringLiteral("adurl"), adurl}};
    if (!urltype.isUndefined())
        item.insert(QStringLiteral("urltype"), urltype);
    return item;
}

class HomeScreenTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(forum.listen());
        forum.setResponder([this](const RecordingHttpServer::Request &request) { return answer(request); });
        ServiceConfig::setApiRoot(forum.apiRoot());
        UserDefaults::standardUserDefaults().removeObjectForKey(kStoredKey);
        UserDefaults::standardUserDefaults().synchronize();
    }
    void TearDown() override { ServiceConfig::setApiRoot({}); }

    RecordingHttpServer::Response answer(const RecordingHttpServer::Request &request)
    {
        const QString name = endpoint(request);
        if (name == QLatin1String("GetSection") && failBoards)
            return {500, "text/plain", "down"};
        QJsonValue rdata = QJsonArray();
        if (name == QLatin1String("GetAdRecom"))
            rdata = ads;
        else if (name == QLatin1String("GetSection"))
            rdata = kBoards;
        else if (name == QLatin1String("GetTempUserInfo"))
            rdata = QJsonObject{{QStringLiteral("userinfo"), QJsonObject{{QStringLiteral("userid"), kIssuedUserId}}}};
        else if (name == QLatin1String("RepliesleTopic"))
            rdata = QJsonObject{{QStringLiteral("description"), QStringLiteral("回复成功")}};
        return {200, "application/json", forumanswer::withRData(rdata)};
    }

    static QString endpoint(const RecordingHttpServer::Request &request)
    {
        return QString::fromLatin1(request.path().mid(request.path().lastIndexOf('/') + 1));
    }

    QStringList endpoints() const
    {
        QStringList names;
        for (const RecordingHttpServer::Request &request : forum.requests())
            names.append(endpoint(request));
        return names;
    }

    QList<QJsonObject> payloadsOf(const QString &name) const
    {
        QList<QJsonObject> payloads;
        for (const RecordingHttpServer::Request &request : forum.requests()) {
            if (endpoint(request) == name)
                payloads.append(forumanswer::requestPayload(request.query()));
        }
        return payloads;
    }

    void launch()
    {
        home = std::make_shared<Home::ViewController>();
        navigation = std::make_shared<NavigationController>(home);
        window.setRootViewController(navigation);
        window.makeKeyAndVisible();
    }

    // Everything sent has been answered, and the refresh header's slide-in is over.
    bool quiet()
    {
        testsupport::spinFor(RefreshControl::kSlideInMs + 100);
        return testsupport::waitUntil([] { return HttpSessionManager::requestsInFlight() == 0; });
    }

    bool loaded()
    {
        return testsupport::waitUntil([&] { return home->listArray.size() == kBoards.size() && home->circleView(); }) &&
               quiet();
    }

    template <class Screen>
    Screen *shown()
    {
        testsupport::waitUntil([&] { return !navigation->isTransitioning(); });
        return dynamic_cast<Screen *>(navigation->visibleViewController());
    }

    RecordingHttpServer forum;
    QJsonArray ads{bannerItem(0, 1003), bannerItem(1, 9001, QStringLiteral("http://127.0.0.1:9/pages/1.html"))};
    bool failBoards = false;
    Window window;
    std::shared_ptr<Home::ViewController> home;
    std::shared_ptr<NavigationController> navigation;
};

TEST_F(HomeScreenTest, aFirstLaunchAsksForAUserAndTheBoardsAtOnceWithUserIdZero)
{
    forum.hold();
    launch();
    // All of them arrive while none is answered: nothing waits for another.
    ASSERT_TRUE(testsupport::waitUntil([&] { return forum.requests().size() == 5; }));
    EXPECT_EQ(endpoints(), (QStringList{QStringLiteral("GetAdRecom"), QStringLiteral("GetTempUserInfo"),
                                        QStringLiteral("GetSection"), QStringLiteral("GetSection"),
                                        QStringLiteral("GetSection")}));
    EXPECT_EQ(forum.requests().first().query(), QByteArray()) << "the ads request carries no payload";
    const QJsonObject devicePair{{QStringLiteral("imei"), DeviceInfo::getMachineUDID()},
                                 {QStringLiteral("devicetype"), QStringLiteral("IOS")}};
    EXPECT_EQ(payloadsOf(QStringLiteral("GetTempUserInfo")), QList<QJsonObject>{devicePair});
    QJsonObject boardList = devicePair;
    boardList.insert(QStringLiteral("userid"), 0);
    EXPECT_EQ(payloadsOf(QStringLiteral("GetSection")), QList<QJsonObject>(3, boardList));
    EXPECT_EQ(home->tableView()->tableHeaderView(), nullptr) << "no banner before the ads answer";
    EXPECT_TRUE(home->tableView()->header()->isRefreshing());

    forum.release();
    ASSERT_TRUE(loaded());
    EXPECT_EQ(UserDefaults::standardUserDefaults().stringForKey(kStoredKey), QStringLiteral("4242"));
    EXPECT_EQ(home->number, 0) << "the issued id is used from the next launch on";
    EXPECT_EQ(home->userIDStr, QStringLiteral("4242"));
    EXPECT_FALSE(home->tableView()->header()->isRefreshing());
    EXPECT_EQ(home->tableView()->numberOfRowsInSection(0), kBoards.size());
    EXPECT_EQ(forum.requests().size(), 5);
}

TEST_F(HomeScreenTest, aLaterLaunchSendsTheStoredIdAndAsksForNoUser)
{
    UserDefaults::standardUserDefaults().setObject(QStringLiteral("4242"), kStoredKey);
    launch();
    ASSERT_TRUE(loaded());
    EXPECT_EQ(endpoints(), (QStringList{QStringLiteral("GetAdRecom"), QStringLiteral("GetSection"),
                                        QStringLiteral("GetSection"), QStringLiteral("GetSection")}));
    for (const QJsonObject &payload : payloadsOf(QStringLiteral("GetSection")))
        EXPECT_EQ(payload.value(QStringLiteral("userid")), QJsonValue(kIssuedUserId));
    EXPECT_EQ(home->number, kIssuedUserId);
}

TEST_F(HomeScreenTest, theBannerAndRowsFillTheTableOnceTheAnswersArrive)
{
    launch();
    ASSERT_TRUE(loaded());
    EXPECT_EQ(home->title(), QStringLiteral("Quorvel"));
    EXPECT_EQ(navigation->navigationBar()->titleLabel()->text(), QStringLiteral("Quorvel"));
    auto *carousel = qobject_cast<CircleView *>(home->tableView()->tableHeaderView());
    ASSERT_NE(carousel, nullptr);
    EXPECT_EQ(carousel->geometry().size(), QSize(375, 195));
    EXPECT_EQ(carousel->count(), 2);
    ASSERT_NE(home->tableView()->tableFooterView(), nullptr);
    EXPECT_EQ(home->tableView()->tableFooterView()->height(), 60);
    EXPECT_EQ(home->headerArray, (QStringList{QStringLiteral("http://127.0.0.1:9/banner/1003.png"),
                                              QStringLiteral("http://127.0.0.1:9/banner/9001.png")}));
    EXPECT_EQ(home->modelArray, (QList<QJsonValue>{1003, 9001}));
    ASSERT_EQ(home->mutableArray.size(), 2);
    EXPECT_EQ(home->mutableArray.at(1).adurl(), QJsonValue(QStringLiteral("http://127.0.0.1:9/pages/1.html")));
    EXPECT_EQ(home->tableView()->rectForRowAtIndexPath(IndexPath::indexPathForRow(1, 0)).height(), 89);
    EXPECT_EQ(navigation->navigationItem()->hidesBackButton(), true);
    ASSERT_NE(home->navigationItem()->leftBarButtonItem(), nullptr);
    EXPECT_EQ(home->navigationItem()->leftBarButtonItem()->title(), QString());
}

TEST_F(HomeScreenTest, aVerticalDragOnTheBannerScrollsTheBoardsAndASideDragPagesTheBanner)
{
    launch();
    ASSERT_TRUE(loaded());
    CircleView *carousel = home->circleView();
    carousel->timer()->stop();
    testsupport::Pointer pointer(&window);
    const QPoint onBanner = carousel->mapTo(&window, QPoint(187, 120));
    const qreal top = home->tableView()->contentOffset().y();

    pointer.drag(onBanner, QPoint(0, -100));
    EXPECT_NEAR(home->tableView()->contentOffset().y() - top, 100, 1);
    EXPECT_EQ(carousel->scrollV()->contentOffset(), QPointF(375, 0));

    pointer.drag(onBanner - QPoint(0, 100), QPoint(0, 100));
    ASSERT_TRUE(testsupport::waitUntil([&] { return home->tableView()->contentOffset().y() == top; }));
    pointer.flick(onBanner + QPoint(60, 0), QPoint(-120, 0));
    ASSERT_TRUE(testsupport::waitUntil([&] { return carousel->scrollV()->contentOffset() == QPointF(750, 0); }));
    EXPECT_EQ(home->tableView()->contentOffset().y(), top);
    EXPECT_EQ(carousel->currentItemIndex(), 1);
}

TEST_F(HomeScreenTest, anEmptyAdsAnswerStillBuildsAnEmptyBanner)
{
    ads = {};
    launch();
    ASSERT_TRUE(loaded());
    EXPECT_TRUE(home->headerArray.isEmpty());
    EXPECT_TRUE(home->mutableArray.isEmpty());
    EXPECT_TRUE(home->modelArray.isEmpty());
    auto *carousel = qobject_cast<CircleView *>(home->tableView()->tableHeaderView());
    ASSERT_NE(carousel, nullptr);
    EXPECT_EQ(carousel->count(), 0);
    EXPECT_EQ(carousel->photoArray().size(), 2);
}

TEST_F(HomeScreenTest, aRowOpensItsBoardWithTheLastConfiguredCellsIdsAndComesBackForTheBoards)
{
    UserDefaults::standardUserDefaults().setObject(QStringLiteral("4242"), kStoredKey);
    launch();
    ASSERT_TRUE(loaded());
    const QString lastConfiguredId = home->idStr;
    const QString lastConfiguredTag = home->tagStr;
    ASSERT_NE(lastConfiguredId, QStringLiteral("1")) << "more than one row was laid out";

    testsupport::Pointer pointer(&window);
    const QRectF firstRow = home->tableView()->rectForRowAtIndexPath(IndexPath::indexPathForRow(0, 0));
    const QPoint onFirstRow = home->tableView()->viewport()->mapTo(
        &window, (firstRow.center() - home->tableView()->contentOffset()).toPoint());
    forum.clear();
    pointer.tap(onFirstRow);
    auto *boardScreen = shown<DetailViewController>();
    ASSERT_NE(boardScreen, nullptr);
    EXPECT_EQ(boardScreen->model.sectionid(), QJsonValue(1));
    EXPECT_EQ(boardScreen->str, lastConfiguredId);
    EXPECT_EQ(boardScreen->tagStr, lastConfiguredTag);
    EXPECT_EQ(boardScreen->userID, QJsonValue(kIssuedUserId));
    EXPECT_EQ(boardScreen->title(), QStringLiteral("新手攻略"));
    ASSERT_TRUE(quiet());

    forum.clear();
    pointer.tap(navigation->navigationBar()->backButton()->mapTo(&window, QPoint(20, 20)));
    ASSERT_EQ(shown<Home::ViewController>(), home.get());
    ASSERT_TRUE(quiet());
    EXPECT_EQ(endpoints(), QStringList{QStringLiteral("GetSection")});
}

TEST_F(HomeScreenTest, bannerItemsOpenTheirTopicOrTheirPageByUrlType)
{
    ads = {bannerItem(0, 1003),
           bannerItem(QStringLiteral("0"), 1004),
           bannerItem(QJsonValue::Undefined, 1005),
           bannerItem(QStringLiteral("abc"), 1006),
           bannerItem(1, 9001, QStringLiteral("http://127.0.0.1:9/pages/1.html")),
           bannerItem(QStringLiteral("2"), 9002, QStringLiteral("http://127.0.0.1:9/pages/2.html"))};
    launch();
    ASSERT_TRUE(loaded());
    const ListModel lastBoard = home->listModel;

    for (int index = 0; index < 4; ++index) {
        home->cycleScrollView(home->circleView(), index);
        auto *topic = shown<HostDetailViewController>();
        ASSERT_NE(topic, nullptr) << "item " << index;
        EXPECT_EQ(topic->tid, home->modelArray.at(index));
        EXPECT_EQ(topic->postModel.title(), QJsonValue(QStringLiteral("推荐 %1").arg(1003 + index)));
        EXPECT_EQ(topic->model.sectionid(), lastBoard.sectionid()) << "whatever board was configured last";
        EXPECT_EQ(topic->result, 120);
        EXPECT_EQ(topic->count, 100);
        EXPECT_EQ(topic->userID, QJsonValue(0));
        navigation->popViewControllerAnimated(false);
        ASSERT_EQ(shown<Home::ViewController>(), home.get());
    }
    for (int index = 4; index < 6; ++index) {
        home->cycleScrollView(home->circleView(), index);
        auto *page = shown<WebViewController>();
        ASSERT_NE(page, nullptr) << "item " << index;
        EXPECT_EQ(page->url, QStringLiteral("http://127.0.0.1:9/pages/%1.html").arg(index - 3));
        navigation->popViewControllerAnimated(false);
        ASSERT_EQ(shown<Home::ViewController>(), home.get());
    }
}

TEST_F(HomeScreenTest, aTappedBannerTopicRepliesWithItsOwnTidAndThePostersName)
{
    launch();
    ASSERT_TRUE(loaded());
    testsupport::Pointer pointer(&window);
    CircleView *carousel = home->circleView();
    carousel->timer()->stop();
    ASSERT_EQ(carousel->currentItemIndex(), 0);
    pointer.tap(carousel->mapTo(&window, QPoint(187, 97)));
    auto *topic = shown<HostDetailViewController>();
    ASSERT_NE(topic, nullptr);
    ASSERT_TRUE(quiet());

    forum.clear();
    topic->textlabelAction();
    topic->replyTextView()->insertText(QStringLiteral("支持"));
    topic->handleAction();
    ASSERT_TRUE(testsupport::waitUntil([&] { return payloadsOf(QStringLiteral("RepliesleTopic")).size() == 1; }));
    const QJsonObject sent = payloadsOf(QStringLiteral("RepliesleTopic")).first();
    EXPECT_EQ(sent.value(QStringLiteral("tid")), QJsonValue(1003));
    EXPECT_EQ(sent.value(QStringLiteral("title")), QJsonValue(QStringLiteral("作者1003")));
}

TEST_F(HomeScreenTest, aFailedBoardListKeepsTheRowsAndTheHeaderRefreshing)
{
    launch();
    ASSERT_TRUE(loaded());
    failBoards = true;
    home->tableView()->header()->beginRefreshing();
    ASSERT_TRUE(quiet());
    EXPECT_TRUE(home->tableView()->header()->isRefreshing());
    EXPECT_EQ(home->listArray.size(), kBoards.size());
}

} // namespace
