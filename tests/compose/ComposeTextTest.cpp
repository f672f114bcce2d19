// The title's and the body's text rules, the counter and the placeholders.

#include "ComposeSupport.h"

#include "JsonChangDic.h"
#include "Label.h"
#include "MainScreen.h"
#include "TextView.h"

#include <QClipboard>
#include <QGuiApplication>

using namespace composetest;

namespace {

const QString k30 = QStringLiteral("一二三四五六七八九十一二三四五六七八九十一二三四五六七八九十");

class ComposeTextTest : public ComposeSuite
{
protected:
    static void type(TextView *box, const QString &text)
    {
        for (const QChar unit : text)
            box->insertText(QString(unit));
    }
    static void paste(TextView *box, const QString &text)
    {
        QGuiApplication::clipboard()->setText(text);
        box->paste();
    }
};

TEST_F(ComposeTextTest, TheTitleHoldsThirtyUnitsAndIgnoresTheReturnKey)
{
    auto composer = open();
    TextView *title = composer->titleText();
    ASSERT_TRUE(title->isFirstResponder());
    type(title, k30.left(29));
    title->insertText(QStringLiteral("\n"));
    EXPECT_EQ(title->text(), k30.left(29));
    EXPECT_TRUE(title->isFirstResponder());
    // A character outside the basic plane is two units: it does not fit after 29.
    title->insertText(QStringLiteral("😀"));
    EXPECT_EQ(title->text(), k30.left(29));
    type(title, k30.right(1));
    EXPECT_EQ(title->text(), k30);
    title->insertText(QStringLiteral("多"));
    EXPECT_EQ(title->text(), k30);
    // Replacing a unit keeps the length, so it is allowed; deleting always is.
    EXPECT_TRUE(title->replaceRange(Range{0, 1}, QStringLiteral("零")));
    EXPECT_TRUE(title->replaceRange(Range{0, 1}, QString()));
    EXPECT_EQ(title->text(), k30.mid(1));
}

TEST_F(ComposeTextTest, PastedTitlesAreCutToThirtyUnits)
{
    auto composer = open();
    const QString forty = k30 + k30.left(10);
    ASSERT_EQ(forty.size(), 40);
    paste(composer->titleText(), forty);
    EXPECT_EQ(composer->titleText()->text(), k30);
    EXPECT_TRUE(composer->textLabel()->isHidden());
}

TEST_F(ComposeTextTest, TheEmojiKeyboardChangesNothingInEitherBox)
{
    auto composer = open();
    type(composer->titleText(), QStringLiteral("标题"));
    type(composer->content(), QStringLiteral("正文"));
    TextInputMode::selectPrimaryLanguage(QStringLiteral("emoji"));
    for (TextView *box : {composer->titleText(), composer->content()}) {
        EXPECT_FALSE(box->replaceRange(Range{2, 0}, QStringLiteral("😀")));
        EXPECT_FALSE(box->replaceRange(Range{1, 1}, QString()));
    }
    EXPECT_EQ(composer->titleText()->text(), QStringLiteral("标题"));
    EXPECT_EQ(composer->content()->text(), QStringLiteral("正文"));
    EXPECT_EQ(composer->count()->text(), QStringLiteral("798字"));
}

TEST_F(ComposeTextTest, TheTitleBoxGrowsOnlyBetweenFortyTwoAndEightyTwoPoints)
{
    auto composer = open();
    const qreal W = MainScreen::width();
    paste(composer->titleText(), QStringLiteral("短"));
    EXPECT_EQ(composer->titleText()->frame(), QRectF(0, 20, W, 40));

    // Thirty characters take two lines across the screen.
    composer->titleText()->setText(QString());
    paste(composer->titleText(), k30);
    const qreal twoLines = JsonChangDic::adaptiveWithText(k30);
    ASSERT_GT(twoLines, 42);
    ASSERT_LT(twoLines, 82);
    EXPECT_EQ(composer->titleText()->frame(), QRectF(0, 20, W, twoLines));

    // Four lines are too tall: back to one line's height.
    composer->titleText()->setText(QString());
    paste(composer->titleText(), QStringLiteral("一\n二\n三\n四"));
    ASSERT_GE(JsonChangDic::adaptiveWithText(QStringLiteral("一\n二\n三\n四")), 82);
    EXPECT_EQ(composer->titleText()->frame(), QRectF(0, 20, W, 40));
}

TEST_F(ComposeTextTest, TheCounterGoesNegativePastEightHundredAndTheReturnKeyBreaksTheBody)
{
    auto composer = open();
    EXPECT_EQ(composer->count()->text(), QStringLiteral("800字"));
    EXPECT_FALSE(composer->promptLabel()->isHidden());
    TextView *body = composer->content();
    body->becomeFirstResponder();
    type(body, QStringLiteral("第一行\n"));
    EXPECT_EQ(body->text(), QStringLiteral("第一行\n"));
    EXPECT_TRUE(composer->promptLabel()->isHidden());
    EXPECT_EQ(composer->count()->text(), QStringLiteral("796字"));

    paste(body, QString(801, QLatin1Char('x')));
    EXPECT_EQ(body->text().size(), 805);
    EXPECT_EQ(composer->count()->text(), QStringLiteral("-5字"));
}

TEST_F(ComposeTextTest, TheBodyPlaceholderStaysBlankOnceABoxHasBeenLeft)
{
    auto composer = open();
    EXPECT_EQ(composer->textLabel()->text(), QStringLiteral("标题(最多30个字)"));
    EXPECT_EQ(composer->promptLabel()->text(), QStringLiteral("请填写正文"));
    // Leaving the title for the body ends the title's editing.
    composer->content()->becomeFirstResponder();
    EXPECT_EQ(composer->promptLabel()->text(), QString());
    composer->content()->resignFirstResponder();
    EXPECT_TRUE(composer->content()->text().isEmpty());
    EXPECT_EQ(composer->promptLabel()->text(), QString());
    EXPECT_EQ(composer->textLabel()->text(), QStringLiteral("标题(最多30个字)"));
}

} // namespace
