#pragma once
// One HTTP/1.1 connection to a loopback port over a plain POSIX socket, for tests that send
// what no client library would: bodies that never end, megabyte headers, a byte a second.
// The socket is non-blocking and every wait has a deadline, so a server that stops reading
// or never answers fails a test instead of hanging it. What arrives is read while writing,
// so an answer sent before the server closes is never lost to the close. One object is used
// by one thread at a time; objects on different threads are independent.

#include <QByteArray>
#include <QDeadlineTimer>
#include <QList>

#include <arpa/inet.h>
#include <cerrno>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <optional>

// One answer as it came over the wire.
struct RawAnswer
{
    int status = 0;
    QByteArray contentType;
    QByteArray body;
};

// The first complete answer at the start of `bytes` (its length in `used`), or nullopt while
// it is incomplete. An answer without Content-Length runs to the close (`peerClosed`).
inline std::optional<RawAnswer> parseRawAnswer(const QByteArray &bytes, bool peerClosed, qsizetype *used)
{
    const qsizetype headEnd = bytes.indexOf("\r\n\r\n");
    if (headEnd < 0)
        return std::nullopt;
    const QList<QByteArray> lines = bytes.left(headEnd).split('\n');
    const QList<QByteArray> statusLine = lines.first().trimmed().split(' ');
    if (statusLine.size() < 2 || !statusLine.first().startsWith("HTTP/1."))
        return std::nullopt;
    RawAnswer answer;
    answer.status = statusLine.at(1).toInt();
    std::optional<qsizetype> length;
    for (qsizetype i = 1; i < lines.size(); ++i) {
        const qsizetype colon = lines.at(i).indexOf(':');
        const QByteArray name = lines.at(i).left(colon).trimmed().toLower();
        const QByteArray value = lines.at(i).mid(colon + 1).trimmed();
        if (name == "content-length")
            length = value.toLongLong();
        else if (name == "content-type")
            answer.contentType = value;
    }
    const qsizetype bodyStart = headEnd + 4;
    if (!length && !peerClosed)
        return std::nullopt;
    const qsizetype bodyLength = length.value_or(bytes.size() - bodyStart);
    if (bytes.size() - bodyStart < bodyLength)
        return std::nullopt;
    answer.body = bytes.mid(bodyStart, bodyLength);
    *used = bodyStart + bodyLength;
    return answer;
}

class RawHttpConnection
{
public:
    static constexpr quint32 kLoopbackNetwork = 0x7f000000;  // 127.0.0.0

    // Connects to 127.0.0.1:`port`; isConnected() tells whether it did.
    // `sourceHost` (127.0.0.N) lets one test play clients of different addresses.
    explicit RawHttpConnection(quint16 port, quint8 sourceHost = 1)
    {
        m_fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in source{};
        source.sin_family = AF_INET;
        source.sin_addr.s_addr = htonl(kLoopbackNetwork | sourceHost);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (m_fd >= 0 && ::bind(m_fd, reinterpret_cast<const sockaddr *>(&source), sizeof source) == 0
            && ::connect(m_fd, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0
            && ::fcntl(m_fd, F_SETFL, O_NONBLOCK) == 0)
            return;
        if (m_fd >= 0)
            ::close(m_fd);
        m_fd = -1;
    }
    ~RawHttpConnection()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    RawHttpConnection(const RawHttpConnection &) = delete;
    RawHttpConnection &operator=(const RawHttpConnection &) = delete;

    bool isConnected() const { return m_fd >= 0; }
    // Everything received and not yet taken by readAnswer().
    const QByteArray &received() const { return m_received; }

    // Writes all of `bytes`; false when the server closed first or `timeoutMs` passed.
    bool write(const QByteArray &bytes, int timeoutMs)
    {
        QDeadlineTimer deadline(timeoutMs);
        qsizetype written = 0;
        while (written < bytes.size()) {
            const qsizetype sent = sendSome(bytes.constData() + written, bytes.size() - written);
            if (sent < 0 || deadline.hasExpired())
                return false;
            written += sent;
            if (written < bytes.size())
                pump(POLLOUT, deadline);
        }
        return true;
    }

    // Writes `piece` again and again until `limit` bytes of it have gone, the server closes,
    // or `timeoutMs` passes, reading what arrives meanwhile. Returns the bytes written.
    qint64 stream(const QByteArray &piece, qint64 limit, int timeoutMs)
    {
        QDeadlineTimer deadline(timeoutMs);
        qint64 written = 0;
        while (written < limit && !m_writeFailed && !m_peerClosed && !deadline.hasExpired()) {
            const qsizetype offset = qsizetype(written % piece.size());
            const qsizetype sent = sendSome(piece.constData() + offset,
                                            qsizetype(std::min<qint64>(piece.size() - offset, limit - written)));
            if (sent < 0)
                break;
            written += sent;
            pump(sent == 0 ? POLLOUT : 0, sent == 0 ? deadline : QDeadlineTimer(0));
        }
        return written;
    }

    // The next answer, waiting up to `timeoutMs` for it.
    std::optional<RawAnswer> readAnswer(int timeoutMs)
    {
        QDeadlineTimer deadline(timeoutMs);
        for (;;) {
            qsizetype used = 0;
            if (std::optional<RawAnswer> answer = parseRawAnswer(m_received, m_peerClosed, &used)) {
                m_received.remove(0, used);
                return answer;
            }
            if (m_peerClosed || deadline.hasExpired())
                return std::nullopt;
            pump(0, deadline);
        }
    }

    // Waits up to `timeoutMs` for the server to close; returns whether it did.
    bool waitForClose(int timeoutMs)
    {
        QDeadlineTimer deadline(timeoutMs);
        while (!m_peerClosed && !deadline.hasExpired())
            pump(0, deadline);
        return m_peerClosed;
    }

    // Reads what has arrived without waiting; returns whether the server has closed.
    bool checkClosed()
    {
        pump(0, QDeadlineTimer(0));
        return m_peerClosed;
    }

private:
    // Bytes sent now (0 when the socket buffer is full), or -1 when the server has closed.
    // What it sent before closing is still read afterwards.
    qsizetype sendSome(const char *data, qsizetype size)
    {
        if (m_writeFailed)
            return -1;
        const ssize_t sent = ::send(m_fd, data, size_t(size), MSG_NOSIGNAL);
        if (sent >= 0)
            return sent;
        if (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR)
            return 0;
        m_writeFailed = true;
        return -1;
    }

    // Waits until the socket is readable (or also writable, with `alsoWaitFor` POLLOUT) or
    // the deadline passes, and reads everything that has arrived.
    void pump(short alsoWaitFor, QDeadlineTimer deadline)
    {
        pollfd entry{m_fd, short(POLLIN | alsoWaitFor), 0};
        if (::poll(&entry, 1, int(deadline.remainingTime())) <= 0)
            return;
        char buffer[64 * 1024];
        for (;;) {
            const ssize_t got = ::recv(m_fd, buffer, sizeof buffer, 0);
            if (got > 0) {
                m_received.append(buffer, got);
                continue;
            }
            if (got == 0 || (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR))
                m_peerClosed = true;
            return;
        }
    }

    int m_fd = -1;
    bool m_writeFailed = false;
    bool m_peerClosed = false;  // seen on the reading side: end of stream or reset
    QByteArray m_received;
};
