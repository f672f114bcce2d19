// What the user is told after posting.

#include "PostOutcome.h"

#include <gtest/gtest.h>

#include <QJsonObject>

namespace {

QJsonValue described(const QJsonValue &description)
{
    return QJsonObject{{QStringLiteral("description"), description}};
}

} // namespace

TEST(PostOutcome, OnlyTheExactSuccessTextOfThatKindSucceeds)
{
    using PostOutcome::Kind;
    EXPECT_EQ(PostOutcome::notice(Kind::Topic, described(QStringLiteral("发帖成功"))), QStringLiteral("发表成功"));
    EXPECT_EQ(PostOutcome::notice(Kind::Reply, described(QStringLiteral("回帖成功"))), QStringLiteral("回复成功"));
    // A reply's success text does not count for a topic, nor does a near miss.
    EXPECT_FALSE(PostOutcome::succeeded(Kind::Topic, described(QStringLiteral("回帖成功"))));
    EXPECT_FALSE(PostOutcome::succeeded(Kind::Reply, described(QStringLiteral("回帖成功 "))));
}

TEST(PostOutcome, EveryOtherAnswerReadsAsTooFrequent)
{
    using PostOutcome::Kind;
    const QString refused = QStringLiteral("操作太频繁请稍后再试");
    for (const QJsonValue &answer : {described(QStringLiteral("标题过长")), described(QJsonValue::Null), described(1),
                                     QJsonValue(QJsonObject()), QJsonValue(QJsonValue::Undefined),
                                     QJsonValue(QStringLiteral("发帖成功"))}) {
        EXPECT_EQ(PostOutcome::notice(Kind::Topic, answer), refused);
        EXPECT_EQ(PostOutcome::notice(Kind::Reply, answer), refused);
    }
}
