#include "BrowseEndpoints.h"

#include "AnswerObjects.h"
#include "PayloadFields.h"

#include <QJsonArray>

namespace {

// Larger page numbers are read as this one, so the offset cannot overflow; all are empty.
constexpr qint64 kLargestPageIndex = qint64(1) << 40;

// The device pair every enciphered request carries.
void readDevice(PayloadFields &fields)
{
    fields.text("imei");
    fields.text("devicetype");
}

// TopicDetail and RepliesLog share one payload.
struct TopicPage
{
    qint64 tid = 0;
    qint64 pageindex = 0;
    qint64 pagesize = 0;
};

TopicPage readTopicPage(PayloadFields &fields)
{
    // The board id is not checked against the topic: the banner path sends whatever board
    // the home screen last looked at.
    fields.optionalInteger("sectionid");
    readDevice(fields);
    fields.integer("userid");
    TopicPage wanted{fields.integer("tid"), fields.integer("pageindex"), fields.integer("pagesize")};
    fields.integer("islandlord");
    return wanted;
}

template<typename Row>
QJsonArray arrayOf(const QList<Row> &rows, QJsonObject (*convert)(const Row &))
{
    QJsonArray array;
    for (const Row &row : rows)
        array.append(convert(row));
    return array;
}

} // namespace

BrowseEndpoints::BrowseEndpoints(ForumStore &store, int maxPageSize)
    : m_store(store)
    , m_maxPageSize(maxPageSize)
{
}

std::optional<BrowseEndpoints::Page> BrowseEndpoints::page(qint64 pageindex, qint64 pagesize,
                                                           QString *reason) const
{
    if (pageindex < 1 || pagesize < 1) {
        *reason = QStringLiteral("pageindex and pagesize must be at least 1");
        return std::nullopt;
    }
    const qint64 size = std::min<qint64>(pagesize, m_maxPageSize);
    const qint64 index = std::min(pageindex, kLargestPageIndex);
    return Page{(index - 1) * size, size};
}

EndpointAnswer BrowseEndpoints::adRecom(const QString &origin)
{
    QJsonArray items;
    for (const BannerRow &banner : m_store.banners()) {
        const std::optional<TopicRow> topic =
            banner.urltype == 0 ? m_store.topic(banner.tid) : std::nullopt;
        items.append(AnswerObjects::banner(banner, topic, origin));
    }
    return EndpointAnswer::of(items);
}

EndpointAnswer BrowseEndpoints::sections(const std::optional<QJsonObject> &payload, const QString &origin)
{
    if (payload) {
        PayloadFields fields(*payload);
        readDevice(fields);
        fields.integer("userid");
        if (!fields.ok())
            return EndpointAnswer::rejected(fields.error());
    }
    QJsonArray boards;
    for (const SectionRow &section : m_store.sections())
        boards.append(AnswerObjects::section(section, origin));
    return EndpointAnswer::of(boards);
}

EndpointAnswer BrowseEndpoints::topics(const QJsonObject &payload)
{
    PayloadFields fields(payload);
    const qint64 sectionid = fields.integer("sectionid");
    fields.integer("showtype");
    fields.integer("sorttype");
    fields.integerOrNumericText("tag");
    readDevice(fields);
    const qint64 pageindex = fields.integer("pageindex");
    const qint64 pagesize = fields.integer("pagesize");
    if (!fields.ok())
        return EndpointAnswer::rejected(fields.error());
    QString reason;
    const std::optional<Page> wanted = page(pageindex, pagesize, &reason);
    if (!wanted)
        return EndpointAnswer::rejected(reason);
    return EndpointAnswer::of(
        arrayOf(m_store.ordinaryTopics(sectionid, wanted->offset, wanted->size), AnswerObjects::topic));
}

EndpointAnswer BrowseEndpoints::topTopics(const QJsonObject &payload)
{
    PayloadFields fields(payload);
    const qint64 sectionid = fields.integer("sectionid");
    readDevice(fields);
    if (!fields.ok())
        return EndpointAnswer::rejected(fields.error());
    return EndpointAnswer::of(arrayOf(m_store.featuredTopics(sectionid), AnswerObjects::topic));
}

EndpointAnswer BrowseEndpoints::topicDetail(const QJsonObject &payload)
{
    PayloadFields fields(payload);
    const TopicPage wanted = readTopicPage(fields);
    if (!fields.ok())
        return EndpointAnswer::rejected(fields.error());
    const std::optional<TopicRow> topic = m_store.topic(wanted.tid);
    return EndpointAnswer::of(topic ? QJsonValue(AnswerObjects::topic(*topic)) : QJsonValue(QJsonValue::Null));
}

EndpointAnswer BrowseEndpoints::repliesLog(const QJsonObject &payload)
{
    PayloadFields fields(payload);
    const TopicPage wanted = readTopicPage(fields);
    if (!fields.ok())
        return EndpointAnswer::rejected(fields.error());
    QString reason;
    const std::optional<Page> rows = page(wanted.pageindex, wanted.pagesize, &reason);
    if (!rows)
        return EndpointAnswer::rejected(reason);
    if (!m_store.topic(wanted.tid))
        return EndpointAnswer::of(QJsonValue(QJsonValue::Null));
    return EndpointAnswer::of(arrayOf(m_store.replies(wanted.tid, rows->offset, rows->size), AnswerObjects::reply));
}
