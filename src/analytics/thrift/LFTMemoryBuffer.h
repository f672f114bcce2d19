#pragma once
// An in-memory transport: writes append, reads consume from the front. Used on one thread at
// a time.

#include "LFTException.h"
#include "LFTTransport.h"

#include <QByteArray>

#include <cstring>

class LFTMemoryBuffer final : public LFTTransport
{
public:
    // Once this many bytes were consumed they are dropped from the front of the buffer.
    static constexpr qsizetype kGarbageSize = 4096;

    LFTMemoryBuffer() = default;
    explicit LFTMemoryBuffer(const QByteArray &data) : m_buffer(data) {}

    void readAll(uint8_t *buffer, qsizetype offset, qsizetype length) override
    {
        std::memcpy(buffer + offset, peek(length), size_t(length));
        advance(length);
    }
    void write(const uint8_t *data, qsizetype offset, qsizetype length) override
    {
        m_buffer.append(reinterpret_cast<const char *>(data) + offset, length);
    }
    void flush() override {}

    // The bytes held: everything written, less what reads have already dropped.
    QByteArray getBuffer() const { return m_buffer; }

    // Direct access for the binary protocol: look at the next bytes, then consume them.
    const char *peek(qsizetype length) const
    {
        if (length < 0 || m_buffer.size() - m_offset < length)
            throw LFTTransportException(QStringLiteral("Not enough bytes remain in buffer"));
        return m_buffer.constData() + m_offset;
    }
    void advance(qsizetype length)
    {
        m_offset += length;
        if (m_offset >= kGarbageSize) {
            m_buffer.remove(0, m_offset);
            m_offset = 0;
        }
    }
    qsizetype remaining() const { return m_buffer.size() - m_offset; }
    QByteArray &storage() { return m_buffer; }

private:
    QByteArray m_buffer;
    qsizetype m_offset = 0;
};
