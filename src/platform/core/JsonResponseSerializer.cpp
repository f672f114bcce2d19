#include "JsonResponseSerializer.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>
#include <QNetworkReply>

namespace {

constexpr int kUnacceptableResponse = -1011;
constexpr int kUnacceptableContentType = -1016;
constexpr int kCannotParse = 3840;

const QString kTransportDomain = QStringLiteral("HttpTransport");
const QString kSerializerDomain = QStringLiteral("HttpResponseSerializer");

} // namespace

JsonResponseSerializer::JsonResponseSerializer(QSet<QString> acceptableContentTypes)
    : m_acceptableContentTypes(std::move(acceptableContentTypes))
{
}

QSet<QString> JsonResponseSerializer::defaultAcceptableContentTypes()
{
    return {QStringLiteral("application/json"), QStringLiteral("text/json"),
            QStringLiteral("text/javascript")};
}

QString JsonResponseSerializer::mimeTypeOf(const QString &contentTypeHeader)
{
    return contentTypeHeader.section(u';', 0, 0).trimmed().toLower();
}

JsonResponseSerializer::Result
JsonResponseSerializer::responseObjectForReply(QNetworkReply *reply, const HttpTask &task) const
{
    const QByteArray body = reply->readAll();
    auto failed = [&task](const QString &domain, int code, const QString &message) {
        return Result{QJsonValue(), HttpError{domain, code, message, task.url}};
    };

    // An HTTP status is judged below; only a reply without one is a transport failure.
    if (reply->error() != QNetworkReply::NoError && task.statusCode == 0)
        return failed(kTransportDomain, int(reply->error()), reply->errorString());

    if (task.statusCode < 200 || task.statusCode > 299) {
        return failed(kSerializerDomain, kUnacceptableResponse,
                      QStringLiteral("Request failed: %1 (%2)")
                          .arg(reply->attribute(QNetworkRequest::HttpReasonPhraseAttribute)
                                   .toString()
                                   .toLower())
                          .arg(task.statusCode));
    }
    const bool nothingToJudge = task.contentType.isEmpty() && body.isEmpty();
    if (!nothingToJudge && !m_acceptableContentTypes.contains(task.contentType)) {
        return failed(kSerializerDomain, kUnacceptableContentType,
                      QStringLiteral("Request failed: unacceptable content-type: %1")
                          .arg(task.contentType));
    }
    if (body.trimmed().isEmpty())
        return Result{QJsonValue(QJsonValue::Null), std::nullopt};

    QJsonParseError parseError{};
    const QJsonDocument document = QJsonDocument::fromJson(body, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        return failed(kSerializerDomain, kCannotParse,
                      QStringLiteral("JSON text did not parse: %1 at offset %2")
                          .arg(parseError.errorString())
                          .arg(parseError.offset));
    }
    if (document.isArray())
        return Result{document.array(), std::nullopt};
    return Result{document.object(), std::nullopt};
}
