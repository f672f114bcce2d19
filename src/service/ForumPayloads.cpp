#include "ForumPayloads.h"

#include "DeviceInfo.h"

#include <QJsonArray>

namespace {

constexpr int kNoParentPost = -1;

// A field copied from a record the server never filled goes out as null, so every payload
// keeps its whole key set.
QJsonObject withDevicePair(std::initializer_list<std::pair<QString, QJsonValue>> fields)
{
    QJsonObject payload = ForumPayloads::devicePair();
    for (const auto &[key, value] : fields)
        payload.insert(key, value.isUndefined() ? QJsonValue(QJsonValue::Null) : value);
    return payload;
}

} // namespace

namespace ForumPayloads {

QJsonObject devicePair()
{
    return QJsonObject{{QStringLiteral("imei"), DeviceInfo::getMachineUDID()},
                       {QStringLiteral("devicetype"), QStringLiteral("IOS")}};
}

QJsonObject section(qint64 userId)
{
    return withDevicePair({{QStringLiteral("userid"), userId}});
}

QJsonObject topics(const ListModel &board, int pageIndex)
{
    return withDevicePair({{QStringLiteral("sectionid"), board.sectionid()},
                           {QStringLiteral("showtype"), 0},
                           {QStringLiteral("sorttype"), 0},
                           {QStringLiteral("tag"), board.tagid()},
                           {QStringLiteral("pageindex"), pageIndex},
                           {QStringLiteral("pagesize"), kTopicsPageSize}});
}

QJsonObject topTopic(const ListModel &board)
{
    return withDevicePair({{QStringLiteral("sectionid"), board.sectionid()}});
}

QJsonObject topicDetail(const ListModel &board, const PostModel &topic, qint64 userId)
{
    return withDevicePair({{QStringLiteral("sectionid"), board.sectionid()},
                           {QStringLiteral("userid"), userId},
                           {QStringLiteral("tid"), topic.tid()},
                           {QStringLiteral("pageindex"), 1},
                           {QStringLiteral("pagesize"), kRepliesPageSize},
                           {QStringLiteral("islandlord"), 0}});
}

QJsonObject writeTopic(const ListModel &board, qint64 userId, const QString &title,
                       const QString &content)
{
    return withDevicePair({{QStringLiteral("userid"), userId},
                           {QStringLiteral("sectionid"), board.sectionid()},
                           {QStringLiteral("tag"), board.tagid()},
                           {QStringLiteral("title"), title},
                           {QStringLiteral("content"), content},
                           {QStringLiteral("imgs"), QJsonArray()}});
}

QJsonObject reply(const ListModel &board, const QJsonValue &tid, const QJsonValue &title,
                  qint64 userId, const QString &content)
{
    return withDevicePair({{QStringLiteral("sectionid"), board.sectionid()},
                           {QStringLiteral("userid"), userId},
                           {QStringLiteral("tid"), tid},
                           {QStringLiteral("content"), content},
                           {QStringLiteral("imgs"), QJsonArray()},
                           {QStringLiteral("pid"), kNoParentPost},
                           {QStringLiteral("title"), title}});
}

} // namespace ForumPayloads
