// The binary protocol and memory buffer: exact bytes, message headers, decoded text and every
// failure text.

#include "LFTBinaryProtocol.h"
#include "LFTRecords.h"

#include <gtest/gtest.h>

namespace {

QByteArray hex(const char *digits)
{
    return QByteArray::fromHex(digits);
}

template <typename Exception, typename Action>
QString failureOf(Action action)
{
    try {
        action();
    } catch (const Exception &error) {
        return error.reason();
    }
    return QStringLiteral("<no exception>");
}

struct Reader
{
    explicit Reader(const QByteArray &bytes, bool strictRead = false)
        : buffer(bytes), protocol(&buffer, strictRead, true) {}
    LFTMemoryBuffer buffer;
    LFTBinaryProtocol protocol;
};

} // namespace

TEST(BinaryProtocol, WritesBigEndianScalarsStringsAndHeaders)
{
    LFTMemoryBuffer buffer;
    LFTBinaryProtocol out(&buffer);
    out.writeFieldBegin("x", LFTType::I32, 3);
    out.writeI32(-2);
    out.writeI16(0x0102);
    out.writeI64(1);
    out.writeBool(true);
    out.writeDouble(1.0);
    out.writeString(QStringLiteral("é"));
    out.writeString(QString());
    out.writeMapBegin(LFTType::String, LFTType::Struct, 2);
    out.writeListBegin(LFTType::I64, 1);
    out.writeFieldStop();
    EXPECT_EQ(buffer.getBuffer().toHex(),
              QByteArray("080003" "fffffffe" "0102" "0000000000000001" "01" "3ff0000000000000"
                         "00000002c3a9" "00000000" "0b0c00000002" "0a00000001" "00"));
}

TEST(BinaryProtocol, MessageHeaderStrictAndOldStyle)
{
    LFTMemoryBuffer strict;
    LFTBinaryProtocol(&strict).writeMessageBegin(QStringLiteral("ab"), LFTMessageType::Reply, 7);
    EXPECT_EQ(strict.getBuffer().toHex(), QByteArray("80010002" "000000026162" "00000007"));

    LFTMemoryBuffer old;
    LFTBinaryProtocol(&old, false, false).writeMessageBegin(QStringLiteral("ab"), LFTMessageType::Call, 7);
    EXPECT_EQ(old.getBuffer().toHex(), QByteArray("000000026162" "01" "00000007"));

    for (const QByteArray &bytes : {strict.getBuffer(), old.getBuffer()}) {
        Reader reader(bytes);
        QString name;
        LFTMessageType type;
        int32_t sequence = 0;
        reader.protocol.readMessageBegin(name, type, sequence);
        EXPECT_EQ(name, QStringLiteral("ab"));
        EXPECT_EQ(sequence, 7);
    }
}

TEST(BinaryProtocol, MessageHeaderFailures)
{
    QString name;
    LFTMessageType type;
    int32_t sequence;
    EXPECT_EQ(failureOf<LFTProtocolException>([&] {
                  Reader(hex("80020001")).protocol.readMessageBegin(name, type, sequence);
              }),
              QStringLiteral("Bad version in readMessageBegin"));
    EXPECT_EQ(failureOf<LFTProtocolException>([&] {
                  Reader(hex("00000002616201"), true).protocol.readMessageBegin(name, type, sequence);
              }),
              QStringLiteral("Missing version in readMessageBegin, old client?"));
    EXPECT_EQ(failureOf<LFTProtocolException>([&] {
                  Reader reader(hex("00000010"));
                  reader.protocol.setMessageSizeLimit(8);
                  reader.protocol.readMessageBegin(name, type, sequence);
              }),
              QStringLiteral("Message too big.  Size limit is: 8 Message size is: 16"));
    QString exceptionName;
    try {
        Reader(hex("80020001")).protocol.readMessageBegin(name, type, sequence);
    } catch (const LFTException &caught) {
        exceptionName = caught.name();
    }
    EXPECT_EQ(exceptionName, QStringLiteral("TProtocolException"));
}

TEST(BinaryProtocol, ReadsOnlyOneAsTrue)
{
    Reader reader(hex("010200"));
    EXPECT_TRUE(reader.protocol.readBool());
    EXPECT_FALSE(reader.protocol.readBool());
    EXPECT_FALSE(reader.protocol.readBool());
}

TEST(BinaryProtocol, NegativeAndHugeLengthsFailWithoutAllocating)
{
    EXPECT_TRUE(failureOf<LFTProtocolException>([] { Reader(hex("ffffffff")).protocol.readString(); })
                    .startsWith(QStringLiteral("Unable to allocate memory in ")));
    EXPECT_TRUE(failureOf<LFTProtocolException>([] { Reader(hex("ffffffff")).protocol.readString(); })
                    .endsWith(QStringLiteral(", size: -1")));
    EXPECT_EQ(failureOf<LFTProtocolException>([] { Reader(hex("fffffffb")).protocol.readBinary(); }),
              QStringLiteral("Out of memory.  Unable to allocate -5 bytes trying to read binary data."));
    EXPECT_EQ(failureOf<LFTTransportException>([] { Reader(hex("7fffffff41")).protocol.readString(); }),
              QStringLiteral("Not enough bytes remain in buffer"));
}

