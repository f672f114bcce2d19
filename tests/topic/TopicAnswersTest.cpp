// The topic screen against scripted answers: null and partial answers, answers that come
// after the screen has gone, and the reply request as the server receives it.

#include "TopicScreenSupport.h"

#include "FieldValue.h"
#include "ForumAnswer.h"
#include "RecordingHttpServer.h"
#include "TextView.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonObject>

using namespace topictest;

namespace {

class TopicAnswersTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(server.listen());
        ServiceConfig::setApiRoot(server.apiRoot());
        server.setResponder([this](const RecordingHttpServer::Request &request) {
            const QByteArray endpoint = request.path().mid(5);
            const QByteArray body = answers.contains(endpoint) ? answers.value(endpoint)
                                                               : forumanswer::withRData(QJsonValue::Null);
            return RecordingHttpServer::Response{200, "application/json", body};
        });
    }
    void TearDown() override { ServiceConfig::setApiRoot({}); }

    static bool allAnswered() { return HttpSessionManager::requestsInFlight() == 0; }

    QJsonObject sentTo(const QByteArray &endpoint) const
    {
        for (const RecordingHttpServer::Request &request : server.requests()) {
            if (request.path().endsWith(endpoint))
                return forumanswer::requestPayload(request.query());
        }
        return {};
    }

    RecordingHttpServer server;
    QMap<QByteArray, QByteArray> answers;
    Window window;
};

const QJsonArray kTwoReplies{QJsonObject{{QStringLiteral("content"), QStringLiteral("一")}, {QStringLiteral("istop"), 0}},
                             QJsonObject{{QStringLiteral("content"), QStringLiteral("二")}, {QStringLiteral("istop"), 1}}};

} // namespace

TEST_F(TopicAnswersTest, NullTopicKeepsTheHeaderAndAnUnansweredLoadKeepsRefreshing)
{
    answers["TopicDetail"] = forumanswer::withRData(QJsonValue::Null);
    answers["RepliesLog"] = R"({"Data":null})"; // the transport calls nothing for this
    auto screen = makeScreen(5, 1);
    show(window, screen);
    ASSERT_TRUE(testsupport::waitUntil([&] { return screen->page >= 2 && allAnswered(); }));
    HeadView *initial = screen->headV();
    EXPECT_EQ(initial->title()->text(), QString());
    EXPECT_TRUE(screen->tableView()->header()->isRefreshing());
}

TEST_F(TopicAnswersTest, NullRepliesEndRefreshingAndKeepTheLists)
{
    answers["RepliesLog"] = forumanswer::withRData(kTwoReplies);
    auto screen = makeScreen(5, 1);
    show(window, screen);
    ASSERT_TRUE(testsupport::waitUntil([&] { return screen->page >= 2 && allAnswered(); }));
    ASSERT_EQ(screen->dataSource.size(), 1);
    ASSERT_EQ(screen->titels.size(), 1);

    answers["RepliesLog"] = forumanswer::withRData(QJsonValue::Null);
    screen->tableView()->header()->beginRefreshing();
    ASSERT_TRUE(testsupport::waitUntil([&] { return screen->page >= 3 && allAnswered(); }));
    EXPECT_FALSE(screen->tableView()->header()->isRefreshing());
    EXPECT_EQ(screen->dataSource.size(), 1);
    EXPECT_EQ(screen->titels.size(), 1);
}

TEST_F(TopicAnswersTest, AbsentTopicTextsMeasureNothing)
{
    answers["TopicDetail"] = forumanswer::withRData(QJsonObject{{QStringLiteral("time"), QStringLiteral("刚刚")}});
    auto screen = makeScreen(5, 1);
    show(window, screen);
    ASSERT_TRUE(testsupport::waitUntil([&] { return screen->page >= 2 && allAnswered(); }));
    EXPECT_EQ(screen->height, 0);
    EXPECT_EQ(screen->titleH, 0);
    EXPECT_DOUBLE_EQ(screen->headV()->frame().height(), 102);
    EXPECT_EQ(screen->headV()->time()->text(), QStringLiteral("刚刚"));
}

TEST_F(TopicAnswersTest, AnswersArrivingAfterADismissedScreenAreIgnored)
{
    auto root = std::make_shared<NavigationController>(std::make_shared<ViewController>());
    window.setRootViewController(root);
    window.makeKeyAndVisible();
    answers["TopicDetail"] = forumanswer::withRData(QJsonObject{{QStringLiteral("title"), QStringLiteral("标题")}});
    answers["RepliesLog"] = forumanswer::withRData(kTwoReplies);

    std::weak_ptr<HostDetailViewController> watched;
    {
        auto screen = makeScreen(5, 1);
        screen->result = HostDetailViewController::kOpenedFromNotification;
        watched = screen;
        server.hold();
        root->presentViewController(std::make_shared<NavigationController>(screen), false);
        ASSERT_TRUE(testsupport::waitUntil([&] { return server.requests().size() >= 2; }));
        screen->backAction();
    }
    ASSERT_TRUE(testsupport::waitUntil([&] { return root->presentedViewController() == nullptr; }));
    server.release();
    ASSERT_TRUE(testsupport::waitUntil(allAnswered));
    // The answers held the screen until they ran; once they ran, nothing holds it.
    EXPECT_TRUE(watched.expired());
}

TEST_F(TopicAnswersTest, RepliesFromABoardSendTheTopicsIdAndTitle)
{
    auto screen = makeScreen(4101, 3, QStringLiteral("楼主"));
    screen->postModel.setValueForKey(QStringLiteral("组队刷本"), u"title");
    screen->tid = 999; // only the banner path uses the screen's own id
    show(window, screen);
    ASSERT_TRUE(testsupport::waitUntil([&] { return screen->page >= 2 && allAnswered(); }));

    screen->textlabelAction();
    screen->replyTextView()->insertText(QStringLiteral("来了"));
    screen->handleAction();
    ASSERT_TRUE(testsupport::waitUntil(allAnswered));
    const QJsonObject sent = sentTo("RepliesleTopic");
    EXPECT_EQ(sent.value(QStringLiteral("tid")), 4101);
    EXPECT_EQ(sent.value(QStringLiteral("title")), QStringLiteral("组队刷本"));
    EXPECT_EQ(sent.value(QStringLiteral("sectionid")), 3);
    EXPECT_EQ(sent.value(QStringLiteral("content")), QStringLiteral("来了"));
    EXPECT_EQ(sent.value(QStringLiteral("pid")), -1);
    EXPECT_EQ(sent.value(QStringLiteral("imgs")), QJsonArray());
    EXPECT_EQ(sent.value(QStringLiteral("devicetype")), QStringLiteral("IOS"));
    EXPECT_TRUE(sent.value(QStringLiteral("userid")).isDouble());
}

TEST_F(TopicAnswersTest, ReplacingASelectionCountsWhatItRemoves)
{
    auto screen = makeScreen(5, 1);
    show(window, screen);
    ASSERT_TRUE(testsupport::waitUntil([&] { return screen->page >= 2 && allAnswered(); }));
    TextView *box = screen->replyTextView();
    screen->textlabelAction();
    box->setText(QString(34, u'字'));
    // 34 - 2 + 3 = 35 fits; 34 - 1 + 3 = 36 does not.
    EXPECT_TRUE(box->replaceRange(Range{0, 2}, QStringLiteral("一二三")));
    EXPECT_EQ(box->text().size(), 35);
    EXPECT_FALSE(box->replaceRange(Range{0, 1}, QStringLiteral("一二")));
    EXPECT_EQ(box->text().size(), 35);
}
