#pragma once
// A minimal HTTP/1.1 server on a loopback port that records each request exactly as it
// arrived (raw request target, headers, body) and answers with what the test says.
// Main thread.

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>

#include <functional>

class RecordingHttpServer : public QObject
{
    Q_OBJECT

public:
    struct Request
    {
        QByteArray method;
        QByteArray target;                   // as sent: path and query, nothing decoded
        QMap<QByteArray, QByteArray> headers; // names in lower case
        QByteArray body;

        QByteArray path() const { return target.contains('?') ? target.left(target.indexOf('?')) : target; }
        QByteArray query() const;            // after the first "?", raw
    };

    struct Response
    {
        int status = 200;
        QByteArray contentType = "application/json";
        QByteArray body;
    };

    using Responder = std::function<Response(const Request &)>;

    explicit RecordingHttpServer(QObject *parent = nullptr);

    // Listens on 127.0.0.1 with an ephemeral port.
    bool listen();
    quint16 port() const { return m_server.serverPort(); }
    QString baseUrl() const;                 // "http://127.0.0.1:PORT/"
    QString apiRoot() const { return baseUrl() + QStringLiteral("api/"); }

    void setResponder(Responder responder) { m_responder = std::move(responder); }
    // While holding, requests are recorded but their answers wait for release().
    void hold() { m_holding = true; }
    void release();
    const QList<Request> &requests() const { return m_requests; }
    void clear() { m_requests.clear(); }

private:
    void serve(QTcpSocket *socket);
    void answer(QTcpSocket *socket, const Request &request);

    QTcpServer m_server;
    Responder m_responder;
    QList<Request> m_requests;
    bool m_holding = false;
    QList<std::pair<QPointer<QTcpSocket>, Request>> m_held;
};
