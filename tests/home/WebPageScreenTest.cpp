// The web page screen in the real engine, headless, against the project's forum server:
// pushed from the home screen with a banner item's page address, it shows that page over the
// whole screen under an untitled bar with only the back button; an address that is no http
// or https page leaves the page blank.
#include "EventLoop.h"
#include "LocalForumServer.h"
#include "LogCapture.h"
#include "WebEngineSetup.h"
#include "WebViewController.h"

#include "Button.h"
#include "Label.h"
#include "NavigationBar.h"
#include "NavigationController.h"
#include "View.h"
#include "Window.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>
#include <QWebEnginePage>

#include <memory>
#include <optional>

namespace {

// Chromium is set up before the test main constructs the application.
[[maybe_unused]] const bool kWebEnginePrepared = (WebEngineSetup::prepareProcess(), true);

constexpr int kTimeoutMs = 10000;
const QByteArray kKitLog = "quorvel.kit";
const QUrl kBlank(QStringLiteral("about:blank"));
const QString kHomeTitle = QStringLiteral("Quorvel");
const QString kBackTitle = QStringLiteral("‹ Quorvel");

// The page behind the demo forum's first banner page item (its second banner item).
const QString kBannerPagePath = QStringLiteral("/pages/1.html");
const QString kBannerPageTitle = QStringLiteral("夏日庆典 · 登录领限定坐骑");

class WebPageScreenTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite() { server = new LocalForumServer; }
    static void TearDownTestSuite()
    {
        delete server;
        server = nullptr;
    }
    void SetUp() override { ASSERT_TRUE(server->isRunning()) << server->errorString().toStdString(); }

    static QString bannerPage() { return server->origin() + kBannerPagePath; }

    // Shows a home screen in `window` and pushes the web page screen for `url` on it, as a
    // banner tap does. Answers loadFinished's verdict once the screen is shown, or nothing on
    // a timeout.
    std::optional<bool> open(Window &window, const QString &url)
    {
        auto home = std::make_shared<ViewController>();
        home->setTitle(kHomeTitle);
        navigation = std::make_shared<NavigationController>(home);
        window.setRootViewController(navigation);
        window.makeKeyAndVisible();

        screen = std::make_shared<WebViewController>();
        navigation->pushViewController(screen, true);
        screen->url = url;
        // The view the push loads on the next turn, loaded now to watch the page from its start.
        screen->view();
        QSignalSpy finished(screen->webV(), &QWebEngineView::loadFinished);
        if (!finished.wait(kTimeoutMs))
            return std::nullopt;
        if (!testsupport::waitUntil([&] { return !navigation->isTransitioning(); }, kTimeoutMs))
            return std::nullopt;
        return finished.last().first().toBool();
    }

    std::optional<QString> plainText()
    {
        auto result = std::make_shared<std::optional<QString>>();
        screen->webV()->page()->toPlainText([result](const QString &text) { *result = text; });
        testsupport::waitUntil([&] { return result->has_value(); }, kTimeoutMs);
        return *result;
    }

    static LocalForumServer *server;
    std::shared_ptr<NavigationController> navigation;
    std::shared_ptr<WebViewController> screen;
};

LocalForumServer *WebPageScreenTest::server = nullptr;

TEST_F(WebPageScreenTest, theBannerPageLoadsUnderAnUntitledBarWithOnlyTheBackButton)
{
    Window window;
    LogCapture log(kKitLog);
    ASSERT_EQ(open(window, bannerPage()), true);
    EXPECT_EQ(navigation->visibleViewController(), screen.get());
    EXPECT_EQ(screen->webV()->url(), QUrl(bannerPage()));
    EXPECT_EQ(screen->webV()->title(), kBannerPageTitle);
    EXPECT_EQ(log.lines(), QStringList());

    EXPECT_EQ(screen->title(), QString());
    NavigationBar *bar = navigation->navigationBar();
    EXPECT_EQ(bar->titleLabel()->text(), QString());
    EXPECT_TRUE(bar->leftButton()->isHidden());
    EXPECT_TRUE(bar->rightButton()->isHidden());
    EXPECT_FALSE(bar->backButton()->isHidden());
    EXPECT_EQ(bar->backButton()->title(), kBackTitle);

    // The back button leaves the screen.
    QTest::mouseClick(bar->backButton(), Qt::LeftButton);
    ASSERT_TRUE(testsupport::waitUntil([&] { return navigation->viewControllers().size() == 1; }, kTimeoutMs));
    ASSERT_TRUE(testsupport::waitUntil([&] { return !navigation->isTransitioning(); }, kTimeoutMs));
    EXPECT_EQ(navigation->visibleViewController()->title(), kHomeTitle);
}

TEST_F(WebPageScreenTest, thePageCoversTheWholePhoneScreenUnderTheBar)
{
    Window window;
    ASSERT_EQ(open(window, bannerPage()), true);
    EXPECT_TRUE(navigation->navigationBar()->isTranslucent());
    EXPECT_EQ(screen->view()->frame(), QRectF(0, 0, 375, 667));
    EXPECT_EQ(screen->webV()->parentWidget(), screen->view());
    EXPECT_EQ(screen->webV()->frame(), QRectF(0, 0, 375, 667));
    EXPECT_EQ(screen->webV()->geometry(), QRect(0, 0, 375, 667));
}

TEST_F(WebPageScreenTest, onASmallPhoneThePageTakesItsScreen)
{
    Window small(QSize(320, 568));
    ASSERT_EQ(open(small, bannerPage()), true);
    EXPECT_EQ(screen->webV()->title(), kBannerPageTitle);
    EXPECT_EQ(screen->view()->frame(), QRectF(0, 0, 320, 568));
    EXPECT_EQ(screen->webV()->frame(), QRectF(0, 0, 320, 568));
    EXPECT_EQ(screen->webV()->geometry(), QRect(0, 0, 320, 568));
}

TEST_F(WebPageScreenTest, anAddressThatIsNoWebPageLeavesTheScreenBlank)
{
    const QString refusal = QStringLiteral("WebView: refused to load %1: only http and https pages are shown");
    const struct
    {
        QString url;
        QString logged; // how the kit's log line names the URL
    } refused[] = {
        {QString(), QStringLiteral("an empty URL")},
        {QStringLiteral("file:///etc/hostname"), QStringLiteral("\"file:///etc/hostname\"")},
        {QStringLiteral("javascript:document.title='taken'"), QStringLiteral("\"javascript:document.title='taken'\"")},
    };
    for (const auto &item : refused) {
        SCOPED_TRACE(item.url.toStdString());
        Window window;
        LogCapture log(kKitLog);
        ASSERT_TRUE(open(window, item.url).has_value());
        EXPECT_EQ(navigation->visibleViewController(), screen.get());
        EXPECT_EQ(screen->webV()->url(), kBlank);
        EXPECT_EQ(plainText(), QString(""));
        EXPECT_EQ(screen->webV()->frame(), QRectF(0, 0, 375, 667));
        EXPECT_EQ(log.lines(), QStringList{refusal.arg(item.logged)});
    }

    // Text that is no well-formed URL is refused as malformed.
    Window window;
    LogCapture log(kKitLog);
    ASSERT_TRUE(open(window, QStringLiteral("http://[::1")).has_value());
    EXPECT_EQ(screen->webV()->url(), kBlank);
    EXPECT_EQ(plainText(), QString(""));
    ASSERT_EQ(log.lines().size(), 1);
    EXPECT_TRUE(log.lines().first().startsWith(QStringLiteral("WebView: refused to load a malformed URL (")))
        << log.lines().first().toStdString();
}

} // namespace
