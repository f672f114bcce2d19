#pragma once
// One request as the HTTP layer read it: the raw target split into path and query (both
// still percent-escaped, so a "+" stays a "+"), the header fields and the whole body.
// Plain data; any thread.

#include <QByteArray>
#include <QList>
#include <QPair>

struct HttpRequest
{
    QByteArray method;  // "GET", "POST", ...
    QByteArray target;  // as sent: "/api/GetTopics?data=..."
    QByteArray path;    // the target up to "?"
    QByteArray query;   // after "?", empty when none
    QList<QPair<QByteArray, QByteArray>> headers;
    QByteArray body;
    QByteArray peerAddress;  // the client's IP address, as text
    qint64 receivedNs = 0;   // when it was read whole, on the steady clock

    void markReceived();
    // Nanoseconds since markReceived().
    qint64 ageNs() const;

    // The first header field of that name (case-insensitive), empty when there is none.
    QByteArray header(const QByteArray &name) const;
    // Sets `target`, `path` and `query` from a raw target.
    void setTarget(const QByteArray &rawTarget);
};
