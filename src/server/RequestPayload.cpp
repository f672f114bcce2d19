#include "RequestPayload.h"

#include "DesCryptUtil.h"
#include "GTMBase64.h"

#include <QJsonDocument>
#include <QJsonParseError>

std::optional<QByteArray> RequestPayload::dataParameter(const QByteArray &rawQuery)
{
    static const QByteArray kPrefix = QByteArrayLiteral("data=");
    for (const QByteArray &pair : rawQuery.split('&')) {
        // QByteArray's percent decoding leaves "+" alone, which is what the payload needs.
        if (pair.startsWith(kPrefix))
            return QByteArray::fromPercentEncoding(pair.mid(kPrefix.size()));
    }
    return std::nullopt;
}

RequestPayload::Decoded RequestPayload::decode(const QByteArray &base64)
{
    if (base64.isEmpty())
        return {std::nullopt, QStringLiteral("payload is empty")};
    if (GTMBase64::decodeData(base64).isEmpty())
        return {std::nullopt, QStringLiteral("payload is not Base64")};
    const std::optional<QString> text =
        DesCryptUtil::DesDecode(QString::fromLatin1(base64), DesCryptUtil::kKey, DesCryptUtil::kIV);
    if (!text)
        return {std::nullopt, QStringLiteral("payload is not UTF-8 text")};
    if (text->isEmpty())
        return {std::nullopt, QStringLiteral("payload does not decipher")};

    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(text->toUtf8(), &parseError);
    if (parseError.error != QJsonParseError::NoError)
        return {std::nullopt, QStringLiteral("payload is not JSON: %1").arg(parseError.errorString())};
    if (!document.isObject())
        return {std::nullopt, QStringLiteral("payload is not a JSON object")};
    return {document.object(), QString()};
}

QByteArray RequestPayload::encode(const QJsonObject &payload)
{
    const QString json = QString::fromUtf8(QJsonDocument(payload).toJson(QJsonDocument::Compact));
    return DesCryptUtil::DesEncode(json, DesCryptUtil::kKey, DesCryptUtil::kIV).value_or(QString()).toLatin1();
}
