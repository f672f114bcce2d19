#include "LFTBinaryProtocol.h"

#include <bit>
#include <new>

namespace {
// Bytes fetched at a time from a transport that cannot say how much it holds, so a forged
// length fails at the end of the data rather than in one huge allocation.
constexpr qsizetype kChunkSize = 64 * 1024;
}

LFTBinaryProtocol::LFTBinaryProtocol(LFTTransport *transport)
    : LFTBinaryProtocol(transport, false, true)
{
}

LFTBinaryProtocol::LFTBinaryProtocol(LFTTransport *transport, bool strictRead, bool strictWrite)
    : m_transport(transport)
    , m_memory(dynamic_cast<LFTMemoryBuffer *>(transport))
    , m_strictRead(strictRead)
    , m_strictWrite(strictWrite)
{
}

void LFTBinaryProtocol::writeMessageBegin(const QString &name, LFTMessageType type, int32_t sequenceId)
{
    if (m_strictWrite) {
        writeI32(int32_t(kVersion1 | uint32_t(type)));
        writeString(name);
    } else {
        writeString(name);
        writeByte(int8_t(type));
    }
    writeI32(sequenceId);
}

void LFTBinaryProtocol::writeDouble(double value)
{
    writeI64(std::bit_cast<int64_t>(value));
}

void LFTBinaryProtocol::writeString(const QString &value)
{
    if (!m_memory) {
        writeBinary(value.toUtf8());
        return;
    }
    // Short ASCII text is the common case: narrow it directly behind a length slot. Room for
    // the UTF-8 form (at most three bytes per UTF-16 unit) is taken first, so that text that
    // turns out not to be ASCII is encoded over it in place.
    const qsizetype units = value.size();
    char *slot = m_memory->writeCursor(4 + 3 * units);
    char *text = slot + 4;
    const auto *source = reinterpret_cast<const char16_t *>(value.utf16());
    char16_t highBits = 0;
    for (qsizetype i = 0; i < units; ++i) {
        highBits |= source[i];
        text[i] = char(source[i]);
    }
    qsizetype length = units;
    if (highBits >= 0x80)
        length = m_encoder.appendToBuffer(text, value) - text;
    qToBigEndian(int32_t(length), slot);
    m_memory->commitWrite(4 + length);
}

void LFTBinaryProtocol::writeBinary(const QByteArray &value)
{
    writeI32(int32_t(value.size()));
    putBytes(value.constData(), value.size());
}

void LFTBinaryProtocol::readMessageBegin(QString &name, LFTMessageType &type, int32_t &sequenceId)
{
    const int32_t size = readI32();
    if (size < 0) {
        if ((uint32_t(size) & kVersionMask) != kVersion1)
            throw LFTProtocolException(QStringLiteral("Bad version in readMessageBegin"));
        type = LFTMessageType(uint32_t(size) & 0x00ff);
        name = readString();
    } else {
        if (m_strictRead)
            throw LFTProtocolException(QStringLiteral("Missing version in readMessageBegin, old client?"));
        if (m_messageSizeLimit > 0 && size > m_messageSizeLimit) {
            throw LFTProtocolException(
                QString::asprintf("Message too big.  Size limit is: %d Message size is: %d",
                                  m_messageSizeLimit, size));
        }
        name = readStringBody(size);
        type = LFTMessageType(readByte());
    }
    sequenceId = readI32();
}

double LFTBinaryProtocol::readDouble()
{
    return std::bit_cast<double>(readI64());
}

QString LFTBinaryProtocol::readStringBody(int32_t size)
{
    if (size < 0) {
        throw LFTProtocolException(
            QString::asprintf("Unable to allocate memory in %s, size: %i", Q_FUNC_INFO, size));
    }
    if (m_memory) {
        QString text = m_strings.fromUtf8(m_memory->peek(size), size, m_memory->remaining() - size);
        m_memory->advance(size);
        return text;
    }
    return QString::fromUtf8(readBytes(size));
}

QByteArray LFTBinaryProtocol::readBinary()
{
    const int32_t size = readI32();
    if (size < 0) {
        throw LFTProtocolException(QString::asprintf(
            "Out of memory.  Unable to allocate %d bytes trying to read binary data.", size));
    }
    return readBytes(size);
}

QByteArray LFTBinaryProtocol::readBytes(int32_t size)
{
    if (m_memory) {
        QByteArray bytes(m_memory->peek(size), size);
        m_memory->advance(size);
        return bytes;
    }
    QByteArray bytes;
    try {
        while (bytes.size() < size) {
            const qsizetype chunk = std::min<qsizetype>(kChunkSize, size - bytes.size());
            const qsizetype start = bytes.size();
            bytes.resize(start + chunk);
            m_transport->readAll(reinterpret_cast<uint8_t *>(bytes.data()), start, chunk);
        }
    } catch (const std::bad_alloc &) {
        throw LFTProtocolException(QString::asprintf(
            "Out of memory.  Unable to allocate %d bytes trying to read binary data.", size));
    }
    return bytes;
}
