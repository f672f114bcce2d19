// Scrolling as a person does it with a pointer: drags that begin on children, taps that still
// reach them, nested scroll views and axis lock, paging by release speed, the wheel and keys,
// and tables laying out once when control returns to the event loop.
#include "KitTestSupport.h"

#include "Button.h"
#include "EventLoop.h"
#include "Pointer.h"
#include "RefreshFooter.h"
#include "RefreshHeader.h"
#include "ScrollGestureArbiter.h"
#include "ScrollViewDelegate.h"
#include "TableView.h"
#include "TableViewCell.h"
#include "TableViewDataSource.h"
#include "TableViewDelegate.h"
#include "TapGestureRecognizer.h"
#include "TextView.h"

#include <QKeyEvent>
#include <QPlainTextEdit>

#include <gtest/gtest.h>

#include <algorithm>

namespace {

constexpr int kRows = 30;
constexpr qreal kRowHeight = 44;
constexpr qreal kPage = 375;
constexpr int kPages = 4;

// Plain rows that remember which rows the table asked cells for.
class Rows : public TableViewDataSource, public TableViewDelegate
{
public:
    int rows = kRows;
    std::vector<int> askedRows;
    std::vector<QString> calls;
    std::vector<qreal> deceleratedTo;

    int numberOfSectionsInTableView(TableView *) override { return 1; }
    int numberOfRowsInSection(TableView *, int) override { return rows; }
    TableViewCell *cellForRowAtIndexPath(TableView *table, const IndexPath &path) override
    {
        askedRows.push_back(path.row);
        return table->dequeueReusableCellWithIdentifier("cell", path);
    }
    qreal heightForRowAtIndexPath(TableView *, const IndexPath &) override { return kRowHeight; }
    void scrollViewWillBeginDragging(ScrollView *) override { calls.push_back("willBegin"); }
    void scrollViewDidEndDragging(ScrollView *, bool decelerate) override
    {
        calls.push_back(decelerate ? "endDragging+decelerate" : "endDragging");
    }
    void scrollViewDidEndDecelerating(ScrollView *scrollView) override
    {
        calls.push_back("endDecelerating");
        deceleratedTo.push_back(scrollView->contentOffset().x());
    }
};

// A table whose header holds a button, a text view, a tap area and a horizontal pager.
class ScrollGestureTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        window = kittest::shownWindow();
        table = new TableView(QRectF(0, 0, 375, 667));
        table->registerClass<TableViewCell>("cell");
        table->setDataSource(&rows);
        table->setDelegate(&rows);
        auto *header = new View(QRectF(0, 0, 375, 450));
        button = new Button(QRectF(10, 10, 100, 40));
        button->setTitle("按钮");
        QObject::connect(button, &Button::touchUpInside, [this] { ++buttonTaps; });
        header->addSubview(button);
        textView = new TextView(QRectF(10, 60, 300, 80));
        textView->setText("正文");
        header->addSubview(textView);
        tapArea = new View(QRectF(10, 150, 100, 40));
        new TapGestureRecognizer(tapArea, [this](TapGestureRecognizer *) { ++areaTaps; });
        header->addSubview(tapArea);
        pager = new ScrollView(QRectF(0, 250, 375, 150));
        pager->setPagingEnabled(true);
        pager->setContentSize(QSizeF(kPage * kPages, 150));
        pager->setDelegate(&pagerCalls);
        header->addSubview(pager);
        table->setTableHeaderView(header);
        window->addSubview(table);
        table->layoutIfNeeded();
    }

    QPoint at(QWidget *widget, QPoint local = QPoint(20, 20)) const { return pointer().inWindow(local, widget); }
    testsupport::Pointer pointer() const { return testsupport::Pointer(window.get()); }
    qreal tableY() const { return table->contentOffset().y(); }

    std::unique_ptr<Window> window;
    Rows rows;
    Rows pagerCalls;
    TableView *table = nullptr;
    Button *button = nullptr;
    TextView *textView = nullptr;
    View *tapArea = nullptr;
    ScrollView *pager = nullptr;
    int buttonTaps = 0;
    int areaTaps = 0;
};

