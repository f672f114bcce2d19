// Bad requests: each gets a 4xx JSON error and leaves the stored forum as it was.
#include "LocalForumServer.h"
#include "RequestPayload.h"
#include "ServerHarness.h"

#include "GTMBase64.h"

using Demo = LocalForumServer::Demo;

namespace {

// What a bad request must not change: boards with their counts, the newest topics, the
// replies of a busy topic, and the poster's waiting time.
QJsonArray snapshot(ServerHarness &forum)
{
    return {forum.boards(), forum.topicsPage(Demo::kBoardId, 1), forum.replies(Demo::kNewestTopicId)};
}

QByteArray enciphered(const QByteArray &text)
{
    return DesCryptUtil::DesEncode(QString::fromUtf8(text), DesCryptUtil::kKey, DesCryptUtil::kIV)->toLatin1();
}

QByteArray withField(const QJsonObject &payload, const char *key, const QJsonValue &value)
{
    QJsonObject changed = payload;
    if (value.isUndefined())
        changed.remove(QLatin1String(key));
    else
        changed.insert(QLatin1String(key), value);
    return "data=" + ServerHarness::encipher(changed);
}

} // namespace

class ServerBadRequests : public ::testing::TestWithParam<StoreKind>
{
};
QUORVEL_FOR_BOTH_STORES(ServerBadRequests);

TEST_P(ServerBadRequests, AreAnswered4xxWithAJsonErrorAndChangeNothing)
{
    ServerHarness forum(GetParam());
    const qint64 user = forum.userFor(ServerHarness::kImei);
    const QJsonObject topic = forum.topicPayload(user, "标题", "内容");
    const QJsonObject listing = ServerHarness::with(ServerHarness::device(),
        {{"sectionid", 1}, {"showtype", 0}, {"sorttype", 0}, {"tag", 101}, {"pageindex", 1}, {"pagesize", 10}});
    const QJsonArray before = snapshot(forum);

    struct Case { const char *what; QByteArray method; QByteArray path; QByteArray query; QByteArray body; int status; };
    const Case cases[] = {
        {"no data", "POST", "/api/WriteTopic", "", "", 400},
        {"empty data", "POST", "/api/WriteTopic", "data=", "", 400},
        {"not Base64", "POST", "/api/WriteTopic", "data=%%%not*base64", "", 400},
        {"Base64 with a space", "POST", "/api/WriteTopic", "data=" + enciphered("{}").insert(4, ' '), "", 400},
        {"Base64 without padding", "POST", "/api/WriteTopic", "data=" + enciphered("{}").replace('=', ""), "", 400},
        {"not whole blocks", "POST", "/api/WriteTopic", "data=" + GTMBase64::encodeData("seven b"), "", 400},
        {"wrong key", "POST", "/api/WriteTopic", "data=" + GTMBase64::encodeData(QByteArray(16, 'k')), "", 400},
        {"not JSON", "POST", "/api/WriteTopic", "data=" + enciphered("title=hello"), "", 400},
        {"JSON array", "POST", "/api/WriteTopic", "data=" + enciphered("[1, 2]"), "", 400},
        {"missing title", "POST", "/api/WriteTopic", withField(topic, "title", QJsonValue()), "", 400},
        {"title a number", "POST", "/api/WriteTopic", withField(topic, "title", 7), "", 400},
        {"userid as text", "POST", "/api/WriteTopic", withField(topic, "userid", QString::number(user)), "", 400},
        {"imgs missing", "POST", "/api/WriteTopic", withField(topic, "imgs", QJsonValue()), "", 400},
        {"tag not a number", "POST", "/api/WriteTopic", withField(topic, "tag", "abc"), "", 400},
        {"sectionid fractional", "POST", "/api/WriteTopic", withField(topic, "sectionid", 1.5), "", 400},
        {"tid null", "POST", "/api/RepliesleTopic", withField(forum.replyPayload(user, 1046, "x"), "tid", QJsonValue::Null), "", 400},
        {"page 0", "GET", "/api/GetTopics", withField(listing, "pageindex", 0), "", 400},
        {"negative page size", "GET", "/api/GetTopics", withField(listing, "pagesize", -10), "", 400},
        {"huge number", "GET", "/api/GetTopics", withField(listing, "sectionid", 1e300), "", 400},
        {"no imei", "GET", "/api/GetTopics", withField(listing, "imei", QJsonValue()), "", 400},
        {"unknown endpoint", "GET", "/api/GetEverything", "", "", 404},
        {"unknown path", "GET", "/admin", "", "", 404},
        {"posting by GET", "GET", "/api/WriteTopic", withField(topic, "title", "标题"), "", 405},
        {"reading by POST", "POST", "/api/GetTopics", withField(listing, "pageindex", 1), "", 405},
        {"DELETE", "DELETE", "/api/GetSection", "", "", 405},
        {"body over the limit", "POST", "/api/WriteTopic", withField(topic, "title", "标题"),
         QByteArray(ServerOptions::kDefaultMaxBodyBytes + 1, 'x'), 413},
        {"query over the limit", "GET", "/api/GetTopics", QByteArray(ServerOptions::kDefaultMaxBodyBytes + 1, 'A'), "", 414},
    };
    for (const Case &bad : cases) {
        const ApiAnswer answer = forum.raw(bad.method, bad.path, bad.query, bad.body);
        EXPECT_EQ(answer.status, bad.status) << bad.what;
        EXPECT_EQ(answer.reply.contentType, "application/json") << bad.what;
        const QJsonObject error = QJsonDocument::fromJson(answer.reply.body).object();
        EXPECT_TRUE(error["error"].isString()) << bad.what;
        EXPECT_FALSE(error["message"].toString().isEmpty()) << bad.what;
        EXPECT_FALSE(answer.reply.note.isEmpty()) << bad.what;
    }
    EXPECT_EQ(forum.raw("POST", "/api/WriteTopic", "").reply.note, "missing data parameter");
    EXPECT_EQ(forum.raw("GET", "/api/WriteTopic").reply.allow, "POST");
    EXPECT_EQ(snapshot(forum), before);
    // None of them counted as a post: the user may post at once.
    EXPECT_EQ(forum.describe(forum.call("WriteTopic", topic)), QString::fromUtf8(Demo::kTopicPosted));
}

