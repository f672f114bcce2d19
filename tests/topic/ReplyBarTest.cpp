// The reply bar: its text rules, how it follows the keyboard, and sending replies to the
// project's forum server.

#include "TopicScreenSupport.h"

#include "Button.h"
#include "ForumAnswer.h"
#include "FieldValue.h"
#include "ImageView.h"
#include "KeyboardObserver.h"
#include "LocalForumServer.h"
#include "MainScreen.h"
#include "NoticeOverlay.h"
#include "Reachability.h"
#include "RecordingHttpServer.h"
#include "RequestOrder.h"
#include "ServiceConfig.h"
#include "TextInputMode.h"
#include "TextView.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace topictest;
using Demo = LocalForumServer::Demo;

namespace {

const QString k35 = QStringLiteral("一二三四五六七八九十一二三四五六七八九十一二三四五六七八九十一二三四五");

class ReplyBarTest : public ForumServerSuite
{
protected:
    void TearDown() override
    {
        TextInputMode::selectSystemKeyboard();
        Reachability::setForcedStatus(std::nullopt);
        ForumServerSuite::TearDown();
    }

    std::shared_ptr<HostDetailViewController> openLoaded(qint64 tid = Demo::kNewestTopicId)
    {
        auto screen = makeScreen(tid, Demo::kBoardId);
        show(window, screen);
        EXPECT_TRUE(waitUntilLoaded(screen));
        return screen;
    }

    // A click where the button is on screen, given to whatever the window finds there, so a
    // button that ignores touches misses it.
    void clickSend(const std::shared_ptr<HostDetailViewController> &screen)
    {
        Button *send = screen->sender();
        QWidget *top = send->window();
        const QPoint at = send->mapTo(top, send->rect().center());
        QWidget *hit = top->childAt(at);
        ASSERT_NE(hit, nullptr);
        QTest::mouseClick(hit, Qt::LeftButton, {}, hit->mapFrom(top, at));
    }

    // Types into the reply box through its text rules, as a keyboard would.
    static void type(TextView *box, const QString &text)
    {
        for (const QChar unit : text)
            box->insertText(QString(unit));
    }

};

} // namespace

TEST_F(ReplyBarTest, HoldsAtMostThirtyFiveUnits)
{
    auto screen = openLoaded();
    TextView *box = screen->replyTextView();
    screen->textlabelAction();
    type(box, k35);
    EXPECT_EQ(box->text(), k35);
    box->insertText(QStringLiteral("多"));
    EXPECT_EQ(box->text(), k35);
    // A character outside the basic plane is two units: it does not fit after 34.
    box->setText(k35.left(34));
    box->insertText(QStringLiteral("😀"));
    EXPECT_EQ(box->text(), k35.left(34));
}

TEST_F(ReplyBarTest, PastingFiftyUnitsLeavesTheFirstThirtyFive)
{
    auto screen = openLoaded();
    TextView *box = screen->replyTextView();
    screen->textlabelAction();
    const QString fifty = k35 + QStringLiteral("一二三四五六七八九十一二三四五");
    ASSERT_EQ(fifty.size(), 50);
    QGuiApplication::clipboard()->setText(fifty);
    box->paste();
    EXPECT_EQ(box->text(), fifty.left(35));
}

TEST_F(ReplyBarTest, ReturnKeyEndsEditingWithoutALineUnlessTheBoxIsFull)
{
    auto screen = openLoaded();
    TextView *box = screen->replyTextView();
    screen->textlabelAction();
    type(box, QStringLiteral("好"));
    ASSERT_TRUE(box->isFirstResponder());
    box->insertText(QStringLiteral("\n"));
    EXPECT_EQ(box->text(), QStringLiteral("好"));
    EXPECT_FALSE(box->isFirstResponder());
    EXPECT_EQ(screen->textlabel()->frame(), QRectF(10, 5, 200, 15));

    // At 35 units the length rule comes first: the return key does nothing at all.
    screen->textlabelAction();
    box->setText(k35);
    box->insertText(QStringLiteral("\n"));
    EXPECT_TRUE(box->isFirstResponder());
    EXPECT_EQ(box->text(), k35);
}

