// The codec's strict Base64 and the tolerant helpers, against Qt's own Base64 as oracle.

#include "Base64.h"
#include "GTMBase64.h"

#include <gtest/gtest.h>

#include <QRandomGenerator>
#include <QStringList>

namespace {

QByteArray randomBytes(QRandomGenerator &random, int size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    for (char &b : bytes)
        b = char(random.bounded(256));
    return bytes;
}

} // namespace

TEST(GTMBase64, RoundTripsEverySizeLikeQt)
{
    QRandomGenerator random(7);
    for (int size = 1; size < 200; ++size) {
        const QByteArray data = randomBytes(random, size);
        const QByteArray encoded = GTMBase64::encodeData(data);
        ASSERT_EQ(encoded, data.toBase64()) << size;
        ASSERT_EQ(GTMBase64::decodeData(encoded), data) << size;
    }
}

TEST(GTMBase64, EncodingNothingIsAbsent)
{
    EXPECT_EQ(GTMBase64::stringByEncodingData({}), std::nullopt);
    EXPECT_EQ(GTMBase64::stringByEncodingData("a"), QStringLiteral("YQ=="));
}

TEST(GTMBase64, StrictDecodingRejectsAnythingOffAlphabetOrMispadded)
{
    for (const char *bad : {"YQ", "YQ=", "Y Q==", "YQ==\n", "\nYQ==", "YQ==YQ==", "Y=Q=", "====",
                            "YWJj\r\nZGVm", "YW-j", "YW_j", "YWJ*"}) {
        EXPECT_TRUE(GTMBase64::decodeData(bad).isEmpty()) << bad;
    }
    EXPECT_EQ(GTMBase64::decodeData("YWJjZA=="), QByteArray("abcd"));
    EXPECT_EQ(GTMBase64::decodeData("YWJjZGU="), QByteArray("abcde"));
}

TEST(Base64Helpers, DecoderSkipsBreaksPaddingAndStrayCharacters)
{
    EXPECT_EQ(Base64::dataWithBase64EncodedString(QStringLiteral("YWJj\r\nZGVm")), QByteArray("abcdef"));
    EXPECT_EQ(Base64::dataWithBase64EncodedString(QStringLiteral(" Y W J j * Z A = = ")), QByteArray("abcd"));
    // Two left-over values give one byte, three give two, one alone gives none.
    EXPECT_EQ(Base64::dataWithBase64EncodedString(QStringLiteral("YQ")), QByteArray("a"));
    EXPECT_EQ(Base64::dataWithBase64EncodedString(QStringLiteral("YWI")), QByteArray("ab"));
    EXPECT_EQ(Base64::dataWithBase64EncodedString(QStringLiteral("YWJjZ")), QByteArray("abc"));
    // Characters beyond ASCII are stray characters too, not letters of the alphabet.
    EXPECT_EQ(Base64::dataWithBase64EncodedString(QStringLiteral("Y\u00e9Q==")), QByteArray("a"));
}

TEST(Base64Helpers, InputWithoutAlphabetCharactersIsAbsent)
{
    EXPECT_EQ(Base64::dataWithBase64EncodedString(QString()), std::nullopt);
    EXPECT_EQ(Base64::dataWithBase64EncodedString(QStringLiteral("==\r\n  ")), std::nullopt);
    EXPECT_EQ(Base64::stringWithBase64EncodedString(QStringLiteral("!!")), std::nullopt);
    EXPECT_EQ(Base64::dataWithBase64EncodedString(QStringLiteral("Y")), std::nullopt);
    // Bytes that are not UTF-8 are no string.
    EXPECT_EQ(Base64::stringWithBase64EncodedString(QStringLiteral("/w==")), std::nullopt);
}

TEST(Base64Helpers, WrappingBreaksFullLinesOfWholeGroupsOnly)
{
    const QByteArray data(30, 'x'); // 40 characters, the last group unpadded
    const QString flat = QString::fromLatin1(data.toBase64());

    EXPECT_EQ(Base64::base64EncodedStringWithWrapWidth(data, 0), flat);
    EXPECT_EQ(Base64::base64EncodedStringWithWrapWidth(data, 3), flat);
    // Width 10 rounds down to 8: four full lines and a last one, no break at the end.
    const QString wrapped = Base64::base64EncodedStringWithWrapWidth(data, 10).value();
    EXPECT_EQ(wrapped.split(QStringLiteral("\r\n")),
              QStringList({flat.mid(0, 8), flat.mid(8, 8), flat.mid(16, 8), flat.mid(24, 8), flat.mid(32, 8)}));
    EXPECT_FALSE(wrapped.endsWith(QStringLiteral("\r\n")));

    // A text that fills its last line exactly gets no trailing break either.
    EXPECT_EQ(Base64::base64EncodedStringWithWrapWidth(QByteArray(6, 'y'), 4).value().count(u'\r'), 1);
    EXPECT_EQ(Base64::base64EncodedStringWithWrapWidth(QByteArray(), 4), std::nullopt);
}

TEST(Base64Helpers, StringsTravelAsUtf8)
{
    const QString text = QStringLiteral("回复成功 ok");
    const QString encoded = Base64::base64EncodedString(text).value();
    EXPECT_EQ(encoded, QString::fromLatin1(text.toUtf8().toBase64()));
    EXPECT_EQ(Base64::base64DecodedString(encoded), text);
    EXPECT_EQ(Base64::base64DecodedData(encoded), text.toUtf8());
    // Wrapped output still decodes, since the decoder skips the breaks.
    EXPECT_EQ(Base64::stringWithBase64EncodedString(Base64::base64EncodedStringWithWrapWidth(text, 4).value()), text);
}