TEST_F(ScrollGestureTest, dragsThatBeginOnChildrenScrollTheListAndCancelTheChild)
{
    testsupport::Pointer person = pointer();
    for (QWidget *child : {static_cast<QWidget *>(button), static_cast<QWidget *>(textView),
                           static_cast<QWidget *>(tapArea)}) {
        table->setContentOffset(QPointF(0, 0));
        table->layoutIfNeeded();
        const QPoint start = at(child);
        ASSERT_TRUE(child->isAncestorOf(person.widgetAt(start)) || person.widgetAt(start) == child);
        person.drag(start, QPoint(0, -120));
        EXPECT_TRUE(testsupport::waitUntil([&] { return !table->isDecelerating(); }));
        EXPECT_EQ(tableY(), 120) << child->metaObject()->className();
    }
    EXPECT_EQ(buttonTaps, 0);
    EXPECT_FALSE(button->isHighlighted());
    EXPECT_EQ(areaTaps, 0);
    EXPECT_FALSE(textView->isFirstResponder());
}

TEST_F(ScrollGestureTest, aPressThatStaysWithinTheSlopStillReachesTheChild)
{
    testsupport::Pointer person = pointer();
    person.tap(at(button));
    EXPECT_EQ(buttonTaps, 1);
    person.tap(at(tapArea));
    EXPECT_EQ(areaTaps, 1);
    // Wobbling less than the slop is still a tap.
    person.press(at(button));
    person.moveTo(at(button) + QPoint(int(ScrollGestureArbiter::kTouchSlop) - 3, 4), 30);
    person.release(30);
    EXPECT_EQ(buttonTaps, 2);
    EXPECT_EQ(tableY(), 0);
    person.tap(at(textView));
    EXPECT_TRUE(textView->isFirstResponder());
}

TEST_F(ScrollGestureTest, theDelegateHearsOfTheDragInOrder)
{
    pointer().drag(at(button), QPoint(0, -100));
    EXPECT_EQ(rows.calls, (std::vector<QString>{"willBegin", "endDragging"}));
    rows.calls.clear();
    // Pulled past the top and let go, it bounces back.
    table->setContentOffset(QPointF(0, 0));
    table->layoutIfNeeded();
    pointer().drag(at(button), QPoint(0, 100));
    EXPECT_EQ(tableY(), -50);
    EXPECT_TRUE(testsupport::waitUntil([&] { return rows.calls.size() == 3; }));
    EXPECT_EQ(rows.calls, (std::vector<QString>{"willBegin", "endDragging+decelerate", "endDecelerating"}));
    EXPECT_EQ(tableY(), 0);
}

TEST_F(ScrollGestureTest, aFlickGlidesOnAndAPressOnMovingContentOnlyStopsIt)
{
    // 200 points in 40 ms glides on well past where the pointer let go.
    pointer().flick(at(button), QPoint(0, -200));
    EXPECT_TRUE(table->isDecelerating());
    QTest::qWait(50);
    // A tap on a row of the moving list stops it and selects nothing.
    pointer().tap(at(table->viewport(), QPoint(200, 600)));
    EXPECT_FALSE(table->isDecelerating());
    const qreal stoppedAt = tableY();
    EXPECT_GT(stoppedAt, 200);
    QTest::qWait(100);
    EXPECT_EQ(tableY(), stoppedAt);
    EXPECT_FALSE(table->indexPathForSelectedRow().has_value());
}

TEST_F(ScrollGestureTest, contentStoppedOutOfPlaceSettlesWhenThePressEnds)
{
    testsupport::Pointer person = pointer();
    // Stopped while bouncing back from past the top: it goes back to the top.
    person.drag(at(button), QPoint(0, 200));
    QTest::qWait(40);
    person.tap(at(table->viewport(), QPoint(200, 600)));
    EXPECT_TRUE(testsupport::waitUntil([&] { return tableY() == 0 && !table->isDecelerating(); }));
    // Stopped between pages: it settles on the nearest.
    const QPoint onPager = at(pager->viewport(), QPoint(300, 75));
    person.flick(onPager, QPoint(-100, 0));
    QTest::qWait(30);
    person.tap(onPager);
    ASSERT_TRUE(testsupport::waitUntil([&] { return !pager->isDecelerating() && pagerCalls.deceleratedTo.size() == 1; }));
    const qreal x = pager->contentOffset().x();
    EXPECT_TRUE(x == 0 || x == kPage) << x;
}

TEST_F(ScrollGestureTest, aGlideOverContentThatShrankStopsAtTheNewEnd)
{
    pointer().flick(at(button), QPoint(0, -200));
    ASSERT_TRUE(table->isDecelerating());
    rows.rows = 2;
    table->reloadData();
    EXPECT_TRUE(testsupport::waitUntil([&] { return !table->isDecelerating(); }));
    EXPECT_EQ(tableY(), table->maximumContentOffset().y());
    EXPECT_EQ(tableY(), 0);
}

