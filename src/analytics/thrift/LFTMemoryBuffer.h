#pragma once
// An in-memory transport: writes append, reads consume from the front. Used on one thread at
// a time. Writes go through a raw cursor into spare capacity, so a value costs a bounds check
// and a copy, not a container call.

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
    explicit LFTMemoryBuffer(const QByteArray &data) : m_buffer(data), m_end(data.size()) {}

    void readAll(uint8_t *buffer, qsizetype offset, qsizetype length) override
    {
        std::memcpy(buffer + offset, peek(length), size_t(length));
        advance(length);
    }
    void write(const uint8_t *data, qsizetype offset, qsizetype length) override
    {
        std::memcpy(writeCursor(length), data + offset, size_t(length));
        commitWrite(length);
    }
    void flush() override {}

    // The bytes held: everything written, less what reads have already dropped.
    QByteArray getBuffer() const
    {
        m_buffer.truncate(m_end);
        m_writeBase = nullptr;   // the caller may now share the bytes
        return m_front == 0 ? m_buffer : m_buffer.sliced(m_front);
    }

    // Direct access for the binary protocol: look at the next bytes, then consume them.
    const char *peek(qsizetype length) const
    {
        if (length < 0 || remaining() < length) [[unlikely]]
            failShortRead();
        return m_buffer.constData() + m_read;
    }
    void advance(qsizetype length)
    {
        m_read += length;
        // Dropping is logical: the storage may be shared with the caller's bytes.
        if (m_read - m_front >= kGarbageSize)
            m_front = m_read;
    }
    qsizetype remaining() const { return m_end - m_read; }

    // Room for `length` more bytes at the end; commitWrite says how many were used.
    char *writeCursor(qsizetype length)
    {
        if (!m_writeBase || m_end + length > m_capacity)
            grow(length);
        return m_writeBase + m_end;
    }
    void commitWrite(qsizetype length) { m_end += length; }

private:
    // Kept out of line so that peek stays small enough to inline into every read.
    [[noreturn]] Q_NEVER_INLINE Q_DECL_COLD_FUNCTION static void failShortRead()
    {
        throw LFTTransportException(QStringLiteral("Not enough bytes remain in buffer"));
    }
    void grow(qsizetype length)
    {
        const qsizetype needed = m_end + length;
        m_buffer.resize(std::max<qsizetype>({needed, m_capacity * 2, 1024}));
        m_capacity = m_buffer.size();
        m_writeBase = m_buffer.data();
    }

    mutable QByteArray m_buffer;          // holds m_end bytes, then spare capacity
    mutable char *m_writeBase = nullptr;  // valid only while m_buffer is not shared
    qsizetype m_capacity = 0;
    qsizetype m_end = 0;
    qsizetype m_front = 0;                // bytes dropped by reads
    qsizetype m_read = 0;                 // read position, from the start of m_buffer
};
