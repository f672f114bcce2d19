// A received notification's user info on arbitrary bytes, read the way the app reads it: its
// `key1` text parsed, then the topic and board taken from the payload's `data`. Never a crash;
// a topic id is only ever the payload's own `topicid`.
#include "JsonChangDic.h"
#include "NotificationTopic.h"

#include "../support/QuietForumLog.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    silenceForumLog();
    const QJsonObject userInfo =
        QJsonDocument::fromJson(QByteArray::fromRawData(reinterpret_cast<const char *>(data), qsizetype(size))).object();
    const QJsonValue payload = JsonChangDic::dictionaryWithJsonString(NotificationTopic::payloadText(userInfo));
    const NotificationTopic named = NotificationTopic::fromPayload(payload);
    const QJsonValue topicId = payload.toObject().value(QLatin1String("data")).toObject().value(QLatin1String("topicid"));
    if (named.topic.tid() != topicId)
        std::abort();
    return 0;
}
