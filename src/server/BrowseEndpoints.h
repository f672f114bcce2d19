#pragma once
// The reading endpoints: banner items, boards, topic lists, a topic and its replies, each
// answering a BrowseQuery and naming what its answer was made of (AnswerTags) for the
// answer cache. Lives on the store's thread.

#include "BrowseQuery.h"
#include "EndpointAnswer.h"
#include "ForumStore.h"

class BrowseEndpoints
{
public:
    explicit BrowseEndpoints(ForumStore &store);

    EndpointAnswer answer(const BrowseQuery &query);

private:
    EndpointAnswer adRecom(const QString &origin);
    EndpointAnswer sections(const QString &origin);
    EndpointAnswer topicDetail(qint64 tid);
    EndpointAnswer repliesLog(const BrowseQuery &query);

    ForumStore &m_store;
};
