#pragma once
// What a reading request asks for, read from its payload alone, without the store: the
// answer cache keys on it, so it holds every field that changes an answer and nothing
// else (the device's imei and userid change none of these answers, so devices share them).
// Reading validates exactly as answering would. Plain data; any thread.

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <optional>

struct BrowseQuery
{
    enum class Kind { AdRecom, Sections, Topics, TopTopics, TopicDetail, RepliesLog };

    Kind kind = Kind::Sections;
    qint64 sectionid = 0;
    qint64 tid = 0;
    qint64 offset = 0;  // rows to skip, for the paged lists
    qint64 size = 0;    // rows of a page
    QString origin;     // for the answers that carry addresses (banner items and boards)

    // The cache key: the kind and the fields above that this kind's answer depends on.
    QByteArray cacheKey() const;
};

struct BrowseQueryRead
{
    std::optional<BrowseQuery> query;
    QString rejection;  // why the request is bad, when there is no query

    // `payload` is absent for a request without one (allowed for AdRecom and Sections).
    static BrowseQueryRead read(BrowseQuery::Kind kind, const std::optional<QJsonObject> &payload,
                                const QString &origin, int maxPageSize);
};
