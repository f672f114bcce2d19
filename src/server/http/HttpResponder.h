#pragma once
// The way back to the client of one request, handed to the request handler with it. Any
// thread may answer, once; later answers do nothing, and so does an answer to a client that
// has gone or has moved on to its next request. Instead of answering, a handler may keep the connection as an open stream and
// write to it as long as the client stays. Holds the connection weakly: copies kept after
// the server stopped are harmless.

#include "HttpResponse.h"

#include <memory>

class HttpConnection;

class HttpResponder
{
public:
    HttpResponder() = default;
    // `exchange` numbers the request on its connection.
    HttpResponder(std::weak_ptr<HttpConnection> connection, quint64 exchange);

    void respond(HttpResponse response) const;

    // Answers 200 with this content type and no length, writes `first`, and keeps the
    // connection open for write() until the client closes it.
    void openStream(const QByteArray &contentType, const QByteArray &first) const;
    void write(const QByteArray &bytes) const;
    // Whether the client is still there (for a stream: has not closed it).
    bool isOpen() const;

private:
    std::weak_ptr<HttpConnection> m_connection;
    quint64 m_exchange = 0;
};
