// The quorvel program end to end: options, and a topic window drawn offscreen from the
// project's forum server.

#include "EventLoop.h"
#include "LocalForumServer.h"
#include "ProgramRun.h"
#include "RecordingHttpServer.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QTemporaryDir>

#include <algorithm>

namespace {

// Below this grey level a pixel counts as ink: the screen's texts are near black on white
// or on the light bar, and nothing else that dark is drawn in the bands looked at.
constexpr int kInkGrey = 128;
// The navigation bar's 44 points below the 20-point status strip hold "详情", centred: two
// bold 17-pixel ideographs, 33 points from the first inked column to the last, with some
// 250 inked pixels.
constexpr int kBarTop = 20;
constexpr int kBarHeight = 44;
constexpr int kBarTitleInkWidth = 33;
constexpr int kInkWidthSlack = 3;
constexpr double kCentringSlack = 2;
constexpr int kMinBarTitleInk = 150;
// The back button ("‹ Quorvel") and the right item stay within this much of either side.
constexpr int kBarSideItemWidth = 100;
// The first line of the topic's title: 18-pixel text 20 points below the bar and 15 in from
// the side; its first glyph starts inking within one glyph of that margin.
constexpr int kTopicTitleTop = 84;
constexpr int kTopicTitleHeight = 28;
constexpr int kTopicTitleFontSize = 18;
constexpr int kHeaderSide = 15;
// A line of a dozen ideographs; a stray mark or a lone glyph has far less.
constexpr int kMinTopicTitleInk = 500;
// A board's header card fills the 185 points under the bar with its dark purple picture.
constexpr int kBoardCardTop = 64;
constexpr int kBoardCardHeight = 185;
// A blank card has none; its lighter circles keep it from being all dark.
constexpr int kMinBoardCardInk = 375 * 185 / 3;
constexpr int kPublishItemWidth = 50;
// A bar item ("返回", a back title or a screen title) has well over this much ink; so has any
// loaded screen below the bar.
constexpr int kMinBarItemInk = 100;
constexpr int kMinContentInk = 1000;
// The tour's own step limit is 15 s; publishing may wait for the server's posting interval.
constexpr int kTourLimitMs = 150000;

// Every host the app talks to, on the test's server.
QStringList hostsOf(const LocalForumServer &server)
{
    return {QStringLiteral("--api-root"), server.apiRoot(), QStringLiteral("--push-url"),
            server.origin() + QStringLiteral("/push"), QStringLiteral("--analytics-url"), server.analyticsRoot(),
            QStringLiteral("--analytics-fallback-url"), server.analyticsRoot()};
}

testsupport::ProgramResult runApp(const QStringList &arguments)
{
    return testsupport::runProgram(QStringLiteral(QUORVEL_APP_BINARY), arguments,
                                   {{QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen")}});
}

struct Ink
{
    int pixels = 0;
    int left = -1;  // the outermost inked columns, -1 when there is no ink
    int right = -1;
};

// The ink in a band of rows of the picture (in points), across the whole width or, when given,
// only between the side margins (where the bar's side items stand).
Ink inkInBand(const QImage &picture, int top, int height, int sideMargin = 0)
{
    const qreal scale = picture.devicePixelRatio();
    Ink ink;
    for (int y = int(top * scale); y < int((top + height) * scale); ++y) {
        for (int x = int(sideMargin * scale); x < picture.width() - int(sideMargin * scale); ++x) {
            if (qGray(picture.pixel(x, y)) >= kInkGrey)
                continue;
            ++ink.pixels;
            const int column = int(x / scale);
            ink.left = ink.left < 0 ? column : std::min(ink.left, column);
            ink.right = std::max(ink.right, column);
        }
    }
    return ink;
}

// The bar's title and the topic's title are drawn where they belong; a blank or misplaced
// render fails.
void expectTitlesDrawn(const QImage &picture, int screenWidth)
{
    const Ink bar = inkInBand(picture, kBarTop, kBarHeight, kBarSideItemWidth);
    EXPECT_GE(bar.pixels, kMinBarTitleInk) << screenWidth;
    EXPECT_NEAR((bar.left + bar.right) / 2.0, screenWidth / 2.0, kCentringSlack) << screenWidth;
    EXPECT_NEAR(bar.right - bar.left + 1, kBarTitleInkWidth, kInkWidthSlack) << screenWidth;

    const Ink title = inkInBand(picture, kTopicTitleTop, kTopicTitleHeight);
    EXPECT_GE(title.pixels, kMinTopicTitleInk) << screenWidth;
    EXPECT_GE(title.left, kHeaderSide) << screenWidth;
    EXPECT_LT(title.left, kHeaderSide + kTopicTitleFontSize) << screenWidth;
}

} // namespace

TEST(AppWindow, DrawsTheTopicScreenToAPictureOnceLoaded)
{
    LocalForumServer server;
    ASSERT_TRUE(server.isRunning()) << server.errorString().toStdString();
    QTemporaryDir dir;
    const QString shot = dir.filePath(QStringLiteral("topic.png"));
    const QString small = dir.filePath(QStringLiteral("small.png"));
    const QString tid = QString::number(LocalForumServer::Demo::kManyRepliesTopicId);
    const QString section = QString::number(LocalForumServer::Demo::kManyRepliesSectionId);

    const testsupport::ProgramResult run = runApp(hostsOf(server) + QStringList{QStringLiteral("--topic"), tid,
                            QStringLiteral("--section"), section, QStringLiteral("--screenshot"), shot});
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    const QImage picture(shot);
    ASSERT_FALSE(picture.isNull());
    EXPECT_EQ(picture.size() / picture.devicePixelRatio(), QSize(375, 667));
    expectTitlesDrawn(picture, 375);
    EXPECT_GE(QString::fromUtf8(server.log()).count(QStringLiteral("/api/RepliesLog")), 1);

    const testsupport::ProgramResult narrow = runApp(hostsOf(server) + QStringList{QStringLiteral("--screen"),
                               QStringLiteral("320x568"), QStringLiteral("--topic"), tid, QStringLiteral("--section"),
                               section, QStringLiteral("--screenshot"), small});
    ASSERT_EQ(narrow.exitCode, 0) << narrow.errors.toStdString();
    const QImage smaller(small);
    EXPECT_EQ(smaller.size() / smaller.devicePixelRatio(), QSize(320, 568));
    expectTitlesDrawn(smaller, 320);
}

TEST(AppWindow, OpensABoardByItsIdAsTheHomeScreenWould)
{
    LocalForumServer server;
    ASSERT_TRUE(server.isRunning()) << server.errorString().toStdString();
    QTemporaryDir dir;
    const QString shot = dir.filePath(QStringLiteral("board.png"));
    const testsupport::ProgramResult run =
        runApp(hostsOf(server) + QStringList{QStringLiteral("--board"),
                QString::number(LocalForumServer::Demo::kBoardId), QStringLiteral("--screenshot"), shot});
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    const QImage picture(shot);
    ASSERT_FALSE(picture.isNull());
    EXPECT_EQ(picture.size() / picture.devicePixelRatio(), QSize(375, 667));
    // The board's name in the bar with "发布" at its right end, and the header card's
    // picture under the bar.
    const Ink bar = inkInBand(picture, kBarTop, kBarHeight);
    EXPECT_GE(bar.pixels, kMinBarTitleInk);
    EXPECT_GE(bar.right, 375 - kPublishItemWidth);
    const Ink card = inkInBand(picture, kBoardCardTop, kBoardCardHeight);
    EXPECT_GE(card.pixels, kMinBoardCardInk);
    const QString log = QString::fromUtf8(server.log());
    // Home asked for the boards three times on the way (its load, its appearance, its header).
    EXPECT_EQ(log.count(QStringLiteral("/api/GetAdRecom")), 1);
    EXPECT_EQ(log.count(QStringLiteral("/api/GetSection")), 3);
    EXPECT_EQ(log.count(QStringLiteral("/api/GetTopTopic")), 1);
    EXPECT_EQ(log.count(QStringLiteral("/api/GetTopics")), 1);

    const testsupport::ProgramResult missing =
        runApp(hostsOf(server) + QStringList{QStringLiteral("--board"), QStringLiteral("99")});
    EXPECT_EQ(missing.exitCode, 3);
    EXPECT_TRUE(missing.errors.contains(QStringLiteral("no board 99")));
}

TEST(AppWindow, BadOptionsAreRefusedWithAReason)
{
    const testsupport::ProgramResult noSection = runApp({QStringLiteral("--topic"), QStringLiteral("1")});
    EXPECT_EQ(noSection.exitCode, 2);
    EXPECT_TRUE(noSection.errors.contains(QStringLiteral("--section")));
    const testsupport::ProgramResult twoPlaces =
        runApp({QStringLiteral("--board"), QStringLiteral("1"), QStringLiteral("--tour"), QStringLiteral("/tmp/never")});
    EXPECT_EQ(twoPlaces.exitCode, 2);
    EXPECT_TRUE(twoPlaces.errors.contains(QStringLiteral("one at a time")));
    const testsupport::ProgramResult tourAndPicture = runApp(
        {QStringLiteral("--tour"), QStringLiteral("/tmp/never"), QStringLiteral("--screenshot"), QStringLiteral("/tmp/never.png")});
    EXPECT_EQ(tourAndPicture.exitCode, 2);
    EXPECT_TRUE(tourAndPicture.errors.contains(QStringLiteral("--tour goes without")));
    const testsupport::ProgramResult sectionAlone = runApp({QStringLiteral("--section"), QStringLiteral("3")});
    EXPECT_EQ(sectionAlone.exitCode, 2);
    EXPECT_TRUE(sectionAlone.errors.contains(QStringLiteral("go with --topic")));
    for (const QString &option : {QStringLiteral("--api-root"), QStringLiteral("--push-url")}) {
        const testsupport::ProgramResult notAnAddress = runApp({option, QStringLiteral("foo")});
        EXPECT_EQ(notAnAddress.exitCode, 2);
        EXPECT_TRUE(notAnAddress.errors.contains(option + QStringLiteral(" takes an http or https address")));
    }
    const testsupport::ProgramResult badNotification = runApp({QStringLiteral("--notification"), QStringLiteral("[1]")});
    EXPECT_EQ(badNotification.exitCode, 2);
    EXPECT_TRUE(badNotification.errors.contains(QStringLiteral("--notification")));

    const testsupport::ProgramResult badScreen = runApp({QStringLiteral("--screen"), QStringLiteral("wide"), QStringLiteral("--topic"),
                                  QStringLiteral("1"), QStringLiteral("--section"), QStringLiteral("1")});
    EXPECT_EQ(badScreen.exitCode, 2);
    EXPECT_TRUE(badScreen.errors.contains(QStringLiteral("--screen")));

    const testsupport::ProgramResult badTopic = runApp({QStringLiteral("--topic"), QStringLiteral("abc"), QStringLiteral("--section"),
                                 QStringLiteral("1")});
    EXPECT_EQ(badTopic.exitCode, 2);
    const testsupport::ProgramResult badBoard = runApp({QStringLiteral("--board"), QStringLiteral("abc")});
    EXPECT_EQ(badBoard.exitCode, 2);
    EXPECT_TRUE(badBoard.errors.contains(QStringLiteral("--board")));
    EXPECT_EQ(runApp({QStringLiteral("--help")}).exitCode, 0);
}

TEST(AppWindow, TheTourReachesEveryScreenThroughTapsAndTyping)
{
    // The server as the run command starts it: posts too close together are refused, and the
    // tour writes its topic again, as a person would.
    LocalForumServer server;
    ASSERT_TRUE(server.isRunning()) << server.errorString().toStdString();
    QTemporaryDir dir;
    // A first launch on this server: no user id kept from another test's server, which this one
    // would not know, and analytics of its own.
    QTemporaryDir config;
    QTemporaryDir cache;
    const std::map<QString, QString> firstLaunch{{QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen")},
                                                 {QStringLiteral("XDG_CONFIG_HOME"), config.path()},
                                                 {QStringLiteral("XDG_CACHE_HOME"), cache.path()}};
    const testsupport::ProgramResult run = testsupport::runProgram(
        QStringLiteral(QUORVEL_APP_BINARY), hostsOf(server) + QStringList{QStringLiteral("--tour"), dir.path()},
        firstLaunch, kTourLimitMs);
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();

    const QStringList steps{QStringLiteral("01-home"), QStringLiteral("02-board"), QStringLiteral("03-topic"),
                            QStringLiteral("04-reply"), QStringLiteral("05-compose"),
                            QStringLiteral("06-board-after-publish"), QStringLiteral("07-banner-topic"),
                            QStringLiteral("08-web-page"), QStringLiteral("09-notification")};
    for (const QString &step : steps) {
        const QImage picture(dir.filePath(step + QStringLiteral(".png")));
        ASSERT_FALSE(picture.isNull()) << step.toStdString();
        EXPECT_EQ(picture.size() / picture.devicePixelRatio(), QSize(375, 667)) << step.toStdString();
        // Every screen has a title or a back button in its bar, and content under it.
        EXPECT_GE(inkInBand(picture, kBarTop, kBarHeight).pixels, kMinBarItemInk) << step.toStdString();
        EXPECT_GE(inkInBand(picture, kBoardCardTop, 667 - kBoardCardTop).pixels, kMinContentInk) << step.toStdString();
        EXPECT_TRUE(run.out.contains(step + QStringLiteral(".png"))) << step.toStdString();
    }
    const QString log = QString::fromUtf8(server.log());
    EXPECT_EQ(log.count(QStringLiteral("POST /api/RepliesleTopic")), 1);
    EXPECT_GE(log.count(QStringLiteral("/api/WriteTopic")), 1);
    EXPECT_GE(log.count(QStringLiteral("/pages/")), 1) << "the web page came from the server";

    // The two banner taps were counted; the next launch sends them, with the tour's session.
    const testsupport::ProgramResult next = testsupport::runProgram(
        QStringLiteral(QUORVEL_APP_BINARY),
        hostsOf(server) + QStringList{QStringLiteral("--screenshot"), dir.filePath(QStringLiteral("next.png"))}, firstLaunch);
    ASSERT_EQ(next.exitCode, 0) << next.errors.toStdString();
    ASSERT_TRUE(testsupport::waitUntil([&] { return server.log().contains("POST /app_logs 200"); }));
    const testsupport::ProgramResult report = testsupport::runProgram(
        QStringLiteral(QUORVEL_SERVER_BINARY), {QStringLiteral("analytics-report"), QStringLiteral("--db"), server.databasePath()});
    ASSERT_EQ(report.exitCode, 0) << report.errors.toStdString();
    EXPECT_TRUE(report.out.contains(QStringLiteral("advertisingClick: 2\n"))) << report.out.toStdString();
    EXPECT_TRUE(report.out.contains(QStringLiteral("\nSessions\n"))) << report.out.toStdString();
}

TEST(AppWindow, APictureOfAScreenWhoseServerNeverAnswersIsRefused)
{
    // Takes connections and never answers them: this process runs no event loop meanwhile.
    RecordingHttpServer silent;
    ASSERT_TRUE(silent.listen());
    QTemporaryDir dir;
    const QString shot = dir.filePath(QStringLiteral("home.png"));
    const testsupport::ProgramResult run =
        runApp({QStringLiteral("--api-root"), silent.apiRoot(), QStringLiteral("--push-url"),
                silent.baseUrl() + QStringLiteral("push"), QStringLiteral("--screenshot"), shot});
    EXPECT_EQ(run.exitCode, 4);
    EXPECT_TRUE(run.errors.contains(QStringLiteral("did not answer"))) << run.errors.toStdString();
    EXPECT_FALSE(QFile::exists(shot));
}
