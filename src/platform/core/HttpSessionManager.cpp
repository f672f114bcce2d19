#include "HttpSessionManager.h"

#include "JsonResponseSerializer.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

#include <algorithm>
#include <deque>
#include <functional>

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

// Qt starts a request that carries a body (a POST) from the event loop, but one without (a
// GET) at once, so a GET asked for right after a POST would go out before it. While a body
// waits to start, later requests wait in line behind it: requests go out in the order asked.
bool g_bodyWaitingToStart = false;
std::deque<std::function<void()>> g_waitingRequests;

void sendWaitingRequests()
{
    g_bodyWaitingToStart = false;
    while (!g_bodyWaitingToStart && !g_waitingRequests.empty()) {
        const std::function<void()> send = std::move(g_waitingRequests.front());
        g_waitingRequests.pop_front();
        send();
    }
}

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
    ++g_inFlight;
    auto sendNow = [request, method, form, serializer = JsonResponseSerializer(m_acceptableContentTypes),
                    success = std::move(success), failure = std::move(failure)]() mutable {
        HttpSessionManager::send(request, method, form, serializer, std::move(success), std::move(failure));
    };
    if (g_bodyWaitingToStart)
        g_waitingRequests.push_back(std::move(sendNow));
    else
        sendNow();
}

void HttpSessionManager::send(QNetworkRequest request, const QByteArray &method, const QByteArray &form,
                              const JsonResponseSerializer &serializer, SuccessBlock success,
                              FailureBlock failure)
{
    QNetworkReply *reply = nullptr;
    if (method == "POST") {
        request.setHeader(QNetworkRequest::ContentTypeHeader,
                          QByteArrayLiteral("application/x-www-form-urlencoded"));
        reply = network().post(request, form);
        // Queued behind the start Qt just queued for the body.
        g_bodyWaitingToStart = true;
        QMetaObject::invokeMethod(&network(), &sendWaitingRequests, Qt::QueuedConnection);
    } else {
        reply = network().get(request);
    }

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
