// Sending: which files go, in which order and with which headers, the primary and fallback
// endpoints, the reply rules, the counters and the imprint, against recording HTTP servers on
// loopback.

#include "AnalyticsFixture.h"
#include "LFAnalyticsDevice.h"
#include "LFAnalyticsSender.h"
#include "LFAnalyticsUtility.h"
#include "RecordingHttpServer.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QUrl>

namespace {
RecordingHttpServer::Response thriftReply(int32_t code, std::optional<LFTImprint> imprint = std::nullopt)
{
    LFTResponse response;
    response.setResp_code(code);
    if (imprint)
        response.setImprint(*imprint);
    return {200, "application/thrift", LFTEncode(response)};
}

LFTImprint imprintOf(const QMap<QString, QString> &values)
{
    LFTImprintMap property;
    for (auto it = values.cbegin(); it != values.cend(); ++it) {
        LFTImprintValue value;
        value.setValue(it.value());
        value.setTs(1700000000000);
        value.setGuid(QStringLiteral("server"));
        property.insert(it.key(), value);
    }
    LFTImprint imprint;
    imprint.setProperty(property);
    imprint.setVersion(3);
    imprint.setChecksum(LFAnalyticsThrift::generateImprintChecksum(imprint));
    return imprint;
}

// A loopback port that nothing listens on.
quint16 closedPort()
{
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost);
    return probe.serverPort();
}
} // namespace

class UploadTest : public AnalyticsFixture
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(primary.listen());
        ASSERT_TRUE(fallback.listen());
        primary.setResponder([](const auto &) { return thriftReply(1); });
        fallback.setResponder([](const auto &) { return thriftReply(1); });
        AnalyticsFixture::SetUp();
        app().setAppid(kAppKey);
        QDir().mkpath(internal().envelopeDirectory());
    }

    void adjustOptions(LFAnalyticsOptions &options) override
    {
        options.envelopeWriter = nullptr;
        options.performJob = nullptr;
        options.primaryLogHost = primaryHost.isEmpty() ? primary.baseUrl() : primaryHost;
        options.fallbackLogHost = fallback.baseUrl();
        options.displayName = QStringLiteral("Quorvel 论坛");
    }

    // An envelope file of `size` bytes made `ageSeconds` before now.
    QString envelopeFile(double ageSeconds, qsizetype size = 100, char fill = 'e')
    {
        const qint64 ms = qint64((clock->now() - ageSeconds) * 1000);
        const QString path = QDir(internal().envelopeDirectory()).filePath(LFAnalyticsUtility::generateEnvelopeFileNameWithTS(ms));
        EXPECT_TRUE(LFAnalyticsUtility::saveData(QByteArray(size, fill), path));
        return path;
    }

    void sendAndWait()
    {
        context->sender().beginPerformJob();
        ASSERT_TRUE(testsupport::waitUntil([this] { return !internal().isJobRunning(); }, 15000));
    }

    QStringList remainingFiles() const
    {
        QStringList names;
        for (const QString &path : LFAnalyticsUtility::envelopeFiles(context->internal().envelopeDirectory()))
            names.append(QFileInfo(path).fileName());
        return names;
    }

    RecordingHttpServer primary;
    RecordingHttpServer fallback;
    QString primaryHost;
};

TEST_F(UploadTest, FilesAreKeptOnlyBetweenTheirSizeAndAgeLimits)
{
    const QString tenBytes = envelopeFile(10, 10);
    const QString elevenBytes = envelopeFile(11, 11);
    const QString largest = envelopeFile(12, 262143);
    const QString tooLarge = envelopeFile(13, 262144);
    const QString fourteenDays = envelopeFile(1209600);
    const QString tooOld = envelopeFile(1209601);
    const QStringList kept = context->sender().validateEnvelopeFiles(
        LFAnalyticsUtility::envelopeFiles(internal().envelopeDirectory()));
    EXPECT_EQ(kept, (QStringList{fourteenDays, largest, elevenBytes}));
    for (const QString &gone : {tenBytes, tooLarge, tooOld})
        EXPECT_FALSE(QFileInfo::exists(gone)) << gone.toStdString();
}

