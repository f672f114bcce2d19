#pragma once
// A test suite sharing one forum server that takes posts without waiting time, with the
// client pointed at it for each test and a fresh phone-sized window; and the demo board that
// new topics go to. For screen tests, which link the screen kit and the records.

#include "ListModel.h"
#include "LocalForumServer.h"
#include "ServiceConfig.h"
#include "Window.h"

#include <gtest/gtest.h>

#include <QJsonObject>

namespace testsupport {

class ForumServerSuite : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        s_server = new LocalForumServer({QStringLiteral("--post-interval"), QStringLiteral("0")});
    }
    static void TearDownTestSuite()
    {
        delete s_server;
        s_server = nullptr;
    }

    void SetUp() override
    {
        ASSERT_TRUE(s_server->isRunning()) << s_server->errorString().toStdString();
        ServiceConfig::setApiRoot(s_server->apiRoot());
    }
    void TearDown() override { ServiceConfig::setApiRoot({}); }

    static inline LocalForumServer *s_server = nullptr;
    Window window;
};

// The demo board that new topics go to, as the payloads take it.
inline ListModel demoBoard()
{
    return ListModel::fromJson(QJsonObject{{QStringLiteral("sectionid"), LocalForumServer::Demo::kBoardId},
                                           {QStringLiteral("tagid"), LocalForumServer::Demo::kBoardTagId}});
}

} // namespace testsupport
