// JSON text helpers, colours and text heights.

#include "HttpRequest.h"
#include "JsonChangDic.h"
#include "LogCapture.h"
#include "MainScreen.h"
#include "UIColorAdd.h"

#include <gtest/gtest.h>

#include <QJsonArray>

TEST(JsonChangDic, ParsesObjectsAndArraysAsTheyAre)
{
    const QJsonValue object = JsonChangDic::dictionaryWithJsonString(QStringLiteral(R"({"RData":[1,"二"]})"));
    EXPECT_EQ(object.toObject().value(QStringLiteral("RData")), QJsonValue(QJsonArray{1, QStringLiteral("二")}));
    const QJsonValue array = JsonChangDic::dictionaryWithJsonString(QStringLiteral("[1,2]"));
    EXPECT_EQ(array, QJsonValue(QJsonArray{1, 2}));
}

TEST(JsonChangDic, AbsentAndBrokenTextGiveAbsentAndOnlyBrokenIsLogged)
{
    LogCapture log("quorvel");
    EXPECT_TRUE(JsonChangDic::dictionaryWithJsonString(std::nullopt).isUndefined());
    EXPECT_TRUE(log.lines().isEmpty());
    for (const QString &text : {QString(), QStringLiteral("{\"a\":"), QStringLiteral("not json")}) {
        EXPECT_TRUE(JsonChangDic::dictionaryWithJsonString(text).isUndefined());
    }
    ASSERT_EQ(log.lines().size(), 3);
    EXPECT_TRUE(log.lines().at(0).startsWith(QStringLiteral("json解析失败：")));
}

TEST(JsonChangDic, WritesPrettyJsonThatReadsBack)
{
    const QJsonObject payload{{QStringLiteral("imei"), QStringLiteral("abc")}, {QStringLiteral("userid"), 0}};
    const QString text = JsonChangDic::jsonWithDictionary(payload);
    EXPECT_TRUE(text.contains(u'\n'));
    EXPECT_EQ(JsonChangDic::dictionaryWithJsonString(text), QJsonValue(payload));
}

namespace {

// Ideographs without punctuation, so a line may break after any of them.
const QString kIdeographs = QStringLiteral("天地玄黄宇宙洪荒日月盈昃辰宿列张寒来暑往秋收冬藏闰余成岁律吕调阳");

// `ideographs` ideographs followed by a word of Latin `letters`.
QString line(int ideographs, const char *letters = "")
{
    return kIdeographs.left(ideographs) + QString::fromLatin1(letters);
}

} // namespace

// The numbers below are for the body font, "Noto Sans CJK SC" at 17 pixels, where a line is
// 25 points high and an ideograph 16.98 points wide. Texts are measured across the screen
// less 20 points (lists) or less 110 (the composer).

TEST(TextHeights, AbsentAndEmptyTextMeasureZero)
{
    EXPECT_EQ(JsonChangDic::adaptiveWithText(std::nullopt), 0);
    EXPECT_EQ(JsonChangDic::adaptHeight(std::nullopt), 0);
    EXPECT_EQ(JsonChangDic::adaptiveWithText(QString()), 0);
}

TEST(TextHeights, ALineEndsWithinTwoPointsOfEachWidth)
{
    // Per width, letters that leave the line under 2 points short of it (one line) and
    // letters that make it under 2 points too long (the word goes to a second line), so a
    // margin that moves by 2 points shows.
    enum class Measure { List, Composer };
    const struct
    {
        QSize screen;
        Measure measure;
        int ideographs;
        const char *fits;
        const char *overflows;
    } cases[] = {
        {{375, 667}, Measure::List, 20, "iii", "iir"},  // 355 points: 353.7 and 355.6
        {{375, 667}, Measure::Composer, 15, "ii", "ir"}, // 265: 264.1 and 266.0
        {{320, 568}, Measure::List, 17, "ll", "fr"},     // 300: 298.4 and 300.8
        {{320, 568}, Measure::Composer, 12, "i", "r"},   // 210: 208.5 and 210.4
    };
    for (const auto &c : cases) {
        MainScreen::setSize(c.screen);
        const auto height = c.measure == Measure::List ? &JsonChangDic::adaptiveWithText : &JsonChangDic::adaptHeight;
        const QString where = QStringLiteral("screen %1, %2 ideographs").arg(c.screen.width()).arg(c.ideographs);
        EXPECT_EQ(height(line(c.ideographs, c.fits)), 25) << where.toStdString();
        EXPECT_EQ(height(line(c.ideographs, c.overflows)), 50) << where.toStdString();
    }
    MainScreen::setSize(MainScreen::kDefaultSize);
}

TEST(TextHeights, HardBreaksAndOverlongWordsStartLines)
{
    EXPECT_EQ(JsonChangDic::adaptiveWithText(QStringLiteral("一\n二\n三")), 75);
    // The address up to its last slash fits one line; the 80 letters after it, one word too
    // long for any line, break at characters over three more.
    EXPECT_EQ(JsonChangDic::adaptiveWithText(QStringLiteral("https://example.com/") + QString(80, u'a')), 100);
}

TEST(TextHeights, FollowTheScreenWidthAndCacheNeverChangesAResult)
{
    // 18 ideographs (305.7 points) fit the list width of a 375-point screen, not of a 320-point one.
    const QString eighteen = line(18);
    EXPECT_EQ(JsonChangDic::adaptiveWithText(eighteen), 25);
    MainScreen::setSize({320, 568});
    EXPECT_EQ(JsonChangDic::adaptiveWithText(eighteen), 50);
    MainScreen::setSize(MainScreen::kDefaultSize);
    EXPECT_EQ(JsonChangDic::adaptiveWithText(eighteen), 25);
}

TEST(UIColorAdd, AcceptsSixDigitsWithOptionalPrefixAndSpaces)
{
    const QColor yellow = UIColorAdd::colorWithHexString(QStringLiteral("ffdf00"));
    EXPECT_EQ(yellow, QColor(0xff, 0xdf, 0x00));
    EXPECT_EQ(UIColorAdd::colorWithHexString(QStringLiteral("0xffdf00")), yellow);
    EXPECT_EQ(UIColorAdd::colorWithHexString(QStringLiteral("0XFFDF00")), yellow);
    EXPECT_EQ(UIColorAdd::colorWithHexString(QStringLiteral("  ffdf00\n")), yellow);
    EXPECT_NEAR(UIColorAdd::colorWithHexString(QStringLiteral("f3f3f3"), 0.5).alphaF(), 0.5, 1e-4);
}

TEST(UIColorAdd, EverythingElseIsGrey)
{
    const QColor grey = UIColorAdd::grayColor();
    for (const char *text : {"#ffdf00", "fff", "", "ffdf0", "ffdf000", "0xffdf0"})
        EXPECT_EQ(UIColorAdd::colorWithHexString(QString::fromLatin1(text)), grey) << text;
    // Pairs that are not hexadecimal give 0 for that component.
    EXPECT_EQ(UIColorAdd::colorWithHexString(QStringLiteral("zz8000")), QColor(0, 0x80, 0));
}

TEST(HttpRequestColour, TakesRgbFromTheLowBytesAndIgnoresTheTop)
{
    EXPECT_EQ(HttpRequest::oxARGB(0x00ff8000), QColor(0xff, 0x80, 0x00));
    EXPECT_EQ(HttpRequest::oxARGB(0x12ff8000), QColor(0xff, 0x80, 0x00));
    EXPECT_EQ(HttpRequest::oxARGB(0x12ff8000).alphaF(), 1.0f);
}
