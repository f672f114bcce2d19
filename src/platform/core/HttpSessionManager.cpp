#include "HttpSessionManager.h"

#include "JsonResponseSerializer.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

#include <algorithm>

namespace {

// A request that stays silent this long fails, as with the phone's HTTP client default.
constexpr int kTimeoutMs = 60'000;

// Escapes a form value the way the phone's HTTP client does: RFC 3986 delimiters other
// than "/" and "?" are escaped, so "+" becomes %2B and "=" becomes %3D.
QByteArray escapeFormValue(const QString &value)
{
    return QUrl::toPercentEncoding(value, QByteArrayLiteral("/?"));
}

int g_inFlight = 0;

HttpTask taskFor(const QNetworkReply *reply, const QByteArray &method)
{
    HttpTask task;
    task.url = reply->request().url();
    task.method = method;
    task.statusCode = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    task.contentType = JsonResponseSerializer::mimeTypeOf(
        reply->header(QNetworkRequest::ContentTypeHeader).toString());
    return task;
}

} // namespace

QString HttpError::description() const
{
    return QStringLiteral("Error Domain=%1 Code=%2 \"%3\" URL=%4")
        .arg(domain)
        .arg(code)
        .arg(message, url.toString(QUrl::FullyEncoded));
}

HttpSessionManager HttpSessionManager::manager()
{
    HttpSessionManager client;
    client.m_acceptableContentTypes = JsonResponseSerializer::defaultAcceptableContentTypes();
    return client;
}

QNetworkAccessManager &HttpSessionManager::network()
{
    static QNetworkAccessManager *shared = [] {
        auto *manager = new QNetworkAccessManager;
        manager->setTransferTimeout(kTimeoutMs);
        return manager;
    }();
    return *shared;
}

int HttpSessionManager::requestsInFlight()
{
    return g_inFlight;
}

QByteArray HttpSessionManager::formEncoded(const QVariant &parameters)
{
    if (parameters.typeId() == QMetaType::QVariantMap) {
        const QVariantMap fields = parameters.toMap();
        QList<QByteArray> pairs;
        for (auto it = fields.cbegin(); it != fields.cend(); ++it)
            pairs << escapeFormValue(it.key()) + '=' + escapeFormValue(it.value().toString());
        return pairs.join('&');
    }
    if (parameters.isValid())
        return '=' + escapeFormValue(parameters.toString());
    return {};
}

void HttpSessionManager::GET(const QString &url, const QVariant &parameters,
                             SuccessBlock success, FailureBlock failure) const
{
    start(QByteArrayLiteral("GET"), url, parameters, std::move(success), std::move(failure));
}

void HttpSessionManager::POST(const QString &url, const QVariant &parameters,
                              SuccessBlock success, FailureBlock failure) const
{
    start(QByteArrayLiteral("POST"), url, parameters, std::move(success), std::move(failure));
}

void HttpSessionManager::start(const QByteArray &method, const QString &url,
                               const QVariant &parameters, SuccessBlock success,
                               FailureBlock failure) const
{
    const QByteArray form = formEncoded(parameters);
    QByteArray target = url.toUtf8();
    if (method == "GET" && !form.isEmpty())
        target += (target.contains('?') ? '&' : '?') + form;

    QNetworkRequest request(QUrl::fromEncoded(target, QUrl::TolerantMode));
    QNetworkReply *reply = nullptr;
    if (method == "POST") {
        request.setHeader(QNetworkRequest::ContentTypeHeader,
                          QByteArrayLiteral("application/x-www-form-urlencoded"));
        reply = network().post(request, form);
    } else {
        reply = network().get(request);
    }

    ++g_inFlight;
    const JsonResponseSerializer serializer(m_acceptableContentTypes);
    QObject::connect(reply, &QNetworkReply::finished, reply,
                     [reply, method, serializer, success = std::move(success),
                      failure = std::move(failure)] {
                         reply->deleteLater();
                         --g_inFlight;
                         const HttpTask task = taskFor(reply, method);
                         const JsonResponseSerializer::Result result =
                             serializer.responseObjectForReply(reply, task);
                         if (result.error) {
                             if (failure)
                                 failure(task, *result.error);
                         } else if (success) {
                             success(task, result.responseObject);
                         }
                     });
}
