#pragma once
// The JSON objects of the answers: boards, topics, replies, banner items and users, with
// picture and page addresses made absolute against the origin the client reached us at.
// Stateless; any thread.

#include "ForumStore.h"

#include <QJsonObject>

namespace AnswerObjects {

QJsonObject section(const SectionRow &section, const QString &origin);
QJsonObject topic(const TopicRow &topic);
QJsonObject reply(const ReplyRow &reply);
// `topic` is the topic a urltype 0 item opens (absent for pages or a vanished topic).
QJsonObject banner(const BannerRow &banner, const std::optional<TopicRow> &topic, const QString &origin);
QJsonObject user(const UserRow &user);

QString sectionIconPath(qint64 sectionid);
QString sectionHeaderPath(qint64 sectionid);
QString bannerImagePath(qint64 bid);
QString promoPagePath(int page);

} // namespace AnswerObjects
