// Any byte stream, cut into pieces anywhere, parses into events without a crash, and the
// pieces give the same events as the whole.
#include "ServerSentEventParser.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    ServerSentEventParser whole;
    const QList<ServerSentEvent> once = whole.feed(bytes);

    ServerSentEventParser pieces;
    QList<ServerSentEvent> split;
    const qsizetype step = size > 0 ? qsizetype(data[0] % 7 + 1) : 1;
    for (qsizetype at = 0; at < bytes.size(); at += step)
        split += pieces.feed(bytes.mid(at, step));
    if (split.size() != once.size())
        std::abort();
    for (qsizetype i = 0; i < once.size(); ++i) {
        if (split[i].id != once[i].id || split[i].data != once[i].data || split[i].event != once[i].event)
            std::abort();
    }
    return 0;
}
