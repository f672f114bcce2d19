#include "LogTool.h"

#include "LFAnalytics.h"
#include "LFAnalyticsContext.h"
#include "LFAnalyticsSession.h"
#include "LFAnalyticsThrift.h"
#include "LFEnvelopeOpener.h"
#include "LFWorkDispatch.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QEventLoop>
#include <QFile>
#include <QJsonDocument>
#include <QSaveFile>
#include <QTemporaryDir>

#include <cstdio>

namespace {
const QString kAppKey = QStringLiteral("3c1f9a27b84e0d65a2f7c913");

void printError(const QString &message)
{
    std::fprintf(stderr, "quorvel-logtool: %s\n", qPrintable(message));
}

// Lets queued main-thread work of the component run until none is left.
void settle()
{
    do {
        QCoreApplication::processEvents(QEventLoop::AllEvents);
    } while (LFAnalyticsContext::shared().dispatch().pendingCount() > 0);
}

void browse(LFManualClock &clock, const QString &page, double seconds)
{
    LFAnalytics::beginLogPageView(page);
    settle();
    clock.advance(seconds);
    LFAnalytics::endLogPageView(page);
    settle();
}

void endSession(LFManualClock &clock, double after)
{
    clock.advance(after);
    LFAnalyticsSession::shared().appInactivate();
    settle();
    clock.advance(30);
}
} // namespace

int LogTool::run(const QStringList &arguments)
{
    if (arguments.size() == 3 && arguments[0] == QStringLiteral("sample") && arguments[1] == QStringLiteral("--out"))
        return sample(arguments[2]);
    if (arguments.size() == 2 && arguments[0] == QStringLiteral("decode"))
        return decode(arguments[1], false);
    if (arguments.size() == 3 && arguments[0] == QStringLiteral("decode") && arguments[1] == QStringLiteral("--response"))
        return decode(arguments[2], true);
    return usage();
}

int LogTool::usage()
{
    printError(QStringLiteral("usage: quorvel-logtool sample --out FILE | decode FILE | decode --response FILE"));
    return 2;
}

int LogTool::sample(const QString &outPath)
{
    // Settings and caches of the run stay in a scratch folder, away from the app's own.
    QTemporaryDir scratch;
    if (!scratch.isValid()) {
        printError(QStringLiteral("cannot make a scratch folder: %1").arg(scratch.errorString()));
        return 1;
    }
    auto clock = std::make_shared<LFManualClock>(double(QDateTime::currentMSecsSinceEpoch()) / 1000.0,
                                                 quint32(QDateTime::currentMSecsSinceEpoch()));
    LFAnalyticsOptions options;
    options.clock = clock;
    options.configStore = std::make_shared<UserDefaults>(scratch.filePath(QStringLiteral("LFAnalyticsConfig.ini")));
    options.cacheDirectory = scratch.filePath(QStringLiteral("caches"));
    // The sample stays in memory: nothing is sent anywhere.
    options.networkReachable = [] { return false; };
    LFAnalytics::setupWithOptions(std::move(options));

    LFAnalytics::setCrashReportEnabled(false);
    LFAnalytics::setAppVersion(QStringLiteral("1.0.0"));
    LFAnalytics::startWithAppkey(kAppKey);
    settle();

    browse(*clock, QStringLiteral("HomeViewController"), 12);
    browse(*clock, QStringLiteral("BoardViewController"), 40);
    LFAnalytics::event(QStringLiteral("open_board"));
    LFAnalytics::event(QStringLiteral("share"), QStringLiteral("weibo"));
    LFAnalytics::event(QStringLiteral("refresh"), 3);
    LFAnalytics::event(QStringLiteral("read_topic"), QVariantMap{{QStringLiteral("board"), QStringLiteral("7")},
                                                                 {QStringLiteral("source"), QStringLiteral("banner")}});
    LFAnalytics::setLatitude(31.2304, 121.4737);
    endSession(*clock, 20);

    LFAnalytics::startSession();
    settle();
    browse(*clock, QStringLiteral("TopicDetailViewController"), 95);
    LFAnalytics::logPageView(QStringLiteral("WebViewController"), 18);
    LFAnalytics::event(QStringLiteral("reply"), QStringLiteral("topic"), 1);
    LFAnalytics::eventDurations(QStringLiteral("load_topic"), 850);
    LFAnalytics::eventAttributesCounter(QStringLiteral("publish"), QVariantMap{{QStringLiteral("board"), QStringLiteral("3")}}, 2);
    endSession(*clock, 5);

    // The next session start reads both sessions back from the cache file.
    LFAnalytics::startSession();
    settle();

    const QByteArray entry = LFAnalyticsThrift::shared().toData();
    if (entry.isNull()) {
        printError(QStringLiteral("no log entry was made"));
        return 1;
    }
    QSaveFile file(outPath);
    if (!file.open(QIODevice::WriteOnly) || file.write(entry) != entry.size() || !file.commit()) {
        printError(QStringLiteral("cannot write %1: %2").arg(outPath, file.errorString()));
        return 1;
    }
    return 0;
}

int LogTool::decode(const QString &path, bool response)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        printError(QStringLiteral("cannot read %1: %2").arg(path, file.errorString()));
        return 1;
    }
    const QByteArray bytes = file.readAll();
    if (!response && LFEnvelopeOpener::decodeEnvelope(bytes))
        return decodeEnvelope(path, bytes);
    QJsonObject json;
    try {
        json = response ? LFTDecode<LFTResponse>(bytes).toJson() : LFTDecode<LFTUALogEntry>(bytes).toJson();
    } catch (const LFTException &error) {
        printError(QStringLiteral("%1 is not a valid %2: %3: %4")
                       .arg(path, response ? QStringLiteral("response") : QStringLiteral("log entry"),
                            error.name(), error.reason()));
        return 1;
    }
    std::fputs(QJsonDocument(json).toJson(QJsonDocument::Indented).constData(), stdout);
    return 0;
}

int LogTool::decodeEnvelope(const QString &path, const QByteArray &bytes)
{
    const LFEnvelopeOpener::Result opened = LFEnvelopeOpener::open(bytes);
    if (!opened.opened) {
        printError(QStringLiteral("%1 is an envelope that does not open: %2").arg(path, opened.problem));
        return 1;
    }
    QJsonObject envelope = opened.opened->envelope.toJson();
    // The entity is shown decoded below; its size is enough here.
    envelope.remove(QStringLiteral("entity"));
    envelope.insert(QStringLiteral("entity_bytes"), opened.opened->envelope.entity().size());
    const QJsonObject json{{QStringLiteral("envelope"), envelope},
                           {QStringLiteral("entry"), opened.opened->entry.toJson()}};
    std::fputs(QJsonDocument(json).toJson(QJsonDocument::Indented).constData(), stdout);
    return 0;
}
