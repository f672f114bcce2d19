// Envelopes: their fields, digests, GUID, signature, serial numbers and checksum, the entity
// checked with Python's zlib and the openssl command line, the size cap at its edge, and the
// envelope files.

#include "AnalyticsFixture.h"
#include "LFAnalyticsEnvelope.h"
#include "LFAnalyticsUtility.h"
#include "LFEnvelope.h"
#include "LFEnvelopeOpener.h"
#include "OutsideTools.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>

namespace {
const QByteArray kIv = QByteArray::fromHex("3e7a19c4d20b8f56a1c7e04b92d36f18");

LFEnvelope decodeEnvelope(const QByteArray &bytes)
{
    return LFTDecode<LFEnvelope>(bytes);
}

void storeCodex(LFAnalyticsConfig &config, const QString &codex)
{
    LFTImprintValue value;
    value.setValue(codex);
    value.setTs(1);
    value.setGuid(QStringLiteral("g"));
    LFTImprint imprint;
    imprint.setProperty({{QStringLiteral("codex"), value}});
    imprint.setVersion(1);
    imprint.setChecksum(LFAnalyticsThrift::generateImprintChecksum(imprint));
    config.setConfigure(LFTEncode(imprint), QStringLiteral("lfImprint"));
}

QByteArray randomBytes(qsizetype size, quint32 seed)
{
    QByteArray bytes(size, Qt::Uninitialized);
    QRandomGenerator random(seed);
    for (char &byte : bytes)
        byte = char(random.bounded(256));
    return bytes;
}

// Random bytes whose zlib stream is exactly `size` bytes long.
QByteArray entryCompressingTo(qsizetype size)
{
    const QByteArray pool = randomBytes(size, 11);
    for (qsizetype length = size - 512; length < size; ++length) {
        const QByteArray entry = pool.left(length);
        if (LFAnalyticsUtility::compressData(entry).size() == size)
            return entry;
    }
    return {};
}
} // namespace

class EnvelopeTest : public AnalyticsFixture
{
protected:
    void adjustOptions(LFAnalyticsOptions &options) override
    {
        options.envelopeWriter = nullptr;   // the real envelope files
    }
    void SetUp() override
    {
        AnalyticsFixture::SetUp();
        app().setAppid(kAppKey);
    }
    LFAnalyticsEnvelope &envelope() { return context->envelope(); }
    const QByteArray entry = QByteArray("a log entry, a log entry, a log entry").repeated(20);
};

TEST(EnvelopeBytesTest, MergedBlockGuidAndChecksumFollowTheirRules)
{
    const QByteArray merged = LFAnalyticsEnvelope::mergeEntityAndIdentity(QByteArray::fromHex("000102030405060708090a0b0c0d0e0f"),
                                                                          QByteArray::fromHex("101112131415161718191a1b1c1d1e1f"));
    EXPECT_EQ(merged.toHex(), QByteArray("00100111021203130414051506160717081809190a1a0b1b0c1c0d1d0e1e0f1f"));
    QByteArray seed;
    for (int i = 100; i < 132; ++i)
        seed.append(char(i));
    EXPECT_EQ(LFAnalyticsEnvelope::buildGUIDWithData(merged, seed, 0x04030201).toHex(),
              QByteArray("65670215031000170516061107140413091a0a1d0b18081f0d1e0e190f1c8187"));
    EXPECT_EQ(LFAnalyticsEnvelope::buildGUIDWithData(merged, QByteArray(), 0x04030201).toHex(),
              QByteArray("01020215031000170516061107140413091a0a1d0b18081f0d1e0e190f1c0304"));
    EXPECT_EQ(LFAnalyticsEnvelope::generateChecksum(QStringLiteral("ab"), 7, 1700000000, 42, QStringLiteral("cd")),
              QStringLiteral("c5f85bd28a28cdecf8b7b04b019f1ca3"));
}

TEST_F(EnvelopeTest, PlainEnvelopeCarriesTheEntryAsAZlibStreamThatPythonInflates)
{
    clock->setNow(1700000000.75);
    const LFEnvelope envelope = decodeEnvelope(this->envelope().makeEnvelopeData(entry));
    EXPECT_EQ(envelope.version(), QStringLiteral("V1.0"));
    EXPECT_EQ(envelope.address(), kAppKey);
    EXPECT_EQ(envelope.serial_num(), 1);
    EXPECT_EQ(envelope.ts_secs(), 1700000000);
    EXPECT_EQ(envelope.length(), entry.size());
    EXPECT_EQ(envelope.codex(), 0);
    EXPECT_EQ(outsidetools::pythonInflate(envelope.entity()), entry);

    // The GUID is the merged digests with the signature's corner bytes, under the timestamp.
    const QByteArray signature = QByteArray::fromHex(envelope.signature().toLatin1());
    ASSERT_EQ(signature.size(), 32);
    EXPECT_EQ(config().configureWithKey(QStringLiteral("lfSignature")).toByteArray(), signature);
    const QByteArray entityDigest = QCryptographicHash::hash(envelope.entity(), QCryptographicHash::Md5);
    const QByteArray merged = LFAnalyticsEnvelope::mergeEntityAndIdentity(entityDigest, this->envelope().buildIdentity());
    EXPECT_EQ(envelope.guid(), QString::fromLatin1(LFAnalyticsEnvelope::buildGUIDWithData(merged, signature, 1700000000).toHex()));
    // Without a stored signature the first one is the GUID built without a seed.
    EXPECT_EQ(signature, LFAnalyticsEnvelope::buildGUIDWithData(merged, QByteArray(), 1700000000));
    EXPECT_EQ(envelope.checksum(),
              QString::fromLatin1(QCryptographicHash::hash((envelope.signature() + QStringLiteral("11700000000")
                                                            + QString::number(entry.size()) + envelope.guid()).toUtf8(),
                                                           QCryptographicHash::Md5).toHex()));
}

