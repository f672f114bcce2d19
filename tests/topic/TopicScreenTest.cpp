// The topic screen against the project's forum server: what it loads, how it splits and
// shows replies, and how it reloads and closes.

#include "TopicScreenSupport.h"

#include "BarButtonItem.h"
#include "FieldValue.h"
#include "ForumPayloads.h"
#include "HeadView.h"
#include "HostCell.h"
#include "HttpRequest.h"
#include "JsonChangDic.h"
#include "LocalForumServer.h"
#include "MainScreen.h"
#include "NavigationItem.h"
#include "ServiceConfig.h"
#include "TextView.h"
#include "UIColorAdd.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonObject>

using namespace topictest;
using Demo = LocalForumServer::Demo;

namespace {

class TopicScreenTest : public ForumServerSuite {};

} // namespace

TEST_F(TopicScreenTest, ShowsAtMostFiftyRepliesSplitIntoHighlightedAndAll)
{
    auto screen = makeScreen(Demo::kManyRepliesTopicId, Demo::kManyRepliesSectionId);
    show(window, screen);
    ASSERT_TRUE(waitUntilLoaded(screen));

    EXPECT_EQ(screen->titels.size(), Demo::kManyRepliesHighlighted);
    EXPECT_EQ(screen->dataSource.size(), Demo::kManyRepliesFirstPageOrdinary);
    TableView *table = screen->tableView();
    EXPECT_EQ(table->numberOfSections(), 3);
    EXPECT_EQ(table->numberOfRowsInSection(0), Demo::kManyRepliesHighlighted);
    EXPECT_EQ(table->numberOfRowsInSection(1), Demo::kManyRepliesFirstPageOrdinary);
    EXPECT_EQ(table->numberOfRowsInSection(2), 0);
    EXPECT_EQ(sectionHeaderText(screen, 0), QStringLiteral("精彩回复"));
    // Only the ordinary replies are counted.
    EXPECT_EQ(sectionHeaderText(screen, 1), QStringLiteral("全部回复(%1)").arg(Demo::kManyRepliesFirstPageOrdinary));

    auto *first = dynamic_cast<HostCell *>(table->cellForRowAtIndexPath({0, 0}));
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->user()->text(), FieldValue::displayText(screen->titels.first().username()));
    EXPECT_EQ(first->content()->text(), FieldValue::displayText(screen->titels.first().content()));
}

TEST_F(TopicScreenTest, HeaderShowsTheAnswerWithTheOpenersPoster)
{
    auto screen = makeScreen(Demo::kManyRepliesTopicId, Demo::kManyRepliesSectionId, QStringLiteral("带来记录的人"));
    show(window, screen);
    ASSERT_TRUE(waitUntilLoaded(screen));

    HeadView *head = screen->headV();
    EXPECT_EQ(screen->tableView()->tableHeaderView(), head);
    EXPECT_TRUE(head->title()->text().startsWith(QStringLiteral("【")));
    EXPECT_FALSE(head->time()->text().isEmpty());
    EXPECT_FALSE(head->content()->text().isEmpty());
    EXPECT_EQ(head->user()->text(), QStringLiteral("带来记录的人"));
    EXPECT_DOUBLE_EQ(head->frame().height(), screen->height + 102 + screen->titleH);
    EXPECT_EQ(screen->title(), QStringLiteral("详情"));
}

TEST_F(TopicScreenTest, TopicWithoutRepliesShowsEmptySectionsAndTheEndMarker)
{
    const qint64 tid = postTopic(QStringLiteral("还没有人回复"));
    auto screen = makeScreen(tid, Demo::kBoardId);
    show(window, screen);
    ASSERT_TRUE(waitUntilLoaded(screen));

    TableView *table = screen->tableView();
    EXPECT_EQ(table->numberOfRowsInSection(0), 0);
    EXPECT_EQ(table->numberOfRowsInSection(1), 0);
    EXPECT_EQ(sectionHeaderText(screen, 1), QStringLiteral("全部回复(0)"));
    const std::unique_ptr<QWidget> end(screen->viewForHeaderInSection(table, 2));
    ASSERT_NE(screen->label(), nullptr);
    EXPECT_EQ(screen->label()->text(), QStringLiteral("END"));
    EXPECT_EQ(screen->label()->textColor(), UIColorAdd::colorWithHexString(QStringLiteral("b2b4b6")));
    EXPECT_EQ(screen->label()->frame(), QRectF((MainScreen::width() - 40) * 0.5, 15, 40, 15));
    EXPECT_EQ(screen->headV()->title()->text(), QStringLiteral("还没有人回复"));
}

TEST_F(TopicScreenTest, EveryAppearanceReloadsTopicAndReplies)
{
    auto screen = makeScreen(Demo::kNewestTopicId, Demo::kBoardId);
    show(window, screen);
    ASSERT_TRUE(waitUntilLoaded(screen));
    const int detailsBefore = requestCount(s_server->log(), "TopicDetail");
    const int repliesBefore = requestCount(s_server->log(), "RepliesLog");

    NavigationController *navigation = screen->navigationController();
    navigation->pushViewController(std::make_shared<ViewController>(), false);
    ASSERT_TRUE(testsupport::waitUntil([navigation] { return !navigation->isTransitioning(); }));
    navigation->popViewControllerAnimated(false);
    ASSERT_TRUE(testsupport::waitUntil([&] { return requestCount(s_server->log(), "RepliesLog") > repliesBefore; }));
    ASSERT_TRUE(waitUntilLoaded(screen));

    EXPECT_EQ(requestCount(s_server->log(), "TopicDetail"), detailsBefore + 1);
    EXPECT_EQ(requestCount(s_server->log(), "RepliesLog"), repliesBefore + 1);
    EXPECT_EQ(screen->page, 3);
}