TEST_F(ScrollGestureTest, aPointerThatLetGoUnseenEndsTheDragAndNothingMovesOnHover)
{
    testsupport::Pointer person = pointer();
    const QPoint start = at(button);
    person.press(start);
    person.moveTo(start - QPoint(0, 30), 20);
    ASSERT_TRUE(table->isDragging());
    // The release went elsewhere: the next move comes with no button held.
    QTest::mouseMove(window->windowHandle(), start - QPoint(0, 40), 200);
    QTestPrivate::qtestMouseButtons = Qt::NoButton;
    QTest::mouseMove(window->windowHandle(), start - QPoint(0, 130), 20);
    EXPECT_FALSE(table->isDragging());
    EXPECT_TRUE(testsupport::waitUntil([&] { return !table->isDecelerating(); }));
    EXPECT_EQ(tableY(), 40);
    // And the next tap is a tap.
    table->setContentOffset(QPointF(0, 0));
    table->layoutIfNeeded();
    person.tap(at(button));
    EXPECT_EQ(buttonTaps, 1);
}

TEST_F(ScrollGestureTest, aDoubleClickInsideTheListReachesTheChildWhole)
{
    textView->setEditable(false);
    textView->setText(QStringLiteral("hello world"));
    QWindow *handle = window->windowHandle();
    const QPoint onWord = at(textView, QPoint(12, 12));
    QTest::mouseDClick(handle, Qt::LeftButton, {}, onWord);
    EXPECT_EQ(textView->inputWidget()->textCursor().selectedText(), QStringLiteral("hello"));
    QTest::mouseDClick(handle, Qt::LeftButton, {}, at(button));
    EXPECT_EQ(buttonTaps, 2);
}

TEST_F(ScrollGestureTest, aPauseBeforeLettingGoLeavesNoGlide)
{
    testsupport::Pointer person = pointer();
    const QPoint start = at(button);
    person.press(start);
    for (int i = 1; i <= 5; ++i)
        person.moveTo(start - QPoint(0, 40 * i), testsupport::Pointer::kFlickStepMs);
    person.release(60);
    EXPECT_FALSE(table->isDecelerating());
    EXPECT_EQ(tableY(), 200);
}

TEST_F(ScrollGestureTest, pagesCountFromTheInsetAndAWheelStrokeTurnsOne)
{
    pager->setContentInset(EdgeInsets{0, 20, 0, 0});
    pager->setContentOffset(QPointF(-20, 0));
    testsupport::Pointer person = pointer();
    const QPoint onPager = at(pager->viewport(), QPoint(300, 75));
    person.drag(onPager, QPoint(-30, 0));
    ASSERT_TRUE(testsupport::waitUntil([&] { return pagerCalls.deceleratedTo.size() == 1; }));
    EXPECT_EQ(pager->contentOffset().x(), -20);

    person.wheel(onPager, QPoint(-120, 0));
    ASSERT_TRUE(testsupport::waitUntil([&] { return pagerCalls.deceleratedTo.size() == 2; }));
    EXPECT_EQ(pager->contentOffset().x(), kPage - 20);
}

TEST_F(ScrollGestureTest, anOpenPopupKeepsThePressesItCloses)
{
    QWidget popup(nullptr, Qt::Popup);
    popup.resize(50, 50);
    popup.show();
    ASSERT_EQ(QApplication::activePopupWidget(), &popup);
    QTest::mousePress(window->windowHandle(), Qt::LeftButton, {}, at(button));
    for (int i = 1; i <= 5; ++i)
        QTest::mouseMove(window->windowHandle(), at(button) - QPoint(0, 20 * i), 20);
    QTest::mouseRelease(window->windowHandle(), Qt::LeftButton, {}, at(button) - QPoint(0, 100), 20);
    EXPECT_EQ(tableY(), 0);
}

