// Pull-to-refresh header and footer: states, texts, actions and the room they keep.
#include "KitTestSupport.h"

#include "Button.h"
#include "EventLoop.h"
#include "RefreshFooter.h"
#include "RefreshHeader.h"
#include "TableView.h"
#include "TableViewCell.h"
#include "TableViewDataSource.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

namespace {

class PlainRows : public TableViewDataSource
{
public:
    int rows = 30;
    int numberOfRowsInSection(TableView *, int) override { return rows; }
    TableViewCell *cellForRowAtIndexPath(TableView *table, const IndexPath &) override
    {
        return table->dequeueReusableCellWithIdentifier("cell");
    }
};

class Loader : public QObject
{
public:
    int loads = 0;
    void load() { ++loads; }
};

class RefreshTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        window = kittest::shownWindow();
        table = new TableView(QRectF(0, 0, 375, 600));
        window->addSubview(table);
        table->registerClass<TableViewCell>("cell");
        table->setDataSource(&rows);
        table->reloadData();
    }

    PlainRows rows;
    std::unique_ptr<Window> window;
    TableView *table = nullptr;
};

TEST_F(RefreshTest, beginningShowsAtOnceAndRunsTheActionOnceAfterSlidingIn)
{
    Loader loader;
    auto *header = new RefreshHeader(&loader, &Loader::load);
    table->setHeader(header);
    EXPECT_EQ(header->stateText(), "下拉可以刷新");

    QElapsedTimer clock;
    clock.start();
    header->beginRefreshing();
    // Shown at once; the action waits for the event loop and the slide-in.
    EXPECT_TRUE(header->isRefreshing());
    EXPECT_EQ(header->stateText(), "正在刷新数据中...");
    EXPECT_EQ(table->adjustedContentInset().top, RefreshHeader::kHeight);
    EXPECT_EQ(loader.loads, 0);
    header->beginRefreshing();
    ASSERT_TRUE(testsupport::waitUntil([&] { return loader.loads == 1; }));
    EXPECT_GE(clock.elapsed(), RefreshControl::kSlideInMs);
    QTest::qWait(RefreshControl::kSlideInMs);
    EXPECT_EQ(loader.loads, 1);

    header->endRefreshing();
    EXPECT_EQ(header->state(), RefreshControl::State::Idle);
    EXPECT_EQ(table->adjustedContentInset().top, 0);
    EXPECT_TRUE(testsupport::waitUntil([&] { return table->contentOffset().y() == 0; }));
    header->beginRefreshing();
    EXPECT_TRUE(testsupport::waitUntil([&] { return loader.loads == 2; }));
}

TEST_F(RefreshTest, aControlGoneBeforeItsSlideInEndsRunsNothing)
{
    Loader loader;
    auto *header = new RefreshHeader(&loader, &Loader::load);
    table->setHeader(header);
    header->beginRefreshing();
    table->setHeader(nullptr);
    // Its room goes with it.
    EXPECT_EQ(table->adjustedContentInset().top, 0);
    QTest::qWait(RefreshControl::kSlideInMs + 100);
    EXPECT_EQ(loader.loads, 0);
}

TEST_F(RefreshTest, aBarInsetArrivingLaterKeepsTheRefreshingHeaderInView)
{
    table->setHeader(new RefreshHeader());
    // The inset comes while the header is still sliding into view...
    table->header()->beginRefreshing();
    table->setAutomaticTopInset(64);
    EXPECT_TRUE(testsupport::waitUntil([&] { return table->contentOffset().y() == -64 - RefreshHeader::kHeight; }))
        << table->contentOffset().y();
    EXPECT_EQ(table->header()->geometry().top(), 64);

    // ...or changes once it rests there.
    table->setAutomaticTopInset(20);
    EXPECT_EQ(table->contentOffset().y(), -20 - RefreshHeader::kHeight);
    EXPECT_EQ(table->header()->geometry().top(), 20);

    // Content scrolled down stays where it is.
    table->header()->endRefreshing();
    ASSERT_TRUE(testsupport::waitUntil([&] { return table->contentOffset().y() == -20; }));
    table->setContentOffset(QPointF(0, 300));
    table->setAutomaticTopInset(64);
    EXPECT_EQ(table->contentOffset().y(), 300);
}

