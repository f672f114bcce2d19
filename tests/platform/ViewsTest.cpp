// Labels, buttons, notices, the screen size option, reachability and window grabs.
#include "KitTestSupport.h"

#include "Button.h"
#include "EventLoop.h"
#include "Fonts.h"
#include "Label.h"
#include "MainScreen.h"
#include "NoticeOverlay.h"
#include "Reachability.h"
#include "ScreenSizeOption.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFontInfo>
#include <QImage>
#include <QTemporaryDir>

namespace {

const QString kLongChinese = QStringLiteral("这是一段很长的中文回复内容，用来检查标签按字符换行并且只显示两行的效果，多出来的部分不应该出现在界面上。");

TEST(LabelTest, drawsWithTheSystemChineseFont)
{
    const QFont font = Fonts::systemFontOfSize(14);
    EXPECT_EQ(QFontInfo(font).family(), "Noto Sans CJK SC");
    EXPECT_EQ(QFontInfo(font).pixelSize(), 14);
}

TEST(LabelTest, linesAreLimitedAndBrokenAsAsked)
{
    Label label(QRectF(35, 44, 305, 200));
    label.setFont(Fonts::systemFontOfSize(14));
    label.setText(kLongChinese);
    label.setLineBreakMode(LineBreakMode::ByCharWrapping);
    label.setNumberOfLines(2);
    const QStringList twoLines = label.displayedLines();
    ASSERT_EQ(twoLines.size(), 2);
    EXPECT_TRUE(kLongChinese.startsWith(twoLines[0] + twoLines[1])); // cut, no ellipsis

    label.setNumberOfLines(0);
    EXPECT_EQ(label.displayedLines().join(QString()), kLongChinese);

    label.setNumberOfLines(1);
    label.setLineBreakMode(LineBreakMode::ByTruncatingTail);
    ASSERT_EQ(label.displayedLines().size(), 1);
    EXPECT_TRUE(label.displayedLines()[0].endsWith(QChar(0x2026)));

    // A frame one line high shows one line even when more are allowed.
    label.setNumberOfLines(0);
    label.setFrame(QRectF(0, 0, 305, 25));
    EXPECT_EQ(label.displayedLines().size(), 1);
}

TEST(ButtonTest, tapsReachOnlyAButtonThatTakesTouches)
{
    auto window = kittest::shownWindow();
    auto *button = new Button(QRectF(320, 500, 50, 25));
    window->addSubview(button);
    int taps = 0;
    QObject::connect(button, &Button::touchUpInside, [&] { ++taps; });
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, QPoint(340, 510));
    EXPECT_EQ(taps, 1);

    button->setUserInteractionEnabled(false);
    QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, QPoint(340, 510));
    EXPECT_EQ(taps, 1);

    button->setUserInteractionEnabled(true);
    button->setHidden(true);
    QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, QPoint(340, 510));
    EXPECT_EQ(taps, 1);
}

TEST(NoticeOverlayTest, showsOverTheWindowForOneSecondThenGoes)
{
    // The notice lasts one second; the margins allow for timer and event-loop slack.
    constexpr qint64 kStillShownAtMs = 800;
    constexpr qint64 kGoneByMs = 1300;
    auto window = kittest::shownWindow();
    auto *view = new View(QRectF(0, 64, 375, 603));
    window->addSubview(view);
    QElapsedTimer clock;
    clock.start();
    QPointer<NoticeOverlay> notice = NoticeOverlay::showText(view, "网络连接失败");
    ASSERT_TRUE(notice);
    qint64 hiddenAtMs = -1;
    QObject::connect(notice, &NoticeOverlay::hidden, [&] { hiddenAtMs = clock.elapsed(); });
    EXPECT_EQ(notice->parentWidget(), window.get());
    EXPECT_EQ(notice->labelText(), "网络连接失败");
    EXPECT_NEAR(notice->geometry().center().y(), 667 / 2, 1);

    const auto gone = [&] { return notice.isNull() || !notice->isVisible(); };
    testsupport::waitUntil([&] { return gone() || clock.elapsed() >= kStillShownAtMs; });
    EXPECT_FALSE(gone()) << "gone after " << hiddenAtMs << " ms";
    testsupport::waitUntil([&] { return notice.isNull() || clock.elapsed() >= kGoneByMs; });
    EXPECT_TRUE(notice.isNull()) << "still there after " << clock.elapsed() << " ms";

    View detached;
    EXPECT_EQ(NoticeOverlay::showText(&detached, "回复成功"), nullptr);
}

TEST(ScreenSizeOptionTest, readsTheSizeOrFallsBackWithAMessage)
{
    QString error;
    EXPECT_EQ(ScreenSizeOption::fromArguments({"app", "--screen", "320x568"}, &error), QSize(320, 568));
    EXPECT_EQ(ScreenSizeOption::fromArguments({"app", "--screen=414X736"}, &error), QSize(414, 736));
    EXPECT_TRUE(error.isEmpty());
    EXPECT_EQ(ScreenSizeOption::fromArguments({"app"}, &error), QSize(375, 667));
    for (const char *bad : {"abc", "0x667", "375x", "-3x5", "375x667x2"}) {
        error.clear();
        EXPECT_EQ(ScreenSizeOption::fromArguments({"app", "--screen", bad}, &error), QSize(375, 667)) << bad;
        EXPECT_TRUE(error.contains(bad)) << bad;
    }
    error.clear();
    EXPECT_EQ(ScreenSizeOption::fromArguments({"app", "--screen"}, &error), QSize(375, 667));
    EXPECT_FALSE(error.isEmpty());
}

TEST(WindowTest, setsTheMainScreenAndGrabsToPng)
{
    Window window(QSize(320, 568));
    EXPECT_EQ(MainScreen::size(), QSizeF(320, 568));
    QTemporaryDir dir;
    const QString path = dir.filePath("shot.png");
    ASSERT_TRUE(window.grabToPng(path));
    EXPECT_EQ(QImage(path).size(), QSize(320, 568));
    MainScreen::setSize(MainScreen::kDefaultSize);
}

TEST(ReachabilityTest, onlyADisconnectedNetworkIsUnreachableAndTheProbeCanBeUnplugged)
{
    using R = QNetworkInformation::Reachability;
    using M = QNetworkInformation::TransportMedium;
    EXPECT_EQ(Reachability::statusFor(R::Unknown, M::Unknown), Reachability::ReachableViaWiFi);
    EXPECT_EQ(Reachability::statusFor(R::Online, M::Cellular), Reachability::ReachableViaWWAN);
    EXPECT_EQ(Reachability::statusFor(R::Disconnected, M::Ethernet), Reachability::NotReachable);
    // A server on the LAN or on this machine is reachable without the internet.
    EXPECT_EQ(Reachability::statusFor(R::Local, M::WiFi), Reachability::ReachableViaWiFi);
    EXPECT_EQ(Reachability::statusFor(R::Site, M::Ethernet), Reachability::ReachableViaWiFi);

    const Reachability probe = Reachability::reachabilityWithHostName("www.example.com");
    Reachability::setForcedStatus(Reachability::NotReachable);
    EXPECT_EQ(probe.currentReachabilityStatus(), Reachability::NotReachable);
    Reachability::setForcedStatus(std::nullopt);
}

} // namespace
