#pragma once
// Base of the forum records: a fixed set of named fields filled by key-value assignment
// from an answer object. Values are kept exactly as they arrive (a string in a number field
// stays a string, JSON null stays null); an absent field is QJsonValue::Undefined; keys
// that name no field are ignored. Plain values; any thread.

#include <QJsonObject>
#include <QJsonValue>
#include <QStringView>

#include <array>
#include <cstddef>

template <std::size_t FieldCount>
class KeyValueRecord
{
public:
    using FieldNames = std::array<QStringView, FieldCount>;

    // Sets the field named `key`; returns false (and changes nothing) for an unknown key.
    bool setValueForKey(const QJsonValue &value, QStringView key)
    {
        const int index = indexOf(key);
        if (index < 0)
            return false;
        m_values[index] = value;
        return true;
    }

    // The field named `key`, or Undefined when the record has no such field.
    QJsonValue valueForKey(QStringView key) const
    {
        const int index = indexOf(key);
        return index < 0 ? QJsonValue(QJsonValue::Undefined) : m_values[index];
    }

    void setValuesForKeysWithDictionary(const QJsonObject &dictionary)
    {
        for (auto it = dictionary.constBegin(); it != dictionary.constEnd(); ++it)
            setValueForKey(it.value(), it.key());
    }

    // Fills from any JSON value: an object fills the fields, anything else fills nothing.
    void fillFrom(const QJsonValue &value)
    {
        if (value.isObject())
            setValuesForKeysWithDictionary(value.toObject());
    }

    const FieldNames &fieldNames() const { return *m_names; }

protected:
    explicit KeyValueRecord(const FieldNames &names) : m_names(&names)
    {
        m_values.fill(QJsonValue(QJsonValue::Undefined));
    }

    const QJsonValue &field(std::size_t index) const { return m_values[index]; }

private:
    int indexOf(QStringView key) const
    {
        for (std::size_t i = 0; i < FieldCount; ++i) {
            if ((*m_names)[i] == key)
                return int(i);
        }
        return -1;
    }

    const FieldNames *m_names; // the record type's static table
    std::array<QJsonValue, FieldCount> m_values;
};

// Declares a record class with its field table and one read accessor per field, from an
// X-macro list of field names:
//   #define POST_MODEL_FIELDS(X) X(title) X(tid)
//   QUORVEL_DECLARE_RECORD(PostModel, POST_MODEL_FIELDS)
#define QUORVEL_RECORD_FIELD_COUNT(name) +1
#define QUORVEL_RECORD_FIELD_INDEX(name) name##Index,
#define QUORVEL_RECORD_FIELD_NAME(name) QStringView(u"" #name),
#define QUORVEL_RECORD_FIELD_ACCESSOR(name) \
    const QJsonValue &name() const { return field(name##Index); }

#define QUORVEL_DECLARE_RECORD(Type, FIELDS)                                        \
    class Type : public KeyValueRecord<0 FIELDS(QUORVEL_RECORD_FIELD_COUNT)>       \
    {                                                                               \
        using Base = KeyValueRecord<0 FIELDS(QUORVEL_RECORD_FIELD_COUNT)>;         \
        enum FieldIndex : std::size_t { FIELDS(QUORVEL_RECORD_FIELD_INDEX) };       \
        static constexpr Base::FieldNames kNames = {FIELDS(QUORVEL_RECORD_FIELD_NAME)}; \
                                                                                    \
    public:                                                                         \
        Type() : Base(kNames) {}                                                    \
        static Type fromJson(const QJsonValue &value)                               \
        {                                                                           \
            Type record;                                                            \
            record.fillFrom(value);                                                 \
            return record;                                                          \
        }                                                                           \
        FIELDS(QUORVEL_RECORD_FIELD_ACCESSOR)                                       \
    };
