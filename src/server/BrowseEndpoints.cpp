#include "BrowseEndpoints.h"

#include "AnswerObjects.h"
#include "AnswerTags.h"

#include <QJsonArray>

namespace {

template<typename Row>
QJsonArray arrayOf(const QList<Row> &rows, QJsonObject (*convert)(const Row &))
{
    QJsonArray array;
    for (const Row &row : rows)
        array.append(convert(row));
    return array;
}

} // namespace

BrowseEndpoints::BrowseEndpoints(ForumStore &store)
    : m_store(store)
{
}

EndpointAnswer BrowseEndpoints::answer(const BrowseQuery &query)
{
    using Kind = BrowseQuery::Kind;
    switch (query.kind) {
    case Kind::AdRecom:
        return adRecom(query.origin);
    case Kind::Sections:
        return sections(query.origin);
    case Kind::Topics:
        return EndpointAnswer::of(
            arrayOf(m_store.ordinaryTopics(query.sectionid, query.offset, query.size), AnswerObjects::topic),
            {AnswerTags::board(query.sectionid)});
    case Kind::TopTopics:
        return EndpointAnswer::of(arrayOf(m_store.featuredTopics(query.sectionid), AnswerObjects::topic),
                                  {AnswerTags::board(query.sectionid)});
    case Kind::TopicDetail:
        return topicDetail(query.tid);
    case Kind::RepliesLog:
        return repliesLog(query);
    }
    return EndpointAnswer::rejected(QStringLiteral("unknown query"));
}

EndpointAnswer BrowseEndpoints::adRecom(const QString &origin)
{
    QJsonArray items;
    QStringList tags;
    for (const BannerRow &banner : m_store.banners()) {
        const std::optional<TopicRow> topic =
            banner.urltype == 0 ? m_store.topic(banner.tid) : std::nullopt;
        if (banner.urltype == 0)
            tags << AnswerTags::topic(banner.tid);
        items.append(AnswerObjects::banner(banner, topic, origin));
    }
    return EndpointAnswer::of(items, tags);
}

EndpointAnswer BrowseEndpoints::sections(const QString &origin)
{
    QJsonArray boards;
    for (const SectionRow &section : m_store.sections())
        boards.append(AnswerObjects::section(section, origin));
    return EndpointAnswer::of(boards, {AnswerTags::boards()});
}

EndpointAnswer BrowseEndpoints::topicDetail(qint64 tid)
{
    const std::optional<TopicRow> topic = m_store.topic(tid);
    return EndpointAnswer::of(topic ? QJsonValue(AnswerObjects::topic(*topic)) : QJsonValue(QJsonValue::Null),
                              {AnswerTags::topic(tid)});
}

EndpointAnswer BrowseEndpoints::repliesLog(const BrowseQuery &query)
{
    const QStringList tags{AnswerTags::topic(query.tid)};
    if (!m_store.topic(query.tid))
        return EndpointAnswer::of(QJsonValue(QJsonValue::Null), tags);
    return EndpointAnswer::of(arrayOf(m_store.replies(query.tid, query.offset, query.size), AnswerObjects::reply),
                              tags);
}
