#pragma once
// The delivery channel from the push gateway: one long-lived server-sent event stream,
// authenticated by the device token, that hands each notification's user info to its
// receiver. The last delivered message id is kept, so a reconnection (or the next launch)
// catches up on what was missed and nothing is delivered twice. A lost connection is logged
// once and retried with back-off doubling up to 60 s. Main thread.

#include "ServerSentEventParser.h"
#include "UserDefaults.h"

#include <QByteArray>
#include <QJsonObject>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QUrl>

#include <functional>
#include <optional>

class QNetworkAccessManager;
class QNetworkReply;

class NotificationChannel : public QObject
{
    Q_OBJECT
public:
    static constexpr int kFirstRetryMs = 1000;
    static constexpr int kMaxRetryMs = 60'000;

    using Receiver = std::function<void(const QJsonObject &userInfo)>;

    // `gateway` is the push root ("http://127.0.0.1:8080/push"); the stream is its "/events".
    // `state` keeps the last delivered id and must outlive the channel.
    NotificationChannel(const QUrl &gateway, const QByteArray &deviceToken, UserDefaults &state,
                        Receiver receiver, QObject *parent = nullptr);
    ~NotificationChannel() override;

    void start();
    void stop();
    bool isConnected() const { return m_connected; }

    // The oldest notification that came while the app was not running, asked for once and
    // waited for at most `waitMs`; it counts as delivered.
    std::optional<QJsonObject> takeLaunchNotification(int waitMs);

    // The delay before the next attempt after `failures` failed ones in a row.
    static int retryDelayMs(int failures);
    // The delay of the reconnection now waiting; 0 when none waits.
    int pendingRetryMs() const { return m_retry.isActive() ? m_retry.interval() : 0; }

signals:
    void connectedChanged(bool connected);

private:
    QNetworkReply *open(bool catchUpOnly);
    void streamMetaData();
    void streamData();
    void streamFinished();
    void connectLater();
    void setConnected(bool connected);
    // Hands `event` on unless it was delivered already; returns whether it was new.
    bool deliver(const ServerSentEvent &event, const Receiver &receiver);

    QString stateKey() const;
    QByteArray lastEventId() const;

    QUrl m_gateway;
    QByteArray m_token;
    UserDefaults &m_state;
    Receiver m_receiver;
    QNetworkAccessManager *m_network;
    QPointer<QNetworkReply> m_reply;
    ServerSentEventParser m_parser;
    QTimer m_retry;
    int m_failures = 0;
    bool m_running = false;
    bool m_connected = false;
    bool m_lossLogged = false;
};
