// Crash capture in child processes: each fatal signal, an uncaught exception and twenty
// threads crashing at once leave exactly one error record, which the next start (this test
// process, on the child's settings and caches) finds; the child dies as it would have.

#include "AnalyticsFixture.h"
#include "ChildRun.h"
#include "LFBinaryImage.h"
#include "LefiseixUncaughtExceptionHandler.h"

#include <csignal>
#include <exception>

namespace {
struct CrashCase
{
    const char *how;
    int signal;          // the signal the child dies by
    const char *reason;  // the record's first line
};

const CrashCase kCrashCases[] = {
    {"SIGSEGV", SIGSEGV, "Application received signal SIGSEGV"},
    {"SIGBUS", SIGBUS, "Application received signal SIGBUS"},
    {"SIGFPE", SIGFPE, "Application received signal SIGFPE"},
    {"SIGILL", SIGILL, "Application received signal SIGILL"},
    {"SIGABRT", SIGABRT, "Application received signal SIGABRT"},
    {"throw", SIGABRT, "banner list went away"},
    {"threads", SIGSEGV, "Application received signal SIGSEGV"},
};

std::string caseName(const ::testing::TestParamInfo<CrashCase> &info)
{
    return info.param.how;
}
} // namespace

class CrashTest : public AnalyticsFixture, public ::testing::WithParamInterface<CrashCase>
{
};

TEST_P(CrashTest, LeavesOneRecordForTheNextStartAndTheChildDiesAsItWould)
{
    const CrashCase &crash = GetParam();
    const childrun::Ending ending = childrun::run({QStringLiteral("crash"), QString::fromLatin1(crash.how), folder.path()});
    EXPECT_FALSE(ending.exited) << "exit code " << ending.exitCode;
    EXPECT_EQ(ending.signal, crash.signal);

    start();
    const QList<LFANError> errors = internal().containers().errors;
    ASSERT_EQ(errors.size(), 1);
    const QString text = errors.constFirst().context;
    const QStringList lines = text.split(QLatin1Char('\n'));
    ASSERT_GE(lines.size(), 4) << text.toStdString();
    EXPECT_EQ(lines.at(0), QString::fromLatin1(crash.reason));
    EXPECT_EQ(lines.at(1), QStringLiteral("(null)"));
    EXPECT_EQ(lines.at(2), QStringLiteral("(("));
    EXPECT_TRUE(lines.at(3).startsWith(QLatin1Char('\t'))) << text.toStdString();
    // The image lines name the child's own executable.
    EXPECT_TRUE(text.contains(QStringLiteral("\n)\n\ndSYM UUID: "))) << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("\nCPU Type: x86_64\n"))) << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("\nBinary Image: analytics_test_child\n"))) << text.toStdString();
    EXPECT_EQ(errors.constFirst().source, LFAnalyticsInternal::kCrashErrorSource);
    EXPECT_EQ(config().stringWithKey(QStringLiteral("LFAppVersion")), QStringLiteral("1.0.0"));

    // Recorded once: a further start finds nothing new.
    makeContext();
    start();
    EXPECT_EQ(internal().containers().errors.size(), 1);
}

INSTANTIATE_TEST_SUITE_P(EachWay, CrashTest, ::testing::ValuesIn(kCrashCases), caseName);

using CrashHandlerTest = AnalyticsFixture;

