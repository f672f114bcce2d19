#include "PostEndpoints.h"

#include "AnswerObjects.h"
#include "PayloadFields.h"

const QString PostEndpoints::kTopicPosted = QStringLiteral("发帖成功");
const QString PostEndpoints::kReplyPosted = QStringLiteral("回帖成功");
const QString PostEndpoints::kTooSoon = QStringLiteral("操作太频繁");
const QString PostEndpoints::kEmptyTitle = QStringLiteral("标题不能为空");
const QString PostEndpoints::kTitleTooLong = QStringLiteral("标题过长");
const QString PostEndpoints::kEmptyContent = QStringLiteral("内容不能为空");
const QString PostEndpoints::kContentTooLong = QStringLiteral("内容过长");
const QString PostEndpoints::kUnknownBoard = QStringLiteral("版块不存在");
const QString PostEndpoints::kUnknownTopic = QStringLiteral("帖子不存在");
const QString PostEndpoints::kUnknownUser = QStringLiteral("用户不存在");

namespace {

EndpointAnswer described(const QString &description)
{
    return EndpointAnswer::of(QJsonObject{{QStringLiteral("description"), description}});
}

} // namespace

PostEndpoints::PostEndpoints(ForumStore &store, Rules rules, Clock clock)
    : m_store(store)
    , m_rules(rules)
    , m_clock(std::move(clock))
{
}

EndpointAnswer PostEndpoints::tempUserInfo(const QJsonObject &payload)
{
    PayloadFields fields(payload);
    const QString imei = fields.text("imei");
    const QString devicetype = fields.text("devicetype");
    if (!fields.ok())
        return EndpointAnswer::rejected(fields.error());
    if (imei.trimmed().isEmpty())
        return EndpointAnswer::rejected(QStringLiteral("field imei must not be empty"));
    const UserRow user = m_store.userForDevice(imei, devicetype, m_clock());
    return EndpointAnswer::of(QJsonObject{{QStringLiteral("userinfo"), AnswerObjects::user(user)}});
}

std::optional<UserRow> PostEndpoints::poster(qint64 userid, const QString &imei, const QString &devicetype)
{
    if (userid != 0)
        return m_store.user(userid);
    if (imei.trimmed().isEmpty())
        return std::nullopt;
    return m_store.userForDevice(imei, devicetype, m_clock());
}

QString PostEndpoints::checkText(const QString &text, int maxLength, const QString &empty,
                                 const QString &tooLong) const
{
    if (text.trimmed().isEmpty())
        return empty;
    if (text.size() > maxLength)
        return tooLong;
    return QString();
}

EndpointAnswer PostEndpoints::store(const PostDraft &draft, const QString &success)
{
    const ForumStore::PostOutcome outcome = m_store.post(draft, m_clock(), m_rules.postIntervalMs);
    if (outcome.result == ForumStore::PostResult::TooSoon)
        return described(kTooSoon);
    QJsonObject answer{{QStringLiteral("description"), success}};
    if (draft.tid == 0) {
        answer.insert(QStringLiteral("tid"), outcome.id);
    } else {
        answer.insert(QStringLiteral("tid"), draft.tid);
        answer.insert(QStringLiteral("rid"), outcome.id);
    }
    return EndpointAnswer::of(answer);
}

EndpointAnswer PostEndpoints::writeTopic(const QJsonObject &payload)
{
    PayloadFields fields(payload);
    const qint64 userid = fields.integer("userid");
    const qint64 sectionid = fields.integer("sectionid");
    fields.integerOrNumericText("tag");
    const QString title = fields.text("title");
    const QString content = fields.text("content");
    const QString imei = fields.text("imei");
    const QString devicetype = fields.text("devicetype");
    fields.requireArray("imgs");
    if (!fields.ok())
        return EndpointAnswer::rejected(fields.error());

    if (!m_store.section(sectionid))
        return described(kUnknownBoard);
    QString refusal = checkText(title, m_rules.maxTitleLength, kEmptyTitle, kTitleTooLong);
    if (refusal.isEmpty())
        refusal = checkText(content, m_rules.maxContentLength, kEmptyContent, kContentTooLong);
    if (!refusal.isEmpty())
        return described(refusal);
    const std::optional<UserRow> user = poster(userid, imei, devicetype);
    if (!user)
        return described(kUnknownUser);
    return store({user->userid, sectionid, 0, title, content}, kTopicPosted);
}

EndpointAnswer PostEndpoints::replyTopic(const QJsonObject &payload)
{
    // `title` carries the topic's title or the replied-to poster's name; it is not stored.
    // The board id is not checked either: the reply joins the topic's own board.
    PayloadFields fields(payload);
    fields.optionalInteger("sectionid");
    const QString imei = fields.text("imei");
    const QString devicetype = fields.text("devicetype");
    const qint64 userid = fields.integer("userid");
    const qint64 tid = fields.integer("tid");
    const QString content = fields.text("content");
    fields.requireArray("imgs");
    fields.integer("pid");
    fields.optionalText("title");
    if (!fields.ok())
        return EndpointAnswer::rejected(fields.error());

    const std::optional<TopicRow> topic = m_store.topic(tid);
    if (!topic)
        return described(kUnknownTopic);
    const QString refusal = checkText(content, m_rules.maxContentLength, kEmptyContent, kContentTooLong);
    if (!refusal.isEmpty())
        return described(refusal);
    const std::optional<UserRow> user = poster(userid, imei, devicetype);
    if (!user)
        return described(kUnknownUser);
    return store({user->userid, topic->sectionid, tid, QString(), content}, kReplyPosted);
}
