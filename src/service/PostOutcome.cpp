#include "PostOutcome.h"

#include <QJsonObject>

namespace {

const QString kTopicPosted = QStringLiteral("发帖成功");
const QString kReplyPosted = QStringLiteral("回帖成功");
const QString kTopicNotice = QStringLiteral("发表成功");
const QString kReplyNotice = QStringLiteral("回复成功");
const QString kRefusedNotice = QStringLiteral("操作太频繁请稍后再试");

} // namespace

namespace PostOutcome {

bool succeeded(Kind kind, const QJsonValue &answer)
{
    const QJsonValue description = answer.toObject().value(QStringLiteral("description"));
    return description.isString()
           && description.toString() == (kind == Kind::Topic ? kTopicPosted : kReplyPosted);
}

QString notice(Kind kind, const QJsonValue &answer)
{
    if (!succeeded(kind, answer))
        return kRefusedNotice;
    return kind == Kind::Topic ? kTopicNotice : kReplyNotice;
}

} // namespace PostOutcome
