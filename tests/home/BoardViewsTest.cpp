// The board's header card and topic rows laid out from records, on two phone screens.

#include "DetailView.h"
#include "DetailViewDelegate.h"
#include "FirstCell.h"
#include "Fonts.h"
#include "ImageView.h"
#include "JsonChangDic.h"
#include "Label.h"
#include "Pointer.h"
#include "SecondCell.h"
#include "Window.h"

#include <gtest/gtest.h>

#include <QFontMetricsF>
#include <QJsonObject>
#include <QTest>

#include <cmath>
#include <string>
#include <vector>

namespace {

const QColor kWhite(0xff, 0xff, 0xff);
const QColor kYellow(0xff, 0xdf, 0x00);
const QColor kMuted(0xab, 0xac, 0xae);
const QColor kDark(0x2e, 0x33, 0x39);
const QColor kLine(0xf3, 0xf3, 0xf3);

qreal textWidth(const Label *label)
{
    return std::ceil(QFontMetricsF(label->font()).horizontalAdvance(label->text()));
}

PostModel topic(const QString &title, const QString &text, const QString &time = QString())
{
    return PostModel::fromJson(QJsonObject{{QStringLiteral("title"), title},
                                           {QStringLiteral("topiccontent"), text},
                                           {QStringLiteral("username"), QStringLiteral("风之旅人")},
                                           {QStringLiteral("timeformat"), time}});
}

struct RecordingDelegate : DetailViewDelegate {
    void back(int tag) override { tags.push_back(tag); }
    std::vector<int> tags;
};

// Each case runs on a shown window of the screen's size, which sets the main screen.
class BoardViews : public ::testing::TestWithParam<QSize>
{
protected:
    BoardViews() : window(GetParam()) { window.show(); }
    qreal W() const { return GetParam().width(); }
    // Views inside the shown window are laid out as soon as they get a frame.
    template <class V> V *shown(V *view, const QRectF &frame)
    {
        window.addSubview(view);
        view->setFrame(frame);
        return view;
    }

