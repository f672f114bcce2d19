// The quorvel program end to end: options, and a topic window drawn offscreen from the
// project's forum server.

#include "LocalForumServer.h"
#include "ProgramRun.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QTemporaryDir>

namespace {

testsupport::ProgramResult runApp(const QStringList &arguments)
{
    return testsupport::runProgram(QStringLiteral(QUORVEL_APP_BINARY), arguments,
                                   {{QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen")}});
}

} // namespace

TEST(AppWindow, DrawsTheTopicScreenToAPictureOnceLoaded)
{
    LocalForumServer server;
    ASSERT_TRUE(server.isRunning()) << server.errorString().toStdString();
    QTemporaryDir dir;
    const QString shot = dir.filePath(QStringLiteral("topic.png"));
    const QString small = dir.filePath(QStringLiteral("small.png"));
    const QString tid = QString::number(LocalForumServer::Demo::kManyRepliesTopicId);
    const QString section = QString::number(LocalForumServer::Demo::kManyRepliesSectionId);

    const testsupport::ProgramResult run = runApp({QStringLiteral("--api-root"), server.apiRoot(), QStringLiteral("--topic"), tid,
                            QStringLiteral("--section"), section, QStringLiteral("--screenshot"), shot});
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    const QImage picture(shot);
    ASSERT_FALSE(picture.isNull());
    EXPECT_EQ(picture.size() / picture.devicePixelRatio(), QSize(375, 667));
    EXPECT_GE(QString::fromUtf8(server.log()).count(QStringLiteral("/api/RepliesLog")), 1);

    const testsupport::ProgramResult narrow = runApp({QStringLiteral("--api-root"), server.apiRoot(), QStringLiteral("--screen"),
                               QStringLiteral("320x568"), QStringLiteral("--topic"), tid, QStringLiteral("--section"),
                               section, QStringLiteral("--screenshot"), small});
    ASSERT_EQ(narrow.exitCode, 0) << narrow.errors.toStdString();
    const QImage smaller(small);
    EXPECT_EQ(smaller.size() / smaller.devicePixelRatio(), QSize(320, 568));
}

TEST(AppWindow, BadOptionsAreRefusedWithAReason)
{
    const testsupport::ProgramResult noTopic = runApp({QStringLiteral("--screenshot"), QStringLiteral("/tmp/never.png")});
    EXPECT_EQ(noTopic.exitCode, 2);
    EXPECT_TRUE(noTopic.errors.contains(QStringLiteral("--topic")));

    const testsupport::ProgramResult badScreen = runApp({QStringLiteral("--screen"), QStringLiteral("wide"), QStringLiteral("--topic"),
                                  QStringLiteral("1"), QStringLiteral("--section"), QStringLiteral("1")});
    EXPECT_EQ(badScreen.exitCode, 2);
    EXPECT_TRUE(badScreen.errors.contains(QStringLiteral("--screen")));

    const testsupport::ProgramResult badTopic = runApp({QStringLiteral("--topic"), QStringLiteral("abc"), QStringLiteral("--section"),
                                 QStringLiteral("1")});
    EXPECT_EQ(badTopic.exitCode, 2);
    EXPECT_EQ(runApp({QStringLiteral("--help")}).exitCode, 0);
}