TEST_F(UploadTest, TwelveFilesSendTheNewestTenOldestFirstWithTheirHeaders)
{
    clock->setNow(1700000000.5);
    QList<QByteArray> bodies;
    for (int i = 0; i < 12; ++i) {
        envelopeFile(100 - i, 50 + i, char('a' + i));
        bodies.append(QByteArray(50 + i, char('a' + i)));
    }
    sendAndWait();
    const QList<RecordingHttpServer::Request> requests = primary.requests();
    ASSERT_EQ(requests.size(), 10);
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(requests.at(i).body, bodies.at(i + 2)) << i;
    EXPECT_TRUE(remainingFiles().isEmpty());
    EXPECT_TRUE(fallback.requests().isEmpty());

    const RecordingHttpServer::Request &first = requests.constFirst();
    EXPECT_EQ(first.method, QByteArray("POST"));
    EXPECT_EQ(first.target, QByteArray("/app_logs"));
    EXPECT_EQ(first.headers.value("msg-type"), QByteArray("envelope"));
    EXPECT_EQ(first.headers.value("content-type"), QByteArray("envelope"));
    EXPECT_EQ(first.headers.value("x-lefiseix-utc"), QByteArray("1700000000500"));
    const LFAnalyticsDevice &device = context->device();
    const QByteArray sdk = "Qt/3.6.6 Quorvel%20%E8%AE%BA%E5%9D%9B/1.0.0 " + device.model().toUtf8() + "/"
                           + device.osVersion().toUtf8() + " "
                           + QCryptographicHash::hash(kAppKey.toUtf8(), QCryptographicHash::Md5).toHex();
    EXPECT_EQ(first.headers.value("x-lefiseix-sdk"), sdk);
    EXPECT_EQ(config().numberWithKey(QStringLiteral("lfSuccessfulRequests")), 10);
    EXPECT_EQ(config().numberWithKey(QStringLiteral("lastPostInterval")), 1700000000.5);
    EXPECT_FALSE(config().configureWithKey(QStringLiteral("lastPostDate")).toString().isEmpty());
}

TEST_F(UploadTest, AnHtmlReplyKeepsTheFileAfterTryingTheFallback)
{
    const auto html = [](const auto &) { return RecordingHttpServer::Response{200, "text/html", "<p>ok</p>"}; };
    primary.setResponder(html);
    fallback.setResponder(html);
    const QString first = envelopeFile(20);
    envelopeFile(10);
    sendAndWait();
    EXPECT_EQ(primary.requests().size(), 1);
    EXPECT_EQ(fallback.requests().size(), 1);
    EXPECT_EQ(remainingFiles().size(), 2);
    EXPECT_TRUE(QFileInfo::exists(first));
    EXPECT_EQ(config().numberWithKey(QStringLiteral("lfFailedRequests")), 2);
}

TEST_F(UploadTest, AnErrorStatusFailsAndADeadPrimaryFallsBack)
{
    app().setLogEnabled(true);
    primary.setResponder([](const auto &) { return RecordingHttpServer::Response{503, "application/thrift", "x"}; });
    envelopeFile(10);
    sendAndWait();
    EXPECT_EQ(fallback.requests().size(), 1);
    EXPECT_TRUE(remainingFiles().isEmpty());
    EXPECT_TRUE(logged(QStringLiteral("LFLOG: (Response Applog) {\"fail\": \"statusCode\":503}")));

    primaryHost = QStringLiteral("http://127.0.0.1:%1").arg(closedPort());
    makeContext();
    envelopeFile(5);
    sendAndWait();
    EXPECT_EQ(fallback.requests().size(), 2);
    EXPECT_TRUE(remainingFiles().isEmpty());
}

TEST_F(UploadTest, RespCodeTwoDeletesTheFileAndCountsAFailure)
{
    primary.setResponder([](const auto &) { return thriftReply(2, imprintOf({{QStringLiteral("report_policy"), QStringLiteral("6")}})); });
    envelopeFile(10);
    sendAndWait();
    EXPECT_TRUE(remainingFiles().isEmpty());
    EXPECT_EQ(config().numberWithKey(QStringLiteral("lfFailedRequests")), 1);
    EXPECT_FALSE(config().numberWithKey(QStringLiteral("lfSuccessfulRequests")));
    EXPECT_FALSE(config().configureWithKey(QStringLiteral("lfImprint")).isValid());
}

TEST_F(UploadTest, AValidImprintIsMergedAndDefconSevenIsStoredAsZero)
{
    primary.setResponder([](const auto &) {
        return thriftReply(1, imprintOf({{QStringLiteral("defcon"), QStringLiteral("7")},
                                         {QStringLiteral("report_interval"), QStringLiteral("600")}}));
    });
    envelopeFile(10);
    sendAndWait();
    EXPECT_EQ(config().stringWithKey(QStringLiteral("lfDefcon")), QStringLiteral("0"));
    EXPECT_EQ(job().defconLevel(), 0);
    EXPECT_EQ(thrift().imprintPropertyValueWithKey(QStringLiteral("report_interval")), QStringLiteral("600"));
    EXPECT_EQ(app().logSendInterval(), 600);
    const std::optional<LFTImprint> stored = thrift().buildImprint();
    ASSERT_TRUE(stored);
    EXPECT_EQ(stored->version(), 3);
    EXPECT_TRUE(LFAnalyticsThrift::validateImprintChecksum(*stored));

    // A later imprint with level 2 sets the back-off level; an unset value removes its key.
    LFTImprint next = imprintOf({{QStringLiteral("defcon"), QStringLiteral("2")}});
    LFTImprintMap property = next.property();
    LFTImprintValue unset;
    unset.setTs(1);
    unset.setGuid(QStringLiteral("server"));
    property.insert(QStringLiteral("report_interval"), unset);
    next.setProperty(property);
    next.setChecksum(LFAnalyticsThrift::generateImprintChecksum(next));
    thrift().updateImprint(next);
    EXPECT_EQ(job().defconLevel(), 2);
    EXPECT_EQ(config().stringWithKey(QStringLiteral("lfDefcon")), QStringLiteral("2"));
    EXPECT_TRUE(thrift().imprintPropertyValueWithKey(QStringLiteral("report_interval")).isNull());
}

