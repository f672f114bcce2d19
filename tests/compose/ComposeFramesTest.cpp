// Where the screen's views lie on two phone sizes, with the keyboard up and down.

#include "ComposeSupport.h"

#include "Label.h"
#include "MainScreen.h"
#include "TextView.h"
#include "UIColorAdd.h"
#include "View.h"

using namespace composetest;

namespace {

class ComposeFramesTest : public ComposeSuite, public ::testing::WithParamInterface<QSize>
{
};

TEST_P(ComposeFramesTest, FramesFollowTheKeyboard)
{
    Window phone(GetParam());
    auto composer = open(phone);
    const qreal W = GetParam().width();
    const qreal H = GetParam().height();
    const qreal K = KeyboardObserver::kKeyboardHeight;
    ASSERT_EQ(MainScreen::size(), QSizeF(GetParam()));

    EXPECT_EQ(composer->title(), QStringLiteral("新话题"));
    EXPECT_EQ(composer->view()->backgroundColor(), UIColorAdd::colorWithHexString(QStringLiteral("f3f3f3")));
    EXPECT_EQ(composer->titleText()->frame(), QRectF(0, 20, W, 40));
    EXPECT_EQ(composer->textLabel()->frame(), QRectF(10, 10, 200, 20));
    EXPECT_EQ(composer->promptLabel()->frame(), QRectF(10, 18, 200, 15));

    // The title takes the keyboard as the screen appears.
    ASSERT_TRUE(composer->titleText()->isFirstResponder());
    EXPECT_EQ(composer->height, K);
    EXPECT_EQ(composer->content()->frame(), QRectF(0, 70, W, H - 134 - K - 10));
    EXPECT_EQ(composer->count()->frame(), QRectF(W - 60, H - 90 - K, 60, 12));

    composer->titleText()->resignFirstResponder();
    EXPECT_EQ(composer->content()->frame(), QRectF(0, 70, W, H - 134));
    EXPECT_EQ(composer->count()->frame(), QRectF(W - 60, H - 90, 60, 12));
    EXPECT_EQ(composer->height, K);
    EXPECT_EQ(composer->titleText()->frame(), QRectF(0, 20, W, 40));

    // A tap on the body, seen by a person, brings the keyboard back.
    testsupport::Pointer person(composer->content());
    person.tap(person.inWindow(QPoint(40, 40), composer->content()));
    ASSERT_TRUE(composer->content()->isFirstResponder());
    EXPECT_EQ(composer->content()->frame(), QRectF(0, 70, W, H - 134 - K - 10));
    EXPECT_EQ(composer->count()->frame(), QRectF(W - 60, H - 90 - K, 60, 12));
}

INSTANTIATE_TEST_SUITE_P(Phones, ComposeFramesTest, ::testing::Values(QSize(375, 667), QSize(320, 568)),
                         [](const ::testing::TestParamInfo<QSize> &info) {
                             return "W" + std::to_string(info.param.width());
                         });

} // namespace
