// Envelope files are written whole or not at all: a child writing envelopes as fast as it can
// is killed with SIGKILL at 200 moments, and every envelope file it left opens.

#include "ChildRun.h"
#include "LFAnalyticsUtility.h"
#include "LFEnvelopeOpener.h"

#include <gtest/gtest.h>

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QThread>

namespace {
constexpr int kKills = 200;
constexpr int kMaxDelayUs = 20000;

bool announcedWriting(const QString &outputPath)
{
    QDeadlineTimer deadline(20000);
    while (!deadline.hasExpired()) {
        QFile output(outputPath);
        if (output.open(QIODevice::ReadOnly) && output.readAll().startsWith("writing"))
            return true;
        QThread::usleep(500);
    }
    return false;
}
} // namespace

TEST(KillDuringWriteTest, EveryEnvelopeFileLeftBehindIsWhole)
{
    QTemporaryDir folder;
    const QString envelopes = QDir(folder.path()).filePath(QStringLiteral("caches/.lefiseix"));
    QRandomGenerator random(2026);
    int filesChecked = 0;
    for (int kill = 0; kill < kKills; ++kill) {
        const QString output = folder.filePath(QStringLiteral("child.out"));
        const pid_t pid = childrun::start({QStringLiteral("envelopes"), folder.path()}, output);
        ASSERT_GT(pid, 0);
        ASSERT_TRUE(announcedWriting(output)) << "round " << kill;
        QThread::usleep(random.bounded(kMaxDelayUs));
        ::kill(pid, SIGKILL);
        EXPECT_EQ(childrun::wait(pid).signal, SIGKILL);

        for (const QString &path : LFAnalyticsUtility::envelopeFiles(envelopes)) {
            QFile file(path);
            ASSERT_TRUE(file.open(QIODevice::ReadOnly));
            const std::optional<LFEnvelope> envelope = LFEnvelopeOpener::decodeEnvelope(file.readAll());
            ASSERT_TRUE(envelope) << "round " << kill << ": " << path.toStdString();
            EXPECT_FALSE(LFAnalyticsUtility::inflateData(envelope->entity(), envelope->length()).isNull());
            QFile::remove(path);
            ++filesChecked;
        }
        LFAnalyticsUtility::removeUnfinishedFiles(envelopes);
        EXPECT_TRUE(QDir(envelopes).entryList(QDir::Files).isEmpty());
    }
    EXPECT_GE(filesChecked, kKills);
}
