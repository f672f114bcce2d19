// Every endpoint's answer after unwrapping: shapes, JSON types, paging and the demo facts
// that client tests rely on.
#include "LocalForumServer.h"
#include "ServerHarness.h"

#include <QImage>
#include <QSet>

using Demo = LocalForumServer::Demo;

namespace {

void expectTypes(const QJsonObject &object, std::initializer_list<const char *> strings,
                 std::initializer_list<const char *> numbers)
{
    for (const char *key : strings)
        EXPECT_TRUE(object.value(QLatin1String(key)).isString()) << key;
    for (const char *key : numbers)
        EXPECT_TRUE(object.value(QLatin1String(key)).isDouble()) << key;
}

void expectTopicShape(const QJsonObject &topic)
{
    expectTypes(topic, {"title", "username", "time", "timeformat", "topiccontent"},
                {"tid", "topictype", "sectionid", "replycount", "userid"});
    EXPECT_EQ(topic.value("timeformat").toString().size(), 16);  // "yyyy-MM-dd HH:mm"
    EXPECT_TRUE(topic.value("time").toString().startsWith(topic.value("timeformat").toString()));
}

} // namespace

class ServerEndpointAnswers : public ::testing::TestWithParam<StoreKind>
{
};
QUORVEL_FOR_BOTH_STORES(ServerEndpointAnswers);

TEST_P(ServerEndpointAnswers, BannerItemsOpenTopicsOrServedPages)
{
    ServerHarness forum(GetParam());
    const ApiAnswer answer = forum.raw("GET", "/api/GetAdRecom");
    ASSERT_EQ(answer.status, 200);
    EXPECT_EQ(answer.reply.contentType, "application/json");
    const QJsonArray items = answer.rdata.toArray();
    ASSERT_EQ(items.size(), Demo::kBannerCount);
    EXPECT_EQ(items[0]["tid"].toInteger(), Demo::kFirstBannerTopicId);

    int topicItems = 0;
    for (const QJsonValue &value : items) {
        const QJsonObject item = value.toObject();
        expectTypes(item, {"title", "adico", "adurl"}, {"tid", "urltype"});
        EXPECT_TRUE(item["adico"].toString().startsWith(QLatin1String(ServerHarness::kOrigin) + "/img/banner/"));
        const QByteArray image = forum.raw("GET", QUrl(item["adico"].toString()).path().toUtf8()).reply.body;
        EXPECT_FALSE(QImage::fromData(image, "PNG").isNull());
        if (item["urltype"].toInt() == 0) {
            ++topicItems;
            EXPECT_TRUE(forum.detail(item["tid"].toInteger()).isObject());
            expectTypes(item, {"username", "topiccontent", "timeformat"}, {});
        } else {
            const QUrl page(item["adurl"].toString());
            EXPECT_EQ(page.scheme(), "http");
            const ApiAnswer html = forum.raw("GET", page.path().toUtf8());
            EXPECT_EQ(html.status, 200);
            EXPECT_TRUE(html.reply.contentType.startsWith("text/html"));
            EXPECT_TRUE(QString::fromUtf8(html.reply.body).contains(item["title"].toString()));
        }
    }
    EXPECT_EQ(topicItems, Demo::kBannerTopicItems);
    EXPECT_EQ(items.size() - topicItems, Demo::kBannerPageItems);
}

TEST_P(ServerEndpointAnswers, BoardsPlainAndEncipheredCarryTheirPictures)
{
    ServerHarness forum(GetParam());
    const QJsonArray plain = forum.boards();
    const QJsonArray enciphered =
        forum.call("GetSection", ServerHarness::with(ServerHarness::device(), {{"userid", 0}})).rdata.toArray();
    ASSERT_EQ(plain.size(), Demo::kBoardCount);
    EXPECT_EQ(plain, enciphered);

    for (int i = 0; i < plain.size(); ++i) {
        const QJsonObject board = plain[i].toObject();
        expectTypes(board, {"sectionname", "sectiontag", "sectionico", "backgroundimg"},
                    {"sectionid", "tagid", "sectiontopic"});
        EXPECT_EQ(board["sectiontopic"].toInt(), Demo::kOrdinaryTopicCounts[i] + 4);
        for (const char *key : {"sectionico", "backgroundimg"}) {
            const ApiAnswer image = forum.raw("GET", QUrl(board[key].toString()).path().toUtf8());
            EXPECT_EQ(image.reply.contentType, "image/png");
            EXPECT_FALSE(QImage::fromData(image.reply.body, "PNG").isNull()) << key;
        }
    }
    const QJsonObject first = plain[0].toObject();
    EXPECT_EQ(first["sectionid"].toInt(), Demo::kBoardId);
    EXPECT_EQ(first["tagid"].toInt(), Demo::kBoardTagId);
    EXPECT_EQ(first["sectionname"].toString(), QString::fromUtf8(Demo::kBoardName));
    EXPECT_EQ(first["sectiontopic"].toInt(), Demo::kBoardTopicCount);
}

TEST_P(ServerEndpointAnswers, PictureAddressesFollowTheHostTheClientUsed)
{
    ServerHarness forum(GetParam());
    const auto iconOf = [&](const QByteArray &host) {
        return forum.raw("GET", "/api/GetSection", {}, {}, host).rdata[0]["sectionico"].toString();
    };
    EXPECT_EQ(iconOf("10.0.2.2:41234"), "http://10.0.2.2:41234/img/section/1.png");
    EXPECT_EQ(iconOf("[::1]:9000"), "http://[::1]:9000/img/section/1.png");
    // A Host header unfit for an address falls back to the listening address.
    EXPECT_TRUE(iconOf("evil/host?x").startsWith("http://127.0.0.1:8080/"));
    EXPECT_TRUE(iconOf("").startsWith("http://127.0.0.1:8080/"));
}

