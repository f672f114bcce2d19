#include "DemoData.h"

#include "DemoTexts.h"

#include <QDateTime>
#include <QTimeZone>

namespace {

constexpr quint64 kSeed = 0x51u * 0x9E3779B97F4A7C15ull;
constexpr qint64 kMinute = 60 * 1000;
constexpr int kTypeFiveEvery = 7;  // every seventh ordinary topic is of type 5
constexpr int kFirstOrdinary = 5;  // n of a board's first ordinary topic
// The bulk board draws from its own generator, so the demo boards stay the same with it.
constexpr quint64 kBulkSeed = 0xB0u * 0x9E3779B97F4A7C15ull;
const char *const kBulkBoardName = "压力测试";
const char *const kBulkBoardTag = "测试";

// A small deterministic generator (splitmix64): the same forum on every machine.
class DemoRandom
{
public:
    explicit DemoRandom(quint64 seed) : m_state(seed) {}
    int below(int bound)
    {
        quint64 z = (m_state += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return static_cast<int>((z ^ (z >> 31)) % static_cast<quint64>(bound));
    }
    int between(int low, int high) { return low + below(high - low + 1); }
    const QString &pick(const QStringList &list) { return list.at(below(int(list.size()))); }

private:
    quint64 m_state;
};

// Newest demo topics sit around this moment (China Standard Time).
qint64 baseTimeMs()
{
    return QDateTime(QDate(2025, 6, 18), QTime(20, 0), QTimeZone(8 * 3600)).toMSecsSinceEpoch();
}

QString ordinaryContent(DemoRandom &random, const QString &term)
{
    const QStringList &pool = DemoTexts::sentences();
    const int mode = random.below(10);
    if (mode < 4)
        return random.pick(pool);
    QString text = QString::fromUtf8("关于%1：").arg(term);
    const int count = mode < 8 ? random.between(2, 4) : random.between(6, 10);
    for (int i = 0; i < count; ++i) {
        text += random.pick(pool);
        if (mode >= 8 && i % 3 == 2)
            text += QLatin1Char('\n');
    }
    return text.trimmed();
}

QString replyContent(DemoRandom &random)
{
    return random.below(5) == 0 ? random.pick(DemoTexts::longReplies()) : random.pick(DemoTexts::replies());
}

class Seeder
{
public:
    explicit Seeder(ForumStore &store) : m_writer(store), m_random(kSeed) {}

    void run(int bulkBoardTopics)
    {
        if (m_writer.alreadySeeded())
            return;
        const qint64 base = baseTimeMs();
        for (const QString &name : DemoTexts::userNames())
            m_users.append(m_writer.addUser(name, base - 400LL * 24 * 60 * kMinute));
        const QList<DemoTexts::Board> &boards = DemoTexts::boards();
        for (int index = 0; index < DemoData::kBoardCount; ++index)
            addBoard(index + 1, boards.at(index), base);
        addBanners();
        if (bulkBoardTopics > 0)
            addBulkBoard(bulkBoardTopics, boards.first(), base);
        m_writer.commit();
    }

private:
    qint64 someUser() { return m_users.at(m_random.below(int(m_users.size()))); }

