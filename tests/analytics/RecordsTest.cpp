// Records: presence flags, required fields, what is written, unknown fields skipped by type, and
// map order.

#include "LFTBinaryProtocol.h"
#include "LFTRecords.h"

#include <gtest/gtest.h>

#include <QJsonDocument>

namespace {
QString validationFailure(const auto &record)
{
    try {
        record.validate();
    } catch (const LFTProtocolException &error) {
        return error.reason();
    }
    return QStringLiteral("<valid>");
}
} // namespace

TEST(Records, RequiredFieldsAreNamedByValidation)
{
    LFTEvent event;
    event.setName(QStringLiteral("open"));
    event.setTs(5);
    EXPECT_EQ(validationFailure(event), QStringLiteral("Required field 'properties' is not set."));
    event.setProperties({});
    EXPECT_EQ(validationFailure(event), QStringLiteral("<valid>"));
    event.unsetTs();
    EXPECT_EQ(validationFailure(event), QStringLiteral("Required field 'ts' is not set."));
    EXPECT_THROW(LFTEncode(event), LFTProtocolException);
}

TEST(Records, ReadingChecksRequiredFields)
{
    LFTMemoryBuffer buffer;
    LFTBinaryProtocol out(&buffer);
    out.writeFieldBegin("height", LFTType::I32, 1);
    out.writeI32(10);
    out.writeFieldStop();
    try {
        LFTDecode<LFTResolution>(buffer.getBuffer());
        FAIL();
    } catch (const LFTProtocolException &error) {
        EXPECT_EQ(error.reason(), QStringLiteral("Required field 'width' is not set."));
    }
}

TEST(Records, PresenceFlagsDecideWhatIsWritten)
{
    LFTAppInfo info;
    info.setKey(QStringLiteral("k"));
    info.setSdk_type(1);
    info.setSdk_version(QStringLiteral("3.6.6"));
    info.setChannel(QStringLiteral("App Store"));
    const QByteArray plain = LFTEncode(info);

    // A null text with its flag set is left out entirely; an empty one is written.
    info.setVersion(QString());
    EXPECT_TRUE(info.versionIsSet());
    EXPECT_EQ(LFTEncode(info), plain);
    info.setVersion(QStringLiteral(""));
    EXPECT_EQ(LFTEncode(info).size(), plain.size() + 7);

    info.setVersion_index(0);
    EXPECT_EQ(LFTEncode(info).size(), plain.size() + 7 + 7);
    info.unsetVersion_index();
    info.unsetVersion();
    EXPECT_FALSE(info.version_indexIsSet());
    EXPECT_EQ(LFTEncode(info), plain);
}

TEST(Records, UnknownFieldsOfEveryTypeAreSkipped)
{
    LFTMemoryBuffer buffer;
    LFTBinaryProtocol out(&buffer);
    out.writeFieldBegin("", LFTType::Bool, 20);
    out.writeBool(true);
    out.writeFieldBegin("", LFTType::Byte, 21);
    out.writeByte(3);
    out.writeFieldBegin("", LFTType::I16, 22);
    out.writeI16(3);
    out.writeFieldBegin("", LFTType::Double, 23);
    out.writeDouble(2.5);
    out.writeFieldBegin("", LFTType::I64, 24);
    out.writeI64(9);
    out.writeFieldBegin("", LFTType::String, 25);
    out.writeString(QStringLiteral("skip me"));
    out.writeFieldBegin("", LFTType::Map, 26);
    out.writeMapBegin(LFTType::String, LFTType::List, 1);
    out.writeString(QStringLiteral("k"));
    out.writeListBegin(LFTType::I32, 2);
    out.writeI32(1);
    out.writeI32(2);
    out.writeFieldBegin("", LFTType::Set, 27);
    out.writeSetBegin(LFTType::Struct, 1);
    out.writeFieldBegin("", LFTType::I32, 1);
    out.writeI32(4);
    out.writeFieldStop();
    out.writeFieldBegin("", LFTType::I32, 1);
    out.writeI32(42);
    out.writeFieldBegin("", LFTType::String, 2);
    out.writeString(QStringLiteral("fine"));
    out.writeFieldStop();

    const LFTResponse response = LFTDecode<LFTResponse>(buffer.getBuffer());
    EXPECT_EQ(response.resp_code(), 42);
    EXPECT_EQ(response.msg(), QStringLiteral("fine"));
    EXPECT_FALSE(response.imprintIsSet());
}

