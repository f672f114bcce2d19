#pragma once
// The reading endpoints: banner items, boards, topic lists, a topic and its replies.
// Lives on the store's thread.

#include "EndpointAnswer.h"
#include "ForumStore.h"

#include <QJsonObject>

#include <optional>

class BrowseEndpoints
{
public:
    BrowseEndpoints(ForumStore &store, int maxPageSize);

    EndpointAnswer adRecom(const QString &origin);
    // `payload` is absent for the plain form of the request.
    EndpointAnswer sections(const std::optional<QJsonObject> &payload, const QString &origin);
    EndpointAnswer topics(const QJsonObject &payload);
    EndpointAnswer topTopics(const QJsonObject &payload);
    EndpointAnswer topicDetail(const QJsonObject &payload);
    EndpointAnswer repliesLog(const QJsonObject &payload);

private:
    struct Page
    {
        qint64 offset = 0;
        qint64 size = 0;
    };
    std::optional<Page> page(qint64 pageindex, qint64 pagesize, QString *reason) const;

    ForumStore &m_store;
    int m_maxPageSize;
};
