#include "LFPMessage.h"

#include "LFPushUtils.h"

#include <cmath>

namespace {

const QString kMsgIdKey = QStringLiteral("d");
const QString kClickPolicyKey = QStringLiteral("p");
const QString kApsKey = QStringLiteral("aps");

// A number or a string is an id; any other value makes the dictionary malformed.
bool readMsgId(const QJsonValue &value, QString *msgId)
{
    if (value.isUndefined() || value.isNull())
        return true;
    if (value.isString()) {
        *msgId = value.toString();
        return true;
    }
    if (value.isDouble() && std::isfinite(value.toDouble())) {
        *msgId = LFPushUtils::jsonText(value);
        return true;
    }
    return false;
}

// A policy that is not a number reads as 0, the default: the message keeps its id, so it is
// still opened and its click reported.
int readClickPolicy(const QJsonValue &value)
{
    if (value.isDouble())
        return value.toInt();
    return value.isString() ? value.toString().toInt() : 0;
}

} // namespace

LFPMessage::LFPMessage(const QJsonObject &userInfo, double receivedAt)
    : userInfo(userInfo)
    , ts(receivedAt)
{
    const QJsonValue aps = userInfo.value(kApsKey);
    QString id;
    const bool wellFormed = readMsgId(userInfo.value(kMsgIdKey), &id) && (aps.isUndefined() || aps.isObject());
    if (!wellFormed) {
        // Nothing of a malformed dictionary is trusted: the message stays without id.
        LFPushUtils::outLog(QStringLiteral("LFPMessage init exception [%1]").arg(LFPushUtils::jsonText(userInfo)));
        return;
    }
    msgId = id;
    clickPolicy = readClickPolicy(userInfo.value(kClickPolicyKey));
    const QJsonObject apsObject = aps.toObject();
    alert = alertOf(apsObject.value(QStringLiteral("alert")));
    badge = apsObject.value(QStringLiteral("badge"));
}

QString LFPMessage::alertOf(const QJsonValue &alert)
{
    if (alert.isString())
        return alert.toString();
    if (alert.isObject())
        return alert.toObject().value(QStringLiteral("body")).toString();
    if (!alert.isUndefined())
        LFPushUtils::outLog(QStringLiteral("error:apsAlert [%1]").arg(LFPushUtils::jsonText(alert)));
    return {};
}
