// The topic screen under a person's pointer on a small phone: the list scrolls from wherever
// a drag begins, the topic body included, and the wheel scrolls and refreshes it.

#include "TopicScreenSupport.h"

#include "HeadView.h"
#include "Pointer.h"
#include "TextView.h"

#include <gtest/gtest.h>

#include <QTest>

using namespace topictest;
using Demo = LocalForumServer::Demo;

namespace {

const QSize kSmallPhone(320, 568);

class TopicScrollTest : public ForumServerSuite
{
protected:
    std::shared_ptr<HostDetailViewController> openLoaded()
    {
        auto screen = makeScreen(Demo::kNewestTopicId, Demo::kBoardId);
        show(small, screen);
        EXPECT_TRUE(waitUntilLoaded(screen));
        // The refresh header gives its room back with a short slide.
        TableView *table = screen->tableView();
        EXPECT_TRUE(testsupport::waitUntil([table] { return table->contentOffset() == table->minimumContentOffset(); }));
        table->layoutIfNeeded();
        return screen;
    }

    Window small{kSmallPhone};
};

TEST_F(TopicScrollTest, aDragThatBeginsOnTheTopicBodyScrollsTheList)
{
    auto screen = openLoaded();
    TableView *table = screen->tableView();
    const qreal restingTop = table->contentOffset().y();
    TextView *body = screen->headV()->content();
    testsupport::Pointer person(table);
    const QPoint onBody = person.inWindow(QPoint(40, 20), body);
    QWidget *hit = person.widgetAt(onBody);
    ASSERT_TRUE(hit == body || body->isAncestorOf(hit));

    // Typing a reply; dragging the list ends editing.
    screen->textlabelAction();
    ASSERT_TRUE(screen->replyTextView()->isFirstResponder());
    person.drag(onBody, QPoint(0, -150));
    EXPECT_TRUE(testsupport::waitUntil([&] { return !table->isDecelerating(); }));
    EXPECT_EQ(table->contentOffset().y(), restingTop + 150);
    EXPECT_FALSE(body->isFirstResponder());
    EXPECT_FALSE(screen->replyTextView()->isFirstResponder());
}

TEST_F(TopicScrollTest, theWheelScrollsTheListAndPullingPastTheTopReloads)
{
    auto screen = openLoaded();
    TableView *table = screen->tableView();
    const qreal restingTop = table->contentOffset().y();
    testsupport::Pointer person(table);
    const QPoint onList = person.inWindow(QPoint(100, 300), table->viewport());

    person.wheel(onList, QPoint(0, -120));
    EXPECT_EQ(table->contentOffset().y(), restingTop + 40);
    person.wheel(onList, QPoint(0, 120));
    EXPECT_EQ(table->contentOffset().y(), restingTop);
    QTest::qWait(ScrollView::kWheelStrokeEndMs + 50);

    const int detailsBefore = requestCount(s_server->log(), "TopicDetail");
    for (int notch = 0; notch < 3; ++notch)
        person.wheel(onList, QPoint(0, 120));
    ASSERT_TRUE(testsupport::waitUntil([&] { return screen->tableView()->header()->isRefreshing(); }));
    ASSERT_TRUE(waitUntilLoaded(screen));
    EXPECT_EQ(requestCount(s_server->log(), "TopicDetail"), detailsBefore + 1);
    EXPECT_TRUE(testsupport::waitUntil([&] { return table->contentOffset().y() == restingTop; }));
}

} // namespace
