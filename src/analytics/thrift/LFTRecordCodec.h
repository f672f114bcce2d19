#pragma once
// Generic reading, writing, validation, comparison and JSON of records described by a table of
// fields (id, name, required flag, value and presence members). Records declare their fields
// with LFT_FIELD and LFT_RECORD; the work is done here once for all of them. Any thread, one
// record per thread at a time.

#include "LFTException.h"
#include "LFTFlatMap.h"
#include "LFTProtocol.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QString>

#include <tuple>

class LFTBinaryProtocol;

template <typename Record, typename T>
struct LFTFieldDescriptor
{
    using Value = T;
    int16_t id;
    const char *name;
    bool required;
    T Record::*value;
    bool Record::*isSet;
};

// Declares one field: value(), setValue() (sets the presence flag), valueIsSet(), unsetValue().
#define LFT_FIELD(Record, Id, Type, name, Name, Required)                                          \
public:                                                                                             \
    const Type &name() const { return m_##name; }                                                  \
    void set##Name(Type value)                                                                      \
    {                                                                                               \
        m_##name = std::move(value);                                                                \
        m_##name##IsSet = true;                                                                     \
    }                                                                                               \
    bool name##IsSet() const { return m_##name##IsSet; }                                            \
    void unset##Name()                                                                              \
    {                                                                                               \
        m_##name = Type();                                                                          \
        m_##name##IsSet = false;                                                                    \
    }                                                                                               \
    static constexpr LFTFieldDescriptor<Record, Type> name##Field()                                       \
    {                                                                                               \
        return {Id, #name, Required, &Record::m_##name, &Record::m_##name##IsSet};                  \
    }                                                                                               \
                                                                                                    \
private:                                                                                            \
    Type m_##name{};                                                                                \
    bool m_##name##IsSet = false;

// Declares the record's table of fields and its operations; LFT_RECORD_DEFINE defines them.
#define LFT_RECORD(Record, StructName, ...)                                                        \
public:                                                                                             \
    static constexpr const char *structName() { return StructName; }                               \
    static constexpr auto fields() { return std::make_tuple(__VA_ARGS__); }                        \
    void read(LFTProtocol &in);                                                                     \
    void read(LFTBinaryProtocol &in);                                                               \
    void write(LFTProtocol &out) const;                                                             \
    void write(LFTBinaryProtocol &out) const;                                                       \
    /* Throws LFTProtocolException naming the first required field that is not set. */             \
    void validate() const;                                                                          \
    QJsonObject toJson() const;                                                                     \
    bool operator==(const Record &other) const;

#define LFT_RECORD_DEFINE(Record)                                                                  \
    void Record::read(LFTProtocol &in) { LFTRecordCodec::readStruct(in, *this, 0); }               \
    void Record::read(LFTBinaryProtocol &in) { LFTRecordCodec::readStruct(in, *this, 0); }         \
    void Record::write(LFTProtocol &out) const { LFTRecordCodec::writeStruct(out, *this); }        \
    void Record::write(LFTBinaryProtocol &out) const { LFTRecordCodec::writeStruct(out, *this); }  \
    void Record::validate() const { LFTRecordCodec::validate(*this); }                             \
    QJsonObject Record::toJson() const { return LFTRecordCodec::toJson(*this); }                   \
    bool Record::operator==(const Record &other) const { return LFTRecordCodec::equal(*this, other); }

template <typename T>
concept LFTRecordType = requires { T::fields(); };

namespace LFTRecordCodec {

// Nesting deeper than this in skipped data is refused, so forged input cannot exhaust the stack.
constexpr int kMaxDepth = 64;

template <typename P> void skip(P &in, LFTType type, int depth);

template <typename T> struct Wire;

template <typename T, LFTType Type> struct ScalarWire
{
    static constexpr LFTType type = Type;
    static bool present(const T &) { return true; }
    static QJsonValue json(const T &value) { return QJsonValue(value); }
};

template <> struct Wire<bool> : ScalarWire<bool, LFTType::Bool>
{
    template <typename P> static void write(P &out, bool v) { out.writeBool(v); }
    template <typename P> static bool read(P &in, bool &v, int) { v = in.readBool(); return true; }
};
template <> struct Wire<int8_t> : ScalarWire<int8_t, LFTType::Byte>
{
    template <typename P> static void write(P &out, int8_t v) { out.writeByte(v); }
    template <typename P> static bool read(P &in, int8_t &v, int) { v = in.readByte(); return true; }
    static QJsonValue json(int8_t v) { return QJsonValue(int(v)); }
};
template <> struct Wire<int16_t> : ScalarWire<int16_t, LFTType::I16>
{
    template <typename P> static void write(P &out, int16_t v) { out.writeI16(v); }
    template <typename P> static bool read(P &in, int16_t &v, int) { v = in.readI16(); return true; }
    static QJsonValue json(int16_t v) { return QJsonValue(int(v)); }
};
template <> struct Wire<int32_t> : ScalarWire<int32_t, LFTType::I32>
{
    template <typename P> static void write(P &out, int32_t v) { out.writeI32(v); }
    template <typename P> static bool read(P &in, int32_t &v, int) { v = in.readI32(); return true; }
};
template <> struct Wire<int64_t> : ScalarWire<int64_t, LFTType::I64>
{
    template <typename P> static void write(P &out, int64_t v) { out.writeI64(v); }
    template <typename P> static bool read(P &in, int64_t &v, int) { v = in.readI64(); return true; }
    static QJsonValue json(int64_t v) { return QJsonValue(qint64(v)); }
};
template <> struct Wire<double> : ScalarWire<double, LFTType::Double>
{
    template <typename P> static void write(P &out, double v) { out.writeDouble(v); }
    template <typename P> static bool read(P &in, double &v, int) { v = in.readDouble(); return true; }
};
template <> struct Wire<QString>
{
    static constexpr LFTType type = LFTType::String;
    static bool present(const QString &v) { return !v.isNull(); }
    template <typename P> static void write(P &out, const QString &v) { out.writeString(v); }
    template <typename P> static bool read(P &in, QString &v, int) { v = in.readString(); return true; }
    static QJsonValue json(const QString &v) { return QJsonValue(v); }
};
template <> struct Wire<QByteArray>
{
    static constexpr LFTType type = LFTType::String;
    static bool present(const QByteArray &v) { return !v.isNull(); }
    template <typename P> static void write(P &out, const QByteArray &v) { out.writeBinary(v); }
    template <typename P> static bool read(P &in, QByteArray &v, int) { v = in.readBinary(); return true; }
    static QJsonValue json(const QByteArray &v) { return QJsonValue(QString::fromLatin1(v.toBase64())); }
};

// A container count never promises more elements than there are bytes left.
template <typename P> qsizetype reservable(P &in, int32_t size)
{
    if constexpr (requires { in.bytesRemaining(); }) {
        const qsizetype remaining = in.bytesRemaining();
        return remaining < 0 ? 0 : std::min<qsizetype>(size, remaining);
    }
    return 0;
}

inline void checkSize(int32_t size)
{
    if (size < 0)
        throw LFTProtocolException(QStringLiteral("Negative size: %1").arg(size));
}

template <typename E> struct Wire<QList<E>>
{
    static constexpr LFTType type = LFTType::List;
    static bool present(const QList<E> &) { return true; }
    template <typename P> static void write(P &out, const QList<E> &list)
    {
        out.writeListBegin(Wire<E>::type, int32_t(list.size()));
        for (const E &element : list)
            Wire<E>::write(out, element);
        out.writeListEnd();
    }
    // A list of another element type is skipped and reported as not read.
    template <typename P> static bool read(P &in, QList<E> &list, int depth)
    {
        LFTType elementType;
        int32_t size;
        in.readListBegin(elementType, size);
        checkSize(size);
        if (elementType != Wire<E>::type) {
            for (int32_t i = 0; i < size; ++i)
                skip(in, elementType, depth + 1);
            in.readListEnd();
            return false;
        }
        list.reserve(reservable(in, size));
        for (int32_t i = 0; i < size; ++i)
            Wire<E>::read(in, list.emplace_back(), depth + 1);
        in.readListEnd();
        return true;
    }
    static QJsonValue json(const QList<E> &list)
    {
        QJsonArray array;
        for (const E &element : list)
            array.append(Wire<E>::json(element));
        return array;
    }
};

template <typename K, typename V> struct Wire<LFTFlatMap<K, V>>
{
    static constexpr LFTType type = LFTType::Map;
    static bool present(const LFTFlatMap<K, V> &) { return true; }
    template <typename P> static void write(P &out, const LFTFlatMap<K, V> &map)
    {
        out.writeMapBegin(Wire<K>::type, Wire<V>::type, int32_t(map.size()));
        for (auto it = map.cbegin(); it != map.cend(); ++it) {
            Wire<K>::write(out, it.key());
            Wire<V>::write(out, it.value());
        }
        out.writeMapEnd();
    }
    template <typename P> static bool read(P &in, LFTFlatMap<K, V> &map, int depth)
    {
        LFTType keyType;
        LFTType valueType;
        int32_t size;
        in.readMapBegin(keyType, valueType, size);
        checkSize(size);
        const bool matches = keyType == Wire<K>::type && valueType == Wire<V>::type;
        QList<typename LFTFlatMap<K, V>::Entry> entries;
        if (matches)
            entries.reserve(reservable(in, size));
        for (int32_t i = 0; i < size; ++i) {
            if (!matches) {
                skip(in, keyType, depth + 1);
                skip(in, valueType, depth + 1);
                continue;
            }
            auto &[key, value] = entries.emplace_back();
            Wire<K>::read(in, key, depth + 1);
            Wire<V>::read(in, value, depth + 1);
        }
        in.readMapEnd();
        if (matches)
            map = LFTFlatMap<K, V>(std::move(entries));
        return matches;
    }
    static QJsonValue json(const LFTFlatMap<K, V> &map)
    {
        QJsonObject object;
        for (auto it = map.cbegin(); it != map.cend(); ++it)
            object.insert(QVariant::fromValue(it.key()).toString(), Wire<V>::json(it.value()));
        return object;
    }
};

template <typename Record> void validate(const Record &record)
{
    std::apply([&](const auto &...field) {
        auto check = [&](const auto &f) {
            if (f.required && !(record.*f.isSet))
                throw LFTProtocolException(QStringLiteral("Required field '%1' is not set.")
                                               .arg(QLatin1String(f.name)));
        };
        (check(field), ...);
    }, Record::fields());
}

template <typename P, typename Record> void writeStruct(P &out, const Record &record)
{
    validate(record);
    out.writeStructBegin(Record::structName());
    std::apply([&](const auto &...field) {
        auto writeField = [&](const auto &f) {
            using W = Wire<typename std::decay_t<decltype(f)>::Value>;
            const auto &value = record.*f.value;
            if (!(record.*f.isSet) || !W::present(value))
                return;
            out.writeFieldBegin(f.name, W::type, f.id);
            W::write(out, value);
            out.writeFieldEnd();
        };
        (writeField(field), ...);
    }, Record::fields());
    out.writeFieldStop();
    out.writeStructEnd();
}

template <typename P, typename Record> void readStruct(P &in, Record &record, int depth)
{
    if (depth > kMaxDepth)
        throw LFTProtocolException(QStringLiteral("Depth limit exceeded"));
    // Built once at compile time rather than for every field read.
    static constexpr auto fields = Record::fields();
    in.readStructBegin();
    for (;;) {
        LFTType type;
        int16_t id;
        in.readFieldBegin(type, id);
        if (type == LFTType::Stop)
            break;
        const bool known = std::apply([&](const auto &...field) {
            auto readField = [&](const auto &f) {
                using T = typename std::decay_t<decltype(f)>::Value;
                if (f.id != id)
                    return false;
                if (type != Wire<T>::type) {
                    skip(in, type, depth + 1);
                    return true;
                }
                // A field seen for the first time is read in place, without a temporary to move
                // from; one that comes again replaces what was read before only when it reads.
                if (!(record.*f.isSet)) {
                    record.*f.isSet = Wire<T>::read(in, record.*f.value, depth + 1);
                    return true;
                }
                T value{};
                if (Wire<T>::read(in, value, depth + 1))
                    record.*f.value = std::move(value);
                return true;
            };
            return (readField(field) || ...);
        }, fields);
        if (!known)
            skip(in, type, depth + 1);
        in.readFieldEnd();
    }
    in.readStructEnd();
    validate(record);
}

template <typename Record> QJsonObject toJson(const Record &record)
{
    QJsonObject object;
    std::apply([&](const auto &...field) {
        auto add = [&](const auto &f) {
            using W = Wire<typename std::decay_t<decltype(f)>::Value>;
            if (record.*f.isSet && W::present(record.*f.value))
                object.insert(QLatin1String(f.name), W::json(record.*f.value));
        };
        (add(field), ...);
    }, Record::fields());
    return object;
}

template <typename Record> bool equal(const Record &a, const Record &b)
{
    return std::apply([&](const auto &...field) {
        auto same = [&](const auto &f) {
            if (a.*f.isSet != b.*f.isSet)
                return false;
            return !(a.*f.isSet) || a.*f.value == b.*f.value;
        };
        return (same(field) && ...);
    }, Record::fields());
}

template <LFTRecordType Record> struct Wire<Record>
{
    static constexpr LFTType type = LFTType::Struct;
    static bool present(const Record &) { return true; }
    template <typename P> static void write(P &out, const Record &record) { writeStruct(out, record); }
    template <typename P> static bool read(P &in, Record &record, int depth)
    {
        readStruct(in, record, depth);
        return true;
    }
    static QJsonValue json(const Record &record) { return toJson(record); }
};

// Reads past one value of the given type, whatever it holds.
template <typename P> void skip(P &in, LFTType type, int depth)
{
    if (depth > kMaxDepth)
        throw LFTProtocolException(QStringLiteral("Depth limit exceeded"));
    switch (type) {
    case LFTType::Bool: in.readBool(); return;
    case LFTType::Byte: in.readByte(); return;
    case LFTType::I16: in.readI16(); return;
    case LFTType::I32: in.readI32(); return;
    case LFTType::I64: in.readI64(); return;
    case LFTType::Double: in.readDouble(); return;
    case LFTType::String: in.readBinary(); return;
    case LFTType::Struct: {
        in.readStructBegin();
        for (;;) {
            LFTType fieldType;
            int16_t id;
            in.readFieldBegin(fieldType, id);
            if (fieldType == LFTType::Stop)
                break;
            skip(in, fieldType, depth + 1);
            in.readFieldEnd();
        }
        in.readStructEnd();
        return;
    }
    case LFTType::Map: {
        LFTType keyType;
        LFTType valueType;
        int32_t size;
        in.readMapBegin(keyType, valueType, size);
        checkSize(size);
        for (int32_t i = 0; i < size; ++i) {
            skip(in, keyType, depth + 1);
            skip(in, valueType, depth + 1);
        }
        in.readMapEnd();
        return;
    }
    case LFTType::Set:
    case LFTType::List: {
        LFTType elementType;
        int32_t size;
        in.readListBegin(elementType, size);
        checkSize(size);
        for (int32_t i = 0; i < size; ++i)
            skip(in, elementType, depth + 1);
        in.readListEnd();
        return;
    }
    default:
        throw LFTProtocolException(QStringLiteral("Invalid data type %1").arg(int(type)));
    }
}

} // namespace LFTRecordCodec
