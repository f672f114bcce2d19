#pragma once
// The record protocol interface: the operations every record's read and write use. Used on
// one thread at a time.

#include <QByteArray>
#include <QString>

#include <cstdint>

enum class LFTType : uint8_t {
    Stop = 0,
    Void = 1,
    Bool = 2,
    Byte = 3,
    Double = 4,
    I16 = 6,
    I32 = 8,
    I64 = 10,
    String = 11,
    Struct = 12,
    Map = 13,
    Set = 14,
    List = 15,
};

enum class LFTMessageType : int32_t { Call = 1, Reply = 2, Exception = 3, Oneway = 4 };

class LFTProtocol
{
public:
    virtual ~LFTProtocol() = default;

    virtual void writeMessageBegin(const QString &name, LFTMessageType type, int32_t sequenceId) = 0;
    virtual void writeMessageEnd() = 0;
    virtual void writeStructBegin(const char *name) = 0;
    virtual void writeStructEnd() = 0;
    virtual void writeFieldBegin(const char *name, LFTType type, int16_t fieldId) = 0;
    virtual void writeFieldEnd() = 0;
    virtual void writeFieldStop() = 0;
    virtual void writeMapBegin(LFTType keyType, LFTType valueType, int32_t size) = 0;
    virtual void writeMapEnd() = 0;
    virtual void writeSetBegin(LFTType elementType, int32_t size) = 0;
    virtual void writeSetEnd() = 0;
    virtual void writeListBegin(LFTType elementType, int32_t size) = 0;
    virtual void writeListEnd() = 0;
    virtual void writeBool(bool value) = 0;
    virtual void writeByte(int8_t value) = 0;
    virtual void writeI16(int16_t value) = 0;
    virtual void writeI32(int32_t value) = 0;
    virtual void writeI64(int64_t value) = 0;
    virtual void writeDouble(double value) = 0;
    virtual void writeString(const QString &value) = 0;
    virtual void writeBinary(const QByteArray &value) = 0;

    virtual void readMessageBegin(QString &name, LFTMessageType &type, int32_t &sequenceId) = 0;
    virtual void readMessageEnd() = 0;
    virtual void readStructBegin() = 0;
    virtual void readStructEnd() = 0;
    virtual void readFieldBegin(LFTType &type, int16_t &fieldId) = 0;
    virtual void readFieldEnd() = 0;
    virtual void readMapBegin(LFTType &keyType, LFTType &valueType, int32_t &size) = 0;
    virtual void readMapEnd() = 0;
    virtual void readSetBegin(LFTType &elementType, int32_t &size) = 0;
    virtual void readSetEnd() = 0;
    virtual void readListBegin(LFTType &elementType, int32_t &size) = 0;
    virtual void readListEnd() = 0;
    virtual bool readBool() = 0;
    virtual int8_t readByte() = 0;
    virtual int16_t readI16() = 0;
    virtual int32_t readI32() = 0;
    virtual int64_t readI64() = 0;
    virtual double readDouble() = 0;
    virtual QString readString() = 0;
    virtual QByteArray readBinary() = 0;
};
