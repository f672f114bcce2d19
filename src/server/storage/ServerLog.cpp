#include "ServerLog.h"

#include <cstdio>

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
    const QByteArray bytes = printable(line);
    std::fprintf(stderr, "%s%s\n", prefix, bytes.constData());
    std::fflush(stderr);
}

void serverLog(const QString &line)
{
    writeServerLogLine("quorvel-server: ", line);
}
