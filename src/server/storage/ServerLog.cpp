#include "ServerLog.h"

#include <unistd.h>

#include <cerrno>

namespace {

QByteArray printable(const QString &line)
{
    QByteArray bytes = line.toUtf8();
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes.at(i));
        if (byte >= 0x20 && byte != 0x7f)
            continue;
        const QByteArray escape = byte == '\n' ? QByteArrayLiteral("\\n")
            : byte == '\r'                    ? QByteArrayLiteral("\\r")
                                               : "\\x" + QByteArray::number(byte, 16).rightJustified(2, '0');
        bytes.replace(i, 1, escape);
        i += escape.size() - 1;
    }
    return bytes;
}

} // namespace

void writeServerLogLine(const char *prefix, const QString &line)
{
    // One write of the whole record: threads logging at once neither wait on stdio's lock
    // nor interleave their lines.
    const QByteArray record = prefix + printable(line) + '\n';
    qsizetype written = 0;
    while (written < record.size()) {
        const ssize_t sent = ::write(STDERR_FILENO, record.constData() + written, size_t(record.size() - written));
        if (sent < 0 && errno == EINTR)
            continue;
        if (sent <= 0)
            return;
        written += sent;
    }
}

void serverLog(const QString &line)
{
    writeServerLogLine("quorvel-server: ", line);
}