TEST_F(UploadTest, AnImprintWithABadChecksumIsIgnored)
{
    LFTImprint forged = imprintOf({{QStringLiteral("defcon"), QStringLiteral("3")}});
    forged.setChecksum(QStringLiteral("0123456789abcdef0123456789abcdef"));
    primary.setResponder([forged](const auto &) { return thriftReply(1, forged); });
    envelopeFile(10);
    sendAndWait();
    EXPECT_TRUE(remainingFiles().isEmpty());
    EXPECT_EQ(job().defconLevel(), 0);
    EXPECT_FALSE(config().configureWithKey(QStringLiteral("lfImprint")).isValid());
}

TEST_F(UploadTest, WithABackOffLevelAFailedPostDropsEveryFileOfTheJob)
{
    job().setDefconLevel(1);
    const auto refuse = [](const auto &) { return RecordingHttpServer::Response{500, "text/plain", "no"}; };
    primary.setResponder(refuse);
    fallback.setResponder(refuse);
    envelopeFile(30);
    envelopeFile(20);
    envelopeFile(10);
    sendAndWait();
    EXPECT_EQ(primary.requests().size(), 1);
    EXPECT_TRUE(remainingFiles().isEmpty());
}

TEST_F(UploadTest, NothingWaitingMakesTheActivationEnvelopeFromMemory)
{
    sendAndWait();
    ASSERT_EQ(primary.requests().size(), 1);
    EXPECT_TRUE(config().configureWithKey(QStringLiteral("lfActivateMsg")).isValid());
    // Sent once: with nothing in memory a second send has nothing to post.
    sendAndWait();
    EXPECT_EQ(primary.requests().size(), 1);
}

TEST_F(UploadTest, QuittingWaitsForARunningPostOnlyUntilItsTimeRunsOut)
{
    primary.hold();
    const QString file = envelopeFile(10);
    context->sender().beginPerformJob();
    ASSERT_TRUE(testsupport::waitUntil([this] { return primary.requests().size() == 1; }, 15000));
    EXPECT_FALSE(context->shutdownUploads(100));
    primary.release();
    EXPECT_TRUE(QFileInfo::exists(file));
    EXPECT_TRUE(fallback.requests().isEmpty());
}

TEST(LogHostsTest, EnvironmentThenTheLocalAnalyticsPortAndTheSetterWins)
{
    QTemporaryDir folder;
    auto makeContext = [&folder] {
        LFAnalyticsOptions options;
        options.configStore = std::make_shared<UserDefaults>(folder.filePath(QStringLiteral("config.ini")));
        options.cacheDirectory = folder.filePath(QStringLiteral("caches"));
        return std::make_unique<LFAnalyticsContext>(std::move(options));
    };
    qunsetenv("QUORVEL_ANALYTICS_URL");
    qunsetenv("QUORVEL_ANALYTICS_FALLBACK_URL");
    EXPECT_EQ(makeContext()->logHosts(),
              std::make_pair(QStringLiteral("http://127.0.0.1:8081"), QStringLiteral("http://127.0.0.1:8081")));

    qputenv("QUORVEL_ANALYTICS_URL", "http://127.0.0.1:9001");
    qputenv("QUORVEL_ANALYTICS_FALLBACK_URL", "http://127.0.0.1:9002/");
    const std::unique_ptr<LFAnalyticsContext> context = makeContext();
    qunsetenv("QUORVEL_ANALYTICS_URL");
    qunsetenv("QUORVEL_ANALYTICS_FALLBACK_URL");
    EXPECT_EQ(context->logHosts(),
              std::make_pair(QStringLiteral("http://127.0.0.1:9001"), QStringLiteral("http://127.0.0.1:9002/")));
    context->setLogHosts(QStringLiteral("http://127.0.0.1:9003"), QString());
    EXPECT_EQ(context->logHosts(),
              std::make_pair(QStringLiteral("http://127.0.0.1:9003"), QStringLiteral("http://127.0.0.1:9002/")));
}
