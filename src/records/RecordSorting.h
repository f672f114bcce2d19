#pragma once
// Sorting answer lists into the lists the screens show. Elements that are not objects are
// skipped. Plain values; any thread.

#include "PostModel.h"
#include "ReplyListModel.h"

#include <QJsonValue>
#include <QList>

#include <optional>

namespace RecordSorting {

struct Replies
{
    QList<ReplyListModel> highlighted; // istop 1
    QList<ReplyListModel> all;         // istop 0
    // The last record filled, whatever its istop (the topic screen sizes rows by it).
    std::optional<ReplyListModel> lastParsed;
};

// A RepliesLog answer by `istop`: 1 highlighted, 0 all, any other value dropped.
Replies splitReplies(const QJsonValue &answer);

struct TopTopics
{
    QList<PostModel> pinned; // topictype 1 and 3
    QList<PostModel> guides; // topictype 2 and 4
};

// A GetTopTopic answer by `topictype`; other types belong to neither list.
TopTopics splitTopTopics(const QJsonValue &answer);

} // namespace RecordSorting
