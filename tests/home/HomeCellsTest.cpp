// The home screen's board rows laid out from records, on two phone screens.

#include "Fonts.h"
#include "ImageView.h"
#include "Label.h"
#include "MainCell.h"
#include "MainView.h"
#include "Window.h"

#include <gtest/gtest.h>

#include <QJsonObject>

#include <string>

namespace {

const QColor kYellow(0xff, 0xdf, 0x00);
const QColor kTitle(0x2c, 0x32, 0x39);
// The platform's light grey: white level 2/3.
const QColor kLightGray(0xaa, 0xaa, 0xaa);
const QColor kLine(0xf3, 0xf3, 0xf3);
const QString kIconURL = QStringLiteral("http://127.0.0.1:9/i.png");

ListModel board(const QJsonObject &fields)
{
    return ListModel::fromJson(fields);
}

ListModel fullBoard()
{
    return board(QJsonObject{{QStringLiteral("sectionname"), QStringLiteral("新手村")},
                             {QStringLiteral("sectiontopic"), 1234},
                             {QStringLiteral("sectionico"), kIconURL}});
}

// Each case runs on a shown window of the screen's size, which sets the main screen.
class HomeCells : public ::testing::TestWithParam<QSize>
{
protected:
    HomeCells() : window(GetParam()) { window.show(); }
    qreal W() const { return GetParam().width(); }
    MainCell *shownCell()
    {
        auto *cell = new MainCell(QStringLiteral("cell"));
        window.addSubview(cell);
        cell->setFrame(QRectF(0, 0, W(), 89));
        return cell;
    }

    Window window;
};

INSTANTIATE_TEST_SUITE_P(Screens, HomeCells, ::testing::Values(QSize(375, 667), QSize(320, 568)),
                         [](const ::testing::TestParamInfo<QSize> &info) {
                             return std::to_string(info.param.width()) + "x" + std::to_string(info.param.height());
                         });

TEST_P(HomeCells, RowHoldsOneFixedWidthViewWithIconTextsAndHairline)
{
    MainCell *cell = shownCell();
    MainView *view = cell->mainView();
    EXPECT_EQ(cell->reuseIdentifier(), QStringLiteral("cell"));
    EXPECT_EQ(view->parentWidget(), cell->contentView());
    EXPECT_EQ(view->frame(), QRectF(0, 0, 375, 89));
    EXPECT_EQ(view->children(),
              (QObjectList{view->icon(), view->title(), view->topic(), view->lineView()}));

    EXPECT_EQ(view->icon()->frame(), QRectF(14, 14, 64, 64));
    EXPECT_EQ(view->title()->frame(), QRectF(92, 28, 140, 18));
    EXPECT_EQ(view->topic()->frame(), QRectF(92, 53, 140, 13));
    EXPECT_EQ(view->lineView()->frame(), QRectF(0, 92, W(), 0.3));

    EXPECT_EQ(view->icon()->backgroundColor(), kYellow);
    EXPECT_EQ(view->title()->textColor(), kTitle);
    EXPECT_EQ(view->title()->font(), Fonts::systemFontOfSize(18));
    EXPECT_EQ(view->topic()->textColor(), kLightGray);
    EXPECT_EQ(view->topic()->font(), Fonts::systemFontOfSize(13));
    EXPECT_EQ(view->lineView()->backgroundColor(), kLine);
}

TEST_P(HomeCells, BoardFillsNameCountAndIcon)
{
    MainCell *cell = shownCell();
    cell->getModel(fullBoard());
    EXPECT_EQ(cell->mainView()->title()->text(), QStringLiteral("新手村"));
    EXPECT_EQ(cell->mainView()->topic()->text(), QStringLiteral("1234个话题"));
    EXPECT_EQ(cell->mainView()->icon()->imageURL(), QUrl(kIconURL));
    // No placeholder: the yellow background shows while the picture loads.
    EXPECT_TRUE(cell->mainView()->icon()->image().isNull());
}

TEST_P(HomeCells, BoardWithoutIconOrCountKeepsTheYellowSquareAndFormatsTheAbsentCount)
{
    MainCell *cell = shownCell();
    cell->getModel(fullBoard());
    // Reused for a bare board: no picture and no address of the last one stay.
    cell->getModel(board(QJsonObject{{QStringLiteral("sectionname"), QStringLiteral("灌水区")}}));
    ImageView *icon = cell->mainView()->icon();
    EXPECT_TRUE(icon->imageURL().isEmpty());
    EXPECT_TRUE(icon->image().isNull());
    EXPECT_EQ(icon->backgroundColor(), kYellow);
    EXPECT_EQ(cell->mainView()->title()->text(), QStringLiteral("灌水区"));
    EXPECT_EQ(cell->mainView()->topic()->text(), QStringLiteral("(null)个话题"));

    cell->getModel(board(QJsonObject{{QStringLiteral("sectiontopic"), QStringLiteral("12")}}));
    EXPECT_EQ(cell->mainView()->topic()->text(), QStringLiteral("12个话题"));
    EXPECT_EQ(cell->mainView()->title()->text(), QString());
}

TEST_P(HomeCells, EmptyIconIsARoundedYellowSquare)
{
    MainCell *cell = shownCell();
    const QImage drawn = cell->mainView()->icon()->grab().toImage();
    EXPECT_EQ(drawn.pixelColor(32, 32), kYellow);
    EXPECT_NE(drawn.pixelColor(0, 0), kYellow);
}

TEST_P(HomeCells, HairlineLiesBelowTheRow)
{
    MainView *view = shownCell()->mainView();
    EXPECT_GT(view->lineView()->frame().top(), view->frame().height());
    EXPECT_FALSE(view->bounds().intersects(view->lineView()->frame()));
}

} // namespace
