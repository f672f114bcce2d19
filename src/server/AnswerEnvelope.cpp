#include "AnswerEnvelope.h"

#include "DesCryptUtil.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace {

const QString kDataKey = QStringLiteral("Data");
const QString kRDataKey = QStringLiteral("RData");

} // namespace

QByteArray AnswerEnvelope::wrap(const QJsonValue &rdata)
{
    const QJsonObject inner{{kRDataKey, rdata}};
    const QString innerText = QString::fromUtf8(QJsonDocument(inner).toJson(QJsonDocument::Compact));
    const std::optional<QString> data =
        DesCryptUtil::DesEncode(innerText, DesCryptUtil::kKey, DesCryptUtil::kIV);
    const QJsonObject outer{{kDataKey, data ? QJsonValue(*data) : QJsonValue(QJsonValue::Null)}};
    return QJsonDocument(outer).toJson(QJsonDocument::Compact);
}

std::optional<QJsonValue> AnswerEnvelope::unwrap(const QByteArray &body)
{
    const QJsonDocument outer = QJsonDocument::fromJson(body);
    const QJsonValue data = outer.object().value(kDataKey);
    if (!data.isString())
        return std::nullopt;
    const std::optional<QString> innerText =
        DesCryptUtil::DesDecode(data.toString(), DesCryptUtil::kKey, DesCryptUtil::kIV);
    if (!innerText)
        return std::nullopt;
    const QJsonDocument inner = QJsonDocument::fromJson(innerText->toUtf8());
    if (!inner.isObject() || !inner.object().contains(kRDataKey))
        return std::nullopt;
    return inner.object().value(kRDataKey);
}