TEST_F(ReplyBarTest, EmojiKeyboardChangesNothingNotEvenBackspace)
{
    auto screen = openLoaded();
    TextView *box = screen->replyTextView();
    screen->textlabelAction();
    type(box, QStringLiteral("你好"));
    TextInputMode::selectPrimaryLanguage(QStringLiteral("emoji"));
    box->insertText(QStringLiteral("😀"));
    box->replaceRange(Range{1, 1}, QString());
    EXPECT_EQ(box->text(), QStringLiteral("你好"));
    TextInputMode::selectSystemKeyboard();
    box->replaceRange(Range{1, 1}, QString());
    EXPECT_EQ(box->text(), QStringLiteral("你"));
}

TEST_F(ReplyBarTest, FramesFollowTheKeyboard)
{
    auto screen = openLoaded();
    const qreal W = MainScreen::width();
    const qreal H = MainScreen::height();
    const qreal K = KeyboardObserver::kKeyboardHeight;
    const qreal viewHeight = screen->view()->frame().height();

    EXPECT_EQ(screen->replyTextView()->frame(), QRectF(45, H - 40, W - 110, 50));
    EXPECT_EQ(screen->replyImage()->frame(), QRectF(15, H - 38, 20, 20));
    EXPECT_EQ(screen->sender()->frame(), QRectF(W - 55, H - 102, 50, 25));
    EXPECT_TRUE(screen->sender()->isHidden());
    EXPECT_EQ(screen->tableView()->frame(), QRectF(0, 0, W, viewHeight - 50));

    screen->textlabelAction();
    ASSERT_TRUE(testsupport::waitUntil([&] { return !screen->sender()->isHidden(); }));
    EXPECT_TRUE(screen->textlabel()->isHidden());
    EXPECT_EQ(screen->height, K);
    EXPECT_EQ(screen->replyTextView()->frame(), QRectF(45, H - 37 - K, W - 110, 50));
    EXPECT_EQ(screen->replyImage()->frame(), QRectF(15, H - 37 - K, 20, 20));
    EXPECT_EQ(screen->sender()->frame(), QRectF(W - 55, H - 37 - K, 50, 25));
    EXPECT_EQ(screen->tableView()->frame(), QRectF(0, 0, W, viewHeight - 50 - K));

    // Typing a line keeps the box within its first line's height.
    screen->replyTextView()->insertText(QStringLiteral("一"));
    EXPECT_LT(screen->replyTextView()->frame().height(), 41);
    EXPECT_EQ(screen->replyTextView()->frame().top(), H - 37 - K);

    screen->replyTextView()->setText(QString());
    screen->replyTextView()->resignFirstResponder();
    ASSERT_TRUE(testsupport::waitUntil([&] { return screen->sender()->isHidden(); }));
    EXPECT_FALSE(screen->textlabel()->isHidden());
    EXPECT_EQ(screen->replyTextView()->frame(), QRectF(45, H - 40, W - 110, 50));
    EXPECT_EQ(screen->replyImage()->frame(), QRectF(15, H - 36, 20, 20));
    EXPECT_EQ(screen->sender()->frame(), QRectF(W - 55, H - 102, 50, 25));
    EXPECT_EQ(screen->tableView()->frame(), QRectF(0, 0, W, viewHeight - 50));
}

TEST_F(ReplyBarTest, AnEmptySendKillsTheButtonForTheVisit)
{
    auto screen = openLoaded();
    screen->textlabelAction();
    ASSERT_TRUE(testsupport::waitUntil([&] { return !screen->sender()->isHidden(); }));
    const int repliesBefore = requestCount(s_server->log(), "RepliesleTopic");

    clickSend(screen);
    EXPECT_FALSE(screen->sender()->isUserInteractionEnabled());

    type(screen->replyTextView(), QStringLiteral("现在有字了"));
    clickSend(screen);
    // A send starts its requests at once; none started.
    EXPECT_EQ(HttpSessionManager::requestsInFlight(), 0);
    EXPECT_EQ(requestCount(s_server->log(), "RepliesleTopic"), repliesBefore);
    EXPECT_EQ(screen->replyTextView()->text(), QStringLiteral("现在有字了"));
}

