// The crash side of LFAnalyticsInternal: error records and the crash handlers' observer.

#include "LFAnalyticsInternal.h"

#include "LFAnalyticsApp.h"
#include "LFAnalyticsConfig.h"
#include "LFAnalyticsContext.h"
#include "LFAnalyticsSession.h"
#include "LFBinaryImage.h"
#include "LefiseixUncaughtExceptionHandler.h"

#include <QDateTime>
#include <QDir>
#include <QMutexLocker>

namespace {
const QStringList &kImageKeys = LefiseixUncaughtExceptionHandler::kImageKeys;

// "%@\n%@\n(%@": reason, the absent addresses entry, then the stack text, which opens with its
// own "(", so the record shows "((" before the first frame.
QString crashText(const LFCrashReport &report)
{
    QString stack = QStringLiteral("(");
    for (const QString &line : report.callStackSymbols)
        stack += QStringLiteral("\n\t") + line;
    stack += QStringLiteral("\n)");
    return report.reason + QStringLiteral("\n(null)\n(") + stack;
}
} // namespace

void LFAnalyticsInternal::setErrorSupportInfo(const QVariantMap &info)
{
    QMutexLocker lock(&m_mutex);
    m_errorSupportInfo = info;
}

void LFAnalyticsInternal::error(const QString &crashText, const QVariantMap &imageInfo)
{
    QMutexLocker lock(&m_mutex);
    const QVariantMap &image = imageInfo.isEmpty() ? m_errorSupportInfo : imageInfo;
    QString text = crashText;
    const bool complete = std::all_of(kImageKeys.cbegin(), kImageKeys.cend(),
                                      [&image](const QString &key) { return image.contains(key); });
    if (complete) {
        text = QStringLiteral("%1\n\ndSYM UUID: %2\nCPU Type: %3\nSlide Address: %4\nBinary Image: %5\nBase Address: %6\n")
                   .arg(crashText, image.value(kImageKeys[0]).toString(), image.value(kImageKeys[1]).toString(),
                        image.value(kImageKeys[2]).toString(), image.value(kImageKeys[3]).toString(),
                        image.value(kImageKeys[4]).toString());
    } else {
        m_context.log(QStringLiteral("Read binary image info failed!"));
    }
    LFANError record;
    const double now = m_context.now();
    const QDateTime local = QDateTime::fromMSecsSinceEpoch(qint64(now * 1000));
    record.type = QStringLiteral("error");
    record.ts = now;
    record.date = local.toString(QStringLiteral("yyyy-MM-dd"));
    record.time = local.toString(QStringLiteral("HH:mm:ss"));
    record.context = text;
    record.source = kCrashErrorSource;
    record.session_id = m_sessionId;
    m_memory.errors.append(record);
    m_context.log(QStringLiteral("error:%1").arg(text));
}

void LFAnalyticsInternal::saveCrashInfo(const LFCrashReport &report)
{
    m_context.config().setConfigure(report.appVersion.isEmpty() ? m_context.app().appVersion() : report.appVersion,
                                    QStringLiteral("LFAppVersion"));
    error(crashText(report));
    LFAnalyticsSession &session = m_context.session();
    session.setAppCrashed(true);
    session.appInactivate();
}

QString LFAnalyticsInternal::signalRecordPath() const
{
    return m_context.options().cacheDirectory + QStringLiteral("/.lefiseixSignal.log");
}

void LFAnalyticsInternal::installUncaughtExceptionHandler()
{
    setErrorSupportInfo(LFBinaryImage::mainImageInfo([this](const QString &line) { m_context.log(line); }));
    // A signal at an earlier launch is recorded now, and kept in the cache file at once.
    if (const std::optional<LFCrashReport> earlier = LefiseixUncaughtExceptionHandler::takeSignalRecord(signalRecordPath())) {
        m_context.config().setConfigure(earlier->appVersion, QStringLiteral("LFAppVersion"));
        error(crashText(*earlier), earlier->imageInfo);
        saveAndCleanCache();
    }
    QDir().mkpath(m_context.options().cacheDirectory);
    QVariantMap image;
    {
        QMutexLocker lock(&m_mutex);
        image = m_errorSupportInfo;
    }
    if (!LefiseixUncaughtExceptionHandler::install(signalRecordPath(), m_context.app().appVersion(), image)) {
        m_context.log(QStringLiteral("crash handlers not installed: %1 cannot be opened").arg(signalRecordPath()));
        return;
    }
    LefiseixUncaughtExceptionHandler::setObserver([this](const LFCrashReport &report) { saveCrashInfo(report); });
}

void LFAnalyticsInternal::removeUncaughtExceptionHandler()
{
    // Forgets the installation: the process-wide handlers stay, with no one to record.
    LefiseixUncaughtExceptionHandler::setObserver({});
}
