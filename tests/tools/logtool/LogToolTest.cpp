// quorvel-logtool run as a program: a sample run decodes to what its script recorded, and bad
// input ends in a message and a failure code, never a crash.

#include "LFAnalyticsApp.h"
#include "LFAnalyticsContext.h"
#include "LFAnalyticsEnvelope.h"
#include "LFEnvelope.h"
#include "LFTRecords.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

namespace {
struct ToolRun
{
    int exitCode = -1;
    QProcess::ExitStatus status = QProcess::CrashExit;
    QByteArray out;
    QByteArray err;
};

ToolRun logtool(const QStringList &arguments)
{
    QProcess process;
    process.start(QStringLiteral(QUORVEL_LOGTOOL_BINARY), arguments);
    ToolRun run;
    if (!process.waitForFinished(60000))
        return run;
    run.exitCode = process.exitCode();
    run.status = process.exitStatus();
    run.out = process.readAllStandardOutput();
    run.err = process.readAllStandardError();
    return run;
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}
} // namespace

TEST(LogTool, SampleRunDecodesToTwoSessionsWithPagesAndEvents)
{
    QTemporaryDir folder;
    const QString entryPath = folder.filePath(QStringLiteral("entry.bin"));
    const ToolRun sample = logtool({QStringLiteral("sample"), QStringLiteral("--out"), entryPath});
    ASSERT_EQ(sample.exitCode, 0) << sample.err.constData();

    const ToolRun decoded = logtool({QStringLiteral("decode"), entryPath});
    ASSERT_EQ(decoded.exitCode, 0) << decoded.err.constData();
    const QJsonObject entry = QJsonDocument::fromJson(decoded.out).object();
    EXPECT_EQ(entry[QStringLiteral("app_info")][QStringLiteral("key")].toString(),
              QStringLiteral("3c1f9a27b84e0d65a2f7c913"));
    const QJsonArray sessions = entry[QStringLiteral("sessions")].toArray();
    ASSERT_EQ(sessions.size(), 2);
    EXPECT_EQ(sessions[0][QStringLiteral("pages")].toArray().size(), 2);
    EXPECT_EQ(sessions[0][QStringLiteral("locations")].toArray().size(), 1);
    EXPECT_EQ(sessions[1][QStringLiteral("pages")].toArray().size(), 2);
    EXPECT_FALSE(sessions[1].toObject().contains(QStringLiteral("locations")));
    EXPECT_EQ(sessions[0][QStringLiteral("duration")].toInteger(), 72000);
    const QJsonArray messages = entry[QStringLiteral("instant_msgs")].toArray();
    ASSERT_EQ(messages.size(), 2);
    EXPECT_EQ(messages[0][QStringLiteral("events")].toArray().size(), 4);
    EXPECT_EQ(messages[1][QStringLiteral("events")].toArray().size(), 3);
    EXPECT_EQ(messages[0][QStringLiteral("id")], sessions[0][QStringLiteral("id")]);
}

TEST(LogTool, DecodesEncryptedEnvelopeFilesWithTheSignatureTheyCarry)
{
    QTemporaryDir folder;
    const QString entryPath = folder.filePath(QStringLiteral("entry.bin"));
    ASSERT_EQ(logtool({QStringLiteral("sample"), QStringLiteral("--out"), entryPath}).exitCode, 0);
    QFile entryFile(entryPath);
    ASSERT_TRUE(entryFile.open(QIODevice::ReadOnly));
    const QByteArray entry = entryFile.readAll();

    LFAnalyticsOptions options;
    options.configStore = std::make_shared<UserDefaults>(folder.filePath(QStringLiteral("config.ini")));
    options.cacheDirectory = folder.filePath(QStringLiteral("caches"));
    LFAnalyticsContext context(std::move(options));
    context.app().setAppid(QStringLiteral("3c1f9a27b84e0d65a2f7c913"));
    context.app().setEncryptEnabled(true);
    const QByteArray envelope = context.envelope().makeEnvelopeData(entry);
    ASSERT_EQ(LFTDecode<LFEnvelope>(envelope).codex(), 1);
    const QString path = folder.filePath(QStringLiteral("1700000000000_envelope.log"));
    writeFile(path, envelope);

    const ToolRun run = logtool({QStringLiteral("decode"), path});
    ASSERT_EQ(run.exitCode, 0) << run.err.constData();
    const QJsonObject json = QJsonDocument::fromJson(run.out).object();
    EXPECT_EQ(json[QStringLiteral("envelope")][QStringLiteral("codex")].toInt(), 1);
    EXPECT_EQ(json[QStringLiteral("envelope")][QStringLiteral("length")].toInt(), entry.size());
    EXPECT_EQ(json[QStringLiteral("entry")][QStringLiteral("sessions")].toArray().size(), 2);

    // A damaged envelope says so and fails.
    QByteArray damaged = envelope;
    damaged[damaged.size() - 40] = char(damaged.at(damaged.size() - 40) ^ 0x5a);
    writeFile(path, damaged);
    const ToolRun bad = logtool({QStringLiteral("decode"), path});
    EXPECT_EQ(bad.exitCode, 1);
    EXPECT_EQ(bad.status, QProcess::NormalExit);
    EXPECT_FALSE(bad.err.isEmpty());
}

TEST(LogTool, DecodesResponses)
{
    QTemporaryDir folder;
    LFTResponse response;
    response.setResp_code(2);
    response.setMsg(QStringLiteral("busy"));
    const QString path = folder.filePath(QStringLiteral("response.bin"));
    writeFile(path, LFTEncode(response));
    const ToolRun run = logtool({QStringLiteral("decode"), QStringLiteral("--response"), path});
    ASSERT_EQ(run.exitCode, 0);
    const QJsonObject json = QJsonDocument::fromJson(run.out).object();
    EXPECT_EQ(json[QStringLiteral("resp_code")].toInt(), 2);
    EXPECT_EQ(json[QStringLiteral("msg")].toString(), QStringLiteral("busy"));
}

TEST(LogTool, BadInputGivesAMessageAndAFailureCode)
{
    QTemporaryDir folder;
    const QString garbage = folder.filePath(QStringLiteral("garbage.bin"));
    writeFile(garbage, QByteArray::fromHex("0c00010800017fffffff0b0002ffffffff"));

    for (const QStringList &arguments : {QStringList{QStringLiteral("decode"), garbage},
                                         QStringList{QStringLiteral("decode"), QStringLiteral("--response"), garbage},
                                         QStringList{QStringLiteral("decode"), folder.filePath(QStringLiteral("missing"))},
                                         QStringList{QStringLiteral("sample")},
                                         QStringList{}}) {
        const ToolRun run = logtool(arguments);
        EXPECT_EQ(run.status, QProcess::NormalExit) << arguments.join(QLatin1Char(' ')).toStdString();
        EXPECT_NE(run.exitCode, 0);
        EXPECT_TRUE(run.err.startsWith("quorvel-logtool: ")) << run.err.constData();
        EXPECT_TRUE(run.out.isEmpty());
    }
    const ToolRun run = logtool({QStringLiteral("decode"), garbage});
    EXPECT_TRUE(run.err.contains("is not a valid log entry")) << run.err.constData();
}
