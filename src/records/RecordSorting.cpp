#include "RecordSorting.h"

#include "FieldValue.h"

#include <QJsonArray>
#include <QJsonObject>

namespace {

qint64 integerField(const QJsonValue &element, const char *key)
{
    return FieldValue::integerValue(element.toObject().value(QLatin1String(key)));
}

} // namespace

namespace RecordSorting {

Replies splitReplies(const QJsonValue &answer)
{
    Replies replies;
    for (const QJsonValue &element : answer.toArray()) {
        if (!element.isObject())
            continue;
        const ReplyListModel reply = ReplyListModel::fromJson(element);
        replies.lastParsed = reply;
        const qint64 istop = integerField(element, "istop");
        if (istop == 1)
            replies.highlighted.append(reply);
        else if (istop == 0)
            replies.all.append(reply);
    }
    return replies;
}

TopTopics splitTopTopics(const QJsonValue &answer)
{
    TopTopics topics;
    for (const QJsonValue &element : answer.toArray()) {
        if (!element.isObject())
            continue;
        const qint64 type = integerField(element, "topictype");
        if (type == 1 || type == 3)
            topics.pinned.append(PostModel::fromJson(element));
        else if (type == 2 || type == 4)
            topics.guides.append(PostModel::fromJson(element));
    }
    return topics;
}

} // namespace RecordSorting
