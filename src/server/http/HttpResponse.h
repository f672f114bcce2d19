#pragma once
// One answer for the HTTP layer to write. Content-Length and Connection are the layer's;
// anything else goes in `headers`. Plain data; any thread.

#include <QByteArray>
#include <QList>
#include <QPair>

struct HttpResponse
{
    int status = 200;
    QByteArray contentType;
    QByteArray body;
    QList<QPair<QByteArray, QByteArray>> headers;
};
