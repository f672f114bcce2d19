#include "LFAnalyticsSender.h"

#include "LFAnalyticsConfig.h"
#include "LFAnalyticsContext.h"
#include "LFAnalyticsInternal.h"
#include "LFAnalyticsUtility.h"

#include <QFileInfo>

LFAnalyticsSender::LFAnalyticsSender(LFAnalyticsContext &context)
    : m_context(context)
    , m_worker(context)
{
}

QStringList LFAnalyticsSender::validateEnvelopeFiles(const QStringList &paths) const
{
    const double now = m_context.now();
    QStringList kept;
    for (const QString &path : paths) {
        const QFileInfo info(path);
        const double created = info.fileName().section(QLatin1Char('_'), 0, 0).toDouble() / 1000;
        const bool sendable = info.exists() && info.size() < kMaxFileSize && info.size() > kMinFileSize
                              && now - created < kMaxFileAge;
        if (sendable)
            kept.append(path);
        else
            LFAnalyticsUtility::removeFile(path);
    }
    return kept;
}

QStringList LFAnalyticsSender::listValidFiles() const
{
    const QString folder = m_context.internal().envelopeDirectory();
    LFAnalyticsUtility::removeUnfinishedFiles(folder);
    return validateEnvelopeFiles(LFAnalyticsUtility::envelopeFiles(folder));
}

void LFAnalyticsSender::beginPerformJob()
{
    LFAnalyticsInternal &internal = m_context.internal();
    QStringList files = listValidFiles();
    if (files.isEmpty()) {
        const bool neverActivated = !m_context.config().configureWithKey(QStringLiteral("lfActivateMsg")).isValid();
        if (internal.hasDataInMemory() || neverActivated) {
            internal.generateEnvelopeFile();
            files = listValidFiles();
        }
    }
    if (files.isEmpty())
        return;
    while (files.size() > kMaxFiles)
        LFAnalyticsUtility::removeFile(files.takeFirst());
    m_context.log(QStringLiteral("prepare to post log data"));
    internal.setJobRunning(true);
    // After quitting began the files wait for the next launch.
    if (!m_worker.submit(files))
        internal.setJobRunning(false);
}

bool LFAnalyticsSender::shutdown(int timeoutMs)
{
    return m_worker.shutdown(timeoutMs);
}
