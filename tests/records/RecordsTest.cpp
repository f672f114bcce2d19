// Records filled from answer objects, and the way screens read their fields.

#include "FieldValue.h"
#include "HotModel.h"
#include "ListModel.h"
#include "Model.h"
#include "PostModel.h"
#include "RecordSorting.h"
#include "ReplyListModel.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>

namespace {

QJsonObject parse(const char *json)
{
    return QJsonDocument::fromJson(json).object();
}

} // namespace

TEST(Records, FillKnownFieldsAndIgnoreTheRest)
{
    const ListModel board = ListModel::fromJson(parse(
        R"({"sectionid":3,"sectionname":"综合讨论","tagid":12,"sectiontopic":48,"unknown":"x","sectionico":"http://h/i.png"})"));
    EXPECT_EQ(board.sectionid(), 3);
    EXPECT_EQ(board.sectionname(), QStringLiteral("综合讨论"));
    EXPECT_EQ(board.tagid(), 12);
    EXPECT_EQ(board.sectiontopic(), 48);
    EXPECT_EQ(board.sectionico(), QStringLiteral("http://h/i.png"));
    EXPECT_TRUE(board.valueForKey(u"unknown").isUndefined());
    EXPECT_TRUE(board.backgroundimg().isUndefined());
}

TEST(Records, NoMatchingKeysLeaveEveryFieldAbsent)
{
    const PostModel post = PostModel::fromJson(parse(R"({"a":1,"b":[2]})"));
    for (const QStringView name : post.fieldNames())
        EXPECT_TRUE(post.valueForKey(name).isUndefined()) << name.toString().toStdString();
    // Anything but an object fills nothing.
    EXPECT_TRUE(ReplyListModel::fromJson(QJsonArray{1}).content().isUndefined());
    EXPECT_TRUE(ReplyListModel::fromJson(QJsonValue::Null).content().isUndefined());
}

TEST(Records, NullIsKeptAsNullAndWrongTypesAsTheyArrived)
{
    const PostModel post = PostModel::fromJson(parse(R"({"tid":"4101","title":null,"urltype":[1],"adurl":7})"));
    EXPECT_EQ(post.tid(), QStringLiteral("4101"));
    EXPECT_TRUE(post.title().isNull());
    EXPECT_FALSE(post.title().isUndefined());
    EXPECT_EQ(post.urltype(), QJsonValue(QJsonArray{1}));
    EXPECT_EQ(post.adurl(), 7);
}

TEST(Records, EachTypeHasItsOwnFieldSet)
{
    const QJsonObject all = parse(R"({"title":"t","time":"2026-11-20","topiccontent":"c","timeformat":"3小时前",
        "sectionid":2,"tid":9,"topictype":4,"username":"u","content":"r","urltype":1,"adurl":"http://a"})");
    const Model model = Model::fromJson(all);
    EXPECT_EQ(model.sectionid(), 2);
    EXPECT_EQ(model.timeformat(), QStringLiteral("3小时前"));
    EXPECT_TRUE(model.valueForKey(u"username").isUndefined());
    const HotModel hot = HotModel::fromJson(all);
    EXPECT_EQ(hot.topictype(), 4);
    EXPECT_TRUE(hot.valueForKey(u"time").isUndefined());
    const ReplyListModel reply = ReplyListModel::fromJson(all);
    EXPECT_EQ(reply.content(), QStringLiteral("r"));
    EXPECT_EQ(reply.username(), QStringLiteral("u"));
    EXPECT_TRUE(reply.valueForKey(u"title").isUndefined());
    EXPECT_EQ(PostModel::fromJson(all).adurl(), QStringLiteral("http://a"));
}

TEST(Records, LaterAssignmentsOverwriteAndUnknownKeysChangeNothing)
{
    ListModel board;
    EXPECT_TRUE(board.setValueForKey(5, u"sectionid"));
    EXPECT_FALSE(board.setValueForKey(6, u"sectionId"));
    board.setValuesForKeysWithDictionary(parse(R"({"sectionid":8})"));
    EXPECT_EQ(board.sectionid(), 8);
}

TEST(FieldValue, DescribesValuesAsFormatObjectDoes)
{
    EXPECT_EQ(FieldValue::describe(QJsonValue(5120)), QStringLiteral("5120"));
    EXPECT_EQ(FieldValue::describe(QJsonValue(-3)), QStringLiteral("-3"));
    EXPECT_EQ(FieldValue::describe(QJsonValue(12.5)), QStringLiteral("12.5"));
    EXPECT_EQ(FieldValue::describe(QJsonValue(0.1)), QStringLiteral("0.1"));
    EXPECT_EQ(FieldValue::describe(QJsonValue(QStringLiteral("文字"))), QStringLiteral("文字"));
    EXPECT_EQ(FieldValue::describe(QJsonValue(QJsonValue::Undefined)), QStringLiteral("(null)"));
    EXPECT_EQ(FieldValue::describe(QJsonValue(QJsonValue::Null)), QStringLiteral("<null>"));
}

TEST(FieldValue, IntegerValueOfNumbersAndNumericText)
{
    EXPECT_EQ(FieldValue::integerValue(QJsonValue(42)), 42);
    EXPECT_EQ(FieldValue::integerValue(QJsonValue(42.9)), 42);
    EXPECT_EQ(FieldValue::integerValue(QJsonValue(-42.9)), -42);
    EXPECT_EQ(FieldValue::integerValue(QStringLiteral("  17abc")), 17);
    EXPECT_EQ(FieldValue::integerValue(QStringLiteral("-8")), -8);
    EXPECT_EQ(FieldValue::integerValue(QStringLiteral("(null)")), 0);
    EXPECT_EQ(FieldValue::integerValue(QString()), 0);
    EXPECT_EQ(FieldValue::integerValue(QStringLiteral("99999999999999999999999")),
              std::numeric_limits<qint64>::max());
    EXPECT_EQ(FieldValue::integerValue(QJsonValue(1e300)), std::numeric_limits<qint64>::max());
    EXPECT_EQ(FieldValue::integerValue(QJsonValue(QJsonValue::Null)), 0);
    EXPECT_EQ(FieldValue::integerValue(QJsonValue(QJsonArray{1})), 0);
}

TEST(FieldValue, LabelsShowNothingForAbsentOrNull)
{
    EXPECT_EQ(FieldValue::displayText(QJsonValue(QJsonValue::Undefined)), QString());
    EXPECT_EQ(FieldValue::displayText(QJsonValue(QJsonValue::Null)), QString());
    EXPECT_EQ(FieldValue::displayText(QJsonValue(3)), QStringLiteral("3"));
    EXPECT_EQ(FieldValue::optionalText(QJsonValue(QJsonValue::Null)), std::nullopt);
    EXPECT_EQ(FieldValue::optionalText(QJsonValue(QStringLiteral("x"))), QStringLiteral("x"));
}

TEST(RecordSorting, RepliesSplitByIstopAndTheLastParsedIsKeptEvenWhenDropped)
{
    const QJsonArray answer = QJsonDocument::fromJson(R"([
        {"content":"a","istop":1}, {"content":"b","istop":0}, 5, "x", null,
        {"content":"c","istop":"1"}, {"content":"d"}, {"content":"e","istop":2}])").array();
    const RecordSorting::Replies replies = RecordSorting::splitReplies(answer);
    ASSERT_EQ(replies.highlighted.size(), 2);
    EXPECT_EQ(replies.highlighted.at(1).content(), QStringLiteral("c"));
    // A reply without istop counts as 0; istop 2 is dropped but was still the last parsed.
    ASSERT_EQ(replies.all.size(), 2);
    EXPECT_EQ(replies.all.at(1).content(), QStringLiteral("d"));
    ASSERT_TRUE(replies.lastParsed);
    EXPECT_EQ(replies.lastParsed->content(), QStringLiteral("e"));
    EXPECT_FALSE(RecordSorting::splitReplies(QJsonValue(QJsonValue::Null)).lastParsed);
}

TEST(RecordSorting, TopTopicsGoToPinnedOrGuidesByType)
{
    const QJsonArray answer = QJsonDocument::fromJson(R"([
        {"tid":1,"topictype":1}, {"tid":2,"topictype":2}, {"tid":3,"topictype":3}, {"tid":4,"topictype":4},
        {"tid":5,"topictype":0}, {"tid":6,"topictype":5}, {"tid":7}, [1]])").array();
    const RecordSorting::TopTopics topics = RecordSorting::splitTopTopics(answer);
    ASSERT_EQ(topics.pinned.size(), 2);
    EXPECT_EQ(topics.pinned.at(0).tid(), 1);
    EXPECT_EQ(topics.pinned.at(1).tid(), 3);
    ASSERT_EQ(topics.guides.size(), 2);
    EXPECT_EQ(topics.guides.at(1).tid(), 4);
}
