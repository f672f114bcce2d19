// The payload codec checked against the openssl command line as an independent oracle.

#include "DesCryptUtil.h"
#include "GTMBase64.h"

#include <gtest/gtest.h>

#include <QProcess>

namespace {

const QByteArray kKeyHex = "3A5D19620C472B71";
const QByteArray kIvHex = "1E084F270D336A15";

// `openssl enc` over the given bytes; extra arguments select direction and encoding.
QByteArray openssl(const QByteArray &input, const QStringList &extra)
{
    QProcess process;
    QStringList args{QStringLiteral("enc"), QStringLiteral("-des-cbc"), QStringLiteral("-provider"),
                     QStringLiteral("legacy"), QStringLiteral("-provider"), QStringLiteral("default"),
                     QStringLiteral("-K"), QString::fromLatin1(kKeyHex), QStringLiteral("-iv"),
                     QString::fromLatin1(kIvHex)};
    process.start(QStringLiteral("openssl"), args + extra);
    process.write(input);
    process.closeWriteChannel();
    process.waitForFinished(10000);
    EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
    return process.readAllStandardOutput();
}

QString opensslEncipherBase64(const QByteArray &plain)
{
    return QString::fromLatin1(openssl(plain, {QStringLiteral("-base64"), QStringLiteral("-A")}).trimmed());
}

std::optional<QString> encode(const QString &text)
{
    return DesCryptUtil::DesEncode(text, DesCryptUtil::kKey, DesCryptUtil::kIV);
}

std::optional<QString> decode(const QString &text)
{
    return DesCryptUtil::DesDecode(text, DesCryptUtil::kKey, DesCryptUtil::kIV);
}

} // namespace

TEST(DesCryptUtil, EnciphersLikeOpensslAcrossBlockBoundaries)
{
    // 45 bytes gain 3 bytes of padding; 48 bytes gain a whole block.
    const QString json45 = QStringLiteral(R"({"imei":"012345678","devicetype":"IOS","a":1})");
    const QString json48 = QStringLiteral(R"({"imei":"012345678901","devicetype":"IOS","a":1})");
    ASSERT_EQ(json45.toUtf8().size(), 45);
    ASSERT_EQ(json48.toUtf8().size(), 48);

    const QString cipher45 = encode(json45).value();
    const QString cipher48 = encode(json48).value();
    EXPECT_EQ(cipher45.size(), 64);
    EXPECT_EQ(cipher48.size(), 76);
    EXPECT_EQ(cipher45, opensslEncipherBase64(json45.toUtf8()));
    EXPECT_EQ(cipher48, opensslEncipherBase64(json48.toUtf8()));
    EXPECT_EQ(GTMBase64::decodeData(cipher48.toLatin1()).right(8),
              openssl(json48.toUtf8(), {}).right(8));
}

TEST(DesCryptUtil, EmptyTextEnciphersToOnePaddingBlock)
{
    const QString cipher = encode(QString()).value();
    EXPECT_EQ(cipher.size(), 12);
    EXPECT_TRUE(cipher.endsWith(u'='));
    EXPECT_EQ(cipher, opensslEncipherBase64({}));
    EXPECT_EQ(decode(cipher), QString());
}

TEST(DesCryptUtil, ChineseTextFollowsItsUtf8ByteCount)
{
    const QString text = QStringLiteral("新手攻略：第一次进入游戏必看！");
    const qsizetype bytes = text.toUtf8().size();
    const QString cipher = encode(text).value();
    EXPECT_EQ(GTMBase64::decodeData(cipher.toLatin1()).size(), (bytes + 8) / 8 * 8);
    EXPECT_EQ(cipher, opensslEncipherBase64(text.toUtf8()));
    EXPECT_EQ(decode(cipher), text);
}

TEST(DesCryptUtil, DeciphersWhatOpensslEnciphers)
{
    const QByteArray plain = QStringLiteral(R"({"RData":[{"sectionname":"综合讨论","sectionid":3}]})").toUtf8();
    const QString cipher = opensslEncipherBase64(plain);
    EXPECT_EQ(decode(cipher), QString::fromUtf8(plain));
}

