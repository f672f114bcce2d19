// The topic's views laid out from records.

#include "FieldValue.h"
#include "HeadView.h"
#include "HostCell.h"
#include "HostContentCell.h"
#include "JsonChangDic.h"
#include "Label.h"
#include "MainScreen.h"
#include "TextView.h"

#include <gtest/gtest.h>

#include <QJsonObject>

TEST(HeadView, TitleKeepsOneLineWhileThePosterMayWrap)
{
    HeadView head(QRectF(0, 0, MainScreen::width(), 300));
    head.getModel(PostModel::fromJson(QJsonObject{
        {QStringLiteral("title"), QStringLiteral("一个非常非常长的标题，长到一行肯定放不下，需要第二行第三行才能显示完整")},
        {QStringLiteral("username"), QStringLiteral("风之旅人")},
        {QStringLiteral("time"), QStringLiteral("2025-06-11 01:38:00")},
        {QStringLiteral("topiccontent"), QStringLiteral("正文")}}));
    EXPECT_EQ(head.title()->numberOfLines(), 1);
    EXPECT_EQ(head.title()->lineBreakMode(), LineBreakMode::ByCharWrapping);
    EXPECT_EQ(head.title()->displayedLines().size(), 1);
    EXPECT_EQ(head.user()->numberOfLines(), 0);
    EXPECT_EQ(head.user()->text(), QStringLiteral("风之旅人"));
    EXPECT_EQ(head.content()->text(), QStringLiteral("正文"));
}

TEST(HeadView, LaysOutTitleMetaAndBodyFromItsHeight)
{
    const qreal width = MainScreen::width();
    HeadView head(QRectF(0, 0, width, 300));
    const QRectF title = head.title()->frame();
    const QRectF user = head.user()->frame();
    const QRectF time = head.time()->frame();
    const QRectF content = head.content()->frame();
    EXPECT_EQ(title.topLeft(), QPointF(15, 20));
    EXPECT_EQ(title.width(), width - 30);
    EXPECT_DOUBLE_EQ(user.top(), title.bottom() + 20);
    EXPECT_EQ(user.size(), QSizeF(75, 12));
    EXPECT_DOUBLE_EQ(time.left(), user.right() + 14);
    EXPECT_DOUBLE_EQ(time.right(), width - 15);
    EXPECT_DOUBLE_EQ(content.top(), user.bottom() + 20);
    EXPECT_DOUBLE_EQ(content.bottom(), 300 - 20);
    // The body is read-only: it never starts editing.
    EXPECT_FALSE(head.content()->becomeFirstResponder());
}

TEST(HostCell, ALongReplyShowsTwoLinesInAFrameAsTallAsItsText)
{
    HostCell cell(QStringLiteral("cell1"));
    const QString fiveLines = QStringLiteral("第一行\n第二行\n第三行\n第四行\n第五行");
    cell.getModel(ReplyListModel::fromJson(QJsonObject{{QStringLiteral("username"), QStringLiteral("路人甲")},
                                                       {QStringLiteral("content"), fiveLines}}));
    EXPECT_DOUBLE_EQ(cell.content()->frame().height(), JsonChangDic::adaptiveWithText(fiveLines));
    EXPECT_EQ(cell.content()->frame().topLeft(), QPointF(35, 44));
    EXPECT_EQ(cell.content()->displayedLines().size(), 2);
    EXPECT_EQ(cell.user()->text(), QStringLiteral("路人甲"));
    // No timeformat: an empty time label.
    EXPECT_EQ(cell.time()->text(), QString());
}

TEST(HostContentCell, BlueAlwaysClampsToFull)
{
    for (int i = 0; i < 200; ++i) {
        const QColor colour = HostContentCell::randomBackgroundColor();
        ASSERT_EQ(colour.blueF(), 1.0f);
        ASSERT_GE(colour.red(), 80);
        ASSERT_LE(colour.red(), 104);
        ASSERT_GE(colour.green(), 70);
        ASSERT_LE(colour.green(), 117);
    }
    HostContentCell cell(QStringLiteral("content"));
    EXPECT_EQ(cell.title()->frame(), QRectF(15, 20, MainScreen::width() - 30, 60));
    EXPECT_EQ(cell.content()->frame(), QRectF(15, 131, MainScreen::width() - 30, 300));
}
