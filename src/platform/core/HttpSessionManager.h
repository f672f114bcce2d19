#pragma once
// An HTTP session client: asynchronous GET and POST on one shared QNetworkAccessManager,
// a JSON response serializer with acceptable status codes (200-299) and content types,
// and completion handlers called on the main thread. Main thread: create and call it there.
//
// URLs are sent exactly as given: a literal "+" in a query stays "+" on the wire. Requests
// go out in the order they are asked for, POSTs included.

#include "HttpTask.h"

#include <QJsonValue>
#include <QSet>
#include <QString>
#include <QVariant>

#include <functional>

class JsonResponseSerializer;
class QNetworkAccessManager;
class QNetworkRequest;

class HttpSessionManager
{
public:
    using SuccessBlock = std::function<void(const HttpTask &task, const QJsonValue &responseObject)>;
    using FailureBlock = std::function<void(const HttpTask &task, const HttpError &error)>;

    // A client with the JSON serializer's default acceptable content types:
    // application/json, text/json and text/javascript.
    static HttpSessionManager manager();

    QSet<QString> acceptableContentTypes() const { return m_acceptableContentTypes; }
    void setAcceptableContentTypes(const QSet<QString> &types) { m_acceptableContentTypes = types; }

    // `parameters`: a QVariantMap of form fields, a bare string (sent as one unnamed pair,
    // "=" + escaped text), or invalid for none. GET puts them in the query, POST in a
    // application/x-www-form-urlencoded body.
    void GET(const QString &url, const QVariant &parameters, SuccessBlock success,
             FailureBlock failure) const;
    void POST(const QString &url, const QVariant &parameters, SuccessBlock success,
              FailureBlock failure) const;

    // The form encoding of `parameters` as described above.
    static QByteArray formEncoded(const QVariant &parameters);

    // The process's shared network access manager (main thread).
    static QNetworkAccessManager &network();

    // Requests started and not yet finished, across all clients (main thread).
    static int requestsInFlight();

private:
    void start(const QByteArray &method, const QString &url, const QVariant &parameters,
               SuccessBlock success, FailureBlock failure) const;
    static void send(QNetworkRequest request, const QByteArray &method, const QByteArray &form,
                     const JsonResponseSerializer &serializer, SuccessBlock success, FailureBlock failure);

    QSet<QString> m_acceptableContentTypes;
};
