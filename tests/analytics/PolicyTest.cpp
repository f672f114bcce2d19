// Report policy, send interval, the decision to send, back-off, delayed and disguised sends,
// and the send delay, all on a manual clock and a seeded random source.

#include "AnalyticsFixture.h"

#include <QDir>
#include <QFile>

namespace {
void storeImprint(LFAnalyticsConfig &config, const QMap<QString, QString> &values)
{
    LFTImprintMap property;
    for (auto it = values.cbegin(); it != values.cend(); ++it) {
        LFTImprintValue value;
        value.setValue(it.value());
        value.setTs(1);
        value.setGuid(QStringLiteral("guid"));
        property.insert(it.key(), value);
    }
    LFTImprint imprint;
    imprint.setProperty(property);
    imprint.setVersion(1);
    imprint.setChecksum(QStringLiteral("sum"));
    config.setConfigure(LFTEncode(imprint), QStringLiteral("lfImprint"));
}
} // namespace

using PolicyTest = AnalyticsFixture;

TEST_F(PolicyTest, SendIntervalRule)
{
    app().setLogSendInterval(89);
    EXPECT_TRUE(logged(QStringLiteral("ERROR: can't less 90s for log send interval.")));
    EXPECT_FALSE(config().configureWithKey(QStringLiteral("lfcReportInterval")).isValid());
    app().setLogSendInterval(600);
    EXPECT_EQ(app().logSendInterval(), 600);

    config().setConfigure(100000, QStringLiteral("lfcReportInterval"));
    EXPECT_EQ(app().minReportInterval(), 90);
    config().setConfigure(QStringLiteral("300"), QStringLiteral("lefiseix_report_interval"));
    EXPECT_EQ(app().minReportInterval(), 300);
    storeImprint(config(), {{QStringLiteral("report_interval"), QStringLiteral("86400")},
                            {QStringLiteral("test_report_interval"), QStringLiteral("120")}});
    EXPECT_EQ(app().minReportInterval(), 86400);
    config().setConfigure(6, QStringLiteral("lfExperimentRPT"));
    EXPECT_EQ(app().minReportInterval(), 120);
    // A value that is there but not a number is taken (as 0, so 90), not passed over.
    storeImprint(config(), {{QStringLiteral("report_interval"), QStringLiteral("86400")},
                            {QStringLiteral("test_report_interval"), QStringLiteral("hourly")}});
    EXPECT_EQ(app().minReportInterval(), 90);
}

class IntegratedTestModePolicyTest : public AnalyticsFixture
{
    void adjustOptions(LFAnalyticsOptions &options) override
    {
        options.integratedTestMode = true;
        options.debugging = true;
    }
};

TEST_F(IntegratedTestModePolicyTest, UsesNinetySecondsAndMayKeepPolicyZero)
{
    config().setConfigure(600, QStringLiteral("lfcReportInterval"));
    EXPECT_EQ(app().minReportInterval(), 90);
    config().setConfigure(6, QStringLiteral("lfExperimentRPT"));
    config().setConfigure(0, QStringLiteral("lfcReportPolicy"));
    EXPECT_EQ(app().reportPolicy(), 0u);
}

TEST_F(PolicyTest, ReportPolicySourcesAndNormalisation)
{
    app().setReportPolicy(8);
    EXPECT_EQ(app().reportPolicy(), 8u);
    for (int given : {0, 2, 7, 9, 100}) {
        config().setConfigure(given, QStringLiteral("lfcReportPolicy"));
        EXPECT_EQ(app().reportPolicy(), 1u) << given;
    }
    config().setConfigure(6, QStringLiteral("lfcReportPolicy"));
    EXPECT_EQ(app().reportPolicy(), 6u);
    config().setConfigure(8, QStringLiteral("report_policy"));
    EXPECT_EQ(app().reportPolicy(), 8u);
    storeImprint(config(), {{QStringLiteral("report_policy"), QStringLiteral("1")}});
    EXPECT_EQ(app().reportPolicy(), 1u);
    config().setConfigure(6, QStringLiteral("lfExperimentRPT"));
    EXPECT_EQ(app().reportPolicy(), 6u);

    // The first present source wins even when it is not a number: read as 0, it becomes 1.
    config().removeConfigureWithKey(QStringLiteral("lfExperimentRPT"));
    storeImprint(config(), {{QStringLiteral("report_policy"), QStringLiteral("often")}});
    EXPECT_EQ(app().reportPolicy(), 1u);   // not the stored 8 behind it
    config().setConfigure(QStringLiteral("8 per day"), QStringLiteral("lfExperimentRPT"));
    EXPECT_EQ(app().reportPolicy(), 8u);   // its leading number
}

