// Table layout, cell reuse and the calls a table makes to its data source and delegate.
#include "KitTestSupport.h"

#include "EventLoop.h"
#include "Label.h"
#include "TableView.h"
#include "TableViewCell.h"
#include "TableViewDataSource.h"
#include "TableViewDelegate.h"

#include <gtest/gtest.h>

#include <QPointer>

namespace {

class NumberCell : public TableViewCell
{
public:
    explicit NumberCell(const QString &identifier) : TableViewCell(identifier), label(new Label(contentView()))
    {
        ++made;
    }
    Label *label;
    static inline int made = 0;
};

// Sections of rows with the given heights; each cell shows "section:row".
class RowsSource : public TableViewDataSource, public TableViewDelegate
{
public:
    std::vector<std::vector<qreal>> rows;
    qreal headerHeight = 0;
    qreal footerHeight = 0;
    int heightQuestions = 0;
    int headerViewsMade = 0;
    std::vector<IndexPath> selected;
    std::vector<bool> endDrags;
    int beginDrags = 0;

    int numberOfSectionsInTableView(TableView *) override { return int(rows.size()); }
    int numberOfRowsInSection(TableView *, int section) override { return int(rows[section].size()); }
    TableViewCell *cellForRowAtIndexPath(TableView *table, const IndexPath &path) override
    {
        auto *cell = static_cast<NumberCell *>(table->dequeueReusableCellWithIdentifier("n", path));
        cell->label->setText(QStringLiteral("%1:%2").arg(path.section).arg(path.row));
        return cell;
    }
    qreal heightForRowAtIndexPath(TableView *, const IndexPath &path) override
    {
        ++heightQuestions;
        return rows[path.section][path.row];
    }
    qreal heightForHeaderInSection(TableView *, int) override { return headerHeight; }
    qreal heightForFooterInSection(TableView *, int) override { return footerHeight; }
    QWidget *viewForHeaderInSection(TableView *, int section) override
    {
        ++headerViewsMade;
        auto *header = new Label();
        header->setText(QStringLiteral("header %1").arg(section));
        return header;
    }
    void didSelectRowAtIndexPath(TableView *, const IndexPath &path) override { selected.push_back(path); }
    void scrollViewWillBeginDragging(ScrollView *) override { ++beginDrags; }
    void scrollViewDidEndDragging(ScrollView *, bool willDecelerate) override { endDrags.push_back(willDecelerate); }
};

class TableViewTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        NumberCell::made = 0;
        window = kittest::shownWindow();
        table = new TableView(QRectF(0, 0, 375, 667));
        window->addSubview(table);
        table->registerClass<NumberCell>("n");
        table->setDataSource(&source);
        table->setDelegate(&source);
    }

    QString textAt(const IndexPath &path) const
    {
        auto *cell = static_cast<NumberCell *>(table->cellForRowAtIndexPath(path));
        return cell ? cell->label->text() : QString();
    }

    RowsSource source;
    std::unique_ptr<Window> window;
    TableView *table = nullptr;
};

TEST_F(TableViewTest, scrollingOneHundredThousandRowsKeepsAboutAScreenfulOfCells)
{
    source.rows.push_back({});
    for (int i = 0; i < 100000; ++i)
        source.rows[0].push_back(44 + (i % 7) * 23);
    table->reloadData();
    const qreal bottom = table->maximumContentOffset().y();
    ASSERT_GT(bottom, 100000 * 44);
    int mostLive = 0;
    for (qreal y = 0; y <= bottom; y += 997) {
        table->setContentOffset(QPointF(0, y));
        mostLive = qMax(mostLive, table->liveCellCount());
        // Every visible row shows its own record, however often its cell was reused.
        for (const IndexPath &path : table->indexPathsForVisibleRows()) {
            ASSERT_EQ(textAt(path), QStringLiteral("0:%1").arg(path.row));
            ASSERT_EQ(table->cellForRowAtIndexPath(path)->geometry().top(),
                      qFloor(table->rectForRowAtIndexPath(path).top() - y));
        }
    }
    table->setContentOffset(QPointF(0, bottom));
    EXPECT_TRUE(table->indexPathsForVisibleRows().contains(IndexPath{0, 99999}));
    // 667 points hold at most 16 rows of 44; a few more for rows cut at both edges and reuse.
    EXPECT_LE(mostLive, 20);
    EXPECT_LE(NumberCell::made, 20);
    EXPECT_EQ(table->findChildren<NumberCell *>().size(), NumberCell::made);
}

