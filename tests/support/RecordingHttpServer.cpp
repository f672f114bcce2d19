#include "RecordingHttpServer.h"

#include <QTcpSocket>

namespace {

constexpr qsizetype kMaxHeaderBytes = 64 * 1024;

struct Parsed
{
    bool complete = false;
    RecordingHttpServer::Request request;
};

Parsed parse(const QByteArray &buffer)
{
    Parsed parsed;
    const qsizetype headerEnd = buffer.indexOf("\r\n\r\n");
    if (headerEnd < 0)
        return parsed;
    const QList<QByteArray> lines = buffer.left(headerEnd).split('\n');
    const QList<QByteArray> requestLine = lines.first().trimmed().split(' ');
    if (requestLine.size() < 2)
        return parsed;
    auto &request = parsed.request;
    request.method = requestLine.at(0);
    request.target = requestLine.at(1);
    for (qsizetype i = 1; i < lines.size(); ++i) {
        const qsizetype colon = lines.at(i).indexOf(':');
        if (colon > 0)
            request.headers.insert(lines.at(i).left(colon).trimmed().toLower(),
                                   lines.at(i).mid(colon + 1).trimmed());
    }
    const qsizetype length = request.headers.value("content-length", "0").toLongLong();
    if (buffer.size() < headerEnd + 4 + length)
        return parsed;
    request.body = buffer.mid(headerEnd + 4, length);
    parsed.complete = true;
    return parsed;
}

QByteArray reasonFor(int status)
{
    switch (status) {
    case 200: return "OK";
    case 404: return "Not Found";
    case 500: return "Internal Server Error";
    default: return "Status";
    }
}

} // namespace

QByteArray RecordingHttpServer::Request::query() const
{
    const qsizetype mark = target.indexOf('?');
    return mark < 0 ? QByteArray() : target.mid(mark + 1);
}

RecordingHttpServer::RecordingHttpServer(QObject *parent) : QObject(parent)
{
    connect(&m_server, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket *socket = m_server.nextPendingConnection())
            serve(socket);
    });
}

bool RecordingHttpServer::listen()
{
    return m_server.listen(QHostAddress::LocalHost, 0);
}

QString RecordingHttpServer::baseUrl() const
{
    return QStringLiteral("http://127.0.0.1:%1/").arg(port());
}

void RecordingHttpServer::serve(QTcpSocket *socket)
{
    auto buffer = std::make_shared<QByteArray>();
    connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    connect(socket, &QTcpSocket::readyRead, this, [this, socket, buffer] {
        buffer->append(socket->readAll());
        if (buffer->size() > kMaxHeaderBytes * 16) {
            socket->abort();
            return;
        }
        const Parsed parsed = parse(*buffer);
        if (!parsed.complete)
            return;
        m_requests.append(parsed.request);
        if (m_holding)
            m_held.append({QPointer<QTcpSocket>(socket), parsed.request});
        else
            answer(socket, parsed.request);
    });
}

void RecordingHttpServer::release()
{
    m_holding = false;
    const auto held = std::exchange(m_held, {});
    for (const auto &[socket, request] : held) {
        if (socket)
            answer(socket, request);
    }
}

void RecordingHttpServer::answer(QTcpSocket *socket, const Request &request)
{
    const Response response = m_responder ? m_responder(request) : Response{};
    QByteArray out = "HTTP/1.1 " + QByteArray::number(response.status) + ' ' + reasonFor(response.status)
                     + "\r\nContent-Length: " + QByteArray::number(response.body.size())
                     + "\r\nConnection: close\r\n";
    if (!response.contentType.isEmpty())
        out += "Content-Type: " + response.contentType + "\r\n";
    out += "\r\n" + response.body;
    socket->write(out);
    socket->disconnectFromHost();
}
