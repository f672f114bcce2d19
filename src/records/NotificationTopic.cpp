#include "NotificationTopic.h"

#include <QJsonObject>

std::optional<QString> NotificationTopic::payloadText(const QJsonObject &userInfo)
{
    const QJsonValue text = userInfo.value(QLatin1String(kPayloadKey));
    return text.isString() ? std::optional<QString>(text.toString()) : std::nullopt;
}

NotificationTopic NotificationTopic::fromPayload(const QJsonValue &payload)
{
    const QJsonObject data = payload.toObject().value(QLatin1String("data")).toObject();
    NotificationTopic named;
    named.topic.setValueForKey(data.value(QLatin1String("topicid")), u"tid");
    named.topic.setValueForKey(data.value(QLatin1String("username")), u"username");
    named.topic.setValueForKey(data.value(QLatin1String("content")), u"topiccontent");
    named.topic.setValueForKey(data.value(QLatin1String("title")), u"title");
    named.board.setValueForKey(data.value(QLatin1String("sectionid")), u"sectionid");
    return named;
}