TEST_F(ScrollGestureTest, aQuickFlickTurnsThePageAndASlowDragSettlesOnTheNearest)
{
    testsupport::Pointer person = pointer();
    const QPoint onPager = at(pager->viewport(), QPoint(300, 75));
    // 100 points in 40 ms: well under half a page, but quick.
    person.flick(onPager, QPoint(-100, 0));
    ASSERT_TRUE(testsupport::waitUntil([&] { return pagerCalls.deceleratedTo.size() == 1; }));
    EXPECT_EQ(pagerCalls.deceleratedTo, std::vector<qreal>{kPage});
    EXPECT_EQ(pager->contentOffset(), QPointF(kPage, 0));

    person.drag(onPager, QPoint(-100, 0));
    ASSERT_TRUE(testsupport::waitUntil([&] { return pagerCalls.deceleratedTo.size() == 2; }));
    EXPECT_EQ(pagerCalls.deceleratedTo.back(), kPage);
    person.drag(onPager, QPoint(-250, 0));
    ASSERT_TRUE(testsupport::waitUntil([&] { return pagerCalls.deceleratedTo.size() == 3; }));
    EXPECT_EQ(pagerCalls.deceleratedTo.back(), 2 * kPage);
    // Back one page with a quick flick the other way, and never past the last page.
    person.flick(onPager - QPoint(200, 0), QPoint(80, 0));
    ASSERT_TRUE(testsupport::waitUntil([&] { return pagerCalls.deceleratedTo.size() == 4; }));
    EXPECT_EQ(pagerCalls.deceleratedTo.back(), kPage);
    pager->setContentOffset(QPointF(kPage * (kPages - 1), 0));
    person.flick(onPager, QPoint(-100, 0));
    ASSERT_TRUE(testsupport::waitUntil([&] { return pagerCalls.deceleratedTo.size() == 5; }));
    EXPECT_EQ(pagerCalls.deceleratedTo.back(), kPage * (kPages - 1));
    EXPECT_EQ(tableY(), 0);
}

TEST_F(ScrollGestureTest, nestedViewsShareDragsByDirectionAndDiagonalsLockToTheMainOne)
{
    testsupport::Pointer person = pointer();
    const QPoint onPager = at(pager->viewport(), QPoint(200, 75));
    // Vertical on the pager: the list scrolls and the pager stays.
    person.drag(onPager, QPoint(0, -120));
    EXPECT_EQ(tableY(), 120);
    EXPECT_EQ(pager->contentOffset(), QPointF(0, 0));

    // Mostly sideways on the pager: the pager alone moves, and only sideways.
    table->setContentOffset(QPointF(0, 0));
    table->layoutIfNeeded();
    person.press(onPager);
    person.moveTo(onPager + QPoint(-60, -40), 20);
    person.moveTo(onPager + QPoint(-120, -80), 20);
    EXPECT_EQ(pager->contentOffset(), QPointF(120, 0));
    EXPECT_EQ(tableY(), 0);
    person.release(200);

    // Mostly down the list from a button: the list moves, never sideways.
    ASSERT_TRUE(testsupport::waitUntil([&] { return !pager->isDecelerating(); }));
    person.drag(at(button), QPoint(30, -100));
    EXPECT_EQ(table->contentOffset(), QPointF(0, 100));
}

TEST_F(ScrollGestureTest, contentWithoutVerticalExtentStaysUnlessToldToBounce)
{
    ScrollView *strip = new ScrollView(QRectF(0, 0, 375, 300));
    strip->setContentSize(QSizeF(375, 100));
    window->addSubview(strip);
    testsupport::Pointer person = pointer();
    const QPoint inside = at(strip->viewport(), QPoint(100, 100));

    person.press(inside);
    person.moveTo(inside + QPoint(0, 80), 20);
    EXPECT_EQ(strip->contentOffset(), QPointF(0, 0));
    person.release(200);
    EXPECT_FALSE(strip->isDecelerating());

    strip->setAlwaysBounceVertical(true);
    person.press(inside);
    person.moveTo(inside + QPoint(0, 80), 20);
    EXPECT_EQ(strip->contentOffset(), QPointF(0, -40));
    person.release(200);
    EXPECT_TRUE(testsupport::waitUntil([&] { return strip->contentOffset() == QPointF(0, 0); }));
}

