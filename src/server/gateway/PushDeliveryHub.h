#pragma once
// The open delivery streams of the desktop notification channels: each device's stream gets
// the messages it missed (after the id it names) at once and every new one as it is sent, as
// server-sent events "id: EPOCH:N" / "data: <user info>". A comment line every 15 s keeps
// idle streams alive and lets the client notice a dead line. Main thread.

#include "HttpResponder.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>
#include <QTimer>

class PushGatewayStore;

class PushDeliveryHub : public QObject
{
    Q_OBJECT
public:
    static constexpr int kHeartbeatMs = 15'000;
    static inline const QByteArray kContentType = QByteArrayLiteral("text/event-stream");

    explicit PushDeliveryHub(PushGatewayStore &store, QObject *parent = nullptr);

    // The message number to resume after, from a Last-Event-ID of this gateway ("EPOCH:N");
    // 0 for none or another database's.
    qint64 resumeAfter(const QByteArray &lastEventId) const;
    // The device's messages after `afterId` as one event-stream text.
    QByteArray missedEvents(const QString &token, qint64 afterId) const;

    // Keeps the responder's connection as the device's stream, first sending `missed` (its
    // missedEvents()).
    void openStream(const QString &token, const QByteArray &missed, const HttpResponder &responder);
    void deliver(const QString &token, qint64 id, const QByteArray &userInfo);

private:
    struct Stream
    {
        QString token;
        HttpResponder connection;
    };

    QByteArray eventText(qint64 id, const QByteArray &userInfo) const;
    void dropClosed();
    void heartbeat();

    PushGatewayStore &m_store;
    QList<Stream> m_streams;
    QTimer m_heartbeat;
};
