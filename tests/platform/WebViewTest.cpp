// The web view in the real engine, headless, against the project's forum server: http pages
// load with their title and text; any other address leaves a blank page and one log line; a
// page cannot take itself to another scheme nor open windows.
#include "EventLoop.h"
#include "LocalForumServer.h"
#include "LogCapture.h"
#include "WebEngineSetup.h"
#include "WebView.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QWebEnginePage>

#include <memory>
#include <optional>

namespace {

// The kit's log lines as one text, for readable failures.
std::string linesOf(const LogCapture &log)
{
    return log.lines().join(u'\n').toStdString();
}

// Chromium is set up before the test main constructs the application.
[[maybe_unused]] const bool kWebEnginePrepared = (WebEngineSetup::prepareProcess(), true);

constexpr int kTimeoutMs = 10000;
const QByteArray kKitLog = "quorvel.kit";
const QUrl kBlank(QStringLiteral("about:blank"));

// The server's first and second promotion pages.
const QString kFirstTitle = QStringLiteral("夏日庆典 · 登录领限定坐骑");
const QString kFirstParagraph = QStringLiteral("活动时间：七月一日至七月三十一日。");
const QString kFirstPageText = QStringLiteral(
    "夏日庆典 · 登录领限定坐骑\n\n"
    "活动时间：七月一日至七月三十一日。\n\n"
    "活动期间每日登录即可领取庆典礼包，累计登录七天可获得限定坐骑「海风鲸」。\n\n"
    "第一天：钻石 × 100\n第三天：体力药水 × 5\n第七天：限定坐骑\n\n"
    "奖励通过邮件发放，请在七天内领取。");
const QString kSecondTitle = QStringLiteral("组队招募季：寻找你的伙伴");

class WebViewTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite() { server = new LocalForumServer; }
    static void TearDownTestSuite()
    {
        delete server;
        server = nullptr;
    }
    void SetUp() override
    {
        ASSERT_TRUE(server->isRunning()) << server->errorString().toStdString();
        view.show();
    }

    static QUrl page(int number) { return QUrl(server->origin() + QStringLiteral("/pages/%1.html").arg(number)); }

    // Loads through loadRequest and answers loadFinished's verdict, or nothing on a timeout.
    std::optional<bool> load(const QUrl &url)
    {
        QSignalSpy finished(&view, &QWebEngineView::loadFinished);
        view.loadRequest(url);
        if (!finished.wait(kTimeoutMs))
            return std::nullopt;
        return finished.last().first().toBool();
    }

    // The page's answers, or nothing on a timeout. They are shared with the callback, which
    // may still come after a timeout.
    std::optional<QVariant> evaluate(const QString &script)
    {
        auto result = std::make_shared<std::optional<QVariant>>();
        view.page()->runJavaScript(script, [result](const QVariant &value) { *result = value; });
        testsupport::waitUntil([&] { return result->has_value(); }, kTimeoutMs);
        return *result;
    }

    std::optional<QString> plainText()
    {
        auto result = std::make_shared<std::optional<QString>>();
        view.page()->toPlainText([result](const QString &text) { *result = text; });
        testsupport::waitUntil([&] { return result->has_value(); }, kTimeoutMs);
        return *result;
    }

    static LocalForumServer *server;
    WebView view{QRectF(0, 64, 375, 603.5)};
};

LocalForumServer *WebViewTest::server = nullptr;

TEST_F(WebViewTest, anHttpPageLoadsWithItsTitleAndText)
{
    LogCapture log(kKitLog);
    EXPECT_EQ(view.frame(), QRectF(0, 64, 375, 603.5));
    EXPECT_EQ(view.geometry(), QRect(0, 64, 375, 604));

    ASSERT_EQ(load(page(1)), true);
    EXPECT_EQ(view.url(), page(1));
    EXPECT_EQ(view.title(), kFirstTitle);
    EXPECT_EQ(evaluate(QStringLiteral("document.querySelector('h1').textContent")), QVariant(kFirstTitle));
    EXPECT_EQ(evaluate(QStringLiteral("document.querySelector('p').textContent")), QVariant(kFirstParagraph));
    EXPECT_EQ(plainText().value_or(QString()).toStdString(), kFirstPageText.toStdString());

    ASSERT_EQ(load(page(2)), true);
    EXPECT_EQ(view.title(), kSecondTitle);
    EXPECT_EQ(linesOf(log), "");
}