TEST_F(EnvelopeTest, SignatureIsWrittenOnceAndSerialNumbersCount)
{
    ASSERT_TRUE(envelope().writeEnvelopeFile(entry));
    clock->advance(5);
    ASSERT_TRUE(envelope().writeEnvelopeFile(entry + "more"));
    const QStringList files = LFAnalyticsUtility::envelopeFiles(internal().envelopeDirectory());
    ASSERT_EQ(files.size(), 2);
    QFile first(files.at(0));
    QFile second(files.at(1));
    ASSERT_TRUE(first.open(QIODevice::ReadOnly) && second.open(QIODevice::ReadOnly));
    const LFEnvelope a = decodeEnvelope(first.readAll());
    const LFEnvelope b = decodeEnvelope(second.readAll());
    EXPECT_EQ(a.serial_num(), 1);
    EXPECT_EQ(b.serial_num(), 2);
    EXPECT_EQ(config().numberWithKey(QStringLiteral("lfSerialNum")), 3);
    EXPECT_EQ(a.signature(), b.signature());
    EXPECT_NE(a.guid(), b.guid());
    EXPECT_EQ(QFileInfo(files.at(0)).fileName(), QStringLiteral("1700000000000_envelope.log"));
    EXPECT_EQ(QFileInfo(files.at(1)).fileName(), QStringLiteral("1700000005000_envelope.log"));
    EXPECT_TRUE(config().configureWithKey(QStringLiteral("lfActivateMsg")).isValid());
    // Nothing but whole envelope files is left in the folder.
    EXPECT_EQ(QDir(internal().envelopeDirectory()).entryList(QDir::Files).size(), 2);
}

TEST_F(EnvelopeTest, CodexOneEncryptsWithTheSignatureKeyAndOpensslDecryptsIt)
{
    storeCodex(config(), QStringLiteral("1"));
    const LFEnvelope envelope = decodeEnvelope(this->envelope().makeEnvelopeData(entry));
    EXPECT_EQ(envelope.codex(), 1);
    const QByteArray signature = QByteArray::fromHex(envelope.signature().toLatin1());
    const QByteArray stream = outsidetools::opensslDecrypt(envelope.entity(), signature.mid(1, 16), kIv);
    EXPECT_EQ(outsidetools::pythonInflate(stream), entry);
    // The digest and GUID are taken over the encrypted bytes.
    const QByteArray merged = LFAnalyticsEnvelope::mergeEntityAndIdentity(
        QCryptographicHash::hash(envelope.entity(), QCryptographicHash::Md5), this->envelope().buildIdentity());
    EXPECT_EQ(envelope.guid(),
              QString::fromLatin1(LFAnalyticsEnvelope::buildGUIDWithData(merged, signature, envelope.ts_secs()).toHex()));
}

TEST_F(EnvelopeTest, CodexDecidesOverTheEncryptSwitch)
{
    app().setEncryptEnabled(true);
    EXPECT_EQ(decodeEnvelope(envelope().makeEnvelopeData(entry)).codex(), 1);
    storeCodex(config(), QStringLiteral("0"));
    EXPECT_EQ(decodeEnvelope(envelope().makeEnvelopeData(entry)).codex(), 0);
    app().setEncryptEnabled(false);
    storeCodex(config(), QStringLiteral("1"));
    EXPECT_EQ(decodeEnvelope(envelope().makeEnvelopeData(entry)).codex(), 1);
}

TEST_F(EnvelopeTest, AnEntityOf209920BytesIsThrownAwayWithTheCacheAndOneByteLessIsSent)
{
    const QByteArray tooLarge = entryCompressingTo(209920);
    const QByteArray largest = entryCompressingTo(209919);
    ASSERT_FALSE(tooLarge.isEmpty());
    ASSERT_FALSE(largest.isEmpty());
    start();
    events().event(QStringLiteral("kept_until_the_cap"), QString(), 1, 0);
    drain();
    ASSERT_EQ(internal().eventCountInMemory(), 1);
    EXPECT_TRUE(envelope().makeEnvelopeData(tooLarge).isNull());
    EXPECT_EQ(internal().eventCountInMemory(), 0);
    const QByteArray bytes = envelope().makeEnvelopeData(largest);
    ASSERT_FALSE(bytes.isNull());
    EXPECT_EQ(decodeEnvelope(bytes).entity().size(), 209919);
}

TEST_F(EnvelopeTest, GeneratingAnEnvelopeFileClearsMemoryAndCountsTheEvents)
{
    start();
    events().event(QStringLiteral("tap"), QString(), 1, 0);
    events().event(QStringLiteral("tap"), QString(), 1, 0);
    drain();
    ASSERT_TRUE(internal().generateEnvelopeFile());
    EXPECT_FALSE(internal().hasDataInMemory());
    EXPECT_EQ(config().numberWithKey(QStringLiteral("lfPeriodEvtCount")), 2);
    const QStringList files = LFAnalyticsUtility::envelopeFiles(internal().envelopeDirectory());
    ASSERT_EQ(files.size(), 1);
    QFile file(files.constFirst());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const LFEnvelopeOpener::Result opened = LFEnvelopeOpener::open(file.readAll());
    ASSERT_TRUE(opened.opened) << opened.problem.toStdString();
    const LFTInstantMsgList messages = opened.opened->entry.instant_msgs();
    ASSERT_EQ(messages.size(), 1);
    EXPECT_EQ(messages.constFirst().events().size(), 2);
}