TEST_P(ServerBadRequests, PlusInTheRawQueryStaysAPlus)
{
    EXPECT_EQ(RequestPayload::dataParameter("x=1&data=ab+c%2B%3D&data=zz"), QByteArray("ab+c+="));
    EXPECT_EQ(RequestPayload::dataParameter("metadata=1"), std::nullopt);

    // A payload whose Base64 holds "+" signs, sent literally as the client sends it.
    ServerHarness forum(GetParam());
    for (int i = 0; i < 64; ++i) {
        const QString imei = QStringLiteral("device-%1").arg(i);
        const QByteArray data = ServerHarness::encipher(ServerHarness::device(imei));
        if (!data.contains('+'))
            continue;
        const ApiAnswer answer = forum.raw("GET", "/api/GetTempUserInfo", "data=" + data);
        ASSERT_EQ(answer.status, 200);
        EXPECT_EQ(answer.rdata["userinfo"]["imei"].toString(), imei);
        return;
    }
    FAIL() << "no payload with a plus sign found";
}

TEST_P(ServerBadRequests, PicturesAndPagesOutsideTheDemoAreNotFound)
{
    ServerHarness forum(GetParam());
    for (const QByteArray path : {"/img/section/99.png", "/img/header/0.png", "/img/banner/6.png",
                                  "/pages/3.html", "/pages/1.png", "/img/section/1.html",
                                  "/img/section/-1.png", "/img/section/99999999999999.png"})
        EXPECT_EQ(forum.raw("GET", path).status, 404) << path.constData();
    EXPECT_EQ(forum.raw("POST", "/img/section/1.png").status, 405);
    EXPECT_EQ(forum.raw("GET", "/img/section/1.png").status, 200);
}
