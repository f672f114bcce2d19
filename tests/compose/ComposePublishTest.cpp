// Publishing: the checks in their order, the request as the server receives it, leaving the
// screen before the answer, the opener told once, and the answer's notice.

#include "ComposeSupport.h"

#include "DeviceInfo.h"
#include "ForumAnswer.h"
#include "HttpSessionManager.h"
#include "NoticeOverlay.h"
#include "RecordingHttpServer.h"
#include "TextView.h"
#include "UserDefaults.h"
#include "UserIdStore.h"

#include <QJsonArray>

using namespace composetest;

namespace {

const QString kBody805 = QString(805, QChar(u'字'));

class ComposePublishTest : public ComposeSuite
{
protected:
    // A server on a loopback port that answers every post with `description`.
    void recordInstead(const QString &description)
    {
        ASSERT_TRUE(recorder.listen());
        recorder.setResponder([description](const RecordingHttpServer::Request &) {
            return RecordingHttpServer::Response{
                200, "application/json",
                forumanswer::withRData(QJsonObject{{QStringLiteral("description"), description}})};
        });
        ServiceConfig::setApiRoot(recorder.apiRoot());
    }

    bool showsNotice(const QString &text) const
    {
        const auto notices = window.findChildren<NoticeOverlay *>();
        return std::any_of(notices.begin(), notices.end(),
                           [&text](const NoticeOverlay *n) { return n->labelText() == text; });
    }

    RecordingHttpServer recorder;
};

TEST_F(ComposePublishTest, ChecksComeInTheirOrderAndARefusalKeepsTheScreen)
{
    recordInstead(QStringLiteral("发帖成功"));
    auto composer = open();
    struct Case
    {
        QString title;
        QString body;
        bool online;
        QString notice;
    };
    const QList<Case> cases{
        {QString(), QString(), false, QStringLiteral("请输入标题")},
        {QStringLiteral("\n"), QStringLiteral("正文"), true, QStringLiteral("请输入标题")},
        {QStringLiteral("标题"), QString(), false, QStringLiteral("请输入正文")},
        {QStringLiteral("标题"), QStringLiteral("\n\n\n"), false, QStringLiteral("请输入正文")},
        {QStringLiteral("标题"), QStringLiteral("正文"), false, QStringLiteral("网络连接失败")},
    };
    for (const Case &c : cases) {
        fill(composer, c.title, c.body);
        Reachability::setForcedStatus(c.online ? Reachability::ReachableViaWiFi : Reachability::NotReachable);
        tapPublish();
        ASSERT_NE(composer->hu(), nullptr) << c.notice.toStdString();
        EXPECT_EQ(composer->hu()->labelText(), c.notice);
        EXPECT_EQ(composer->hu()->parentWidget(), &window);
        EXPECT_EQ(composer->titleText()->text(), c.title);
        EXPECT_EQ(composer->content()->text(), c.body);
    }
    testsupport::spinFor(100);
    EXPECT_EQ(navigation->topViewController(), composer.get());
    EXPECT_TRUE(opener->values.isEmpty());
    EXPECT_TRUE(recorder.requests().isEmpty());
}

TEST_F(ComposePublishTest, TheServerReceivesTheEightFields)
{
    recordInstead(QStringLiteral("发帖成功"));
    UserDefaults::standardUserDefaults().setObject(QStringLiteral("7"), QString::fromLatin1(UserIdStore::kKey));
    auto composer = open();
    // Spaces count as text in both boxes.
    fill(composer, QStringLiteral("  "), QStringLiteral(" "));
    tapPublish();
    ASSERT_TRUE(testsupport::waitUntil([&] { return !recorder.requests().isEmpty(); }));
    ASSERT_EQ(recorder.requests().size(), 1);
    const RecordingHttpServer::Request &request = recorder.requests().first();
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.path(), "/api/WriteTopic");
    const QJsonObject expected{{QStringLiteral("userid"), 7},
                               {QStringLiteral("sectionid"), Demo::kBoardId},
                               {QStringLiteral("tag"), Demo::kBoardTagId},
                               {QStringLiteral("title"), QStringLiteral("  ")},
                               {QStringLiteral("content"), QStringLiteral(" ")},
                               {QStringLiteral("imei"), DeviceInfo::getMachineUDID()},
                               {QStringLiteral("devicetype"), QStringLiteral("IOS")},
                               {QStringLiteral("imgs"), QJsonArray()}};
    EXPECT_EQ(forumanswer::requestPayload(request.query()), expected);
    EXPECT_EQ(composer->jsonDic, expected);
}

TEST_F(ComposePublishTest, PublishingLeavesAtOnceTellsTheOpenerOnceAndAnnouncesTheAnswer)
{
    auto composer = open();
    composer->titleText()->insertText(QStringLiteral("新手求助"));
    composer->content()->setText(kBody805);
    tapPublish();

    EXPECT_EQ(opener->values, QList<qint64>{ReleaseViewController::kPublishedValue});
    EXPECT_TRUE(opener->composerGoneWhenTold);
    ASSERT_TRUE(testsupport::waitUntil([&] { return showsNotice(QStringLiteral("发表成功")); }));
    EXPECT_EQ(navigation->visibleViewController(), opener.get());
    EXPECT_EQ(opener->values.size(), 1);
}

TEST_F(ComposePublishTest, TheAnswerKeepsTheScreenAliveAndIsShownOverWhatIsOnScreenThen)
{
    recordInstead(QStringLiteral("发帖太快"));
    recorder.hold();
    std::weak_ptr<ReleaseViewController> watched;
    {
        auto composer = open();
        watched = composer;
        fill(composer, QStringLiteral("标题"), QStringLiteral("正文"));
        tapPublish();
    }
    ASSERT_TRUE(testsupport::waitUntil([&] { return !navigation->isTransitioning() && !recorder.requests().isEmpty(); }));
    ASSERT_EQ(navigation->visibleViewController(), opener.get());
    EXPECT_FALSE(watched.expired());
    EXPECT_FALSE(showsNotice(QStringLiteral("操作太频繁请稍后再试")));

    recorder.release();
    ASSERT_TRUE(testsupport::waitUntil([&] { return showsNotice(QStringLiteral("操作太频繁请稍后再试")); }));
    EXPECT_TRUE(testsupport::waitUntil([&] { return watched.expired(); }));
    EXPECT_EQ(opener->values.size(), 1);
}

TEST_F(ComposePublishTest, WithoutADelegateNothingIsTold)
{
    recordInstead(QStringLiteral("发帖成功"));
    auto composer = open();
    composer->delegate = nullptr;
    fill(composer, QStringLiteral("标题"), QStringLiteral("正文"));
    tapPublish();
    ASSERT_TRUE(testsupport::waitUntil([&] { return showsNotice(QStringLiteral("发表成功")); }));
    EXPECT_TRUE(opener->values.isEmpty());
}

} // namespace