TEST(Records, NestedRecordsRoundTripAndPrintAsJson)
{
    LFTPropertyValue label;
    label.setString_value(QStringLiteral("标签"));
    LFTEvent event;
    event.setName(QStringLiteral("tap"));
    event.setProperties({{QStringLiteral("tap"), label}});
    event.setAcc(2);
    event.setTs(1700000000123);
    LFTInstantMsg message;
    message.setId(QStringLiteral("s1"));
    message.setEvents({event, event});
    LFTUALogEntry entry;
    entry.setInstant_msgs({message});
    LFTClientStats stats;
    stats.setSuccessful_requests(1);
    stats.setFailed_requests(0);
    entry.setClient_stats(stats);
    LFTAppInfo app;
    app.setKey(QStringLiteral("k"));
    app.setSdk_type(1);
    app.setSdk_version(QStringLiteral("3.6.6"));
    app.setChannel(QStringLiteral("c"));
    entry.setApp_info(app);
    entry.setDevice_info({});
    entry.setMisc_info({});
    entry.setGroup_info({{QStringLiteral("g"), 3}});

    const LFTUALogEntry decoded = LFTDecode<LFTUALogEntry>(LFTEncode(entry));
    EXPECT_TRUE(decoded == entry);
    const QJsonObject json = decoded.toJson();
    EXPECT_EQ(json[QStringLiteral("instant_msgs")][0][QStringLiteral("events")][1][QStringLiteral("ts")].toInteger(),
              1700000000123);
    EXPECT_EQ(json[QStringLiteral("instant_msgs")][0][QStringLiteral("events")][0][QStringLiteral("properties")]
                  [QStringLiteral("tap")][QStringLiteral("string_value")].toString(),
              QStringLiteral("标签"));
    EXPECT_FALSE(json.contains(QStringLiteral("sessions")));
}

TEST(Records, MapsKeepKeyOrderAndTheLastValueOfARepeatedKey)
{
    auto label = [](const char *text) {
        LFTPropertyValue value;
        value.setString_value(QString::fromUtf8(text));
        return value;
    };
    // Written out of order, with "b" twice.
    LFTMemoryBuffer buffer;
    LFTBinaryProtocol out(&buffer);
    out.writeFieldBegin("name", LFTType::String, 1);
    out.writeString(QStringLiteral("e"));
    out.writeFieldBegin("properties", LFTType::Map, 2);
    out.writeMapBegin(LFTType::String, LFTType::Struct, 4);
    for (const auto &[key, text] : {std::pair{"b", "1"}, {"c", "2"}, {"a", "3"}, {"b", "4"}}) {
        out.writeString(QString::fromUtf8(key));
        label(text).write(out);
    }
    out.writeFieldBegin("ts", LFTType::I64, 5);
    out.writeI64(7);
    out.writeFieldStop();

    const LFTEvent event = LFTDecode<LFTEvent>(buffer.getBuffer());
    QStringList keys;
    for (auto it = event.properties().cbegin(); it != event.properties().cend(); ++it)
        keys.append(it.key());
    EXPECT_EQ(keys, QStringList({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}));
    EXPECT_EQ(event.properties().value(QStringLiteral("b")), label("4"));
    EXPECT_FALSE(event.properties().contains(QStringLiteral("d")));
    EXPECT_EQ(event.properties().value(QStringLiteral("d")), LFTPropertyValue());

    // Built in any order, the same entries are equal and written the same.
    LFTPropertyMap built{{QStringLiteral("c"), label("2")}, {QStringLiteral("b"), label("1")}};
    built.insert(QStringLiteral("a"), label("3"));
    built.insert(QStringLiteral("b"), label("4"));
    EXPECT_TRUE(built == event.properties());
    LFTEvent rebuilt = event;
    rebuilt.setProperties(built);
    EXPECT_EQ(LFTEncode(rebuilt), LFTEncode(event));
}
