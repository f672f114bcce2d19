#include "ForumStore.h"

#include "AnswerTags.h"
#include "ForumSchema.h"

#include <QVariant>

namespace {

const QString kTopicColumns = QStringLiteral(
    "SELECT t.tid, t.sectionid, t.userid, u.username, t.title, t.content, t.topictype, t.created,"
    " (SELECT COUNT(*) FROM replies r WHERE r.tid = t.tid)"
    " FROM topics t JOIN users u ON u.userid = t.userid ");

const QString kReplyColumns = QStringLiteral(
    "SELECT r.rid, r.tid, r.userid, u.username, r.content, r.istop, r.created"
    " FROM replies r JOIN users u ON u.userid = r.userid ");

const QString kSectionColumns = QStringLiteral(
    "SELECT s.sectionid, s.name, s.tag, s.tagid,"
    " (SELECT COUNT(*) FROM topics t WHERE t.sectionid = s.sectionid),"
    " (SELECT t.tid FROM topics t WHERE t.sectionid = s.sectionid"
    "  ORDER BY t.created DESC, t.tid DESC LIMIT 1)"
    " FROM sections s ");

const QString kBannerColumns = QStringLiteral("SELECT bid, title, tid, urltype, page FROM banners ");
const QString kUserColumns = QStringLiteral("SELECT userid, username, imei, devicetype FROM users ");

const QString kSeededKey = QStringLiteral("seeded");

TopicRow topicFrom(const QSqlQuery &q)
{
    return {q.value(0).toLongLong(), q.value(1).toLongLong(), q.value(2).toLongLong(),
            q.value(3).toString(),   q.value(4).toString(),   q.value(5).toString(),
            q.value(6).toInt(),      q.value(7).toLongLong(), q.value(8).toLongLong()};
}

ReplyRow replyFrom(const QSqlQuery &q)
{
    return {q.value(0).toLongLong(), q.value(1).toLongLong(), q.value(2).toLongLong(),
            q.value(3).toString(),   q.value(4).toString(),   q.value(5).toInt(),
            q.value(6).toLongLong()};
}

SectionRow sectionFrom(const QSqlQuery &q)
{
    return {q.value(0).toLongLong(), q.value(1).toString(),  q.value(2).toString(),
            q.value(3).toLongLong(), q.value(4).toLongLong(), q.value(5).toLongLong()};
}

BannerRow bannerFrom(const QSqlQuery &q)
{
    return {q.value(0).toLongLong(), q.value(1).toString(), q.value(2).toLongLong(),
            q.value(3).toInt(), q.value(4).toInt()};
}

UserRow userFrom(const QSqlQuery &q)
{
    return {q.value(0).toLongLong(), q.value(1).toString(), q.value(2).toString(), q.value(3).toString()};
}

// Runs a bound query and reads every row with `read`.
template<typename Row>
QList<Row> allRows(ForumDatabase &database, QSqlQuery &query, Row (*read)(const QSqlQuery &))
{
    database.exec(query);
    QList<Row> rows;
    while (query.next())
        rows.append(read(query));
    return rows;
}

template<typename Row>
std::optional<Row> firstRow(ForumDatabase &database, QSqlQuery &query, Row (*read)(const QSqlQuery &))
{
    database.exec(query);
    if (!query.next())
        return std::nullopt;
    return read(query);
}

} // namespace

ForumStore::ForumStore(ForumDatabase &database)
    : m_database(database)
{
}

bool ForumStore::isSeeded()
{
    return m_database.meta(kSeededKey).has_value();
}

QList<SectionRow> ForumStore::sections()
{
    QSqlQuery query = m_database.prepare(kSectionColumns + QStringLiteral("ORDER BY s.sortorder, s.sectionid"));
    return allRows(m_database, query, sectionFrom);
}

std::optional<SectionRow> ForumStore::section(qint64 sectionid)
{
    QSqlQuery query = m_database.prepare(kSectionColumns + QStringLiteral("WHERE s.sectionid = ?"));
    query.addBindValue(sectionid);
    return firstRow(m_database, query, sectionFrom);
}

QList<TopicRow> ForumStore::ordinaryTopics(qint64 sectionid, qint64 offset, qint64 limit)
{
    QSqlQuery query = m_database.prepare(
        kTopicColumns + QStringLiteral("WHERE t.sectionid = ? AND t.topictype NOT IN (1, 2, 3, 4)"
                                       " ORDER BY t.created DESC, t.tid DESC LIMIT ? OFFSET ?"));
    query.addBindValue(sectionid);
    query.addBindValue(limit);
    query.addBindValue(offset);
    return allRows(m_database, query, topicFrom);
}