TEST(MemoryBuffer, ShortReadFailsAndConsumedBytesAreDroppedAt4096)
{
    LFTMemoryBuffer buffer(QByteArray(5000, 'x'));
    uint8_t chunk[4096];
    buffer.readAll(chunk, 0, 4095);
    EXPECT_EQ(buffer.getBuffer().size(), 5000);
    buffer.readAll(chunk, 0, 1);
    EXPECT_EQ(buffer.getBuffer().size(), 904);
    EXPECT_EQ(failureOf<LFTTransportException>([&] { buffer.readAll(chunk, 0, 905); }),
              QStringLiteral("Not enough bytes remain in buffer"));
    buffer.readAll(chunk, 0, 904);
    EXPECT_EQ(buffer.remaining(), 0);
}

TEST(MemoryBuffer, WritesAppendAtTheGivenOffset)
{
    LFTMemoryBuffer buffer;
    const uint8_t bytes[] = {1, 2, 3, 4};
    buffer.write(bytes, 1, 2);
    buffer.flush();
    EXPECT_EQ(buffer.getBuffer(), hex("0203"));
}

namespace {
QByteArray sampleResponse()
{
    LFTImprintValue value;
    value.setValue(QStringLiteral("6"));
    value.setTs(1700000000000);
    value.setGuid(QStringLiteral("g"));
    LFTImprint imprint;
    imprint.setProperty({{QStringLiteral("report_policy"), value}});
    imprint.setVersion(3);
    imprint.setChecksum(QStringLiteral("c"));
    LFTResponse response;
    response.setResp_code(1);
    response.setMsg(QStringLiteral("ok"));
    response.setImprint(imprint);
    return LFTEncode(response);
}
} // namespace

TEST(MalformedRecords, EveryTruncationEndsInAnException)
{
    const QByteArray bytes = sampleResponse();
    for (qsizetype length = 0; length < bytes.size(); ++length) {
        EXPECT_THROW(LFTDecode<LFTResponse>(bytes.left(length)), LFTException) << length;
    }
    EXPECT_EQ(LFTDecode<LFTResponse>(bytes).imprint().version(), 3);
}

TEST(MalformedRecords, BadTypesSizesAndNestingEndInProtocolExceptions)
{
    // resp_code, then a field of type 99.
    EXPECT_THROW(LFTDecode<LFTResponse>(hex("080001000000016300050000")), LFTProtocolException);
    // imprint.property as a map with a negative count.
    EXPECT_EQ(failureOf<LFTProtocolException>([] {
                  LFTDecode<LFTResponse>(hex("08000100000001" "0c0003" "0d00010b0cffffffff"));
              }),
              QStringLiteral("Negative size: -1"));
    // A huge list count of an unknown field runs out of bytes, it does not allocate.
    EXPECT_THROW(LFTDecode<LFTResponse>(hex("08000100000001" "0f00090a7fffffff00")), LFTTransportException);
    // Unknown structs nested far deeper than any record.
    QByteArray deep = hex("08000100000001");
    for (int i = 0; i < 200; ++i)
        deep += hex("0c0009");
    EXPECT_EQ(failureOf<LFTProtocolException>([&] { LFTDecode<LFTResponse>(deep); }),
              QStringLiteral("Depth limit exceeded"));
}

TEST(MalformedRecords, KnownFieldOfAnotherTypeIsSkipped)
{
    // resp_code = 1, msg sent as an i32, then stop.
    const LFTResponse response = LFTDecode<LFTResponse>(hex("08000100000001" "08000200000005" "00"));
    EXPECT_EQ(response.resp_code(), 1);
    EXPECT_FALSE(response.msgIsSet());
}

TEST(BinaryProtocol, ReadStringsMatchFromUtf8AndOutliveTheReader)
{
    // ASCII, other scripts, byte order marks, bad and cut-off bytes, and one text longer than a
    // whole block of decoded strings.
    const QList<QByteArray> texts = {"",
                                     "plain",
                                     "\xc3\xa9\xe6\xbc\xa2\xf0\x9f\x98\x80",
                                     "\xef\xbb\xbf" "a",
                                     "a\xef\xbb\xbf",
                                     "\xff\xc0\xaf" "b",
                                     "\xe2\x82",
                                     QByteArray(LFTStringPool::kBlockUnits + 10, 'x') + "\xc3\xa9"};
    LFTMemoryBuffer buffer;
    LFTBinaryProtocol out(&buffer);
    for (const QByteArray &text : texts)
        out.writeBinary(text);

    QList<QString> read;
    {
        Reader reader(buffer.getBuffer());
        for (qsizetype i = 0; i < texts.size(); ++i)
            read.append(reader.protocol.readString());
    }
    for (qsizetype i = 0; i < texts.size(); ++i) {
        EXPECT_EQ(read[i], QString::fromUtf8(texts[i])) << i;
        EXPECT_FALSE(read[i].isNull()) << i;
        EXPECT_EQ(read[i].utf16()[read[i].size()], 0) << i;
    }
    // Strings read together share storage; changing one leaves the others as they were.
    read[1].append(QStringLiteral("!"));
    read[2][0] = u'E';
    EXPECT_EQ(read[1], QStringLiteral("plain!"));
    EXPECT_EQ(read[2], QString::fromUtf8(texts[2]).replace(0, 1, u'E'));
    EXPECT_EQ(read[3], QStringLiteral("a"));
    EXPECT_EQ(read[4], QString::fromUtf8(texts[4]));
}
