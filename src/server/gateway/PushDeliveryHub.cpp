#include "PushDeliveryHub.h"

#include "PushGatewayStore.h"

namespace {
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

void PushDeliveryHub::openStream(const QString &token, const QByteArray &missed, const HttpResponder &responder)
{
    dropClosed();
    responder.openStream(kContentType, missed);
    m_streams.append({token, responder});
}

void PushDeliveryHub::deliver(const QString &token, qint64 id, const QByteArray &userInfo)
{
    dropClosed();
    for (const Stream &stream : std::as_const(m_streams)) {
        if (stream.token == token)
            stream.connection.write(eventText(id, userInfo));
    }
}

void PushDeliveryHub::dropClosed()
{
    m_streams.removeIf([](const Stream &stream) {
        return !stream.connection.isOpen();
    });
}

void PushDeliveryHub::heartbeat()
{
    dropClosed();
    for (const Stream &stream : std::as_const(m_streams))
        stream.connection.write(kHeartbeat);
}