QList<TopicRow> ForumStore::featuredTopics(qint64 sectionid)
{
    QSqlQuery query = m_database.prepare(
        kTopicColumns + QStringLiteral("WHERE t.sectionid = ? AND t.featured = 1"
                                       " ORDER BY t.topictype, t.created DESC, t.tid DESC"));
    query.addBindValue(sectionid);
    return allRows(m_database, query, topicFrom);
}

std::optional<TopicRow> ForumStore::topic(qint64 tid)
{
    QSqlQuery query = m_database.prepare(kTopicColumns + QStringLiteral("WHERE t.tid = ?"));
    query.addBindValue(tid);
    return firstRow(m_database, query, topicFrom);
}

QList<ReplyRow> ForumStore::replies(qint64 tid, qint64 offset, qint64 limit)
{
    QSqlQuery query = m_database.prepare(
        kReplyColumns + QStringLiteral("WHERE r.tid = ? ORDER BY (r.istop = 1) DESC, r.created DESC,"
                                       " r.rid DESC LIMIT ? OFFSET ?"));
    query.addBindValue(tid);
    query.addBindValue(limit);
    query.addBindValue(offset);
    return allRows(m_database, query, replyFrom);
}

QList<BannerRow> ForumStore::banners()
{
    QSqlQuery query = m_database.prepare(kBannerColumns + QStringLiteral("ORDER BY bid"));
    return allRows(m_database, query, bannerFrom);
}

std::optional<BannerRow> ForumStore::banner(qint64 bid)
{
    QSqlQuery query = m_database.prepare(kBannerColumns + QStringLiteral("WHERE bid = ?"));
    query.addBindValue(bid);
    return firstRow(m_database, query, bannerFrom);
}

std::optional<UserRow> ForumStore::user(qint64 userid)
{
    QSqlQuery query = m_database.prepare(kUserColumns + QStringLiteral("WHERE userid = ?"));
    query.addBindValue(userid);
    return firstRow(m_database, query, userFrom);
}

UserRow ForumStore::userForDevice(const QString &imei, const QString &devicetype, qint64 nowMs)
{
    ForumDatabase::Transaction transaction(m_database);
    QSqlQuery find = m_database.prepare(kUserColumns + QStringLiteral("WHERE imei = ?"));
    find.addBindValue(imei);
    if (std::optional<UserRow> known = firstRow(m_database, find, userFrom))
        return *known;

    // Another process may add the same device meanwhile; then its user is this one's.
    QSqlQuery insert = m_database.prepare(QStringLiteral(
        "INSERT INTO users(imei, devicetype, username, created) VALUES (?, ?, '', ?)"
        " ON CONFLICT(imei) DO NOTHING RETURNING userid"));
    insert.addBindValue(imei);
    insert.addBindValue(devicetype);
    insert.addBindValue(nowMs);
    const std::optional<qint64> inserted = m_database.execReturningKey(insert);
    if (!inserted) {
        transaction.commit();
        return userForDevice(imei, devicetype, nowMs);
    }
    const qint64 userid = *inserted;

    // Temporary users are named after their id, which only exists once inserted.
    const QString username = QStringLiteral("玩家%1").arg(userid);
    QSqlQuery name = m_database.prepare(QStringLiteral("UPDATE users SET username = ? WHERE userid = ?"));
    name.addBindValue(username);
    name.addBindValue(userid);
    m_database.exec(name);
    transaction.commit();
    return {userid, username, imei, devicetype};
}

qint64 ForumStore::sectionOfTopic(qint64 tid)
{
    QSqlQuery query = m_database.prepare(QStringLiteral("SELECT sectionid FROM topics WHERE tid = ?"));
    query.addBindValue(tid);
    m_database.exec(query);
    return query.next() ? query.value(0).toLongLong() : 0;
}

ForumStore::PostOutcome ForumStore::post(const PostDraft &draft, qint64 nowMs, qint64 intervalMs)
{
    ForumDatabase::Transaction transaction(m_database);
    // The user's row stays locked until commit: two processes checking the interval take turns.
    QSqlQuery last = m_database.prepare(QStringLiteral("SELECT lastpost FROM users WHERE userid = ?")
                                        + m_database.dialect().lockRows());
    last.addBindValue(draft.userid);
    m_database.exec(last);
    if (last.next() && !last.value(0).isNull() && nowMs - last.value(0).toLongLong() < intervalMs)
        return {PostResult::TooSoon, 0};

    QSqlQuery insert = draft.tid == 0
        ? m_database.prepare(QStringLiteral(
              "INSERT INTO topics(sectionid, userid, title, content, topictype, featured, created)"
              " VALUES (?, ?, ?, ?, 0, 0, ?) RETURNING tid"))
        : m_database.prepare(QStringLiteral(
              "INSERT INTO replies(tid, userid, content, istop, created) VALUES (?, ?, ?, 0, ?) RETURNING rid"));
    if (draft.tid == 0) {
        insert.addBindValue(draft.sectionid);
        insert.addBindValue(draft.userid);
        insert.addBindValue(draft.title);
    } else {
        insert.addBindValue(draft.tid);
        insert.addBindValue(draft.userid);
    }
    insert.addBindValue(draft.content);
    insert.addBindValue(nowMs);
    const qint64 id = m_database.execReturningKey(insert).value_or(0);
    transaction.announce(draft.tid == 0 ? AnswerTags::forNewTopic(draft.sectionid, id)
                                        : AnswerTags::forNewReply(draft.tid, sectionOfTopic(draft.tid)));

    QSqlQuery stamp = m_database.prepare(QStringLiteral("UPDATE users SET lastpost = ? WHERE userid = ?"));
    stamp.addBindValue(nowMs);
    stamp.addBindValue(draft.userid);
    m_database.exec(stamp);
    transaction.commit();
    return {PostResult::Stored, id};
}