    Window window;
};

INSTANTIATE_TEST_SUITE_P(Screens, BoardViews, ::testing::Values(QSize(375, 667), QSize(320, 568)),
                         [](const ::testing::TestParamInfo<QSize> &info) {
                             return std::to_string(info.param.width()) + "x" + std::to_string(info.param.height());
                         });

TEST_P(BoardViews, HeaderCardPlacesTheBoardFromTheScreenWidth)
{
    DetailView card(QRectF(0, 0, W(), 185));
    card.getModel(ListModel::fromJson(QJsonObject{{QStringLiteral("sectionname"), QStringLiteral("新手村")},
                                                  {QStringLiteral("sectiontopic"), 1234},
                                                  {QStringLiteral("sectiontag"), QStringLiteral("萌新必看")},
                                                  {QStringLiteral("sectionico"), QStringLiteral("http://127.0.0.1:9/i.png")},
                                                  {QStringLiteral("backgroundimg"), QStringLiteral("http://127.0.0.1:9/b.png")}}));
    EXPECT_EQ(card.headImage()->frame(), QRectF(0, 0, W(), 185));
    EXPECT_EQ(card.back()->frame(), QRectF(18, 8, 31, 31));
    EXPECT_EQ(card.submit()->frame(), QRectF(W() - 82, 8, 64, 29));
    EXPECT_EQ(card.icon()->frame(), QRectF(18, 79, 64, 64));
    EXPECT_EQ(card.title()->frame(), QRectF(100, 83, W() - 100, 18));
    EXPECT_EQ(card.topic()->frame(), QRectF(100, 107, textWidth(card.topic()), 13));
    // The fixed word follows right behind the count.
    EXPECT_EQ(card.label()->frame(), QRectF(100 + textWidth(card.topic()), 107, 100, 13));
    EXPECT_EQ(card.content()->frame(), QRectF(100, 126, W() - 100, 13));
    for (QWidget *child : std::initializer_list<QWidget *>{card.back(), card.submit(), card.icon(), card.title(),
                                                           card.topic(), card.label(), card.content()})
        EXPECT_EQ(child->parentWidget(), card.headImage());

    EXPECT_EQ(card.title()->text(), QStringLiteral("新手村"));
    EXPECT_EQ(card.topic()->text(), QStringLiteral("1234个"));
    EXPECT_EQ(card.label()->text(), QStringLiteral("话题"));
    EXPECT_EQ(card.content()->text(), QStringLiteral("萌新必看"));
    for (Label *label : {card.title(), card.label(), card.content()})
        EXPECT_EQ(label->textColor(), kWhite);
    EXPECT_EQ(card.topic()->textColor(), kYellow);
    EXPECT_EQ(card.topic()->font(), Fonts::systemFontOfSize(17));
    EXPECT_EQ(card.icon()->imageURL(), QUrl(QStringLiteral("http://127.0.0.1:9/i.png")));
    EXPECT_EQ(card.headImage()->imageURL(), QUrl(QStringLiteral("http://127.0.0.1:9/b.png")));
}

TEST_P(BoardViews, HeaderCardOfABareBoardShowsNoPictureAndTheCountAsFormatted)
{
    DetailView card(QRectF(0, 0, W(), 185));
    card.getModel(ListModel::fromJson(QJsonObject{{QStringLiteral("sectiontopic"), 7}}));
    EXPECT_TRUE(card.headImage()->image().isNull());
    EXPECT_TRUE(card.headImage()->imageURL().isEmpty());
    EXPECT_EQ(card.topic()->text(), QStringLiteral("7个"));
    const qreal shortCountRight = card.label()->frame().left();
    card.getModel(ListModel::fromJson(QJsonObject{}));
    EXPECT_EQ(card.topic()->text(), QStringLiteral("(null)个"));
    EXPECT_GT(card.label()->frame().left(), shortCountRight);
}

TEST_P(BoardViews, IconCornersAreRounded)
{
    DetailView *card = shown(new DetailView(QRectF(0, 0, W(), 185)), QRectF(0, 0, W(), 185));
    QImage red(64, 64, QImage::Format_ARGB32);
    red.fill(Qt::red);
    card->icon()->setImage(red);
    const QImage drawn = card->icon()->grab().toImage();
    EXPECT_EQ(drawn.pixelColor(32, 32), QColor(Qt::red));
    EXPECT_NE(drawn.pixelColor(0, 0), QColor(Qt::red));
}

TEST_P(BoardViews, InvisibleAreasTakeTapsAndNameTheirTags)
{
    DetailView *card = shown(new DetailView(QRectF(0, 0, W(), 185)), QRectF(0, 0, W(), 185));
    RecordingDelegate delegate;
    card->setDelegate(&delegate);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    EXPECT_TRUE(card->back()->image().isNull());
    EXPECT_TRUE(card->submit()->image().isNull());

    testsupport::Pointer pointer(&window);
    pointer.tap(pointer.inWindow(QPoint(2, 29), card->back()));
    EXPECT_EQ(delegate.tags, std::vector<int>{101});
    pointer.tap(pointer.inWindow(QPoint(61, 2), card->submit()));
    EXPECT_EQ(delegate.tags, (std::vector<int>{101, 102}));

    // Elsewhere on the card (between the areas, the icon, the texts) nothing answers.
    for (QPoint elsewhere : {QPoint(int(W()) / 2, 20), QPoint(50, 110), QPoint(150, 90), QPoint(150, 130)})
        pointer.tap(elsewhere);
    EXPECT_EQ(delegate.tags, (std::vector<int>{101, 102}));
}

TEST_P(BoardViews, PinnedRowShowsItsBadgeAndTitleAboveAHairline)
{
    FirstCell *cell = shown(new FirstCell(QStringLiteral("cell")), QRectF(0, 0, W(), 40));
    cell->getModel(topic(QStringLiteral("版规"), QStringLiteral("正文")));
    EXPECT_EQ(cell->image()->frame(), QRectF(10, 10, 32, 17));
    EXPECT_EQ(cell->image()->imageName(), QStringLiteral("置顶"));
    EXPECT_EQ(cell->label()->frame(), QRectF(52, 10, W() - 74, 18));
    EXPECT_EQ(cell->label()->font(), Fonts::systemFontOfSize(15));
    EXPECT_EQ(cell->label()->text(), QStringLiteral("版规"));
    EXPECT_EQ(cell->lineView()->frame(), QRectF(0, 38.7, W(), 0.3));
    EXPECT_EQ(cell->lineView()->backgroundColor(), kLine);

    // The guide badge the board screen puts in stays through the next record.
    cell->image()->setImageNamed(QStringLiteral("攻略"));
    cell->getModel(topic(QStringLiteral("入门攻略"), QString()));
    EXPECT_EQ(cell->image()->imageName(), QStringLiteral("攻略"));
    EXPECT_FALSE(cell->image()->image().isNull());
    EXPECT_EQ(cell->label()->text(), QStringLiteral("入门攻略"));
}

TEST_P(BoardViews, TopicRowStylesAndRightAlignsItsByline)
{
    SecondCell *cell = shown(new SecondCell(QStringLiteral("cell1")), QRectF(0, 0, W(), 120));
    EXPECT_EQ(cell->title()->frame(), QRectF(10, 20, W() - 40, 18));
    EXPECT_EQ(cell->content()->frame(), QRectF(10, 48, W() - 20, 30));
    cell->getModel(topic(QStringLiteral("标题"), QStringLiteral("一"), QStringLiteral("2025-06-11 01:38")));
    EXPECT_EQ(cell->title()->font(), Fonts::systemFontOfSize(17));
    EXPECT_EQ(cell->content()->font(), Fonts::systemFontOfSize(12));
    EXPECT_EQ(cell->content()->textColor(), kMuted);
    EXPECT_EQ(cell->content()->lineBreakMode(), LineBreakMode::ByCharWrapping);
    EXPECT_EQ(cell->content()->numberOfLines(), 2);
    EXPECT_EQ(cell->user()->font(), Fonts::systemFontOfSize(12));
    EXPECT_EQ(cell->user()->textColor(), kDark);
    EXPECT_EQ(cell->time()->font(), Fonts::systemFontOfSize(11));
    EXPECT_EQ(cell->time()->textColor(), kMuted);
    EXPECT_EQ(cell->user()->textAlignment(), TextAlignment::Right);
    EXPECT_EQ(cell->time()->textAlignment(), TextAlignment::Right);

    // The time is as wide as its text, 14 from the right and 20 above the bottom.
    const qreal timeWidth = textWidth(cell->time());
    EXPECT_EQ(cell->time()->frame(), QRectF(W() - 14 - timeWidth, 89, timeWidth, 11));
    EXPECT_EQ(cell->user()->frame(), QRectF(W() - 14 - timeWidth - 12 - 80, 89, 80, 11));
    EXPECT_EQ(cell->user()->text(), QStringLiteral("风之旅人"));
    EXPECT_EQ(cell->time()->text(), QStringLiteral("2025-06-11 01:38"));
    EXPECT_EQ(cell->lineView()->frame(), QRectF(0, 118.7, W(), 0.3));
    EXPECT_EQ(cell->lineView()->backgroundColor(), kLine);
}

TEST_P(BoardViews, LongTopicTextKeepsTheTextFrameAnEarlierTopicLeft)
{
    const QString twoLines = QString(30, QChar(0x5b57));
    const QString long_ = QString(200, QChar(0x5b57));
    const qreal twoLinesHeight = JsonChangDic::adaptiveWithText(twoLines);
    ASSERT_LT(twoLinesHeight, 60);
    ASSERT_GE(JsonChangDic::adaptiveWithText(long_), 60);

    SecondCell *cell = shown(new SecondCell(QStringLiteral("cell1")), QRectF(0, 0, W(), 120));
    cell->getModel(topic(QStringLiteral("长"), long_));
    EXPECT_EQ(cell->content()->frame(), QRectF(10, 48, W() - 20, 30));

    cell->getModel(topic(QStringLiteral("短"), twoLines));
    EXPECT_EQ(cell->content()->frame(), QRectF(10, 48, W() - 20, twoLinesHeight));
    cell->getModel(topic(QStringLiteral("长"), long_));
    EXPECT_EQ(cell->content()->frame(), QRectF(10, 48, W() - 20, twoLinesHeight));
    EXPECT_EQ(cell->content()->text(), long_);
    EXPECT_EQ(cell->content()->displayedLines().size(), 2);
}

} // namespace
