// The board screen against the project's forum server: its three sections, paging through
// the pull-up footer, the reload after a publish, and opening a topic.

#include "TopicScreenSupport.h"

#include "DetailViewController.h"
#include "FirstCell.h"
#include "NavigationBar.h"
#include "ReleaseViewController.h"
#include "ImageView.h"
#include "Pointer.h"
#include "RecordingHttpServer.h"
#include "RefreshFooter.h"
#include "RequestOrder.h"
#include "ForumAnswer.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <QTest>

#include <algorithm>

using namespace topictest;
using Demo = LocalForumServer::Demo;

namespace {

QList<qint64> sortedTids(const QList<PostModel> &topics)
{
    QList<qint64> tids;
    for (const PostModel &topic : topics)
        tids.append(FieldValue::integerValue(topic.tid()));
    std::sort(tids.begin(), tids.end());
    return tids;
}

class BoardScreenTest : public ForumServerSuite
{
protected:
    std::shared_ptr<DetailViewController> openBoard(int section = Demo::kBoardId, Window *in = nullptr)
    {
        auto screen = std::make_shared<DetailViewController>();
        screen->model.setValueForKey(section, u"sectionid");
        screen->model.setValueForKey(Demo::kBoardTagId, u"tagid");
        screen->model.setValueForKey(QString::fromUtf8(Demo::kBoardName), u"sectionname");
        screen->userID = kWriterId;
        navigation = std::make_shared<NavigationController>(screen);
        Window &shown = in ? *in : window;
        shown.setRootViewController(navigation);
        shown.makeKeyAndVisible();
        EXPECT_TRUE(waitUntilAnswered(screen));
        return screen;
    }

    static bool waitUntilAnswered(const std::shared_ptr<DetailViewController> &screen)
    {
        return testsupport::waitUntil([&] {
            return screen->isViewLoaded() && HttpSessionManager::requestsInFlight() == 0
                   && !screen->tableView()->header()->isRefreshing() && !screen->tableView()->footer()->isRefreshing();
        });
    }

    static void pullUp(const std::shared_ptr<DetailViewController> &screen)
    {
        const int before = screen->page;
        screen->tableView()->footer()->beginRefreshing();
        ASSERT_TRUE(testsupport::waitUntil([&] { return screen->page == before + 1; }));
        ASSERT_TRUE(waitUntilAnswered(screen));
    }