ForumStore::DemoWriter::DemoWriter(ForumStore &store)
    : m_store(store)
    , m_transaction(store.m_database)
{
    // Server processes starting together on one database seed it once.
    m_transaction.lock(ForumSchema::kSetupLock);
}

bool ForumStore::DemoWriter::alreadySeeded()
{
    return m_store.isSeeded();
}

void ForumStore::DemoWriter::addSection(qint64 sectionid, const QString &name, const QString &tag,
                                        qint64 tagid)
{
    QSqlQuery query = m_store.m_database.prepare(QStringLiteral(
        "INSERT INTO sections(sectionid, name, tag, tagid, sortorder) VALUES (?, ?, ?, ?, ?)"));
    for (const QVariant &value : {QVariant(sectionid), QVariant(name), QVariant(tag), QVariant(tagid),
                                  QVariant(sectionid)})
        query.addBindValue(value);
    m_store.m_database.exec(query);
}

qint64 ForumStore::DemoWriter::addUser(const QString &username, qint64 createdMs)
{
    QSqlQuery query = m_store.m_database.prepare(
        QStringLiteral("INSERT INTO users(imei, username, created) VALUES (NULL, ?, ?) RETURNING userid"));
    query.addBindValue(username);
    query.addBindValue(createdMs);
    return m_store.m_database.execReturningKey(query).value_or(0);
}

void ForumStore::DemoWriter::addTopic(const TopicRow &topic, bool featured)
{
    QSqlQuery query = m_store.m_database.prepare(QStringLiteral(
        "INSERT INTO topics(tid, sectionid, userid, title, content, topictype, featured, created)"
        " VALUES (?, ?, ?, ?, ?, ?, ?, ?)"));
    for (const QVariant &value : {QVariant(topic.tid), QVariant(topic.sectionid), QVariant(topic.userid),
                                  QVariant(topic.title), QVariant(topic.content),
                                  QVariant(topic.topictype), QVariant(featured ? 1 : 0),
                                  QVariant(topic.createdMs)})
        query.addBindValue(value);
    m_store.m_database.exec(query);
}

void ForumStore::DemoWriter::addReply(const ReplyRow &reply)
{
    QSqlQuery query = m_store.m_database.prepare(QStringLiteral(
        "INSERT INTO replies(tid, userid, content, istop, created) VALUES (?, ?, ?, ?, ?)"));
    for (const QVariant &value : {QVariant(reply.tid), QVariant(reply.userid), QVariant(reply.content),
                                  QVariant(reply.istop), QVariant(reply.createdMs)})
        query.addBindValue(value);
    m_store.m_database.exec(query);
}

void ForumStore::DemoWriter::addBanner(const BannerRow &banner)
{
    QSqlQuery query = m_store.m_database.prepare(
        QStringLiteral("INSERT INTO banners(bid, title, tid, urltype, page) VALUES (?, ?, ?, ?, ?)"));
    for (const QVariant &value : {QVariant(banner.bid), QVariant(banner.title), QVariant(banner.tid),
                                  QVariant(banner.urltype), QVariant(banner.page)})
        query.addBindValue(value);
    m_store.m_database.exec(query);
}

void ForumStore::DemoWriter::commit()
{
    QSqlQuery query = m_store.m_database.prepare(
        QStringLiteral("INSERT INTO meta(key, value) VALUES (?, '1') ON CONFLICT(key) DO NOTHING"));
    query.addBindValue(kSeededKey);
    m_store.m_database.exec(query);
    // New topics continue above the demo's numbered ones.
    const QString resync = m_store.m_database.dialect().resyncGeneratedKey(QStringLiteral("topics"), QStringLiteral("tid"));
    if (!resync.isEmpty())
        m_store.m_database.run(resync);
    m_transaction.commit();
}
