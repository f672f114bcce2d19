#pragma once
// Builds and reads forum answer bodies the way the server does, for tests that script the
// server side. Header-only; the test links the codec (quorvel_codec).

#include "DesCryptUtil.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace forumanswer {

// {"Data": Base64(DES(JSON inner))}
inline QByteArray envelope(const QJsonObject &inner)
{
    const QString json = QString::fromUtf8(QJsonDocument(inner).toJson(QJsonDocument::Compact));
    const QString data = DesCryptUtil::DesEncode(json, DesCryptUtil::kKey, DesCryptUtil::kIV).value();
    return QJsonDocument(QJsonObject{{QStringLiteral("Data"), data}}).toJson(QJsonDocument::Compact);
}

// An answer whose inner object carries `rdata` as its RData.
inline QByteArray withRData(const QJsonValue &rdata)
{
    return envelope(QJsonObject{{QStringLiteral("RData"), rdata}});
}

// The JSON object a request carried in its raw `data` query value.
inline QJsonObject requestPayload(const QByteArray &rawQuery)
{
    const QByteArray prefix = "data=";
    if (!rawQuery.startsWith(prefix))
        return {};
    const std::optional<QString> json = DesCryptUtil::DesDecode(
        QString::fromLatin1(rawQuery.mid(prefix.size())), DesCryptUtil::kKey, DesCryptUtil::kIV);
    return QJsonDocument::fromJson(json.value_or(QString()).toUtf8()).object();
}

} // namespace forumanswer
