#include "NotificationChannel.h"

#include "GatewayUrl.h"
#include "NotificationLog.h"

#include <QEventLoop>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

#include <algorithm>

namespace {

// The gateway sends a comment every 15 s; silence three times that long means a dead line.
constexpr int kSilenceTimeoutMs = 45'000;
const QString kEventsPath = QStringLiteral("/events");
const QByteArray kLastEventIdHeader = QByteArrayLiteral("Last-Event-ID");

// "EPOCH:N": the gateway database's epoch and the message's number in it.
struct EventId
{
    QByteArray epoch;
    qint64 number = 0;
};

std::optional<EventId> parseEventId(const QByteArray &text)
{
    const qsizetype colon = text.lastIndexOf(':');
    if (colon <= 0)
        return std::nullopt;
    bool ok = false;
    const qint64 number = text.mid(colon + 1).toLongLong(&ok);
    if (!ok || number <= 0)
        return std::nullopt;
    return EventId{text.left(colon), number};
}

} // namespace

NotificationChannel::NotificationChannel(const QUrl &gateway, const QByteArray &deviceToken,
                                         UserDefaults &state, Receiver receiver, QObject *parent)
    : QObject(parent)
    , m_gateway(gateway)
    , m_token(deviceToken)
    , m_state(state)
    , m_receiver(std::move(receiver))
    , m_network(new QNetworkAccessManager(this))
{
    m_retry.setSingleShot(true);
    connect(&m_retry, &QTimer::timeout, this, [this] { m_reply = open(false); });
}

NotificationChannel::~NotificationChannel()
{
    stop();
}

int NotificationChannel::retryDelayMs(int failures)
{
    const int doublings = std::clamp(failures - 1, 0, 16);
    return int(std::min<qint64>(qint64(kFirstRetryMs) << doublings, kMaxRetryMs));
}

QString NotificationChannel::stateKey() const
{
    return QStringLiteral("notificationChannel/lastEventId/") + QString::fromLatin1(m_token.toHex());
}

QByteArray NotificationChannel::lastEventId() const
{
    return m_state.stringForKey(stateKey()).toLatin1();
}

void NotificationChannel::start()
{
    if (m_running)
        return;
    m_running = true;
    m_failures = 0;
    m_reply = open(false);
}

void NotificationChannel::stop()
{
    m_running = false;
    m_retry.stop();
    if (QNetworkReply *reply = m_reply.data()) {
        m_reply = nullptr;
        reply->disconnect(this);
        reply->abort();
        reply->deleteLater();
    }
    setConnected(false);
}

QNetworkReply *NotificationChannel::open(bool catchUpOnly)
{
    QUrl url(GatewayUrl::join(m_gateway.toString(), kEventsPath));
    if (catchUpOnly)
        url.setQuery(QStringLiteral("once=1"));
    QNetworkRequest request(url);
    request.setRawHeader("Authorization", "Bearer " + m_token.toHex());
    request.setRawHeader("Accept", "text/event-stream");
    const QByteArray last = lastEventId();
    if (!last.isEmpty())
        request.setRawHeader(kLastEventIdHeader, last);
    if (!catchUpOnly)
        request.setTransferTimeout(kSilenceTimeoutMs);
    m_parser = {};
    QNetworkReply *reply = m_network->get(request);
    if (!catchUpOnly) {
        connect(reply, &QNetworkReply::metaDataChanged, this, &NotificationChannel::streamMetaData);
        connect(reply, &QNetworkReply::readyRead, this, &NotificationChannel::streamData);
        connect(reply, &QNetworkReply::finished, this, &NotificationChannel::streamFinished);
    }
    return reply;
}

void NotificationChannel::streamMetaData()
{
    if (m_reply && m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() == 200) {
        m_failures = 0;
        m_lossLogged = false;
        setConnected(true);
    }
}

void NotificationChannel::streamData()
{
    if (!m_reply || m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() != 200)
        return;
    const QList<ServerSentEvent> events = m_parser.feed(m_reply->readAll());
    // The receiver may stop the channel; `this` outlives that, the reply need not.
    for (const ServerSentEvent &event : events) {
        if (!m_running)
            return;
        deliver(event, m_receiver);
    }
}

void NotificationChannel::streamFinished()
{
    QNetworkReply *reply = m_reply.data();
    if (!reply)
        return;
    m_reply = nullptr;
    reply->deleteLater();
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    setConnected(false);
    if (!m_running)
        return;
    if (!m_lossLogged) {
        m_lossLogged = true;
        const QString why = reply->error() != QNetworkReply::NoError ? reply->errorString()
                                                                       : QStringLiteral("closed by the gateway");
        NotificationLog::warning(QStringLiteral("notification channel to %1 lost (status %2: %3); reconnecting")
                                     .arg(m_gateway.toString())
                                     .arg(status)
                                     .arg(why));
    }
    connectLater();
}

void NotificationChannel::connectLater()
{
    ++m_failures;
    m_retry.start(retryDelayMs(m_failures));
}

void NotificationChannel::setConnected(bool connected)
{
    if (m_connected == connected)
        return;
    m_connected = connected;
    emit connectedChanged(connected);
}

bool NotificationChannel::deliver(const ServerSentEvent &event, const Receiver &receiver)
{
    if (!event.event.isEmpty() && event.event != "message")
        return false;
    const std::optional<EventId> id = parseEventId(event.id);
    if (!id) {
        NotificationLog::warning(QStringLiteral("notification channel: event without a usable id dropped"));
        return false;
    }
    const std::optional<EventId> last = parseEventId(lastEventId());
    if (last && last->epoch == id->epoch && id->number <= last->number)
        return false;
    // Recorded before it is handed on: a receiver that never returns (a crash) loses the
    // message rather than getting it twice.
    m_state.setObject(QString::fromLatin1(event.id), stateKey());
    m_state.synchronize();
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(event.data, &error);
    if (!document.isObject()) {
        NotificationLog::warning(QStringLiteral("notification channel: event %1 is not a JSON object, dropped")
                                     .arg(QString::fromLatin1(event.id)));
        return false;
    }
    if (receiver)
        receiver(document.object());
    return true;
}

std::optional<QJsonObject> NotificationChannel::takeLaunchNotification(int waitMs)
{
    QNetworkReply *reply = open(true);
    QEventLoop loop;
    QTimer deadline;
    deadline.setSingleShot(true);
    connect(&deadline, &QTimer::timeout, &loop, &QEventLoop::quit);
    connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    deadline.start(waitMs);
    if (!reply->isFinished())
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    std::optional<QJsonObject> first;
    if (reply->isFinished() && reply->error() == QNetworkReply::NoError) {
        ServerSentEventParser parser;
        const QList<ServerSentEvent> events = parser.feed(reply->readAll());
        for (const ServerSentEvent &event : events) {
            if (deliver(event, [&first](const QJsonObject &userInfo) { first = userInfo; }))
                break;
        }
    }
    reply->abort();
    reply->deleteLater();
    return first;
}
