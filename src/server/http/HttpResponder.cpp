#include "HttpResponder.h"

#include "HttpConnection.h"

HttpResponder::HttpResponder(std::weak_ptr<HttpConnection> connection)
    : m_connection(std::move(connection))
{
}

void HttpResponder::respond(HttpResponse response) const
{
    if (const std::shared_ptr<HttpConnection> connection = m_connection.lock())
        connection->respond(std::move(response));
}

void HttpResponder::openStream(const QByteArray &contentType, const QByteArray &first) const
{
    if (const std::shared_ptr<HttpConnection> connection = m_connection.lock())
        connection->openStream(contentType, first);
}

void HttpResponder::write(const QByteArray &bytes) const
{
    if (const std::shared_ptr<HttpConnection> connection = m_connection.lock())
        connection->writeToStream(bytes);
}

bool HttpResponder::isOpen() const
{
    const std::shared_ptr<HttpConnection> connection = m_connection.lock();
    return connection && connection->isOpen();
}
