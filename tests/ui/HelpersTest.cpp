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

TEST(TextHeights, AbsentIsZeroAndLongerOrNarrowerIsTaller)
{
    EXPECT_EQ(JsonChangDic::adaptiveWithText(std::nullopt), 0);
    EXPECT_EQ(JsonChangDic::adaptHeight(std::nullopt), 0);

    const QString line = QStringLiteral("一行字");
    const QString paragraph = QString(QStringLiteral("这是一段很长的中文回复内容，用来测试换行。")).repeated(6);
    const qreal one = JsonChangDic::adaptiveWithText(line);
    EXPECT_GT(one, 10);
    EXPECT_GT(JsonChangDic::adaptiveWithText(paragraph), one * 3);
    // The composer is 90 points narrower, so the same text needs more lines there.
    EXPECT_GT(JsonChangDic::adaptHeight(paragraph), JsonChangDic::adaptiveWithText(paragraph));
    EXPECT_EQ(JsonChangDic::adaptHeight(line), one);
    // Explicit line breaks count.
    EXPECT_GT(JsonChangDic::adaptiveWithText(QStringLiteral("a\nb\nc")), one * 2.5);
}

TEST(TextHeights, AWordTooLongForALineBreaksAtACharacter)
{
    const qreal one = JsonChangDic::adaptiveWithText(QStringLiteral("a"));
    const QString url = QStringLiteral("https://example.com/") + QString(80, u'a');
    // Some 100 Latin letters at 17 points need three lines of 355 points, not one overflowing line.
    EXPECT_GE(JsonChangDic::adaptiveWithText(url), one * 2.5);
    EXPECT_EQ(JsonChangDic::adaptiveWithText(QString()), 0);
}

TEST(TextHeights, FollowTheScreenWidthAndCacheNeverChangesAResult)
{
    const QString paragraph = QString(QStringLiteral("宽度不同，高度不同。")).repeated(10);
    const qreal atDefault = JsonChangDic::adaptiveWithText(paragraph);
    MainScreen::setSize({320, 568});
    const qreal narrow = JsonChangDic::adaptiveWithText(paragraph);
    MainScreen::setSize(MainScreen::kDefaultSize);
    EXPECT_GT(narrow, atDefault);
    EXPECT_EQ(JsonChangDic::adaptiveWithText(paragraph), atDefault);
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
