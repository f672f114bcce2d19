#include "LFPushUtils.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <atomic>

Q_LOGGING_CATEGORY(lcPush, "quorvel.push")

namespace {
std::atomic<bool> g_logEnabled{false};
}

void LFPushUtils::setLogEnabled(bool enabled)
{
    g_logEnabled = enabled;
}

bool LFPushUtils::logEnabled()
{
    return g_logEnabled;
}

void LFPushUtils::outLog(const QString &message)
{
    if (g_logEnabled)
        qCInfo(lcPush).noquote() << message;
}

QString LFPushUtils::hexText(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.toHex());
}

QString LFPushUtils::jsonText(const QJsonValue &value)
{
    if (value.isObject())
        return QString::fromUtf8(QJsonDocument(value.toObject()).toJson(QJsonDocument::Compact));
    if (value.isArray())
        return QString::fromUtf8(QJsonDocument(value.toArray()).toJson(QJsonDocument::Compact));
    if (value.isString())
        return value.toString();
    if (value.isUndefined())
        return QStringLiteral("(null)");
    // A lone scalar: written as the one element of an array, without the brackets.
    const QByteArray text = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(text.mid(1, text.size() - 2));
}
