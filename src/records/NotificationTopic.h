#pragma once
// The topic a received notification names: its `key1` text, once parsed, holds a `data` object
// with the topic's id, board, poster, text and title. Anything missing or of another shape
// leaves the matching record fields absent. Plain values; any thread.

#include "ListModel.h"
#include "PostModel.h"

#include <QJsonValue>

struct NotificationTopic
{
    PostModel topic;
    ListModel board;

    // From the parsed payload (`jsonDic`): absent, or not an object, gives empty records.
    static NotificationTopic fromPayload(const QJsonValue &payload);
};
