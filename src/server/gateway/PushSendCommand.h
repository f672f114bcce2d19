#pragma once
// `quorvel-server push send`: builds a notification naming a topic (message id under "d",
// "aps" with the alert, "key1" holding the JSON text whose "data" names the topic) and asks
// the running gateway to deliver it, with the secret the server wrote next to its database.
// Main thread, inside a Qt application object.

#include <QJsonObject>
#include <QStringList>

class PushSendCommand
{
public:
    PushSendCommand() = delete;

    // Whether `arguments` (the whole command line) ask for this command.
    static bool isRequested(const QStringList &arguments);
    // Runs it: 0 when delivered, 1 when refused or unreachable, 2 for a usage error.
    static int run(const QStringList &arguments);

    struct Topic
    {
        qint64 topicId = 0;
        qint64 sectionId = 0;
        QString title;
        QString userName;
        QString content;
    };
    // The user info of a notification naming `topic`.
    static QJsonObject userInfo(const QString &msgId, const Topic &topic, const QString &alert);
};
