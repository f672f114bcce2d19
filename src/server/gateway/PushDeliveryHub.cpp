#include "PushDeliveryHub.h"

#include "PushGatewayStore.h"

#include <QHttpServerResponder>
#include <QTcpSocket>

namespace {
const QByteArray kStreamHead = QByteArrayLiteral(
    "HTTP/1.1 200 OK\r\n"
    "Content-Type: text/event-stream\r\n"
    "Cache-Control: no-cache\r\n"
    "Connection: close\r\n"
    "\r\n");
const QByteArray kHeartbeat = QByteArrayLiteral(":\n\n");
} // namespace

PushDeliveryHub::PushDeliveryHub(PushGatewayStore &store, QObject *parent)
    : QObject(parent)
    , m_store(store)
{
    m_heartbeat.setInterval(kHeartbeatMs);
    connect(&m_heartbeat, &QTimer::timeout, this, &PushDeliveryHub::heartbeat);
    m_heartbeat.start();
}

PushDeliveryHub::~PushDeliveryHub()
{
    for (const Stream &stream : std::as_const(m_streams)) {
        if (stream.socket)
            stream.socket->disconnectFromHost();
    }
}

qint64 PushDeliveryHub::resumeAfter(const QByteArray &lastEventId) const
{
    const qsizetype colon = lastEventId.lastIndexOf(':');
    if (colon <= 0 || QString::fromLatin1(lastEventId.left(colon)) != m_store.epoch())
        return 0;
    bool ok = false;
    const qint64 id = lastEventId.mid(colon + 1).toLongLong(&ok);
    return ok && id > 0 ? id : 0;
}

QByteArray PushDeliveryHub::eventText(qint64 id, const QByteArray &userInfo) const
{
    return "id: " + m_store.epoch().toLatin1() + ':' + QByteArray::number(id) + "\ndata: " + userInfo + "\n\n";
}

QByteArray PushDeliveryHub::missedEvents(const QString &token, qint64 afterId) const
{
    QByteArray text;
    for (const PushGatewayStore::StoredMessage &message : m_store.messagesAfter(token, afterId))
        text += eventText(message.id, message.userInfo);
    return text;
}

void PushDeliveryHub::openStream(const QString &token, qint64 afterId, QHttpServerResponder &&responder)
{
    QTcpSocket *socket = responder.socket();
    if (!socket)
        return;
    socket->write(kStreamHead + missedEvents(token, afterId));
    m_streams.append({token, socket, std::make_shared<QHttpServerResponder>(std::move(responder))});
    connect(socket, &QTcpSocket::disconnected, this, &PushDeliveryHub::dropClosed, Qt::QueuedConnection);
}

void PushDeliveryHub::deliver(const QString &token, qint64 id, const QByteArray &userInfo)
{
    dropClosed();
    for (const Stream &stream : std::as_const(m_streams)) {
        if (stream.token == token)
            stream.socket->write(eventText(id, userInfo));
    }
}

void PushDeliveryHub::dropClosed()
{
    m_streams.removeIf([](const Stream &stream) {
        return !stream.socket || stream.socket->state() != QAbstractSocket::ConnectedState;
    });
}

void PushDeliveryHub::heartbeat()
{
    dropClosed();
    for (const Stream &stream : std::as_const(m_streams))
        stream.socket->write(kHeartbeat);
}
