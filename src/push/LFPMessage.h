#pragma once
// One received notification: message id ("d"), click policy ("p"), the alert text and badge
// from "aps", and the time it arrived. Plain value; any thread.

#include <QJsonObject>
#include <QJsonValue>
#include <QString>

class LFPMessage
{
public:
    // Reads `userInfo`; malformed parts are logged and left empty, never thrown.
    LFPMessage(const QJsonObject &userInfo, double receivedAt);
    LFPMessage() = default;

    // The vendor's messages carry a message id.
    bool isFromLefiseix() const { return !msgId.isEmpty(); }

    QJsonObject userInfo;
    QString msgId;
    int clickPolicy = 0;
    QString alert;
    QJsonValue badge;
    double ts = 0;

private:
    static QString alertOf(const QJsonValue &alert);
};
