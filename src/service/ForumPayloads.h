#pragma once
// The request field sets of the forum endpoints, built from records and the stored user
// id. Every enciphered payload carries the device pair (`imei`, `devicetype` "IOS").
// Identifiers copied from records travel as they arrived from the server. Any thread.

#include "ListModel.h"
#include "PostModel.h"

#include <QJsonObject>

namespace ForumPayloads {

constexpr int kTopicsPageSize = 10;
constexpr int kRepliesPageSize = 50;

// {imei, devicetype}: GetTempUserInfo's payload and the base of all others.
QJsonObject devicePair();
QJsonObject section(qint64 userId);
QJsonObject topics(const ListModel &board, int pageIndex);
QJsonObject topTopic(const ListModel &board);
// TopicDetail and RepliesLog share it; it always asks for page 1 of 50 replies.
QJsonObject topicDetail(const ListModel &board, const PostModel &topic, qint64 userId);
QJsonObject writeTopic(const ListModel &board, qint64 userId, const QString &title,
                       const QString &content);
// `tid` and `title` differ between replying from the topic (the topic's tid and title)
// and replying to a poster (the screen's topic id and the poster's user name).
QJsonObject reply(const ListModel &board, const QJsonValue &tid, const QJsonValue &title,
                  qint64 userId, const QString &content);

} // namespace ForumPayloads