TEST(DesCryptUtil, BadCipherTextDeciphersToEmptyNotAbsent)
{
    const QString good = encode(QStringLiteral(R"({"RData":1})")).value(); // 16 bytes: "==" padded
    QString lineBroken = good;
    lineBroken.insert(20, u'\n');
    QString unpadded = good;
    while (unpadded.endsWith(u'='))
        unpadded.chop(1);
    ASSERT_NE(unpadded, good) << "fixture needs a padded cipher text";

    const QStringList bad = {
        QStringLiteral("not base64 at all!"),
        lineBroken,
        unpadded,
        QStringLiteral("AAAAAAAAAAA="),           // 8 bytes that are not a valid padded block
        QStringLiteral("QUJD"),                   // 3 bytes: not a whole block
        good.left(good.size() - 12) + QStringLiteral("AAAAAAAAAAA="), // last block replaced
        QString(),
    };
    for (const QString &text : bad)
        EXPECT_EQ(decode(text), QString()) << text.toStdString();
}

TEST(DesCryptUtil, DecipheredBytesThatAreNotUtf8AreAbsent)
{
    const QByteArray invalidUtf8("\xff\xfe\xfd", 3);
    const QString cipher = opensslEncipherBase64(invalidUtf8);
    EXPECT_EQ(decode(cipher), std::nullopt);
}

TEST(DesCryptUtil, OutputIsPlainBase64WithPlusSlashAndPadding)
{
    bool sawPlus = false;
    bool sawSlash = false;
    for (int i = 0; i < 200 && !(sawPlus && sawSlash); ++i) {
        const QString cipher = encode(QStringLiteral("payload %1").arg(i)).value();
        EXPECT_FALSE(cipher.contains(u'\n'));
        EXPECT_FALSE(cipher.contains(u'%'));
        sawPlus |= cipher.contains(u'+');
        sawSlash |= cipher.contains(u'/');
        EXPECT_EQ(decode(cipher), QStringLiteral("payload %1").arg(i));
    }
    EXPECT_TRUE(sawPlus);
    EXPECT_TRUE(sawSlash);
}

TEST(DesCryptUtil, KeyBytesThatAreNotUtf8BreakTheRoundTrip)
{
    uint8_t highKey[8];
    std::copy(std::begin(DesCryptUtil::kKey), std::end(DesCryptUtil::kKey), highKey);
    highKey[3] = 0x80;
    EXPECT_EQ(DesCryptUtil::DesEncode(QStringLiteral("x"), highKey, DesCryptUtil::kIV), std::nullopt);
    EXPECT_EQ(DesCryptUtil::DesDecode(encode(QStringLiteral("x")).value(), highKey, DesCryptUtil::kIV),
              QString());
}

TEST(DesCryptUtil, WrongKeyDeciphersToEmpty)
{
    const uint8_t otherKey[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    const QString cipher = encode(QStringLiteral(R"({"RData":[1,2,3,4,5,6,7,8,9,10]})")).value();
    // Under this key the last deciphered byte is 0x1E, no padding length, so the padding
    // check fails (openssl says "bad decrypt"): nothing deciphers, which is empty text, not
    // the absent result kept for bytes that are not UTF-8.
    const std::optional<QString> result = DesCryptUtil::DesDecode(cipher, otherKey, DesCryptUtil::kIV);
    ASSERT_TRUE(result.has_value());
    EXPECT_EQ(*result, QStringLiteral(""));
}

TEST(DesCryptUtil, Md5IsLowercaseHexOfUtf8UpToFirstNul)
{
    EXPECT_EQ(DesCryptUtil::md5(QStringLiteral("abc")), QStringLiteral("900150983cd24fb0d6963f7d28e17f72"));
    EXPECT_EQ(DesCryptUtil::md5(QString()), QStringLiteral("d41d8cd98f00b204e9800998ecf8427e"));
    EXPECT_EQ(DesCryptUtil::md5(QStringLiteral("abc") + QChar(0) + QStringLiteral("ignored")),
              DesCryptUtil::md5(QStringLiteral("abc")));

    QProcess dgst;
    dgst.start(QStringLiteral("openssl"), {QStringLiteral("dgst"), QStringLiteral("-md5"), QStringLiteral("-r")});
    dgst.write(QStringLiteral("论坛").toUtf8());
    dgst.closeWriteChannel();
    dgst.waitForFinished(10000);
    EXPECT_EQ(DesCryptUtil::md5(QStringLiteral("论坛")),
              QString::fromLatin1(dgst.readAllStandardOutput().left(32)));
}
