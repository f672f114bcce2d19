#include "HttpResponder.h"

#include "HttpConnection.h"

HttpResponder::HttpResponder(std::weak_ptr<HttpConnection> connection, quint64 exchange)
    : m_connection(std::move(connection))
    , m_exchange(exchange)
{
}

void HttpResponder::respond(HttpResponse response) const
{
    if (const std::shared_ptr<HttpConnection> connection = m_connection.lock())
        connection->respond(m_exchange, std::move(response));
}

void HttpResponder::openStream(const QByteArray &contentType, const QByteArray &first) const
{
    if (const std::shared_ptr<HttpConnection> connection = m_connection.lock())
        connection->openStream(m_exchange, contentType, first);
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
