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

bool readClickPolicy(const QJsonValue &value, int *clickPolicy)
{
    if (value.isUndefined() || value.isNull())
        return true;
    if (value.isDouble()) {
        *clickPolicy = value.toInt();
        return true;
    }
    if (value.isString()) {
        bool ok = false;
        *clickPolicy = value.toString().toInt(&ok);
        return ok;
    }
    return false;
}

} // namespace

LFPMessage::LFPMessage(const QJsonObject &userInfo, double receivedAt)
    : userInfo(userInfo)
    , ts(receivedAt)
{
    const QJsonValue aps = userInfo.value(kApsKey);
    QString id;
    int policy = 0;
    const bool wellFormed = readMsgId(userInfo.value(kMsgIdKey), &id)
                            && readClickPolicy(userInfo.value(kClickPolicyKey), &policy)
                            && (aps.isUndefined() || aps.isObject());
    if (!wellFormed) {
        // Nothing of a malformed dictionary is trusted: the message stays without id.
        LFPushUtils::outLog(QStringLiteral("LFPMessage init exception [%1]").arg(LFPushUtils::jsonText(userInfo)));
        return;
    }
    msgId = id;
    clickPolicy = policy;
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
