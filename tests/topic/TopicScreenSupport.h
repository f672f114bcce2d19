#pragma once
// Opens topic screens in a phone-sized window against a running forum server, and waits
// for them to load.

#include "EventLoop.h"
#include "ForumServerSuite.h"
#include "LocalForumServer.h"
#include "ServiceConfig.h"
#include "FieldValue.h"
#include "ForumPayloads.h"
#include "HostDetailViewController.h"
#include "HttpRequest.h"
#include "HttpSessionManager.h"
#include "JsonChangDic.h"
#include "Label.h"
#include "NavigationController.h"
#include "RefreshHeader.h"
#include "TableView.h"
#include "Window.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonObject>

namespace topictest {

// The user the helpers below write as.
constexpr qint64 kWriterId = 7;

using testsupport::demoBoard;
using testsupport::ForumServerSuite;

// The screen has had its appearance, and every request it made has been answered.
inline bool waitUntilLoaded(const std::shared_ptr<HostDetailViewController> &screen)
{
    return testsupport::waitUntil([&screen] {
        return screen->isViewLoaded() && screen->page >= 2 && HttpSessionManager::requestsInFlight() == 0
               && !screen->tableView()->header()->isRefreshing();
    });
}

inline std::shared_ptr<HostDetailViewController> makeScreen(qint64 tid, qint64 section,
                                                            const QString &username = QStringLiteral("楼主"))
{
    auto screen = std::make_shared<HostDetailViewController>();
    screen->model.setValueForKey(section, u"sectionid");
    screen->postModel.setValueForKey(tid, u"tid");
    screen->postModel.setValueForKey(username, u"username");
    return screen;
}

// Shows `screen` as the root of a navigation controller in `window`.
inline void show(Window &window, const std::shared_ptr<HostDetailViewController> &screen)
{
    window.setRootViewController(std::make_shared<NavigationController>(screen));
    window.makeKeyAndVisible();
}

// The label of the header view the screen makes for `section` (whether or not the table
// shows it now).
inline QString sectionHeaderText(const std::shared_ptr<HostDetailViewController> &screen, int section)
{
    const std::unique_ptr<QWidget> header(screen->viewForHeaderInSection(screen->tableView(), section));
    const Label *label = header ? header->findChild<Label *>() : nullptr;
    return label ? label->text() : QString();
}

// Writes a topic on the demo board and returns its id (the newest topic of page 1).
inline qint64 postTopic(const QString &title)
{
    bool posted = false;
    HttpRequest::GetWriteTopicSuccessBlock(
        [&posted](const HttpTask &, const QJsonValue &) { posted = true; }, {},
        JsonChangDic::jsonWithDictionary(
            ForumPayloads::writeTopic(demoBoard(), kWriterId, title, QStringLiteral("正文"))));
    EXPECT_TRUE(testsupport::waitUntil([&posted] { return posted; }));
    qint64 tid = 0;
    HttpRequest::GetTopicsSuccessBlock(
        [&tid](const HttpTask &, const QJsonValue &topics) {
            tid = FieldValue::integerValue(topics.toArray().first().toObject().value(QStringLiteral("tid")));
        },
        {}, JsonChangDic::jsonWithDictionary(ForumPayloads::topics(demoBoard(), 1)));
    EXPECT_TRUE(testsupport::waitUntil([&tid] { return tid != 0; }));
    return tid;
}

// Replies `text` to the demo board's topic `tid`, titled `title`.
inline void postReply(qint64 tid, const QString &title, const QString &text)
{
    bool posted = false;
    HttpRequest::GetRepliesleTopicSuccessBlock(
        [&posted](const HttpTask &, const QJsonValue &) { posted = true; }, {},
        JsonChangDic::jsonWithDictionary(ForumPayloads::reply(demoBoard(), tid, title, kWriterId, text)));
    EXPECT_TRUE(testsupport::waitUntil([&posted] { return posted; }));
}

// The replies the server sends for the demo board's topic `tid`, as it sends them.
inline QJsonArray repliesOf(qint64 tid)
{
    PostModel topic;
    topic.setValueForKey(tid, u"tid");
    QJsonArray replies;
    bool answered = false;
    HttpRequest::GetRepliesLogSuccessBlock(
        [&](const HttpTask &, const QJsonValue &answer) {
            replies = answer.toArray();
            answered = true;
        },
        {}, JsonChangDic::jsonWithDictionary(ForumPayloads::topicDetail(demoBoard(), topic, kWriterId)));
    EXPECT_TRUE(testsupport::waitUntil([&answered] { return answered; }));
    return replies;
}

// How many requests the server logged for an endpoint.
inline int requestCount(const QByteArray &serverLog, const char *endpoint)
{
    return int(QString::fromUtf8(serverLog).count(QStringLiteral("/api/%1").arg(QString::fromLatin1(endpoint))));
}

} // namespace topictest
