// The topic screen as an assistive tool reads it, walking the tree from the window, against
// the project's forum server: its rows, reply bar, picture, bar and refresh header.

#include "TopicScreenSupport.h"

#include "AccessibleTree.h"
#include "NavigationBar.h"
#include "NavigationItem.h"
#include "QStringPrinter.h"

#include <gtest/gtest.h>

#include <QAccessible>

using namespace topictest;
using Demo = LocalForumServer::Demo;

namespace {

const QString kPress = QAccessibleActionInterface::pressAction();
const QString kPlaceholder = QStringLiteral("来一条高能回帖");
const QString kIdleHeader = QStringLiteral("下拉可以刷新");

class TopicAccessibilityTest : public ForumServerSuite
{
protected:
    // Opens the topic pushed over a blank first screen, so the bar offers a way back.
    void open(qint64 tid)
    {
        screen = makeScreen(tid, Demo::kBoardId);
        navigation = std::make_shared<NavigationController>(std::make_shared<ViewController>());
        window.setRootViewController(navigation);
        window.makeKeyAndVisible();
        navigation->pushViewController(screen, false);
        ASSERT_TRUE(waitUntilLoaded(screen));
        ASSERT_TRUE(testsupport::waitUntil([this] { return !navigation->isTransitioning(); }));
    }

    // The one node under the window with that role and name; null when there is none or more.
    QAccessibleInterface *theOne(QAccessible::Role role, const QString &name)
    {
        const QList<QAccessibleInterface *> found = testsupport::accessibleNamed(&window, role, name);
        return found.size() == 1 ? found.first() : nullptr;
    }

    std::shared_ptr<HostDetailViewController> screen;
    std::shared_ptr<NavigationController> navigation;
};

TEST_F(TopicAccessibilityTest, RowsReadPosterTimeAndTextOfTheRepliesTheServerSent)
{
    const QString title = QStringLiteral("读屏看回复");
    const QStringList texts{QStringLiteral("第一条给读屏的回复"), QStringLiteral("第二条给读屏的回复")};
    const qint64 tid = postTopic(title);
    for (const QString &text : texts)
        postReply(tid, title, text);
    QStringList expected;
    QStringList sentTexts;
    for (const QJsonValue &value : repliesOf(tid)) {
        const QJsonObject reply = value.toObject();
        sentTexts << reply.value(QStringLiteral("content")).toString();
        expected << QStringList{reply.value(QStringLiteral("username")).toString(),
                                reply.value(QStringLiteral("timeformat")).toString(),
                                reply.value(QStringLiteral("content")).toString()}
                        .join(QStringLiteral(", "));
    }
    sentTexts.sort();
    ASSERT_EQ(sentTexts, texts);

    open(tid);
    // The rows are laid out once control returns to the event loop after the answer.
    QStringList rows;
    testsupport::waitUntil([&] {
        rows = testsupport::shownAccessibleNames(&window, QAccessible::ListItem);
        return rows.size() >= expected.size();
    });
    rows.sort();
    expected.sort();
    EXPECT_EQ(rows, expected);
}

TEST_F(TopicAccessibilityTest, ReplyBoxIsNamedByItsPlaceholderAndFocusingItShowsSend)
{
    open(Demo::kNewestTopicId);
    QAccessibleInterface *box = theOne(QAccessible::EditableText, kPlaceholder);
    QAccessibleInterface *placeholder = theOne(QAccessible::Button, kPlaceholder);
    QAccessibleInterface *send = theOne(QAccessible::Button, QStringLiteral("发送"));
    ASSERT_NE(box, nullptr);
    ASSERT_NE(placeholder, nullptr);
    ASSERT_NE(send, nullptr);
    EXPECT_EQ(placeholder->actionInterface()->actionNames(), QStringList{kPress});
    EXPECT_NE(theOne(QAccessible::Graphic, QStringLiteral("回帖")), nullptr);
    EXPECT_TRUE(send->state().invisible);
    EXPECT_FALSE(box->state().focused);

    box->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
    EXPECT_TRUE(box->state().focused);
    ASSERT_TRUE(testsupport::waitUntil([send] { return !send->state().invisible; }));
    EXPECT_FALSE(send->state().disabled);
    EXPECT_EQ(send->actionInterface()->actionNames(), QStringList{kPress});

    // Sending nothing switches the button off for the visit, and a reader is told so.
    send->actionInterface()->doAction(kPress);
    EXPECT_TRUE(send->state().disabled);
    EXPECT_TRUE(send->actionInterface()->actionNames().isEmpty());
}

TEST_F(TopicAccessibilityTest, BarReadsTheTitleAndBackAndTheHeaderRefreshesWhenPressed)
{
    open(Demo::kNewestTopicId);
    EXPECT_EQ(testsupport::shownAccessibleNames(navigation->navigationBar(), QAccessible::StaticText),
              QStringList{QStringLiteral("详情")});

    QAccessibleInterface *header = theOne(QAccessible::Button, kIdleHeader);
    ASSERT_NE(header, nullptr);
    const int loadsBefore = requestCount(s_server->log(), "RepliesLog");
    header->actionInterface()->doAction(kPress);
    EXPECT_EQ(header->text(QAccessible::Name), QStringLiteral("正在刷新数据中..."));
    ASSERT_TRUE(testsupport::waitUntil([&] { return requestCount(s_server->log(), "RepliesLog") > loadsBefore; }));
    ASSERT_TRUE(waitUntilLoaded(screen));
    EXPECT_EQ(header->text(QAccessible::Name), kIdleHeader);

    QAccessibleInterface *back = theOne(QAccessible::Button, QStringLiteral("返回"));
    ASSERT_NE(back, nullptr);
    back->actionInterface()->doAction(kPress);
    EXPECT_TRUE(testsupport::waitUntil([this] { return navigation->visibleViewController() != screen.get(); }));
}

} // namespace
