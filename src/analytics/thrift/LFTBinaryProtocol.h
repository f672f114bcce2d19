#pragma once
// The Thrift binary protocol over a transport: big-endian integers, length-prefixed strings.
// Used on one thread at a time. A memory buffer transport is read and written directly,
// without a virtual call per value.

#include "LFTMemoryBuffer.h"
#include "LFTProtocol.h"
#include "LFTStringPool.h"

#include <QStringEncoder>
#include <QtEndian>

class LFTBinaryProtocol final : public LFTProtocol
{
public:
    static constexpr uint32_t kVersion1 = 0x80010000;
    static constexpr uint32_t kVersionMask = 0xffff0000;

    explicit LFTBinaryProtocol(LFTTransport *transport);
    LFTBinaryProtocol(LFTTransport *transport, bool strictRead, bool strictWrite);

    LFTTransport *transport() const { return m_transport; }
    int32_t messageSizeLimit() const { return m_messageSizeLimit; }
    void setMessageSizeLimit(int32_t limit) { m_messageSizeLimit = limit; }

    void writeMessageBegin(const QString &name, LFTMessageType type, int32_t sequenceId) override;
    void writeMessageEnd() override {}
    void writeStructBegin(const char *) override {}
    void writeStructEnd() override {}
    Q_ALWAYS_INLINE void writeFieldBegin(const char *, LFTType type, int16_t fieldId) override
    {
        writeByte(int8_t(type));
        writeI16(fieldId);
    }
    void writeFieldEnd() override {}
    Q_ALWAYS_INLINE void writeFieldStop() override { writeByte(int8_t(LFTType::Stop)); }
    Q_ALWAYS_INLINE void writeMapBegin(LFTType keyType, LFTType valueType, int32_t size) override
    {
        writeByte(int8_t(keyType));
        writeByte(int8_t(valueType));
        writeI32(size);
    }
    void writeMapEnd() override {}
    void writeSetBegin(LFTType elementType, int32_t size) override { writeListBegin(elementType, size); }
    void writeSetEnd() override {}
    Q_ALWAYS_INLINE void writeListBegin(LFTType elementType, int32_t size) override
    {
        writeByte(int8_t(elementType));
        writeI32(size);
    }
    void writeListEnd() override {}
    void writeBool(bool value) override { writeByte(value ? 1 : 0); }
    Q_ALWAYS_INLINE void writeByte(int8_t value) override { putBigEndian(value); }
    Q_ALWAYS_INLINE void writeI16(int16_t value) override { putBigEndian(value); }
    Q_ALWAYS_INLINE void writeI32(int32_t value) override { putBigEndian(value); }
    Q_ALWAYS_INLINE void writeI64(int64_t value) override { putBigEndian(value); }
    void writeDouble(double value) override;
    void writeString(const QString &value) override;
    void writeBinary(const QByteArray &value) override;

    void readMessageBegin(QString &name, LFTMessageType &type, int32_t &sequenceId) override;
    void readMessageEnd() override {}
    void readStructBegin() override {}
    void readStructEnd() override {}
    Q_ALWAYS_INLINE void readFieldBegin(LFTType &type, int16_t &fieldId) override
    {
        type = LFTType(uint8_t(readByte()));
        fieldId = type == LFTType::Stop ? 0 : readI16();
    }
    void readFieldEnd() override {}
    Q_ALWAYS_INLINE void readMapBegin(LFTType &keyType, LFTType &valueType, int32_t &size) override
    {
        keyType = LFTType(uint8_t(readByte()));
        valueType = LFTType(uint8_t(readByte()));
        size = readI32();
    }
    void readMapEnd() override {}
    void readSetBegin(LFTType &elementType, int32_t &size) override { readListBegin(elementType, size); }
    void readSetEnd() override {}
    Q_ALWAYS_INLINE void readListBegin(LFTType &elementType, int32_t &size) override
    {
        elementType = LFTType(uint8_t(readByte()));
        size = readI32();
    }
    void readListEnd() override {}
    Q_ALWAYS_INLINE bool readBool() override { return readByte() == 1; }
    Q_ALWAYS_INLINE int8_t readByte() override { return getBigEndian<int8_t>(); }
    Q_ALWAYS_INLINE int16_t readI16() override { return getBigEndian<int16_t>(); }
    Q_ALWAYS_INLINE int32_t readI32() override { return getBigEndian<int32_t>(); }
    Q_ALWAYS_INLINE int64_t readI64() override { return getBigEndian<int64_t>(); }
    double readDouble() override;
    QString readString() override { return readStringBody(readI32()); }
    QByteArray readBinary() override;

    // Bytes a reader could still take, or -1 when the transport cannot tell.
    qsizetype bytesRemaining() const { return m_memory ? m_memory->remaining() : -1; }

private:
    QString readStringBody(int32_t size);
    QByteArray readBytes(int32_t size);

    Q_ALWAYS_INLINE void putBytes(const char *data, qsizetype length)
    {
        if (m_memory) {
            std::memcpy(m_memory->writeCursor(length), data, size_t(length));
            m_memory->commitWrite(length);
        } else {
            m_transport->write(reinterpret_cast<const uint8_t *>(data), 0, length);
        }
    }
    template <typename T> Q_ALWAYS_INLINE void putBigEndian(T value)
    {
        if (m_memory) {
            qToBigEndian(value, m_memory->writeCursor(sizeof(T)));
            m_memory->commitWrite(sizeof(T));
            return;
        }
        char bytes[sizeof(T)];
        qToBigEndian(value, bytes);
        putBytes(bytes, sizeof(T));
    }
    // Small enough to inline into every read; other transports take the call below.
    template <typename T> Q_ALWAYS_INLINE T getBigEndian()
    {
        if (!m_memory)
            return getBigEndianFromTransport<T>();
        const T value = qFromBigEndian<T>(m_memory->peek(sizeof(T)));
        m_memory->advance(sizeof(T));
        return value;
    }
    template <typename T> Q_NEVER_INLINE T getBigEndianFromTransport()
    {
        char bytes[sizeof(T)];
        m_transport->readAll(reinterpret_cast<uint8_t *>(bytes), 0, sizeof(T));
        return qFromBigEndian<T>(bytes);
    }

    LFTTransport *m_transport;
    LFTMemoryBuffer *m_memory;
    bool m_strictRead;
    bool m_strictWrite;
    int32_t m_messageSizeLimit = 0;
    QStringEncoder m_encoder{QStringEncoder::Utf8, QStringEncoder::Flag::Stateless};
    LFTStringPool m_strings;   // strings read from a memory buffer
};