TEST_F(WebViewTest, anyOtherAddressLeavesABlankPageAndOneLogLine)
{
    const QString refusal = QStringLiteral("WebView: refused to load %1: only http and https pages are shown");
    const struct
    {
        QUrl url;
        QString logged;  // how the line names the URL
    } refused[] = {
        {QUrl(), QStringLiteral("an empty URL")},
        {QUrl(QStringLiteral("file:///etc/hostname")), QStringLiteral("\"file:///etc/hostname\"")},
        {QUrl(QStringLiteral("javascript:document.title='taken'")),
         QStringLiteral("\"javascript:document.title='taken'\"")},
        {QUrl(QStringLiteral("data:text/html,<title>taken</title>")),
         QStringLiteral("\"data:text/html,%3Ctitle%3Etaken%3C/title%3E\"")},
        {QUrl(QStringLiteral("qrc:/images/x.svg")), QStringLiteral("\"qrc:/images/x.svg\"")},
        {QUrl(QStringLiteral("ftp://127.0.0.1/pages/1.html")), QStringLiteral("\"ftp://127.0.0.1/pages/1.html\"")},
        {QUrl(QStringLiteral("http:/pages/1.html")), QStringLiteral("\"http:/pages/1.html\"")},
    };
    LogCapture log(kKitLog);
    for (const auto &item : refused) {
        SCOPED_TRACE(item.url.toString().toStdString());
        ASSERT_EQ(load(page(1)), true);
        log.clear();
        ASSERT_TRUE(load(item.url).has_value());
        EXPECT_EQ(view.url(), kBlank);
        EXPECT_EQ(plainText(), QString(""));
        EXPECT_EQ(evaluate(QStringLiteral("document.title")), QVariant(QString()));
        EXPECT_EQ(linesOf(log), refusal.arg(item.logged).toStdString());
    }

    // A malformed URL names what is wrong with it.
    log.clear();
    ASSERT_TRUE(load(QUrl(QStringLiteral("http://[::1"))).has_value());
    EXPECT_EQ(view.url(), kBlank);
    ASSERT_EQ(log.lines().size(), 1);
    EXPECT_TRUE(log.lines().first().startsWith(QStringLiteral("WebView: refused to load a malformed URL (")))
        << log.lines().first().toStdString();

    // A very long address is cut short in the line.
    log.clear();
    const QString longData = QStringLiteral("data:text/plain,") + QString(1000, u'x');
    ASSERT_TRUE(load(QUrl(longData)).has_value());
    EXPECT_EQ(linesOf(log), refusal.arg(u'"' + longData.left(200) + QStringLiteral("…\"")).toStdString());
}

TEST_F(WebViewTest, aPageCanGoToOtherWebPagesButNotToOtherSchemesNorOpenWindows)
{
    LogCapture log(kKitLog);
    ASSERT_EQ(load(page(1)), true);
    const QString refusal =
        QStringLiteral("WebView: refused to go to \"%1\" from a page's %2: only http and https are shown");

    // The app's own resources.
    evaluate(QStringLiteral("location.href = 'qrc:/images/x.svg'"));
    ASSERT_TRUE(testsupport::waitUntil([&] { return !log.lines().isEmpty(); }, kTimeoutMs));
    EXPECT_EQ(linesOf(log), refusal.arg(QStringLiteral("qrc:/images/x.svg"), QStringLiteral("main frame")).toStdString());

    // A page of its own making, which the engine itself would allow.
    log.clear();
    const std::optional<QVariant> blob = evaluate(QStringLiteral(
        "const address = URL.createObjectURL(new Blob(['<title>taken</title>'], {type: 'text/html'}));"
        "location.href = address; address"));
    ASSERT_TRUE(blob.has_value());
    ASSERT_TRUE(testsupport::waitUntil([&] { return !log.lines().isEmpty(); }, kTimeoutMs));
    EXPECT_EQ(linesOf(log), refusal.arg(blob->toString(), QStringLiteral("main frame")).toStdString());

    // A frame inside the page.
    log.clear();
    evaluate(QStringLiteral("document.body.insertAdjacentHTML('beforeend', "
                            "'<iframe src=\"data:text/html,inside\"></iframe>'); 0"));
    ASSERT_TRUE(testsupport::waitUntil([&] { return !log.lines().isEmpty(); }, kTimeoutMs));
    EXPECT_EQ(linesOf(log), refusal.arg(QStringLiteral("data:text/html,inside"), QStringLiteral("frame")).toStdString());

    // No windows, whatever they would show.
    int windows = 0;
    QObject::connect(view.page(), &QWebEnginePage::newWindowRequested, [&] { ++windows; });
    EXPECT_EQ(evaluate(QStringLiteral("window.open('%1') === null").arg(page(2).toString())), QVariant(true));

    EXPECT_EQ(view.url(), page(1));
    EXPECT_EQ(view.title(), kFirstTitle);

    // Another web page is fine.
    log.clear();
    QSignalSpy finished(&view, &QWebEngineView::loadFinished);
    evaluate(QStringLiteral("location.href = '/pages/2.html'"));
    ASSERT_TRUE(finished.wait(kTimeoutMs));
    EXPECT_EQ(finished.last().first(), QVariant(true));
    EXPECT_EQ(view.url(), page(2));
    EXPECT_EQ(view.title(), kSecondTitle);
    EXPECT_EQ(windows, 0);
    EXPECT_EQ(linesOf(log), "");
}

} // namespace