TEST_P(ServerEndpointAnswers, TopicPagesRunNewestFirstToAnEmptyPageAfterTheLast)
{
    ServerHarness forum(GetParam());
    QSet<qint64> seen;
    QString previousTime = QStringLiteral("9999");
    const int pages = (Demo::kBoardOrdinaryTopics + 9) / 10;
    for (int page = 1; page <= pages; ++page) {
        const QJsonArray topics = forum.topicsPage(Demo::kBoardId, page);
        const int expected = page < pages ? 10 : Demo::kBoardOrdinaryTopics - 10 * (pages - 1);
        ASSERT_EQ(topics.size(), expected) << "page " << page;
        for (const QJsonValue &value : topics) {
            const QJsonObject topic = value.toObject();
            expectTopicShape(topic);
            EXPECT_FALSE(QSet<int>({1, 2, 3, 4}).contains(topic["topictype"].toInt()));
            EXPECT_EQ(topic["sectionid"].toInt(), Demo::kBoardId);
            EXPECT_LE(topic["time"].toString(), previousTime);
            previousTime = topic["time"].toString();
            EXPECT_FALSE(seen.contains(topic["tid"].toInteger()));
            seen.insert(topic["tid"].toInteger());
        }
    }
    EXPECT_EQ(forum.topicsPage(Demo::kBoardId, 1).at(0)["tid"].toInt(), Demo::kNewestTopicId);
    EXPECT_EQ(forum.topicsPage(Demo::kBoardId, 1).at(0)["replycount"].toInt(), Demo::kNewestTopicReplies);
    EXPECT_TRUE(forum.topicsPage(Demo::kBoardId, pages + 1).isEmpty());
    EXPECT_TRUE(forum.topicsPage(Demo::kBoardId, 1'000'000'000).isEmpty());
    // Page sizes are capped, and other sizes page the same list.
    EXPECT_EQ(forum.topicsPage(Demo::kBoardId, 1, 1000).size(), Demo::kBoardOrdinaryTopics);
    EXPECT_EQ(forum.topicsPage(Demo::kBoardId, 3, 7)[0], forum.topicsPage(Demo::kBoardId, 1, 20)[14]);
    EXPECT_TRUE(forum.topicsPage(99, 1).isEmpty());

    for (int board = 1; board <= Demo::kBoardCount; ++board)
        EXPECT_EQ(forum.topicsPage(board, 1, 100).size(), Demo::kOrdinaryTopicCounts[board - 1]);
}

TEST_P(ServerEndpointAnswers, TopTopicsArePinnedGuideAndAFewOthers)
{
    ServerHarness forum(GetParam());
    const QJsonArray top =
        forum.call("GetTopTopic", ServerHarness::with(ServerHarness::device(), {{"sectionid", Demo::kBoardId}}))
            .rdata.toArray();
    ASSERT_EQ(top.size(), Demo::kBoardTopTopicItems);
    int pinned = 0, guide = 0;
    QSet<int> others;
    for (const QJsonValue &value : top) {
        expectTopicShape(value.toObject());
        const int type = value["topictype"].toInt();
        pinned += type == 1 || type == 3;
        guide += type == 2 || type == 4;
        if (type < 1 || type > 4)
            others.insert(type);
    }
    EXPECT_EQ(pinned, Demo::kBoardPinnedTopics);
    EXPECT_EQ(guide, Demo::kBoardGuideTopics);
    EXPECT_EQ(others, QSet<int>({0, 5}));
}

TEST_P(ServerEndpointAnswers, TopicDetailAnswersTheTopicWhateverBoardIsNamed)
{
    ServerHarness forum(GetParam());
    const QJsonValue detail = forum.call("TopicDetail", forum.detailPayload(Demo::kManyRepliesTopicId, 5)).rdata;
    ASSERT_TRUE(detail.isObject());
    expectTopicShape(detail.toObject());
    EXPECT_EQ(detail["sectionid"].toInt(), Demo::kManyRepliesSectionId);
    EXPECT_EQ(detail["replycount"].toInt(), Demo::kManyRepliesCount);
    EXPECT_TRUE(detail["topiccontent"].toString().contains('\n'));  // a long multi-line text

    EXPECT_TRUE(forum.detail(987654).isNull());
    EXPECT_TRUE(forum.call("RepliesLog", forum.detailPayload(987654)).rdata.isNull());
}

TEST_P(ServerEndpointAnswers, RepliesComeHighlightedFirstAndPageByFifty)
{
    ServerHarness forum(GetParam());
    const QJsonArray first = forum.replies(Demo::kManyRepliesTopicId);
    ASSERT_EQ(first.size(), 50);
    EXPECT_EQ(Demo::kManyRepliesHighlighted + Demo::kManyRepliesFirstPageOrdinary, 50);
    for (int i = 0; i < first.size(); ++i) {
        const QJsonObject reply = first[i].toObject();
        expectTypes(reply, {"username", "timeformat", "content"}, {"istop", "rid", "tid"});
        EXPECT_EQ(reply["istop"].toInt(), i < Demo::kManyRepliesHighlighted ? 1 : 0) << i;
    }
    const QJsonArray second = forum.replies(Demo::kManyRepliesTopicId, 2);
    ASSERT_EQ(second.size(), Demo::kManyRepliesCount - 50);
    QSet<int> hidden;
    for (const QJsonValue &reply : second)
        if (reply["istop"].toInt() > 1)
            hidden.insert(reply["istop"].toInt());
    EXPECT_EQ(hidden, QSet<int>({2, 3}));
    EXPECT_TRUE(forum.replies(Demo::kManyRepliesTopicId, 3).isEmpty());
}