TEST_F(TopicScreenTest, OpenedFromANotificationItOffersBackThatDismisses)
{
    auto root = std::make_shared<NavigationController>(std::make_shared<ViewController>());
    window.setRootViewController(root);
    window.makeKeyAndVisible();

    auto screen = makeScreen(Demo::kNewestTopicId, Demo::kBoardId);
    screen->result = HostDetailViewController::kOpenedFromNotification;
    root->presentViewController(std::make_shared<NavigationController>(screen), true);
    ASSERT_TRUE(waitUntilLoaded(screen));

    BarButtonItem *back = screen->navigationItem()->leftBarButtonItem();
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(back->title(), QStringLiteral("返回"));
    back->trigger();
    EXPECT_TRUE(testsupport::waitUntil([&root] { return root->presentedViewController() == nullptr; }));
}

TEST_F(TopicScreenTest, OtherOpenersGetNoBackItemOfTheirOwn)
{
    auto screen = makeScreen(Demo::kNewestTopicId, Demo::kBoardId);
    screen->result = HostDetailViewController::kOpenedFromBanner;
    show(window, screen);
    ASSERT_TRUE(waitUntilLoaded(screen));
    EXPECT_EQ(screen->navigationItem()->leftBarButtonItem(), nullptr);
}

TEST_F(TopicScreenTest, EveryRowTakesTheHeightOfTheRecordLastParsedOrHandedToACell)
{
    auto screen = makeScreen(Demo::kManyRepliesTopicId, Demo::kManyRepliesSectionId);
    show(window, screen);
    ASSERT_TRUE(waitUntilLoaded(screen));
    TableView *table = screen->tableView();
    const auto rowHeightFor = [](const QJsonValue &content) {
        return JsonChangDic::adaptiveWithText(FieldValue::optionalText(content)) + 50;
    };
    // The heights of every row of both reply sections, read from the table's layout.
    const auto rowHeights = [table] {
        QList<qreal> heights;
        for (int section : {0, 1}) {
            for (int row = 0; row < table->numberOfRowsInSection(section); ++row)
                heights.append(table->rectForRowAtIndexPath({section, row}).height());
        }
        return heights;
    };
    const int rows = Demo::kManyRepliesHighlighted + Demo::kManyRepliesFirstPageOrdinary;

    // A replies answer on its own lays the rows out straight after parsing, so all take the
    // height of the answer's last record, whichever section it belongs to.
    QJsonArray answer;
    HttpRequest::GetRepliesLogSuccessBlock([&answer](const HttpTask &, const QJsonValue &payload) { answer = payload.toArray(); },
                                           {}, screen->jsonString);
    ASSERT_TRUE(testsupport::waitUntil([&answer] { return !answer.isEmpty(); }));
    screen->replyRequst();
    ASSERT_TRUE(testsupport::waitUntil([] { return HttpSessionManager::requestsInFlight() == 0; }));
    const qreal lastParsedHeight = rowHeightFor(answer.last().toObject().value(QStringLiteral("content")));
    EXPECT_EQ(rowHeights(), QList<qreal>(rows, lastParsedHeight));

    // Rows are handed to cells in order as they come into view. Scrolled to the bottom edge,
    // a reply that measures otherwise is the last one handed out, and the next layout
    // measures every row from it.
    int other = 0;
    while (other < screen->dataSource.size()
           && rowHeightFor(screen->dataSource.at(other).content()) == lastParsedHeight)
        ++other;
    ASSERT_LT(other, screen->dataSource.size());
    const IndexPath target{1, other};
    ASSERT_FALSE(table->indexPathsForVisibleRows().contains(target));
    table->setContentOffset(QPointF(0, table->rectForRowAtIndexPath(target).top() - table->viewport()->height() + 1));
    ASSERT_EQ(table->indexPathsForVisibleRows().last(), target);
    table->reloadData();
    EXPECT_EQ(rowHeights(), QList<qreal>(rows, rowHeightFor(screen->dataSource.at(other).content())));

    EXPECT_EQ(table->rectForHeaderInSection(1).height(), 46);
    EXPECT_EQ(table->rectForFooterInSection(2).height(), 1);
}

TEST_F(TopicScreenTest, UnreachableServerLeavesTheScreenAsItWasAndStillRefreshing)
{
    ServiceConfig::setApiRoot(QStringLiteral("http://127.0.0.1:1/api/"));
    auto screen = makeScreen(Demo::kNewestTopicId, Demo::kBoardId);
    show(window, screen);
    ASSERT_TRUE(testsupport::waitUntil([&screen] {
        return screen->isViewLoaded() && screen->page >= 2 && HttpSessionManager::requestsInFlight() == 0;
    }));
    EXPECT_TRUE(screen->tableView()->header()->isRefreshing());
    EXPECT_TRUE(screen->titels.isEmpty());
    EXPECT_TRUE(screen->dataSource.isEmpty());
}
