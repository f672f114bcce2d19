// The app's use of the component against quorvel-server's collector: a child started as the
// app starts the facade (key, policy 1) reports "advertisingClick" and quits. Each launch
// sends at its start what memory and the cache hold: the tap made before the session start was
// worked goes out with it, and the session that the first launch ended goes out at the second.
// Also the upload worker against the collector: flush waits for every file, and the
// collector's imprint takes effect.

#include "ChildComponent.h"
#include "ChildRun.h"
#include "CollectorProcess.h"
#include "LFAnalyticsApp.h"
#include "LFAnalyticsConfig.h"
#include "LFAnalyticsContext.h"
#include "LFAnalyticsEnvelope.h"
#include "LFAnalyticsInternal.h"
#include "LFAnalyticsSender.h"
#include "LFAnalyticsThrift.h"
#include "LFAnalyticsUtility.h"
#include "ProgramRun.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>

TEST(EndToEndTest, TheAppsSessionAndBannerTapReachTheReport)
{
    CollectorProcess server;
    ASSERT_FALSE(server.analyticsRoot().isEmpty()) << server.log().toStdString();
    QTemporaryDir home;
    std::map<QString, QString> environment{{QStringLiteral("QUORVEL_ANALYTICS_URL"), server.analyticsRoot()},
                                           {QStringLiteral("QUORVEL_ANALYTICS_FALLBACK_URL"), server.analyticsRoot()}};
    for (const char *name : {"XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME"}) {
        const QString path = home.filePath(QString::fromLatin1(name));
        QDir().mkpath(path);
        environment.emplace(QString::fromLatin1(name), path);
    }
    for (int launch = 0; launch < 2; ++launch) {
        const testsupport::ProgramResult run = testsupport::runProgram(childrun::kChildBinary, {QStringLiteral("app")}, environment);
        ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    }
    const testsupport::ProgramResult report = testsupport::runProgram(
        QStringLiteral(QUORVEL_SERVER_BINARY), {QStringLiteral("analytics-report"), QStringLiteral("--db"), server.databasePath()});
    ASSERT_EQ(report.exitCode, 0) << report.errors.toStdString();
    EXPECT_TRUE(report.out.contains(QStringLiteral("Events\n  advertisingClick: 2\n"))) << report.out.toStdString();
    const QRegularExpression session(QStringLiteral("\nSessions\n  [0-9a-f]{32} from \\S+ for \\d+\\.\\d{3} s\n"));
    EXPECT_TRUE(session.match(report.out).hasMatch()) << report.out.toStdString();
    // Two launches, two envelopes, none refused.
    EXPECT_EQ(server.log().count("POST /app_logs 200"), 2) << server.log().toStdString();
}

TEST(UploadWorkerTest, FlushWaitsUntilTheCollectorHasEveryFile)
{
    CollectorProcess server({QStringLiteral("--imprint-codex"), QStringLiteral("1"),
                             QStringLiteral("--imprint-report-interval"), QStringLiteral("600")});
    ASSERT_FALSE(server.analyticsRoot().isEmpty()) << server.log().toStdString();
    QTemporaryDir folder;
    LFAnalyticsOptions options = ChildComponent::options(folder.path());
    options.primaryLogHost = server.analyticsRoot();
    options.fallbackLogHost = server.analyticsRoot();
    LFAnalyticsContext context(std::move(options));
    context.app().setAppid(QStringLiteral("3c1f9a27b84e0d65a2f7c913"));
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(context.envelope().writeEnvelopeFile(context.thrift().toData()));

    context.sender().beginPerformJob();
    ASSERT_TRUE(context.sender().sendLogQueue().flush(30000));
    EXPECT_FALSE(context.internal().isJobRunning());
    EXPECT_TRUE(LFAnalyticsUtility::envelopeFiles(context.internal().envelopeDirectory()).isEmpty());
    EXPECT_EQ(context.config().numberWithKey(QStringLiteral("lfSuccessfulRequests")), 3);
    // The collector's imprint now asks for encryption and a ten-minute interval.
    EXPECT_EQ(context.thrift().imprintPropertyValueWithKey(QStringLiteral("codex")), QStringLiteral("1"));
    EXPECT_TRUE(context.envelope().shouldEncrypt());
    EXPECT_EQ(context.app().logSendInterval(), 600);
}
