#include "BrowseQuery.h"

#include "PayloadFields.h"

namespace {

// Larger page numbers are read as this one, so the offset cannot overflow; all are empty.
constexpr qint64 kLargestPageIndex = qint64(1) << 40;

using Kind = BrowseQuery::Kind;

BrowseQueryRead rejected(const QString &reason)
{
    return {std::nullopt, reason};
}

// The device pair every enciphered request carries.
void readDevice(PayloadFields &fields)
{
    fields.text("imei");
    fields.text("devicetype");
}

// Sets the query's offset and size; false, with `reason` set, for a page that cannot be.
bool readPage(qint64 pageindex, qint64 pagesize, int maxPageSize, BrowseQuery &query, QString *reason)
{
    if (pageindex < 1 || pagesize < 1) {
        *reason = QStringLiteral("pageindex and pagesize must be at least 1");
        return false;
    }
    query.size = std::min<qint64>(pagesize, maxPageSize);
    query.offset = (std::min(pageindex, kLargestPageIndex) - 1) * query.size;
    return true;
}

void readFields(Kind kind, PayloadFields &fields, BrowseQuery &query, qint64 &pageindex, qint64 &pagesize)
{
    switch (kind) {
    case Kind::AdRecom:
        break;
    case Kind::Sections:
        readDevice(fields);
        fields.integer("userid");
        break;
    case Kind::Topics:
        query.sectionid = fields.integer("sectionid");
        fields.integer("showtype");
        fields.integer("sorttype");
        fields.integerOrNumericText("tag");
        readDevice(fields);
        pageindex = fields.integer("pageindex");
        pagesize = fields.integer("pagesize");
        break;
    case Kind::TopTopics:
        query.sectionid = fields.integer("sectionid");
        readDevice(fields);
        break;
    case Kind::TopicDetail:
    case Kind::RepliesLog:
        // The board id is not checked against the topic: the banner path sends whatever
        // board the home screen last looked at.
        fields.optionalInteger("sectionid");
        readDevice(fields);
        fields.integer("userid");
        query.tid = fields.integer("tid");
        pageindex = fields.integer("pageindex");
        pagesize = fields.integer("pagesize");
        fields.integer("islandlord");
        break;
    }
}

} // namespace

BrowseQueryRead BrowseQueryRead::read(Kind kind, const std::optional<QJsonObject> &payload, const QString &origin,
                                      int maxPageSize)
{
    BrowseQuery query;
    query.kind = kind;
    if (kind == Kind::AdRecom || kind == Kind::Sections)
        query.origin = origin;
    if (!payload)
        return {query, QString()};

    PayloadFields fields(*payload);
    qint64 pageindex = 0;
    qint64 pagesize = 0;
    readFields(kind, fields, query, pageindex, pagesize);
    if (!fields.ok())
        return rejected(fields.error());
    // TopicDetail reads its page fields but answers the topic whatever they say.
    const bool paged = kind == Kind::Topics || kind == Kind::RepliesLog;
    QString reason;
    if (paged && !readPage(pageindex, pagesize, maxPageSize, query, &reason))
        return rejected(reason);
    return {query, QString()};
}

QByteArray BrowseQuery::cacheKey() const
{
    return QByteArray::number(int(kind)) + ' ' + QByteArray::number(sectionid) + ' ' + QByteArray::number(tid) + ' '
        + QByteArray::number(offset) + ' ' + QByteArray::number(size) + ' ' + origin.toUtf8();
}