TEST_F(ReplyBarTest, WithoutNetworkItSaysSoAndKeepsTheText)
{
    auto screen = openLoaded();
    screen->textlabelAction();
    type(screen->replyTextView(), QStringLiteral("断网了"));
    Reachability::setForcedStatus(Reachability::NotReachable);
    const int repliesBefore = requestCount(s_server->log(), "RepliesleTopic");
    screen->handleAction();
    ASSERT_NE(screen->hu(), nullptr);
    EXPECT_EQ(screen->hu()->labelText(), QStringLiteral("网络连接失败"));
    EXPECT_EQ(screen->replyTextView()->text(), QStringLiteral("断网了"));
    EXPECT_EQ(HttpSessionManager::requestsInFlight(), 0);
    EXPECT_EQ(requestCount(s_server->log(), "RepliesleTopic"), repliesBefore);
    // The notice goes away by itself after about a second.
    EXPECT_TRUE(testsupport::waitUntil([&] { return screen->hu() == nullptr; }, 3000));
}

TEST_F(ReplyBarTest, ASentReplyIsAnnouncedAndAppearsAfterTheReload)
{
    auto screen = openLoaded();
    screen->textlabelAction();
    const QString text = QStringLiteral("测试回复%1").arg(QDateTime::currentMSecsSinceEpoch() % 100000);
    type(screen->replyTextView(), text);
    const int detailsBefore = requestCount(s_server->log(), "TopicDetail");
    screen->handleAction();

    EXPECT_EQ(screen->replyTextView()->text(), QString());
    EXPECT_FALSE(screen->replyTextView()->isFirstResponder());
    ASSERT_TRUE(testsupport::waitUntil([&] { return screen->hu() && screen->hu()->labelText() == QStringLiteral("回复成功"); }));
    // Two reloads follow a send: one sent with the reply, and the refresh header's after its
    // slide-in.
    ASSERT_TRUE(testsupport::waitUntil([&] { return requestCount(s_server->log(), "TopicDetail") == detailsBefore + 2; }));
    ASSERT_TRUE(waitUntilLoaded(screen));
    QTest::qWait(RefreshControl::kSlideInMs);
    EXPECT_EQ(requestCount(s_server->log(), "TopicDetail"), detailsBefore + 2);
    const bool shown = std::any_of(screen->dataSource.begin(), screen->dataSource.end(), [&](const ReplyListModel &r) {
        return FieldValue::displayText(r.content()) == text;
    });
    EXPECT_TRUE(shown);
}

TEST_F(ReplyBarTest, ARefusedReplyIsReportedAsTooFrequent)
{
    LocalForumServer strict({QStringLiteral("--post-interval"), QStringLiteral("3600")});
    ASSERT_TRUE(strict.isRunning());
    ServiceConfig::setApiRoot(strict.apiRoot());
    auto screen = openLoaded();

    for (const QString &expected : {QStringLiteral("回复成功"), QStringLiteral("操作太频繁请稍后再试")}) {
        screen->textlabelAction();
        type(screen->replyTextView(), QStringLiteral("连续回复"));
        screen->handleAction();
        ASSERT_TRUE(testsupport::waitUntil([&] { return screen->hu() && screen->hu()->labelText() == expected; }))
            << expected.toStdString();
        ASSERT_TRUE(waitUntilLoaded(screen));
    }
}

