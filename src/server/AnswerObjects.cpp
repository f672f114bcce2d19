#include "AnswerObjects.h"

#include "ForumTime.h"

QString AnswerObjects::sectionIconPath(qint64 sectionid)
{
    return QStringLiteral("/img/section/%1.png").arg(sectionid);
}

QString AnswerObjects::sectionHeaderPath(qint64 sectionid)
{
    return QStringLiteral("/img/header/%1.png").arg(sectionid);
}

QString AnswerObjects::bannerImagePath(qint64 bid)
{
    return QStringLiteral("/img/banner/%1.png").arg(bid);
}

QString AnswerObjects::promoPagePath(int page)
{
    return QStringLiteral("/pages/%1.html").arg(page);
}

QJsonObject AnswerObjects::section(const SectionRow &section, const QString &origin)
{
    return {
        {QStringLiteral("sectionid"), section.sectionid},
        {QStringLiteral("sectionname"), section.name},
        {QStringLiteral("sectiontag"), section.tag},
        {QStringLiteral("tagid"), section.tagid},
        {QStringLiteral("sectiontopic"), section.topicCount},
        {QStringLiteral("sectionico"), origin + sectionIconPath(section.sectionid)},
        {QStringLiteral("backgroundimg"), origin + sectionHeaderPath(section.sectionid)},
        {QStringLiteral("tid"), section.latestTid},
    };
}

QJsonObject AnswerObjects::topic(const TopicRow &topic)
{
    return {
        {QStringLiteral("tid"), topic.tid},
        {QStringLiteral("sectionid"), topic.sectionid},
        {QStringLiteral("userid"), topic.userid},
        {QStringLiteral("username"), topic.username},
        {QStringLiteral("title"), topic.title},
        {QStringLiteral("topiccontent"), topic.content},
        {QStringLiteral("topictype"), topic.topictype},
        {QStringLiteral("time"), ForumTime::timeText(topic.createdMs)},
        {QStringLiteral("timeformat"), ForumTime::timeFormatText(topic.createdMs)},
        {QStringLiteral("replycount"), topic.replyCount},
    };
}

QJsonObject AnswerObjects::reply(const ReplyRow &reply)
{
    return {
        {QStringLiteral("rid"), reply.rid},
        {QStringLiteral("tid"), reply.tid},
        {QStringLiteral("userid"), reply.userid},
        {QStringLiteral("username"), reply.username},
        {QStringLiteral("content"), reply.content},
        {QStringLiteral("istop"), reply.istop},
        {QStringLiteral("time"), ForumTime::timeText(reply.createdMs)},
        {QStringLiteral("timeformat"), ForumTime::timeFormatText(reply.createdMs)},
    };
}

QJsonObject AnswerObjects::banner(const BannerRow &banner, const std::optional<TopicRow> &topic,
                                  const QString &origin)
{
    // A topic item carries the topic's fields too: the detail screen shows them at once.
    QJsonObject item = topic ? AnswerObjects::topic(*topic) : QJsonObject();
    item.insert(QStringLiteral("bid"), banner.bid);
    item.insert(QStringLiteral("title"), banner.title);
    item.insert(QStringLiteral("adico"), origin + bannerImagePath(banner.bid));
    item.insert(QStringLiteral("tid"), banner.tid);
    item.insert(QStringLiteral("urltype"), banner.urltype);
    item.insert(QStringLiteral("adurl"), banner.urltype == 0 ? QString() : origin + promoPagePath(banner.page));
    return item;
}

QJsonObject AnswerObjects::user(const UserRow &user)
{
    return {
        {QStringLiteral("userid"), user.userid},
        {QStringLiteral("username"), user.username},
        {QStringLiteral("imei"), user.imei},
        {QStringLiteral("devicetype"), user.devicetype},
    };
}
