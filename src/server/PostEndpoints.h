#pragma once
// The writing endpoints: the temporary user of a device, new topics and replies, with the
// posting rules (lengths, known board or topic, one post per interval per user).
// Lives on the store's thread.

#include "EndpointAnswer.h"
#include "ForumStore.h"

#include <QJsonObject>

#include <functional>

class PostEndpoints
{
public:
    struct Rules
    {
        qint64 postIntervalMs = 0;
        int maxTitleLength = 0;    // UTF-16 units
        int maxContentLength = 0;  // UTF-16 units
    };
    using Clock = std::function<qint64()>;  // milliseconds since the epoch

    PostEndpoints(ForumStore &store, Rules rules, Clock clock);

    EndpointAnswer tempUserInfo(const QJsonObject &payload);
    EndpointAnswer writeTopic(const QJsonObject &payload);
    EndpointAnswer replyTopic(const QJsonObject &payload);

    // The `description` texts of the posting answers.
    static const QString kTopicPosted;
    static const QString kReplyPosted;
    static const QString kTooSoon;
    static const QString kEmptyTitle;
    static const QString kTitleTooLong;
    static const QString kEmptyContent;
    static const QString kContentTooLong;
    static const QString kUnknownBoard;
    static const QString kUnknownTopic;
    static const QString kUnknownUser;

private:
    // The posting user: the device's temporary user for userid 0, else the named user.
    std::optional<UserRow> poster(qint64 userid, const QString &imei, const QString &devicetype);
    // A refusal text for a bad text, or empty when the text may be stored.
    QString checkText(const QString &text, int maxLength, const QString &empty, const QString &tooLong) const;
    EndpointAnswer store(const PostDraft &draft, const QString &success);

    ForumStore &m_store;
    Rules m_rules;
    Clock m_clock;
};
