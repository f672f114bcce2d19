#include "RequestData.h"

#include "DesCryptUtil.h"
#include "ForumLog.h"
#include "JsonChangDic.h"
#include "ServiceConfig.h"

#include <QJsonObject>

namespace {

const QSet<QString> kPlainRequestContentTypes = {QStringLiteral("text/html"),
                                                 QStringLiteral("application/json")};

// Calls the caller's handler with the unwrapped payload, unless the answer's Data is null.
HttpSessionManager::SuccessBlock unwrappingHandler(RequestData::SuccessBlock success)
{
    return [success = std::move(success)](const HttpTask &task, const QJsonValue &responseObject) {
        if (responseObject.toObject().value(QStringLiteral("Data")).isNull())
            return;
        const QJsonValue payload = RequestData::unwrapPayload(responseObject);
        if (success)
            success(task, payload);
    };
}

HttpSessionManager::FailureBlock loggingHandler(const QString &format)
{
    return [format](const HttpTask &, const HttpError &error) {
        forumLog(format.arg(error.description()));
    };
}

std::optional<QString> encipher(const QString &jsonText)
{
    return DesCryptUtil::DesEncode(jsonText, DesCryptUtil::kKey, DesCryptUtil::kIV);
}

// The Base64 text goes in as it is: "+", "/" and "=" travel unescaped in the query.
QString urlWithPayload(const QString &endpoint, const std::optional<QString> &cipherText)
{
    return ServiceConfig::apiRoot() + endpoint + cipherText.value_or(QString());
}

} // namespace

QString RequestData::encodedUrl(const QString &jsonText, const QString &endpoint)
{
    return urlWithPayload(endpoint, encipher(jsonText));
}

QJsonValue RequestData::unwrapPayload(const QJsonValue &responseObject)
{
    // An absent Data deciphers like an empty text: to nothing, so the payload is absent.
    const QString data = responseObject.toObject().value(QStringLiteral("Data")).toString();
    const std::optional<QString> inner =
        DesCryptUtil::DesDecode(data, DesCryptUtil::kKey, DesCryptUtil::kIV);
    const QJsonValue dictionary = JsonChangDic::dictionaryWithJsonString(inner);
    return dictionary.toObject().value(QStringLiteral("RData"));
}

void RequestData::requestWith(const QString &url, const QVariant &parameters,
                              SuccessBlock successBlock, FailBlock)
{
    HttpSessionManager client = HttpSessionManager::manager();
    client.setAcceptableContentTypes(kPlainRequestContentTypes);
    client.GET(url, parameters, unwrappingHandler(std::move(successBlock)),
               loggingHandler(QStringLiteral("error----:%1")));
}

void RequestData::requesEncodetWith(const QString &jsonText, const QVariant &parameters,
                                    SuccessBlock successBlock, FailBlock, const QString &string)
{
    HttpSessionManager::manager().GET(encodedUrl(jsonText, string), parameters,
                                      unwrappingHandler(std::move(successBlock)),
                                      loggingHandler(QStringLiteral("%1")));
}

void RequestData::requesPostWith(const QString &jsonText, const QVariant &, SuccessBlock successBlock,
                                 FailBlock, const QString &string)
{
    const std::optional<QString> cipherText = encipher(jsonText);
    HttpSessionManager::manager().POST(urlWithPayload(string, cipherText),
                                       cipherText ? QVariant(*cipherText) : QVariant(),
                                       unwrappingHandler(std::move(successBlock)),
                                       loggingHandler(QStringLiteral("%1")));
}