TEST_F(ScrollGestureTest, theWheelScrollsAndPullsTheRefreshControlsPastTheEdgesItStartsAt)
{
    int refreshes = 0;
    int loads = 0;
    table->setHeader(new RefreshHeader([&] { ++refreshes; }));
    table->setFooter(new RefreshFooter([&] { ++loads; }));
    testsupport::Pointer person = pointer();
    const QPoint onList = at(table->viewport(), QPoint(200, 600));

    person.wheel(onList, QPoint(0, -120));
    EXPECT_EQ(tableY(), 40);
    person.wheel(onList, QPoint(0, 0), QPoint(0, 15));
    EXPECT_EQ(tableY(), 25);
    QTest::qWait(ScrollView::kWheelStrokeEndMs + 50);

    // From 25 a long stroke up stops at the top: it did not start there.
    for (int i = 0; i < 6; ++i)
        person.wheel(onList, QPoint(0, 120));
    EXPECT_EQ(tableY(), 0);
    QTest::qWait(ScrollView::kWheelStrokeEndMs + RefreshControl::kSlideInMs);
    EXPECT_EQ(refreshes, 0);

    // Resting at the top, three notches pull the header 60 points: it refreshes.
    for (int i = 0; i < 3; ++i)
        person.wheel(onList, QPoint(0, 120));
    EXPECT_EQ(tableY(), -60);
    EXPECT_EQ(table->header()->state(), RefreshControl::State::Pulling);
    ASSERT_TRUE(testsupport::waitUntil([&] { return refreshes == 1; }));
    EXPECT_TRUE(testsupport::waitUntil([&] { return tableY() == -RefreshHeader::kHeight; }));
    table->header()->endRefreshing();
    EXPECT_TRUE(testsupport::waitUntil([&] { return tableY() == 0; }));

    // A touchpad stroke past the bottom loads more.
    table->setContentOffset(table->maximumContentOffset());
    table->layoutIfNeeded();
    person.wheel(onList, {}, QPoint(0, 0), Qt::ScrollBegin);
    person.wheel(onList, {}, QPoint(0, -60), Qt::ScrollUpdate);
    person.wheel(onList, {}, QPoint(0, -60), Qt::ScrollUpdate);
    EXPECT_EQ(tableY(), table->maximumContentOffset().y() + 60);
    EXPECT_EQ(table->footer()->state(), RefreshControl::State::Pulling);
    // The touchpad's empty closing event ends the stroke at once.
    person.wheel(onList, {}, QPoint(0, 0), Qt::ScrollEnd);
    EXPECT_FALSE(table->isDragging());
    EXPECT_TRUE(table->footer()->isRefreshing());
    EXPECT_TRUE(testsupport::waitUntil([&] { return loads == 1; }));
}

TEST_F(ScrollGestureTest, aVerticalWheelOverTheSidewaysPagerScrollsTheList)
{
    pointer().wheel(at(pager->viewport(), QPoint(100, 75)), QPoint(0, -240));
    EXPECT_EQ(tableY(), 80);
    EXPECT_EQ(pager->contentOffset(), QPointF(0, 0));
    pointer().wheel(at(pager->viewport(), QPoint(100, 75)), QPoint(-120, 0));
    EXPECT_EQ(pager->contentOffset(), QPointF(40, 0));
}

TEST_F(ScrollGestureTest, pageKeysHomeAndEndScrollTheFocusedList)
{
    // A touch on the list while nothing has focus gives it the keys.
    pointer().tap(at(table->viewport(), QPoint(200, 600)));
    ASSERT_TRUE(table->hasFocus());
    const qreal page = 667 - 40;
    QWindow *keys = window->windowHandle();
    QTest::keyClick(keys, Qt::Key_PageDown);
    EXPECT_TRUE(testsupport::waitUntil([&] { return tableY() == page; }));
    QTest::keyClick(keys, Qt::Key_End);
    EXPECT_TRUE(testsupport::waitUntil([&] { return tableY() == table->maximumContentOffset().y(); }));
    EXPECT_EQ(table->maximumContentOffset().y(), 450 + kRows * kRowHeight - 667);
    QTest::keyClick(keys, Qt::Key_Home);
    EXPECT_TRUE(testsupport::waitUntil([&] { return tableY() == 0; }));
}

TEST_F(ScrollGestureTest, aTableLaysOutOnceAfterTheHandlerSoEmptiedDataIsNeverAskedFor)
{
    table->setContentOffset(QPointF(0, 600));
    table->layoutIfNeeded();
    ASSERT_FALSE(rows.askedRows.empty());
    rows.askedRows.clear();

    // One handler: the data goes, the table shrinks and scrolls, and only then reloads.
    rows.rows = 2;
    table->setFrame(QRectF(0, 0, 375, 300));
    table->setContentOffset(QPointF(0, 700));
    EXPECT_TRUE(rows.askedRows.empty());
    table->reloadData();
    EXPECT_TRUE(rows.askedRows.empty());
    QCoreApplication::processEvents();
    EXPECT_TRUE(std::all_of(rows.askedRows.begin(), rows.askedRows.end(), [](int row) { return row < 2; }));
    EXPECT_EQ(table->visibleCells().size(), 2);
}

} // namespace