TEST_F(PolicyTest, WhetherToSendByPolicy)
{
    start();
    auto postedAgo = [this](double seconds) {
        config().setConfigure(clock->now() - seconds, QStringLiteral("lastPostInterval"));
    };

    config().setConfigure(1, QStringLiteral("lfcReportPolicy"));
    EXPECT_TRUE(job().shouldCommitJob(0));
    EXPECT_FALSE(job().shouldCommitJob(1));

    config().setConfigure(6, QStringLiteral("lfcReportPolicy"));
    app().setLogSendInterval(120);
    EXPECT_TRUE(job().shouldCommitJob(1));   // never posted
    postedAgo(120);
    EXPECT_FALSE(job().shouldCommitJob(0));
    postedAgo(121);
    EXPECT_TRUE(job().shouldCommitJob(0));

    config().setConfigure(8, QStringLiteral("lfcReportPolicy"));
    postedAgo(129600);
    EXPECT_FALSE(job().shouldCommitJob(0));
    postedAgo(129601);
    EXPECT_TRUE(job().shouldCommitJob(0));
    app().setBackgroundTaskEnabled(false);
    postedAgo(10801);
    EXPECT_TRUE(job().shouldCommitJob(0));
    postedAgo(10800);
    EXPECT_FALSE(job().shouldCommitJob(0));
    session().appInactivate();
    EXPECT_FALSE(job().shouldCommitJob(1));
    app().setBackgroundTaskEnabled(true);
    EXPECT_TRUE(job().shouldCommitJob(1));

    reachable = false;
    EXPECT_FALSE(job().shouldCommitJob(1));
    reachable = true;
    session().appInactivate(true);
    EXPECT_FALSE(job().shouldCommitJob(1));
}

TEST_F(PolicyTest, BackOffLevelsNeedTimeSinceTheLastPost)
{
    const int required[] = {0, 14400, 28800, 86400};
    for (int level = 1; level <= 3; ++level) {
        job().setDefconLevel(level);
        EXPECT_TRUE(job().defconPass()) << "never posted";
        config().setConfigure(clock->now() - required[level] + 1, QStringLiteral("lastPostInterval"));
        EXPECT_FALSE(job().defconPass()) << level;
        config().setConfigure(clock->now() - required[level], QStringLiteral("lastPostInterval"));
        EXPECT_TRUE(job().defconPass()) << level;
        config().removeConfigureWithKey(QStringLiteral("lastPostInterval"));
    }
    job().setDefconLevel(4);
    config().setConfigure(clock->now(), QStringLiteral("lastPostInterval"));
    EXPECT_TRUE(job().defconPass());
}

TEST_F(PolicyTest, SessionStartSendsAtOnceWhenNothingIsDelayed)
{
    job().preparePerformJob(0);
    EXPECT_EQ(jobsStarted, 0);   // no session yet
    start();
    EXPECT_EQ(jobsStarted, 1);
    internal().setJobRunning(true);
    job().preparePerformJob(0);
    EXPECT_EQ(jobsStarted, 1);
}

TEST_F(PolicyTest, LongSilenceDelaysTheSendAndNothingElseStartsMeanwhile)
{
    config().setConfigure(kStart - 1296000, QStringLiteral("lastPostInterval"));
    start();
    EXPECT_EQ(jobsStarted, 0);
    EXPECT_TRUE(job().latencyJobPending());

    session().appInactivate();
    drain();
    session().appActivate();
    drain();
    EXPECT_EQ(jobsStarted, 0);

    clock->advance(300);
    EXPECT_EQ(jobsStarted, 1);
    EXPECT_FALSE(job().latencyJobPending());
}

TEST_F(PolicyTest, DelayedEnvelopeCarriesTheDelayItWaits)
{
    start();
    job().setLatency(1800);
    events().event(QStringLiteral("e"), QString(), 1, 0);
    drain();
    const int before = jobsStarted;
    config().setConfigure(clock->now() - 1296000, QStringLiteral("lastPostInterval"));
    job().preparePerformJob(0);
    ASSERT_EQ(envelopes.size(), 1);
    EXPECT_FALSE(internal().hasDataInMemory());
    const LFTUALogEntry entry = LFTDecode<LFTUALogEntry>(envelopes[0]);
    ASSERT_TRUE(entry.control_policyIsSet());
    const int delay = entry.control_policy().latent().latency();
    EXPECT_EQ(delay, 1764);   // the draw of the seeded random source
    EXPECT_EQ(entry.control_policy().latent().interval(), qint64(1296000) * 1000);
    EXPECT_EQ(job().latency(), 0u);
    clock->advance(delay - 0.5);
    EXPECT_EQ(jobsStarted, before);
    clock->advance(1);
    EXPECT_EQ(jobsStarted, before + 1);
}

TEST_F(PolicyTest, DelayedSendDiesWithItsComponent)
{
    config().setConfigure(kStart - 1296000, QStringLiteral("lastPostInterval"));
    start();
    ASSERT_TRUE(job().latencyJobPending());
    ASSERT_EQ(clock->pendingTasks(), 1);
    context.reset();
    clock->advance(LFAnalyticsJob::kMaxLatency + 256);
    EXPECT_EQ(clock->pendingTasks(), 0);
    EXPECT_EQ(jobsStarted, 0);
}

