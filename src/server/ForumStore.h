#pragma once
// The forum's data: boards, users, topics, replies and banner items, read and written
// through one ForumDatabase. Every write is one transaction. Lives on the database's
// thread. Failed statements throw StoreError.

#include "ForumDatabase.h"

#include <QList>
#include <QString>

#include <optional>

struct SectionRow
{
    qint64 sectionid = 0;
    QString name;
    QString tag;
    qint64 tagid = 0;
    qint64 topicCount = 0;
    qint64 latestTid = 0;  // 0 for a board without topics
};

struct TopicRow
{
    qint64 tid = 0;
    qint64 sectionid = 0;
    qint64 userid = 0;
    QString username;
    QString title;
    QString content;
    int topictype = 0;
    qint64 createdMs = 0;
    qint64 replyCount = 0;
};

struct ReplyRow
{
    qint64 rid = 0;
    qint64 tid = 0;
    qint64 userid = 0;
    QString username;
    QString content;
    int istop = 0;
    qint64 createdMs = 0;
};

struct BannerRow
{
    qint64 bid = 0;
    QString title;
    qint64 tid = 0;   // the topic opened by a urltype 0 item
    int urltype = 0;  // 0: a topic, 1: a web page
    int page = 0;     // the promotion page of a urltype 1 item
};

struct UserRow
{
    qint64 userid = 0;
    QString username;
    QString imei;
    QString devicetype;
};

// A post to add: a topic when `tid` is 0, else a reply to topic `tid`.
struct PostDraft
{
    qint64 userid = 0;
    qint64 sectionid = 0;
    qint64 tid = 0;
    QString title;
    QString content;
};

class ForumStore
{
public:
    explicit ForumStore(ForumDatabase &database);

    ForumDatabase &database() { return m_database; }

    bool isSeeded();
    QList<SectionRow> sections();
    std::optional<SectionRow> section(qint64 sectionid);
    // Topics of types other than pinned (1, 3) and guide (2, 4), newest first.
    QList<TopicRow> ordinaryTopics(qint64 sectionid, qint64 offset, qint64 limit);
    // The board's featured topics: all pinned and guide topics and a few others.
    QList<TopicRow> featuredTopics(qint64 sectionid);
    std::optional<TopicRow> topic(qint64 tid);
    // Highlighted replies (istop 1) first, then the rest newest first.
    QList<ReplyRow> replies(qint64 tid, qint64 offset, qint64 limit);
    QList<BannerRow> banners();
    std::optional<BannerRow> banner(qint64 bid);
    std::optional<UserRow> user(qint64 userid);

    // The temporary user of a device, made on its first request.
    UserRow userForDevice(const QString &imei, const QString &devicetype, qint64 nowMs);

    enum class PostResult { Stored, TooSoon };
    struct PostOutcome
    {
        PostResult result = PostResult::Stored;
        qint64 id = 0;  // the new topic's tid or reply's rid
    };
    // Stores the post unless the user posted less than `intervalMs` before `nowMs`; the
    // check and the write are one transaction, with the user's row locked across processes.
    // Announces the answers it changes (AnswerTags).
    PostOutcome post(const PostDraft &draft, qint64 nowMs, qint64 intervalMs);

    // Demo data is written in one go by DemoData through these.
    class DemoWriter
    {
    public:
        // Holds the seeding lock until commit.
        explicit DemoWriter(ForumStore &store);
        // Seeded by another process while this one waited for the lock.
        bool alreadySeeded();
        void addSection(qint64 sectionid, const QString &name, const QString &tag, qint64 tagid);
        qint64 addUser(const QString &username, qint64 createdMs);
        void addTopic(const TopicRow &topic, bool featured);
        void addReply(const ReplyRow &reply);
        void addBanner(const BannerRow &banner);
        void commit();

    private:
        ForumStore &m_store;
        ForumDatabase::Transaction m_transaction;
    };

private:
    qint64 sectionOfTopic(qint64 tid);

    ForumDatabase &m_database;
};