    std::shared_ptr<NavigationController> navigation;
};

TEST_F(BoardScreenTest, PinnedAndGuideTopicsFillTheFirstSectionsAndOtherTypesNone)
{
    auto screen = openBoard();
    EXPECT_EQ(screen->title(), QString::fromUtf8(Demo::kBoardName));
    EXPECT_EQ(screen->stickArray.size(), Demo::kBoardPinnedTopics);
    EXPECT_EQ(screen->mutableArray.size(), Demo::kBoardGuideTopics);
    EXPECT_EQ(screen->datasource.size(), 10);
    TableView *table = screen->tableView();
    EXPECT_EQ(table->numberOfRowsInSection(0), 2);
    EXPECT_EQ(table->numberOfRowsInSection(1), 2);
    EXPECT_EQ(table->numberOfRowsInSection(2), 10);
    // The demo board's topics 1 and 2 are pinned (types 1 and 3), 3 and 4 guides (2 and 4);
    // the type 0 and 5 items of the same answer show nowhere.
    EXPECT_EQ(sortedTids(screen->stickArray), (QList<qint64>{1001, 1002}));
    EXPECT_EQ(sortedTids(screen->mutableArray), (QList<qint64>{1003, 1004}));
    // Pinned rows wear the pinned badge, guide rows the guide badge; both 40 points high.
    table->layoutIfNeeded();
    auto *pinned = static_cast<FirstCell *>(table->cellForRowAtIndexPath({0, 0}));
    auto *guide = static_cast<FirstCell *>(table->cellForRowAtIndexPath({1, 0}));
    ASSERT_TRUE(pinned && guide);
    EXPECT_EQ(pinned->image()->imageName(), QStringLiteral("置顶"));
    EXPECT_EQ(guide->image()->imageName(), QStringLiteral("攻略"));
    // Reloaded, the rows reuse each other's cells: the badges stay with their sections.
    table->reloadData();
    table->layoutIfNeeded();
    EXPECT_EQ(static_cast<FirstCell *>(table->cellForRowAtIndexPath({0, 0}))->image()->imageName(), QStringLiteral("置顶"));
    EXPECT_EQ(static_cast<FirstCell *>(table->cellForRowAtIndexPath({0, 1}))->image()->imageName(), QStringLiteral("置顶"));
    EXPECT_EQ(static_cast<FirstCell *>(table->cellForRowAtIndexPath({1, 1}))->image()->imageName(), QStringLiteral("攻略"));
    EXPECT_EQ(table->rectForRowAtIndexPath({0, 1}).height(), 40);
    EXPECT_EQ(table->rectForRowAtIndexPath({1, 1}).height(), 40);
    // The header card and the 55-point footer.
    EXPECT_EQ(screen->V()->frame(), QRectF(0, 0, 375, 185));
    EXPECT_EQ(screen->titleView()->frame().height(), 55);
}

TEST_F(BoardScreenTest, OnASmallPhoneTheCardAndFooterTakeItsWidth)
{
    Window small(QSize(320, 568));
    auto screen = openBoard(Demo::kBoardId, &small);
    EXPECT_EQ(screen->V()->frame(), QRectF(0, 0, 320, 185));
    EXPECT_EQ(screen->titleView()->frame().size(), QSizeF(320, 55));
    // Loading made the bar opaque, so the view starts under it; the table keeps the frame
    // it was given from the whole screen.
    EXPECT_FALSE(navigation->navigationBar()->isTranslucent());
    EXPECT_EQ(screen->view()->frame(), QRectF(0, 64, 320, 568 - 64));
    EXPECT_EQ(screen->tableView()->frame(), QRectF(0, 0, 320, 568));
    EXPECT_EQ(screen->tableView()->rectForRowAtIndexPath({0, 0}), QRectF(0, 185, 320, 40));
}

TEST_F(BoardScreenTest, PagesAppendPullingDownReplacesAndThereIsNoLastPage)
{
    auto screen = openBoard();
    pullUp(screen);
    EXPECT_EQ(screen->page, 2);
    EXPECT_EQ(screen->datasource.size(), 20);
    pullUp(screen);
    pullUp(screen);
    pullUp(screen);
    EXPECT_EQ(screen->datasource.size(), Demo::kBoardOrdinaryTopics);
    // Page 6 is empty: nothing changes, refreshing still ends, and the next pull asks for 7.
    pullUp(screen);
    EXPECT_EQ(screen->datasource.size(), Demo::kBoardOrdinaryTopics);
    EXPECT_FALSE(screen->tableView()->footer()->isRefreshing());
    const testsupport::RequestOrder order;
    pullUp(screen);
    EXPECT_EQ(screen->page, 7);
    EXPECT_EQ(FieldValue::integerValue(screen->jsonDic.value(QStringLiteral("pageindex"))), 7);

    screen->tableView()->header()->beginRefreshing();
    ASSERT_TRUE(testsupport::waitUntil([&] { return screen->page == 1; }));
    ASSERT_TRUE(waitUntilAnswered(screen));
    EXPECT_EQ(screen->datasource.size(), 10);
}

TEST_F(BoardScreenTest, TheListRequestCarriesItsEightFields)
{
    auto screen = openBoard();
    const QJsonObject sent = screen->jsonDic;
    EXPECT_EQ(sent.keys(), (QStringList{"devicetype", "imei", "pageindex", "pagesize", "sectionid", "showtype",
                                        "sorttype", "tag"}));
    EXPECT_EQ(sent.value(QStringLiteral("devicetype")), QStringLiteral("IOS"));
    EXPECT_EQ(sent.value(QStringLiteral("pagesize")), 10);
    EXPECT_EQ(sent.value(QStringLiteral("showtype")), 0);
    EXPECT_EQ(sent.value(QStringLiteral("sorttype")), 0);
    EXPECT_EQ(sent.value(QStringLiteral("tag")), Demo::kBoardTagId);
    EXPECT_EQ(sent.value(QStringLiteral("sectionid")), Demo::kBoardId);
}

TEST_F(BoardScreenTest, AFailedPageOnlyLogsAndLeavesTheFooterRunning)
{
    auto screen = openBoard();
    RecordingHttpServer broken;
    ASSERT_TRUE(broken.listen());
    broken.setResponder([](const RecordingHttpServer::Request &) { return RecordingHttpServer::Response{500, "text/plain", "no"}; });
    ServiceConfig::setApiRoot(broken.apiRoot());
    screen->tableView()->footer()->beginRefreshing();
    ASSERT_TRUE(testsupport::waitUntil([&] { return !broken.requests().isEmpty() && HttpSessionManager::requestsInFlight() == 0; }));
    EXPECT_TRUE(screen->tableView()->footer()->isRefreshing());
    EXPECT_EQ(screen->datasource.size(), 10);
    EXPECT_EQ(screen->page, 2);
}

TEST_F(BoardScreenTest, ThePublishedMarkReloadsPageOneOnceOnReturn)
{
    auto screen = openBoard();
    // Back from a screen without the mark: no reload.
    navigation->pushViewController(std::make_shared<ViewController>(), false);
    ASSERT_TRUE(testsupport::waitUntil([&] { return navigation->visibleViewController() != screen.get(); }));
    {
        const testsupport::RequestOrder order;
        navigation->popViewControllerAnimated(false);
        ASSERT_TRUE(testsupport::waitUntil([&] { return navigation->visibleViewController() == screen.get(); }));
        QTest::qWait(RefreshControl::kSlideInMs + 100);
        EXPECT_TRUE(order.paths().isEmpty());
    }
    // Back from a composer that published: it pops, then passes the mark.
    navigation->pushViewController(std::make_shared<ViewController>(), false);
    ASSERT_TRUE(testsupport::waitUntil([&] { return navigation->visibleViewController() != screen.get(); }));
    const testsupport::RequestOrder order;
    navigation->popViewControllerAnimated(true);
    screen->passValue(ReleaseViewController::kPublishedValue);
    ASSERT_TRUE(testsupport::waitUntil([&] { return order.paths().size() == 1; }));
    ASSERT_TRUE(waitUntilAnswered(screen));
    QTest::qWait(RefreshControl::kSlideInMs + 100);
    EXPECT_EQ(order.paths(), QStringList{"/api/GetTopics"});
    EXPECT_EQ(screen->page, 1);
    // Leaving clears the mark.
    navigation->pushViewController(std::make_shared<ViewController>(), false);
    ASSERT_TRUE(testsupport::waitUntil([&] { return screen->value == 0; }));
}

TEST_F(BoardScreenTest, ATappedRowOpensItsTopicWithTheBoardAndUser)
{
    auto screen = openBoard();
    TableView *table = screen->tableView();
    table->layoutIfNeeded();
    const QRectF row = table->rectForRowAtIndexPath({2, 0});
    testsupport::Pointer person(table);
    person.tap(person.inWindow(QPoint(100, int(row.top() - table->contentOffset().y() + 20)), table->viewport()));
    ASSERT_TRUE(testsupport::waitUntil([&] { return navigation->topViewController() != screen.get(); }));
    auto *topic = qobject_cast<HostDetailViewController *>(navigation->topViewController());
    ASSERT_NE(topic, nullptr);
    EXPECT_EQ(topic->postModel.tid(), screen->datasource.first().tid());
    EXPECT_EQ(topic->model.sectionid(), Demo::kBoardId);
    EXPECT_EQ(topic->userID, kWriterId);
}

TEST_F(BoardScreenTest, TopicRowsTakeTheHeightOfTheRecordLastHandedToACell)
{
    auto screen = openBoard();
    TableView *table = screen->tableView();
    table->layoutIfNeeded();
    // Every topic row is measured, at the reload, from the record the last layout handed out.
    const PostModel last = screen->postModel;
    const qreal h = JsonChangDic::adaptiveWithText(FieldValue::optionalText(last.topiccontent()));
    ASSERT_GT(h, 0);
    const qreal expected = h < 50 ? h + 80 : 120;
    table->reloadData();
    for (int row = 0; row < table->numberOfRowsInSection(2); ++row)
        EXPECT_EQ(table->rectForRowAtIndexPath({2, row}).height(), expected) << row;
}

// Writes a topic in the composer on top of `navigation` and publishes it with its bar button.
void publishFromComposer(NavigationController &navigation, const QString &title)
{
    ASSERT_TRUE(testsupport::waitUntil([&] {
        return qobject_cast<ReleaseViewController *>(navigation.visibleViewController()) && !navigation.isTransitioning();
    }));
    auto *composer = qobject_cast<ReleaseViewController *>(navigation.visibleViewController());
    composer->titleText()->insertText(title);
    composer->content()->insertText(QStringLiteral("新人报到，请多关照"));
    testsupport::Pointer person(composer->view());
    Button *publish = navigation.navigationBar()->rightButton();
    person.tap(person.inWindow(publish->rect().center(), publish));
}

TEST_F(BoardScreenTest, APublishFromThePublishButtonReloadsOnceWithTheNewTopicOnTop)
{
    auto screen = openBoard();
    testsupport::Pointer person(screen->view());
    Button *publishButton = navigation->navigationBar()->rightButton();
    ASSERT_EQ(publishButton->title(), QStringLiteral("发布"));
    person.tap(person.inWindow(publishButton->rect().center(), publishButton));
    const QString title = QStringLiteral("新话题%1").arg(QDateTime::currentMSecsSinceEpoch() % 100000);
    const testsupport::RequestOrder order;
    publishFromComposer(*navigation, title);

    ASSERT_TRUE(testsupport::waitUntil([&] { return navigation->visibleViewController() == screen.get(); }));
    ASSERT_TRUE(testsupport::waitUntil([&] { return order.paths().size() == 2; }));
    ASSERT_TRUE(waitUntilAnswered(screen));
    QTest::qWait(RefreshControl::kSlideInMs + 100);
    EXPECT_EQ(order.paths(), (QStringList{"/api/WriteTopic", "/api/GetTopics"}));
    EXPECT_EQ(FieldValue::displayText(screen->datasource.first().title()), title);
}

TEST_F(BoardScreenTest, AComposerOpenedFromTheHeaderCardReportsToNoOne)
{
    auto screen = openBoard();
    screen->back(DetailViewController::kSubmitTag);
    const testsupport::RequestOrder order;
    publishFromComposer(*navigation, QStringLiteral("卡片里发的"));
    ASSERT_TRUE(testsupport::waitUntil([&] { return navigation->visibleViewController() == screen.get(); }));
    ASSERT_TRUE(waitUntilAnswered(screen));
    QTest::qWait(RefreshControl::kSlideInMs + 100);
    EXPECT_EQ(order.paths(), QStringList{"/api/WriteTopic"});
}

} // namespace
