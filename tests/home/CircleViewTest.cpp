// The banner carousel: its strip and dots, its timer stepped by hand (n = 0, 1, 3, 9, the
// restart at page index 8), swipes past both ends and taps, all through the window.

#include "CircleView.h"
#include "ImageView.h"
#include "PageControl.h"
#include "Pointer.h"
#include "ScrollView.h"
#include "Window.h"

#include <gtest/gtest.h>

#include <QTest>
#include <QTimer>

namespace {

constexpr qreal kWidth = 375;
constexpr qreal kHeight = 195;

class Taps : public CircleViewDelegate
{
public:
    void cycleScrollView(CircleView *, int index) override { indexes.append(index); }
    QList<int> indexes;
};

class CircleViewTest : public ::testing::Test
{
protected:
    // A carousel of n pictures at the top of a shown window, its timer stopped so that the
    // test steps it.
    CircleView *make(int n)
    {
        auto *carousel = new CircleView(QRectF(0, 0, kWidth, kHeight), n, &window);
        carousel->show();
        window.makeKeyAndVisible();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
        carousel->timer()->stop();
        return carousel;
    }

    // One tick of the timer; waits for the strip to reach `page`. Returns whether the timer
    // was replaced by a new running 3-second one (then stopped again).
    bool tick(CircleView *carousel, int page)
    {
        QTimer *before = carousel->timer();
        carousel->exchangePages();
        waitForPage(carousel, page);
        QTimer *after = carousel->timer();
        const bool restarted = after != before;
        if (restarted) {
            EXPECT_TRUE(after->isActive());
            EXPECT_EQ(after->interval(), CircleView::kAdvanceMs);
        }
        after->stop();
        return restarted;
    }

    static void waitForPage(CircleView *carousel, int page)
    {
        const QPointF target(page * kWidth, 0);
        EXPECT_TRUE(QTest::qWaitFor([&] { return carousel->scrollV()->contentOffset() == target; }))
            << "offset " << carousel->scrollV()->contentOffset().x() << ", wanted page " << page;
    }

    static int page(CircleView *carousel) { return qRound(carousel->scrollV()->contentOffset().x() / kWidth); }

