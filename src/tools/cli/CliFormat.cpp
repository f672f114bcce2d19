#include "CliFormat.h"

#include "FieldValue.h"
#include "PostModel.h"
#include "RecordSorting.h"
#include "ReplyListModel.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

QString text(const QJsonValue &value)
{
    return FieldValue::displayText(value);
}

QString indented(const QString &body)
{
    QString out;
    for (const QString &line : body.split(u'\n'))
        out += QStringLiteral("    ") + line + u'\n';
    return out;
}

QString topicLine(const PostModel &topic)
{
    return QStringLiteral("  #%1  %2  —  %3  %4\n")
        .arg(text(topic.tid()), text(topic.title()), text(topic.username()), text(topic.timeformat()));
}

QString replyLine(const ReplyListModel &reply)
{
    return QStringLiteral("  %1  %2\n%3").arg(text(reply.username()), text(reply.timeformat()), indented(text(reply.content())));
}

} // namespace

namespace CliFormat {

QString json(const QJsonValue &payload)
{
    if (payload.isArray())
        return QString::fromUtf8(QJsonDocument(payload.toArray()).toJson(QJsonDocument::Indented)).trimmed();
    if (payload.isObject())
        return QString::fromUtf8(QJsonDocument(payload.toObject()).toJson(QJsonDocument::Indented)).trimmed();
    return text(payload);
}

QString banner(const QJsonValue &items)
{
    QString out = QStringLiteral("推荐 (%1)\n").arg(items.toArray().size());
    for (const QJsonValue &entry : items.toArray()) {
        const PostModel item = PostModel::fromJson(entry);
        const bool page = FieldValue::integerValue(item.urltype()) == 1;
        out += QStringLiteral("  %1  %2\n    图片 %3\n")
                   .arg(text(item.title()),
                        page ? QStringLiteral("网页 ") + text(item.adurl())
                             : QStringLiteral("帖子 #") + text(item.tid()),
                        text(entry.toObject().value(QStringLiteral("adico"))));
    }
    return out;
}

QString boards(const QJsonValue &boards)
{
    QString out = QStringLiteral("版块 (%1)\n").arg(boards.toArray().size());
    for (const QJsonValue &entry : boards.toArray()) {
        const ListModel board = ListModel::fromJson(entry);
        out += QStringLiteral("  [%1] %2  %3  主题 %4  (tag %5)\n")
                   .arg(text(board.sectionid()), text(board.sectionname()), text(board.sectiontag()),
                        text(board.sectiontopic()), text(board.tagid()));
    }
    return out;
}

QString topics(const ListModel &board, int page, const QJsonValue &topics)
{
    QString out = QStringLiteral("%1 第%2页 (%3)\n")
                      .arg(text(board.sectionname()), QString::number(page),
                           QString::number(topics.toArray().size()));
    for (const QJsonValue &entry : topics.toArray())
        out += topicLine(PostModel::fromJson(entry));
    return out;
}

QString topTopics(const QJsonValue &topics)
{
    const RecordSorting::TopTopics sorted = RecordSorting::splitTopTopics(topics);
    QString out = QStringLiteral("置顶\n");
    for (const PostModel &topic : sorted.pinned)
        out += topicLine(topic);
    out += QStringLiteral("攻略\n");
    for (const PostModel &topic : sorted.guides)
        out += topicLine(topic);
    return out;
}

QString topicDetail(const QJsonValue &detail, const QJsonValue &replies)
{
    const QJsonObject topic = detail.toObject();
    QString out = QStringLiteral("%1\n%2\n%3")
                      .arg(text(topic.value(QStringLiteral("title"))), text(topic.value(QStringLiteral("time"))),
                           indented(text(topic.value(QStringLiteral("topiccontent")))));
    const RecordSorting::Replies sorted = RecordSorting::splitReplies(replies);
    out += QStringLiteral("精彩回复\n");
    for (const ReplyListModel &reply : sorted.highlighted)
        out += replyLine(reply);
    out += QStringLiteral("全部回复(%1)\n").arg(sorted.all.size());
    for (const ReplyListModel &reply : sorted.all)
        out += replyLine(reply);
    return out;
}

} // namespace CliFormat
