#pragma once
// The topic a received notification names: its `key1` text, once parsed, holds a `data` object
// with the topic's id, board, poster, text and title. Anything missing or of another shape
// leaves the matching record fields absent. Plain values; any thread.

#include "ListModel.h"
#include "PostModel.h"

#include <QJsonObject>
#include <QJsonValue>
#include <QString>

#include <optional>

struct NotificationTopic
{
    // The user-info key whose text holds the payload.
    static inline const char *const kPayloadKey = "key1";

    PostModel topic;
    ListModel board;

    // The user info's `key1`: the payload's JSON text. Only a string counts; anything else is
    // as good as absent.
    static std::optional<QString> payloadText(const QJsonObject &userInfo);

    // From the parsed payload (`jsonDic`): absent, or not an object, gives empty records.
    static NotificationTopic fromPayload(const QJsonValue &payload);
};
