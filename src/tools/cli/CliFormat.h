#pragma once
// Readable text for forum answers on a terminal. Stateless; any thread.

#include "ListModel.h"

#include <QJsonValue>
#include <QString>

namespace CliFormat {

QString json(const QJsonValue &payload);
QString banner(const QJsonValue &items);
QString boards(const QJsonValue &boards);
QString topics(const ListModel &board, int page, const QJsonValue &topics);
// Pinned (types 1 and 3) and guide (types 2 and 4) topics; other types are not shown.
QString topTopics(const QJsonValue &topics);
// The topic, then highlighted replies (istop 1) and all replies (istop 0).
QString topicDetail(const QJsonValue &detail, const QJsonValue &replies);

} // namespace CliFormat