TEST_F(CrashHandlerTest, InstallsOnceAndTurningOffForgetsTheInstallationButKeepsTheHandlers)
{
    // Handlers are the process's: an earlier test in this process may have installed them.
    start();
    ASSERT_TRUE(app().appCrashedHandlerInstalled());
    struct sigaction installed = {};
    sigaction(SIGSEGV, nullptr, &installed);
    EXPECT_TRUE(installed.sa_flags & SA_SIGINFO);
    EXPECT_TRUE(installed.sa_flags & SA_ONSTACK);
    const std::terminate_handler ours = std::get_terminate();

    // Installing again changes nothing; turning off stops observing and leaves the handlers.
    app().setCrashReportEnabled(true);
    ASSERT_TRUE(LefiseixUncaughtExceptionHandler::install(internal().signalRecordPath(), QString(), {}));
    app().setCrashReportEnabled(false);
    EXPECT_FALSE(app().appCrashedHandlerInstalled());
    EXPECT_TRUE(LefiseixUncaughtExceptionHandler::installed());
    struct sigaction after = {};
    sigaction(SIGSEGV, nullptr, &after);
    EXPECT_EQ(after.sa_sigaction, installed.sa_sigaction);
    EXPECT_EQ(std::get_terminate(), ours);

    app().setCrashReportEnabled(true);
    EXPECT_TRUE(app().appCrashedHandlerInstalled());
}

TEST_F(CrashHandlerTest, ACrashWithReportingTurnedOffLeavesNoRecord)
{
    const childrun::Ending ending = childrun::run({QStringLiteral("crash"), QStringLiteral("off-SIGSEGV"), folder.path()});
    EXPECT_FALSE(ending.exited) << "exit code " << ending.exitCode;
    EXPECT_EQ(ending.signal, SIGSEGV);
    start();
    EXPECT_TRUE(internal().containers().errors.isEmpty());
}

TEST_F(CrashHandlerTest, ARecordWithoutImageFactsIsStillStored)
{
    internal().setErrorSupportInfo({});
    internal().error(QStringLiteral("reason\n(null)\n((\n)"));
    const QList<LFANError> errors = internal().containers().errors;
    ASSERT_EQ(errors.size(), 1);
    EXPECT_EQ(errors.constFirst().context, QStringLiteral("reason\n(null)\n((\n)"));
}

TEST_F(CrashHandlerTest, ErrorsAreRecordedAtOnceOutsideTheEventLimit)
{
    start();
    config().setConfigure(LFAnalyticsInternal::kMaxEventsPerPeriod, QStringLiteral("lfPeriodEvtCount"));
    internal().setErrorSupportInfo({{QStringLiteral("binary_uuid"), QStringLiteral("U")},
                                    {QStringLiteral("cpu_arch"), QStringLiteral("x86_64")},
                                    {QStringLiteral("slide_address"), QStringLiteral("0x0000000000001000")},
                                    {QStringLiteral("image_name"), QStringLiteral("quorvel")},
                                    {QStringLiteral("image_base_address"), QStringLiteral("0x0000000000002000")}});
    internal().error(QStringLiteral("boom"));
    const QList<LFANError> errors = internal().containers().errors;
    ASSERT_EQ(errors.size(), 1);
    EXPECT_EQ(errors.constFirst().session_id, internal().sessionId());
    EXPECT_EQ(errors.constFirst().context,
              QStringLiteral("boom\n\ndSYM UUID: U\nCPU Type: x86_64\nSlide Address: 0x0000000000001000\n"
                             "Binary Image: quorvel\nBase Address: 0x0000000000002000\n"));
}

TEST(BinaryImageTest, ArchitecturesAndBuildIdText)
{
    EXPECT_EQ(LFBinaryImage::cpuArchitecture(62, true), QStringLiteral("x86_64"));
    EXPECT_EQ(LFBinaryImage::cpuArchitecture(183, true), QStringLiteral("arm64"));
    EXPECT_EQ(LFBinaryImage::cpuArchitecture(3, false), QStringLiteral("i386"));
    EXPECT_EQ(LFBinaryImage::cpuArchitecture(9999, true), QStringLiteral("???"));
    EXPECT_EQ(LFBinaryImage::uuidText(QByteArray::fromHex("00112233445566778899aabbccddeeff01020304")),
              QStringLiteral("00112233-4455-6677-8899-AABBCCDDEEFF"));
    const QVariantMap image = LFBinaryImage::mainImageInfo([](const QString &) {});
    EXPECT_EQ(image.value(QStringLiteral("image_name")).toString(), QStringLiteral("analytics_tests"));
    EXPECT_EQ(image.value(QStringLiteral("binary_uuid")).toString().size(), 36);
}