    void addBoard(qint64 sectionid, const DemoTexts::Board &board, qint64 base)
    {
        m_writer.addSection(sectionid, board.name, board.tag, DemoData::tagIdOf(sectionid));
        const int ordinary = DemoData::kOrdinaryTopicCounts[sectionid - 1];
        const int last = kFirstOrdinary + ordinary - 1;
        qint64 created = base - 8LL * 24 * 60 * kMinute + sectionid * 37 * kMinute;

        static constexpr int kSpecialTypes[] = {1, 3, 2, 4};
        for (int n = 1; n < kFirstOrdinary; ++n) {
            created += m_random.between(30, 240) * kMinute;
            const TopicRow topic{DemoData::topicIdOf(sectionid, n), sectionid, someUser(), QString(),
                                 board.pinnedTitles.at(n - 1), board.pinnedBodies.at(n - 1),
                                 kSpecialTypes[n - 1], created, 0};
            m_writer.addTopic(topic, true);
            if (n == 1)
                addReplies(topic, DemoData::kManyReplies, DemoData::kManyRepliesHighlighted, true);
            else
                addReplies(topic, m_random.between(4, 20), 1, false);
        }

        int typeFiveSeen = 0;
        for (int n = kFirstOrdinary; n <= last; ++n) {
            created += m_random.between(20, 240) * kMinute;
            const bool typeFive = n != last && (n - kFirstOrdinary) % kTypeFiveEvery == 3;
            const bool featured = n == kFirstOrdinary || (typeFive && typeFiveSeen++ == 0);
            const QString &term = m_random.pick(board.terms);
            const TopicRow topic{DemoData::topicIdOf(sectionid, n), sectionid, someUser(), QString(),
                                 m_random.pick(board.titleTemplates).arg(term),
                                 ordinaryContent(m_random, term), typeFive ? 5 : 0, created, 0};
            m_writer.addTopic(topic, featured);
            if (n == last)
                addReplies(topic, DemoData::kNewestTopicReplies, 1, false);
            else
                addReplies(topic, m_random.below(13), 0, false);
        }
    }

    // The first `highlighted` replies get istop 1; with `hidden`, two more get 2 and 3.
    void addReplies(const TopicRow &topic, int count, int highlighted, bool hidden)
    {
        qint64 created = topic.createdMs;
        for (int k = 0; k < count; ++k) {
            created += m_random.between(1, 120) * kMinute;
            int istop = 0;
            if (k < highlighted)
                istop = 1;
            else if (hidden && k < highlighted + DemoData::kManyRepliesHidden)
                istop = 2 + (k - highlighted);
            m_writer.addReply({0, topic.tid, someUser(), QString(), replyContent(m_random), istop, created});
        }
    }

    // Titles and texts come from `texts`, the board's own name and tag from the constants.
    void addBulkBoard(int topicCount, const DemoTexts::Board &texts, qint64 base)
    {
        const qint64 sectionid = DemoData::kBulkBoardId;
        m_writer.addSection(sectionid, QString::fromUtf8(kBulkBoardName), QString::fromUtf8(kBulkBoardTag),
                            DemoData::tagIdOf(sectionid));
        DemoRandom random(kBulkSeed);
        const qint64 first = base - topicCount * kMinute;
        for (int n = 0; n < topicCount; ++n) {
            const QString &term = random.pick(texts.terms);
            const qint64 userid = m_users.at(random.below(int(m_users.size())));
            m_writer.addTopic({DemoData::kBulkFirstTopicId + n, sectionid, userid, QString(),
                               random.pick(texts.titleTemplates).arg(term), ordinaryContent(random, term), 0,
                               first + n * kMinute, 0},
                              false);
        }
    }

    void addBanners()
    {
        const BannerRow banners[DemoData::kBannerCount] = {
            {1, QString::fromUtf8("【攻略】开服七天成长路线"), DemoData::topicIdOf(1, 3), 0, 0},
            {2, QString::fromUtf8("夏日庆典 · 登录领限定坐骑"), 0, 1, 1},
            {3, QString::fromUtf8("【资讯】版本更新日志合集"), DemoData::topicIdOf(2, 3), 0, 0},
            {4, QString::fromUtf8("组队招募季：寻找你的伙伴"), 0, 1, 2},
            {5, QString::fromUtf8("【置顶】同人创作大赛征稿"), DemoData::topicIdOf(4, 2), 0, 0},
        };
        for (const BannerRow &banner : banners)
            m_writer.addBanner(banner);
    }

    ForumStore::DemoWriter m_writer;
    DemoRandom m_random;
    QList<qint64> m_users;
};

} // namespace

void DemoData::seed(ForumStore &store, int bulkBoardTopics)
{
    if (store.isSeeded())
        return;
    Seeder(store).run(bulkBoardTopics);
}
