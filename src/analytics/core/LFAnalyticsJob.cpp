#include "LFAnalyticsJob.h"

#include "LFANUtil.h"
#include "LFAnalyticsApp.h"
#include "LFAnalyticsConfig.h"
#include "LFAnalyticsContext.h"
#include "LFAnalyticsDevice.h"
#include "LFAnalyticsInternal.h"
#include "LFAnalyticsSession.h"
#include "LFAnalyticsThrift.h"
#include "LFWorkDispatch.h"

#include <QMutexLocker>

LFAnalyticsJob::LFAnalyticsJob(LFAnalyticsContext &context)
    : m_context(context)
{
    m_defconLevel = m_context.config().stringWithKey(QStringLiteral("lfDefcon")).toInt();
}

LFAnalyticsJob &LFAnalyticsJob::shared()
{
    return LFAnalyticsContext::shared().job();
}

std::optional<double> LFAnalyticsJob::sinceLastPost() const
{
    const std::optional<double> last = m_context.config().numberWithKey(QStringLiteral("lastPostInterval"));
    if (!last)
        return std::nullopt;
    return m_context.now() - *last;
}

bool LFAnalyticsJob::ready() const
{
    return m_context.session().sessionStatus() != LFAnalyticsSession::NeverStarted
           && !m_context.internal().isJobRunning();
}

bool LFAnalyticsJob::defconPass() const
{
    const std::optional<double> elapsed = sinceLastPost();
    if (!elapsed)
        return true;
    switch (defconLevel()) {
    case 1: return *elapsed >= kDefconLevel1Delay;
    case 2: return *elapsed >= kDefconLevel2Delay;
    case 3: return *elapsed >= kDefconLevel3Delay;
    default: return true;
    }
}

bool LFAnalyticsJob::shouldCommitJob(int trigger) const
{
    if (latencyJobPending() || m_context.session().appBeKilling() || !m_context.device().networkReachable())
        return false;
    const std::optional<double> elapsed = sinceLastPost();
    LFAnalyticsApp &app = m_context.app();
    switch (app.reportPolicy()) {
    case LFAnalyticsApp::kPolicyRealtime:
        return !elapsed || *elapsed > kRealtimeInterval;
    case LFAnalyticsApp::kPolicyLaunch:
        return trigger == kTriggerSessionStart;
    case LFAnalyticsApp::kPolicyInterval:
        return !elapsed || *elapsed > app.logSendInterval();
    case LFAnalyticsApp::kPolicyBackground:
        if (m_context.session().appInBackGround())
            return app.backgroundTaskEnabled();
        return !elapsed || *elapsed > (app.backgroundTaskEnabled() ? kBackgroundInterval : kForegroundInterval);
    default:
        return false;
    }
}

bool LFAnalyticsJob::checkLatentCondition()
{
    QMutexLocker lock(&m_mutex);
    m_bDisguisedLatency = false;
    if (m_context.internal().hasEnvelopeFiles() || m_defconLevel != 0)
        return false;
    const std::optional<double> elapsed = sinceLastPost();
    if (!elapsed)
        return false;
    double threshold = kLatentThreshold;
    bool ok = false;
    const double hours = m_context.thrift().imprintPropertyValueWithKey(QStringLiteral("latent_hours")).toDouble(&ok);
    if (ok && hours >= kMinLatentHours)
        threshold = hours * 3600;
    if (*elapsed >= threshold) {
        m_bLatencyJob = true;
        return true;
    }
    if (*elapsed > kDisguisedThreshold) {
        m_bDisguisedLatency = true;
        return true;
    }
    return false;
}

void LFAnalyticsJob::preparePerformJob(int trigger)
{
    if (!ready() || !defconPass() || !shouldCommitJob(trigger))
        return;
    LFAnalyticsInternal &internal = m_context.internal();
    if (!checkLatentCondition()) {
        internal.beginPerformJob();
        return;
    }
    if (latencyJobPending()) {
        const uint32_t delay = calculateLatency();
        {
            QMutexLocker lock(&m_mutex);
            m_latency = delay;
        }
        if (internal.hasDataInMemory())
            internal.generateEnvelopeFile();
        {
            QMutexLocker lock(&m_mutex);
            m_latency = 0;
        }
        // Owned by the component, so the task never runs on a component that is gone.
        m_context.clock().runAfter(delay, &m_context.dispatch(), [this] { beginPerformJobDelay(); });
        return;
    }
    {
        QMutexLocker lock(&m_mutex);
        m_latency = 0;
    }
    if (internal.hasDataInMemory())
        internal.generateEnvelopeFile();
    {
        QMutexLocker lock(&m_mutex);
        m_bDisguisedLatency = false;
    }
    internal.beginPerformJob();
}

void LFAnalyticsJob::beginPerformJobDelay()
{
    {
        QMutexLocker lock(&m_mutex);
        m_bLatencyJob = false;
    }
    if (!m_context.session().appInBackGround())
        m_context.internal().beginPerformJob();
}

uint32_t LFAnalyticsJob::calculateLatency() const
{
    LFAnalyticsClock &clock = m_context.clock();
    if (clock.randomNumFrom(1, 1000) == 1)
        return clock.randomNumFrom(128, latencySeed());
    uint32_t bound;
    // A server value that is there counts, even one that is not a number (it reads as 0).
    const std::optional<double> serverLatent = LFANUtil::presentNumber(
        m_context.thrift().imprintPropertyValueWithKey(QStringLiteral("latent")));
    if (serverLatent) {
        bound = std::min(LFANUtil::toUnsigned32(*serverLatent), kMaxLatency);
    } else {
        QMutexLocker lock(&m_mutex);
        bound = m_latencyLimit.value_or(kDefaultLatencyLimit);
    }
    if (bound == 0)
        return 0;
    const uint32_t delay = clock.randomNumFrom(0, bound - 1);
    // 128..255 is left to the rare draw above.
    return delay >= 128 && delay <= 255 ? 127 : delay;
}

uint32_t LFAnalyticsJob::latencySeed() const
{
    const QByteArray signature = m_context.config().configureWithKey(QStringLiteral("lfSignature")).toByteArray();
    if (signature.size() < 6)
        return 0;
    const QString digits = QString::asprintf("%02hhx%02hhx", uint8_t(signature.at(4)), uint8_t(signature.at(5)));
    return digits.mid(1, 2).toUInt(nullptr, 16) | 128;
}

void LFAnalyticsJob::setLatency(int seconds)
{
    QMutexLocker lock(&m_mutex);
    m_latencyLimit = uint32_t(seconds) > kMaxLatency ? kMaxLatency : uint32_t(seconds);
}

int LFAnalyticsJob::defconLevel() const
{
    QMutexLocker lock(&m_mutex);
    return m_defconLevel;
}

void LFAnalyticsJob::setDefconLevel(int level)
{
    QMutexLocker lock(&m_mutex);
    m_defconLevel = level;
}

uint32_t LFAnalyticsJob::latency() const
{
    QMutexLocker lock(&m_mutex);
    return m_latency;
}

bool LFAnalyticsJob::latencyJobPending() const
{
    QMutexLocker lock(&m_mutex);
    return m_bLatencyJob;
}

bool LFAnalyticsJob::disguisedLatency() const
{
    QMutexLocker lock(&m_mutex);
    return m_bDisguisedLatency;
}