TEST(SystemClockTest, DelayedWorkDiesWithItsOwner)
{
    LFSystemClock clock;
    QObject kept;
    auto gone = std::make_unique<QObject>();
    bool goneRan = false;
    bool keptRan = false;
    clock.runAfter(0, gone.get(), [&goneRan] { goneRan = true; });
    clock.runAfter(0, &kept, [&keptRan] { keptRan = true; });
    gone.reset();
    ASSERT_TRUE(testsupport::waitUntil([&keptRan] { return keptRan; }));
    EXPECT_FALSE(goneRan);   // due first, so it would have run by now
}

TEST_F(PolicyTest, ThirtySixHoursOfSilenceSendsAtOnceWithAZeroDelayPolicy)
{
    start();
    events().event(QStringLiteral("e"), QString(), 1, 0);
    drain();
    config().setConfigure(clock->now() - 129601, QStringLiteral("lastPostInterval"));
    job().preparePerformJob(0);
    EXPECT_EQ(jobsStarted, 2);
    ASSERT_EQ(envelopes.size(), 1);
    const LFTUALogEntry entry = LFTDecode<LFTUALogEntry>(envelopes[0]);
    ASSERT_TRUE(entry.control_policyIsSet());
    EXPECT_EQ(entry.control_policy().latent().latency(), 0);
    EXPECT_FALSE(job().disguisedLatency());
}

TEST_F(PolicyTest, WaitingEnvelopeFilesOrAServerThresholdChangeTheDelayedSend)
{
    start();
    config().setConfigure(clock->now() - 1296000, QStringLiteral("lastPostInterval"));
    QDir().mkpath(internal().envelopeDirectory());
    QFile waiting(internal().envelopeDirectory() + QStringLiteral("/1700000000000_envelope.log"));
    ASSERT_TRUE(waiting.open(QIODevice::WriteOnly));
    waiting.close();
    EXPECT_FALSE(job().checkLatentCondition());
    waiting.remove();

    storeImprint(config(), {{QStringLiteral("latent_hours"), QStringLiteral("400")}});
    EXPECT_TRUE(job().checkLatentCondition());   // under 400 hours: only disguised
    EXPECT_TRUE(job().disguisedLatency());
    EXPECT_FALSE(job().latencyJobPending());
    storeImprint(config(), {{QStringLiteral("latent_hours"), QStringLiteral("48")}});
    config().setConfigure(clock->now() - 48 * 3600, QStringLiteral("lastPostInterval"));
    EXPECT_TRUE(job().checkLatentCondition());
    EXPECT_TRUE(job().latencyJobPending());
}

TEST_F(PolicyTest, LatencyRangesOverManySeededDraws)
{
    // Signature bytes 4 and 5 are 0x3c 0xd7: "3cd7", middle digits "cd" = 0xcd, OR 128.
    config().setConfigure(QByteArray::fromHex("00112233" "3cd7" "8899"), QStringLiteral("lfSignature"));
    EXPECT_EQ(job().latencySeed(), 0xcdu);

    auto draw = [this](int times) {
        QList<uint32_t> values;
        for (int i = 0; i < times; ++i)
            values.append(job().calculateLatency());
        return values;
    };
    auto rareCount = [](const QList<uint32_t> &values) {
        return std::count_if(values.begin(), values.end(), [](uint32_t v) { return v >= 128 && v <= 255; });
    };

    const QList<uint32_t> byDefault = draw(20000);
    for (uint32_t v : byDefault)
        ASSERT_TRUE(v <= 9 || (v >= 128 && v <= 0xcd)) << v;
    EXPECT_GT(rareCount(byDefault), 5);
    EXPECT_LT(rareCount(byDefault), 45);

    job().setLatency(-1);   // taken as unsigned: clamped to 1800
    const QList<uint32_t> clamped = draw(20000);
    EXPECT_EQ(*std::max_element(clamped.begin(), clamped.end()) <= 1799, true);
    EXPECT_GT(*std::max_element(clamped.begin(), clamped.end()), 1700u);
    EXPECT_GT(std::count(clamped.begin(), clamped.end(), 127u), 10);
    EXPECT_LT(rareCount(clamped), 45);

    storeImprint(config(), {{QStringLiteral("latent"), QStringLiteral("0")}});
    const QList<uint32_t> none = draw(2000);
    EXPECT_EQ(std::count(none.begin(), none.end(), 0u) + rareCount(none), none.size());
    // A server value that is not a number still replaces the limit of 1800 set here.
    storeImprint(config(), {{QStringLiteral("latent"), QStringLiteral("later")}});
    const QList<uint32_t> malformed = draw(2000);
    EXPECT_EQ(std::count(malformed.begin(), malformed.end(), 0u) + rareCount(malformed), malformed.size());

    config().removeConfigureWithKey(QStringLiteral("lfSignature"));
    EXPECT_EQ(job().latencySeed(), 0u);
}