    Window window;
};

TEST_F(CircleViewTest, theStripHoldsTwoMorePagesThanPicturesWithTheDotsUnderThem)
{
    CircleView *carousel = make(3);
    ScrollView *strip = carousel->scrollV();
    EXPECT_EQ(strip->frame(), QRectF(0, 0, kWidth, kHeight));
    EXPECT_EQ(strip->contentSize(), QSizeF(5 * kWidth, kHeight));
    EXPECT_TRUE(strip->isPagingEnabled());
    ASSERT_EQ(carousel->photoArray().size(), 5);
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(carousel->photoArray().at(i)->geometry(), QRect(int(i * kWidth), 0, int(kWidth), int(kHeight)));
    PageControl *dots = carousel->pageC();
    EXPECT_EQ(dots->frame(), QRectF(100, kHeight - 20, kWidth - 200, 20));
    EXPECT_EQ(dots->numberOfPages(), 3);
    EXPECT_TRUE(dots->isVisible());
}

TEST_F(CircleViewTest, picturesGoToTheirPagesWithTheLastAndFirstRepeatedAtTheEnds)
{
    CircleView *carousel = make(3);
    carousel->getDataFromArray({QStringLiteral("http://127.0.0.1:9/a.png"), QStringLiteral("http://127.0.0.1:9/b.png"),
                                QStringLiteral("http://127.0.0.1:9/c.png")});
    const QStringList expected{QStringLiteral("c"), QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c"),
                               QStringLiteral("a")};
    for (int i = 0; i < 5; ++i) {
        ImageView *photo = carousel->photoArray().at(i);
        EXPECT_EQ(photo->imageURL().fileName(), expected.at(i) + QStringLiteral(".png")) << "page " << i;
        EXPECT_EQ(photo->imageName(), QStringLiteral("1")) << "page " << i << " shows the placeholder while loading";
    }
}

TEST_F(CircleViewTest, threePicturesAdvanceEveryTickAndWrapToTheFirstWithoutAJump)
{
    CircleView *carousel = make(3);
    // The tick fired at creation leaves the first picture showing.
    EXPECT_EQ(carousel->imageIndex(), 1);
    EXPECT_EQ(page(carousel), 1);
    EXPECT_EQ(carousel->pageC()->currentPage(), 0);

    EXPECT_FALSE(tick(carousel, 2));
    EXPECT_EQ(carousel->pageC()->currentPage(), 1);
    EXPECT_FALSE(tick(carousel, 3));
    EXPECT_EQ(carousel->pageC()->currentPage(), 2);
    EXPECT_EQ(carousel->currentItemIndex(), 2);

    // On the last picture: the strip jumps to page 0 (the same picture), index 0 restarts the
    // timer, whose immediate tick slides on to the first picture.
    EXPECT_TRUE(tick(carousel, 1));
    EXPECT_EQ(carousel->imageIndex(), 1);
    EXPECT_EQ(carousel->pageC()->currentPage(), 0);
    EXPECT_EQ(carousel->currentItemIndex(), 0);
}

TEST_F(CircleViewTest, aSinglePictureShowsNoDotsAndEveryOtherTickRestartsTheTimer)
{
    CircleView *carousel = make(1);
    EXPECT_EQ(carousel->scrollV()->contentSize(), QSizeF(3 * kWidth, kHeight));
    EXPECT_FALSE(carousel->pageC()->isVisible());
    // At creation the offset already equals n × w: the strip went to page 0 before the observer
    // was there, so the timer was not restarted.
    EXPECT_EQ(page(carousel), 0);
    EXPECT_EQ(carousel->imageIndex(), 0);

    EXPECT_FALSE(tick(carousel, 1));
    EXPECT_EQ(carousel->imageIndex(), 1);
    EXPECT_TRUE(tick(carousel, 1));
    EXPECT_EQ(carousel->imageIndex(), 1);
    EXPECT_EQ(carousel->currentItemIndex(), 0);
}

TEST_F(CircleViewTest, noPicturesKeepTheStripStillWhileTheIndexClimbsToTheRestartAtEight)
{
    CircleView *carousel = make(0);
    EXPECT_EQ(carousel->scrollV()->contentSize(), QSizeF(2 * kWidth, kHeight));
    EXPECT_EQ(carousel->imageIndex(), 1);
    for (int index = 2; index < CircleView::kTimerRestartIndex; ++index) {
        EXPECT_FALSE(tick(carousel, 1));
        EXPECT_EQ(carousel->imageIndex(), index);
    }
    EXPECT_TRUE(tick(carousel, 1));
    EXPECT_EQ(carousel->imageIndex(), CircleView::kTimerRestartIndex + 1);
    EXPECT_EQ(carousel->pageC()->currentPage(), 0);
    EXPECT_EQ(carousel->currentItemIndex(), -1);
}

TEST_F(CircleViewTest, ninePicturesAdvanceOneExtraPageWhenTheIndexReachesEight)
{
    CircleView *carousel = make(9);
    for (int index = 2; index < CircleView::kTimerRestartIndex; ++index)
        EXPECT_FALSE(tick(carousel, index));
    // Index 8 restarts the timer, and its immediate tick moves on to page 9 at once.
    EXPECT_TRUE(tick(carousel, 9));
    EXPECT_EQ(carousel->imageIndex(), 9);
    EXPECT_EQ(carousel->pageC()->currentPage(), 8);
    // Then the wrap: page 0, restart, first picture.
    EXPECT_TRUE(tick(carousel, 1));
    EXPECT_EQ(carousel->imageIndex(), 1);
    EXPECT_EQ(carousel->pageC()->currentPage(), 0);
}

TEST_F(CircleViewTest, swipesPastEitherEndLandOnTheMatchingRealPicture)
{
    CircleView *carousel = make(3);
    testsupport::Pointer pointer(carousel);
    const QPoint middle(int(kWidth / 2), int(kHeight / 2));

    // From the first picture back to the copy of the last on page 0, then over to page 3.
    pointer.flick(middle - QPoint(60, 0), QPoint(120, 0));
    waitForPage(carousel, 3);
    EXPECT_EQ(carousel->pageC()->currentPage(), 2);
    EXPECT_EQ(carousel->imageIndex(), 3);

    // From the last picture on to the copy of the first on page 4, then back to page 1.
    pointer.flick(middle + QPoint(60, 0), QPoint(-120, 0));
    waitForPage(carousel, 1);
    EXPECT_EQ(carousel->pageC()->currentPage(), 0);
    EXPECT_EQ(carousel->imageIndex(), 1);

    // A swipe within the strip moves the dot along.
    pointer.flick(middle + QPoint(60, 0), QPoint(-120, 0));
    waitForPage(carousel, 2);
    EXPECT_EQ(carousel->pageC()->currentPage(), 1);
    EXPECT_EQ(carousel->imageIndex(), 2);
}

TEST_F(CircleViewTest, aTapReportsThePictureShownAndAVerticalDragIsNotTheCarousels)
{
    CircleView *carousel = make(3);
    Taps taps;
    carousel->setDelegate(&taps);
    testsupport::Pointer pointer(carousel);
    const QPoint middle(int(kWidth / 2), int(kHeight / 2));

    pointer.tap(middle);
    EXPECT_EQ(taps.indexes, QList<int>{0});

    tick(carousel, 2);
    tick(carousel, 3);
    pointer.tap(middle);
    EXPECT_EQ(taps.indexes, (QList<int>{0, 2}));

    // Nothing here scrolls vertically: the drag moves nothing and taps nothing.
    pointer.drag(middle, QPoint(0, 60));
    EXPECT_EQ(page(carousel), 3);
    EXPECT_EQ(taps.indexes, (QList<int>{0, 2}));
}

TEST_F(CircleViewTest, tappingBesideTheCurrentDotScrollsToThatPicture)
{
    CircleView *carousel = make(3);
    testsupport::Pointer pointer(carousel);
    // Right of the dots' middle: one dot on.
    const QRect dots = carousel->pageC()->geometry();
    pointer.tap(dots.center() + QPoint(dots.width() / 4, 0));
    waitForPage(carousel, 2);
    EXPECT_EQ(carousel->imageIndex(), 2);
    EXPECT_EQ(carousel->pageC()->currentPage(), 1);
}

} // namespace
