#pragma once
// What a finished HTTP request was, handed to completion handlers, and the error a failed
// one reports. Plain values; any thread.

#include <QByteArray>
#include <QString>
#include <QUrl>

struct HttpTask
{
    QUrl url;
    QByteArray method;
    int statusCode = 0;   // 0 when no response arrived
    QString contentType;  // MIME type of the response, lower case, without parameters
};

struct HttpError
{
    QString domain;  // "HttpTransport" (no usable response) or "HttpResponseSerializer"
    int code = 0;
    QString message;
    QUrl url;

    QString description() const;
};