TEST_F(RefreshTest, viewsReplacedFromTheirOwnSignalsGoOnceTheSignalIsDone)
{
    // A header that hands over to a new one as it starts refreshing.
    QPointer<RefreshHeader> first = new RefreshHeader();
    table->setHeader(first);
    QObject::connect(first, &RefreshControl::stateChanged, [&] { table->setHeader(new RefreshHeader()); });
    first->beginRefreshing();
    EXPECT_TRUE(first);
    EXPECT_NE(table->header(), first);

    // A header view whose button replaces it.
    QPointer<Button> button = new Button();
    button->setFrame(QRectF(0, 0, 375, 44));
    QObject::connect(button, &Button::touchUpInside, [&] { table->setTableHeaderView(new Button()); });
    table->setTableHeaderView(button);
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_TRUE(button);
    EXPECT_NE(table->tableHeaderView(), button);

    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(first);
    EXPECT_FALSE(button);
}

TEST_F(RefreshTest, targetThatIsGoneIsNotCalled)
{
    auto loader = std::make_unique<Loader>();
    auto *header = new RefreshHeader(loader.get(), &Loader::load);
    table->setHeader(header);
    loader.reset();
    header->beginRefreshing();
    EXPECT_TRUE(header->isRefreshing());
}

TEST_F(RefreshTest, pullingDownFarEnoughAndLettingGoRefreshes)
{
    int refreshes = 0;
    table->setHeader(new RefreshHeader([&] { ++refreshes; }));
    std::vector<RefreshControl::State> states;
    QObject::connect(table->header(), &RefreshControl::stateChanged,
                     [&](RefreshControl::State state) { states.push_back(state); });

    // 60 points of pull at half rate is 30: not enough.
    kittest::drag(table, QPoint(100, 100), QPoint(0, 60));
    EXPECT_EQ(refreshes, 0);
    EXPECT_TRUE(testsupport::waitUntil([&] { return table->contentOffset().y() == 0; }));

    kittest::drag(table, QPoint(100, 100), QPoint(0, 200));
    EXPECT_TRUE(testsupport::waitUntil([&] { return refreshes == 1; }));
    EXPECT_EQ(states, (std::vector{RefreshControl::State::Pulling, RefreshControl::State::Refreshing}));
    // It settles with the header in view.
    EXPECT_TRUE(testsupport::waitUntil([&] { return table->contentOffset().y() == -RefreshHeader::kHeight; }));
    EXPECT_EQ(table->header()->geometry().top(), 0);
}

TEST_F(RefreshTest, pullingUpPastTheLastRowLoadsMore)
{
    int loads = 0;
    auto *footer = new RefreshFooter([&] { ++loads; });
    table->setFooter(footer);
    const qreal bottom = table->maximumContentOffset().y();
    table->setContentOffset(QPointF(0, bottom));
    EXPECT_EQ(footer->geometry().top(), 600); // just below the visible area
    EXPECT_EQ(footer->stateText(), "上拉可以加载更多");

    kittest::drag(table, QPoint(100, 500), QPoint(0, -200));
    EXPECT_EQ(footer->stateText(), "正在加载更多的数据...");
    EXPECT_TRUE(testsupport::waitUntil([&] { return loads == 1; }));
    EXPECT_TRUE(testsupport::waitUntil([&] { return table->contentOffset().y() == bottom + RefreshFooter::kHeight; }));

    footer->endRefreshing();
    EXPECT_EQ(footer->stateText(), "上拉可以加载更多");
    EXPECT_TRUE(testsupport::waitUntil([&] { return table->contentOffset().y() == bottom; }));
}

TEST_F(RefreshTest, footerBelowShortContentSitsAtTheBottomOfTheView)
{
    rows.rows = 2;
    table->reloadData();
    auto *footer = new RefreshFooter();
    table->setFooter(footer);
    EXPECT_EQ(footer->geometry().top(), 600);
    int loads = 0;
    footer->setRefreshingBlock([&] { ++loads; });
    kittest::drag(table, QPoint(100, 500), QPoint(0, -200));
    EXPECT_TRUE(testsupport::waitUntil([&] { return loads == 1; }));
}

} // namespace