TEST_F(ReplyBarTest, BannerRepliesSendTheScreensTidAndThePostersName)
{
    RecordingHttpServer recorder;
    ASSERT_TRUE(recorder.listen());
    recorder.setResponder([](const RecordingHttpServer::Request &) {
        return RecordingHttpServer::Response{
            200, "application/json",
            forumanswer::withRData(QJsonObject{{QStringLiteral("description"), QStringLiteral("回帖成功")}})};
    });
    ServiceConfig::setApiRoot(recorder.apiRoot());

    auto screen = makeScreen(1003, 1, QStringLiteral("风之旅人"));
    screen->postModel.setValueForKey(QStringLiteral("开服七天成长路线"), u"title");
    screen->result = HostDetailViewController::kOpenedFromBanner;
    screen->tid = 4242;
    show(window, screen);
    ASSERT_TRUE(testsupport::waitUntil([&] { return screen->isViewLoaded() && screen->page >= 2; }));

    screen->textlabelAction();
    type(screen->replyTextView(), QStringLiteral("横幅进来的"));
    screen->handleAction();
    ASSERT_TRUE(testsupport::waitUntil([&] {
        return std::any_of(recorder.requests().begin(), recorder.requests().end(),
                           [](const auto &r) { return r.path() == "/api/RepliesleTopic"; });
    }));
    for (const RecordingHttpServer::Request &request : recorder.requests()) {
        if (request.path() != "/api/RepliesleTopic")
            continue;
        const QJsonObject sent = forumanswer::requestPayload(request.query());
        EXPECT_EQ(sent.value(QStringLiteral("tid")), 4242);
        EXPECT_EQ(sent.value(QStringLiteral("title")), QStringLiteral("风之旅人"));
        EXPECT_EQ(sent.value(QStringLiteral("content")), QStringLiteral("横幅进来的"));
        EXPECT_EQ(sent.value(QStringLiteral("pid")), -1);
        EXPECT_EQ(sent.value(QStringLiteral("sectionid")), 1);
    }
}

TEST_F(ReplyBarTest, ASendPutsTheReplyThenItsReloadOnTheWireAndTheRefreshHeadersReloadLast)
{
    RecordingHttpServer recorder;
    ASSERT_TRUE(recorder.listen());
    recorder.setResponder([](const RecordingHttpServer::Request &request) {
        QJsonValue payload = QJsonObject{{QStringLiteral("title"), QStringLiteral("标题")},
                                         {QStringLiteral("topiccontent"), QStringLiteral("正文")}};
        if (request.path() == "/api/RepliesLog")
            payload = QJsonArray{};
        else if (request.path() == "/api/RepliesleTopic")
            payload = QJsonObject{{QStringLiteral("description"), QStringLiteral("回帖成功")}};
        return RecordingHttpServer::Response{200, "application/json", forumanswer::withRData(payload)};
    });
    ServiceConfig::setApiRoot(recorder.apiRoot());
    auto screen = makeScreen(1001, 1);
    show(window, screen);
    ASSERT_TRUE(waitUntilLoaded(screen));
    screen->textlabelAction();
    type(screen->replyTextView(), QStringLiteral("顺序"));
    const testsupport::RequestOrder order;
    const QStringList &sent = order.paths();
    recorder.clear();
    recorder.hold();

    screen->handleAction();
    // The reply, then the second load, go out at once; the refresh header's load only after
    // its slide-in, behind them.
    ASSERT_TRUE(testsupport::waitUntil([&] { return recorder.requests().size() >= 3; }));
    EXPECT_EQ(sent, (QStringList{"/api/RepliesleTopic", "/api/TopicDetail", "/api/RepliesLog"}));
    ASSERT_TRUE(testsupport::waitUntil([&] { return recorder.requests().size() >= 5; }));
    EXPECT_EQ(sent, (QStringList{"/api/RepliesleTopic", "/api/TopicDetail", "/api/RepliesLog", "/api/TopicDetail",
                                 "/api/RepliesLog"}));

    // The answer to the reply starts no load of its own.
    recorder.release();
    ASSERT_TRUE(testsupport::waitUntil([&] { return screen->hu() && screen->hu()->labelText() == QStringLiteral("回复成功"); }));
    ASSERT_TRUE(waitUntilLoaded(screen));
    QTest::qWait(RefreshControl::kSlideInMs + 100);
    EXPECT_EQ(sent.size(), 5);
    EXPECT_EQ(recorder.requests().size(), 5);
}