TEST_F(TableViewTest, rowsHeadersAndFootersLieWhereTheDelegateSays)
{
    source.rows = {{30, 40}, {50}, {}};
    source.headerHeight = 46;
    source.footerHeight = 1;
    auto *header = new View(QRectF(0, 0, 375, 100));
    table->setTableHeaderView(header);
    auto *footer = new View(QRectF(0, 0, 375, 60));
    table->setTableFooterView(footer);
    table->setAutomaticTopInset(64);
    table->reloadData();

    EXPECT_EQ(table->contentOffset().y(), -64);
    EXPECT_EQ(table->contentSize().height(), 100 + 3 * 46 + 30 + 40 + 50 + 3 * 1 + 60);
    EXPECT_EQ(table->rectForHeaderInSection(0), QRectF(0, 100, 375, 46));
    EXPECT_EQ(table->rectForRowAtIndexPath({0, 1}), QRectF(0, 176, 375, 40));
    EXPECT_EQ(table->rectForHeaderInSection(1), QRectF(0, 217, 375, 46));
    EXPECT_EQ(table->rectForRowAtIndexPath({1, 0}), QRectF(0, 263, 375, 50));
    EXPECT_EQ(table->rectForHeaderInSection(2), QRectF(0, 314, 375, 46));

    // On screen everything sits 64 points lower, under the bar.
    table->layoutIfNeeded();
    EXPECT_EQ(header->geometry(), QRect(0, 64, 375, 100));
    EXPECT_EQ(table->cellForRowAtIndexPath({0, 0})->geometry(), QRect(0, 64 + 146, 375, 30));
    EXPECT_EQ(table->cellForRowAtIndexPath({1, 0})->geometry(), QRect(0, 64 + 263, 375, 50));
    EXPECT_EQ(table->headerViewForSection(2)->geometry(), QRect(0, 64 + 314, 375, 46));
    EXPECT_EQ(static_cast<Label *>(table->headerViewForSection(1))->text(), "header 1");
    EXPECT_EQ(footer->geometry(), QRect(0, 64 + 361, 375, 60));
    EXPECT_EQ(source.headerViewsMade, 3);
}

TEST_F(TableViewTest, sectionHeaderStaysPinnedWhileItsRowsScrollBeneath)
{
    source.rows = {std::vector<qreal>(30, 50), std::vector<qreal>(30, 50)};
    source.headerHeight = 40;
    table->setAutomaticTopInset(64);
    table->reloadData();
    table->setContentOffset(QPointF(0, 500));
    EXPECT_EQ(table->headerViewForSection(0)->geometry().top(), 64);
    // Near the end of section 0 its header is pushed up by the section's end.
    const qreal section1Top = table->rectForHeaderInSection(1).top();
    table->setContentOffset(QPointF(0, section1Top - 64 - 10));
    EXPECT_EQ(table->headerViewForSection(0)->geometry().top(), 64 + 10 - 40);
    EXPECT_EQ(table->headerViewForSection(1)->geometry().top(), 64 + 10);
}

TEST_F(TableViewTest, replacingTheHeaderViewDeletesTheOldOneAndMovesTheRows)
{
    source.rows = {{44, 44}};
    table->setTableHeaderView(new View(QRectF(0, 0, 375, 100)));
    table->reloadData();
    QPointer<QWidget> old = table->tableHeaderView();
    table->setTableHeaderView(new View(QRectF(0, 0, 375, 250)));
    EXPECT_EQ(old->parentWidget(), nullptr);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(old.isNull());
    EXPECT_EQ(table->rectForRowAtIndexPath({0, 0}).top(), 250);
    EXPECT_EQ(table->cellForRowAtIndexPath({0, 0})->geometry().top(), 250);
}

TEST_F(TableViewTest, reloadAsksEveryHeightAgainAndReusesTheCells)
{
    source.rows = {std::vector<qreal>(100, 44)};
    table->reloadData();
    EXPECT_EQ(source.heightQuestions, 100);
    const int made = NumberCell::made;
    source.rows = {std::vector<qreal>(3, 60)};
    table->reloadData();
    EXPECT_EQ(source.heightQuestions, 103);
    EXPECT_EQ(NumberCell::made, made);
    EXPECT_EQ(table->visibleCells().size(), 3);
    EXPECT_EQ(textAt({0, 2}), "0:2");
    EXPECT_EQ(table->cellForRowAtIndexPath({0, 2})->geometry(), QRect(0, 120, 375, 60));
}

TEST_F(TableViewTest, tappingARowSelectsItAndDraggingReportsTheEndOfTheDrag)
{
    source.rows = {std::vector<qreal>(50, 44)};
    table->reloadData();
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, QPoint(100, 44 * 3 + 10));
    ASSERT_EQ(source.selected.size(), 1u);
    EXPECT_EQ(source.selected[0], (IndexPath{0, 3}));
    EXPECT_EQ(table->indexPathForSelectedRow(), (IndexPath{0, 3}));
    EXPECT_TRUE(table->cellForRowAtIndexPath({0, 3})->isSelected());

    kittest::drag(table, QPoint(100, 400), QPoint(0, -200));
    EXPECT_EQ(source.beginDrags, 1);
    ASSERT_EQ(source.endDrags.size(), 1u);
    EXPECT_FALSE(source.endDrags[0]);
    EXPECT_EQ(table->contentOffset().y(), 200);
    EXPECT_EQ(source.selected.size(), 1u); // a drag is not a tap

    // Dragged past the top, the content bounces back, so it will decelerate.
    kittest::drag(table, QPoint(100, 100), QPoint(0, 400));
    ASSERT_EQ(source.endDrags.size(), 2u);
    EXPECT_TRUE(source.endDrags[1]);
    EXPECT_TRUE(testsupport::waitUntil([&] { return table->contentOffset().y() == 0; }));
}

} // namespace
