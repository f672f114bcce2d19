// quorvel-cli against the project's forum server: the first run obtains a temporary user
// the way the app does, later runs reuse it, and every command reads its answer.

#include "LocalForumServer.h"
#include "ProgramRun.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>

namespace {

using Demo = LocalForumServer::Demo;

class CliTest : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(server.isRunning()) << server.errorString().toStdString(); }

    // Runs the CLI with its own XDG folders, so its user defaults start empty.
    testsupport::ProgramResult cli(const QStringList &arguments)
    {
        std::map<QString, QString> environment{{QStringLiteral("QUORVEL_API_ROOT"), server.apiRoot()}};
        for (const char *name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"})
            environment[QString::fromLatin1(name)] = home.filePath(QString::fromLatin1(name));
        return testsupport::runProgram(QStringLiteral(QUORVEL_CLI_BINARY), arguments, environment);
    }

    LocalForumServer server{{QStringLiteral("--post-interval"), QStringLiteral("0")}};
    QTemporaryDir home;
};

} // namespace

TEST_F(CliTest, FirstRunGetsATemporaryUserAndLaterRunsKeepIt)
{
    const testsupport::ProgramResult first = cli({QStringLiteral("boards")});
    ASSERT_EQ(first.exitCode, 0) << first.errors.toStdString();
    EXPECT_TRUE(first.out.contains(QStringLiteral("临时用户")));
    EXPECT_TRUE(first.out.contains(QString::fromUtf8(Demo::kBoardName)));
    EXPECT_EQ(QString::fromUtf8(server.log()).count(QStringLiteral("/api/GetTempUserInfo")), 1);

    const testsupport::ProgramResult second = cli({QStringLiteral("boards"), QStringLiteral("--json")});
    ASSERT_EQ(second.exitCode, 0);
    EXPECT_FALSE(second.out.contains(QStringLiteral("临时用户")));
    EXPECT_EQ(QJsonDocument::fromJson(second.out.toUtf8()).array().size(), Demo::kBoardCount);
    EXPECT_EQ(QString::fromUtf8(server.log()).count(QStringLiteral("/api/GetTempUserInfo")), 1);
}

TEST_F(CliTest, ReadsPagesTopicsAndPosts)
{
    const QString board = QString::number(Demo::kBoardId);
    const testsupport::ProgramResult lastPage = cli({QStringLiteral("topics"), board, QStringLiteral("--page"), QStringLiteral("5"),
                              QStringLiteral("--json")});
    ASSERT_EQ(lastPage.exitCode, 0) << lastPage.errors.toStdString();
    EXPECT_EQ(QJsonDocument::fromJson(lastPage.out.toUtf8()).array().size(), Demo::kBoardOrdinaryTopics % 10);

    const testsupport::ProgramResult topic = cli({QStringLiteral("topic"), QString::number(Demo::kManyRepliesTopicId),
                           QStringLiteral("--section"), board});
    ASSERT_EQ(topic.exitCode, 0);
    EXPECT_TRUE(topic.out.contains(QStringLiteral("全部回复(%1)").arg(Demo::kManyRepliesFirstPageOrdinary)));

    const testsupport::ProgramResult posted = cli({QStringLiteral("post"), board, QStringLiteral("--title"), QStringLiteral("命令行发帖"),
                            QStringLiteral("--content"), QStringLiteral("内容")});
    EXPECT_EQ(posted.exitCode, 0) << posted.out.toStdString();
    EXPECT_TRUE(posted.out.startsWith(QStringLiteral("发表成功")));
    const testsupport::ProgramResult empty = cli({QStringLiteral("post"), board, QStringLiteral("--title"), QString(),
                           QStringLiteral("--content"), QStringLiteral("内容")});
    EXPECT_EQ(empty.exitCode, 1);
    EXPECT_TRUE(empty.out.startsWith(QStringLiteral("操作太频繁请稍后再试")));
}

TEST_F(CliTest, UsageErrorsAndAnUnreachableServerEndWithoutHanging)
{
    EXPECT_EQ(cli({QStringLiteral("topics")}).exitCode, 2);
    EXPECT_EQ(cli({QStringLiteral("frobnicate")}).exitCode, 2);
    EXPECT_EQ(cli({QStringLiteral("topics"), QStringLiteral("1"), QStringLiteral("--page"), QStringLiteral("0")}).exitCode, 2);
    EXPECT_EQ(cli({QStringLiteral("topics"), QStringLiteral("999")}).exitCode, 3);

    server.stop();
    const testsupport::ProgramResult offline = cli({QStringLiteral("boards")});
    EXPECT_EQ(offline.exitCode, 1);
    EXPECT_TRUE(offline.errors.contains(QStringLiteral("request failed")));
}
