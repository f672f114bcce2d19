// The temporary-user protocol across launches, against a recording server.

#include "EventLoop.h"
#include "FirstLoad.h"
#include "ForumAnswer.h"
#include "RecordingHttpServer.h"
#include "ServiceConfig.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QTemporaryDir>

using testsupport::waitUntil;

namespace {

class FirstLoadTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        ASSERT_TRUE(server.listen());
        ServiceConfig::setApiRoot(server.apiRoot());
        answerUserInfo(QJsonObject{{QStringLiteral("userinfo"), QJsonObject{{QStringLiteral("userid"), 5120}}}});
    }
    void TearDown() override { ServiceConfig::setApiRoot({}); }

    void answerUserInfo(const QJsonObject &userInfo)
    {
        server.setResponder([userInfo](const RecordingHttpServer::Request &request) {
            const QJsonValue rdata = request.path().endsWith("GetTempUserInfo")
                                         ? QJsonValue(userInfo)
                                         : QJsonValue(QJsonArray{QJsonObject{{QStringLiteral("sectionid"), 1}}});
            return RecordingHttpServer::Response{200, "application/json", forumanswer::withRData(rdata)};
        });
    }

    // One launch: a fresh defaults object over the same file, as a new process would have.
    QStringList launch(QString *storedId = nullptr)
    {
        server.clear();
        UserDefaults defaults(dir.filePath(QStringLiteral("defaults.ini")));
        bool boards = false;
        bool stored = false;
        const bool askedForUser = FirstLoad::start(
            UserIdStore(defaults), {[&boards](const QJsonValue &) { boards = true; },
                                    [&stored, storedId](const QString &id) {
                                        stored = true;
                                        if (storedId)
                                            *storedId = id;
                                    }});
        EXPECT_TRUE(waitUntil([&] { return boards && (stored || !askedForUser); }));
        EXPECT_TRUE(waitUntil([] { return HttpSessionManager::requestsInFlight() == 0; }));
        QStringList sent;
        for (const auto &request : server.requests()) {
            const QJsonObject payload = forumanswer::requestPayload(request.query());
            sent << QString::fromLatin1(request.path().mid(5)) + u' '
                        + QString::number(payload.value(QStringLiteral("userid")).toInteger(-1));
        }
        sent.sort();
        return sent;
    }

    void store(const QString &text)
    {
        UserDefaults defaults(dir.filePath(QStringLiteral("defaults.ini")));
        defaults.setObject(text, QStringLiteral("userIDStr"));
        defaults.synchronize();
    }

    QTemporaryDir dir;
    RecordingHttpServer server;
};

} // namespace

TEST_F(FirstLoadTest, FirstLaunchAsksForAUserAndBoardsWithIdZeroThenSecondUsesTheStoredId)
{
    QString stored;
    // GetTempUserInfo carries no userid (-1 here); the boards go out at once with 0.
    EXPECT_EQ(launch(&stored), QStringList({QStringLiteral("GetSection 0"), QStringLiteral("GetTempUserInfo -1")}));
    EXPECT_EQ(stored, QStringLiteral("5120"));
    EXPECT_EQ(launch(), QStringList({QStringLiteral("GetSection 5120")}));
    EXPECT_EQ(UserDefaults(dir.filePath(QStringLiteral("defaults.ini"))).stringForKey(QStringLiteral("userIDStr")),
              QStringLiteral("5120"));
}

TEST_F(FirstLoadTest, StoredZeroOrGarbageCountsAsNoUser)
{
    for (const QString &text : {QStringLiteral("0"), QString(), QStringLiteral("abc")}) {
        store(text);
        EXPECT_EQ(launch(), QStringList({QStringLiteral("GetSection 0"), QStringLiteral("GetTempUserInfo -1")}))
            << text.toStdString();
    }
}

TEST_F(FirstLoadTest, AnswerWithoutUserIdStoresNothingUsableSoTheNextLaunchAsksAgain)
{
    answerUserInfo(QJsonObject{{QStringLiteral("other"), 1}});
    QString stored;
    launch(&stored);
    EXPECT_EQ(stored, QStringLiteral("(null)"));
    EXPECT_EQ(launch(), QStringList({QStringLiteral("GetSection 0"), QStringLiteral("GetTempUserInfo -1")}));
}
