#include "CliFormat.h"

#include "FieldValue.h"
#include "PostModel.h"
#include "ReplyListModel.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

QString text(const QJsonValue &value)
{
    return value.isUndefined() || value.isNull() ? QString() : FieldValue::describe(value);
}

QString indented(const QString &body)
{
    QString out;
    for (const QString &line : body.split(u'\n'))
        out += QStringLiteral("    ") + line + u'\n';
    return out;
}

QString topicLine(const QJsonValue &entry)
{
    const PostModel topic = PostModel::fromJson(entry);
    return QStringLiteral("  #%1  %2  —  %3  %4\n")
        .arg(text(topic.tid()), text(topic.title()), text(topic.username()), text(topic.timeformat()));
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
                      .arg(text(board.sectionname()))
                      .arg(page)
                      .arg(topics.toArray().size());
    for (const QJsonValue &entry : topics.toArray())
        out += topicLine(entry);
    return out;
}

QString topTopics(const QJsonValue &topics)
{
    QString pinned;
    QString guides;
    for (const QJsonValue &entry : topics.toArray()) {
        const qint64 type = FieldValue::integerValue(entry.toObject().value(QStringLiteral("topictype")));
        if (type == 1 || type == 3)
            pinned += topicLine(entry);
        else if (type == 2 || type == 4)
            guides += topicLine(entry);
    }
    return QStringLiteral("置顶\n") + pinned + QStringLiteral("攻略\n") + guides;
}

QString topicDetail(const QJsonValue &detail, const QJsonValue &replies)
{
    const QJsonObject topic = detail.toObject();
    QString out = QStringLiteral("%1\n%2\n%3")
                      .arg(text(topic.value(QStringLiteral("title"))), text(topic.value(QStringLiteral("time"))),
                           indented(text(topic.value(QStringLiteral("topiccontent")))));
    QString highlighted;
    QString all;
    int allCount = 0;
    for (const QJsonValue &entry : replies.toArray()) {
        const ReplyListModel reply = ReplyListModel::fromJson(entry);
        const QString line = QStringLiteral("  %1  %2\n%3")
                                 .arg(text(reply.username()), text(reply.timeformat()),
                                      indented(text(reply.content())));
        const qint64 istop = FieldValue::integerValue(entry.toObject().value(QStringLiteral("istop")));
        if (istop == 1) {
            highlighted += line;
        } else if (istop == 0) {
            all += line;
            ++allCount;
        }
    }
    return out + QStringLiteral("精彩回复\n") + highlighted
           + QStringLiteral("全部回复(%1)\n").arg(allCount) + all;
}

} // namespace CliFormat
