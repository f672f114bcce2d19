#include "LFAnalyticsContext.h"

#include "LFAnalyticsApp.h"
#include "LFAnalyticsConfig.h"
#include "LFAnalyticsDevice.h"
#include "LFAnalyticsEnvelope.h"
#include "LFAnalyticsEvent.h"
#include "LFAnalyticsInternal.h"
#include "LFAnalyticsJob.h"
#include "LFAnalyticsLocation.h"
#include "LFAnalyticsSender.h"
#include "LFAnalyticsSession.h"
#include "LFAnalyticsThrift.h"
#include "LFWorkDispatch.h"

#include <QCoreApplication>
#include <QMutex>
#include <QMutexLocker>
#include <QStandardPaths>

#include <cstdio>

namespace {
QMutex sharedMutex;
LFAnalyticsContext *sharedContext = nullptr;
LFAnalyticsOptions sharedOptions;

QString defaultBundleIdentifier()
{
    const QString domain = QCoreApplication::organizationDomain();
    const QString name = QCoreApplication::applicationName();
    return domain.isEmpty() ? name : domain + QLatin1Char('.') + name;
}

LFAnalyticsOptions withDefaults(LFAnalyticsOptions options)
{
    if (!options.clock)
        options.clock = std::make_shared<LFSystemClock>();
    if (!options.configStore)
        options.configStore = LFAnalyticsConfig::defaultStore();
    if (options.cacheDirectory.isEmpty())
        options.cacheDirectory = QStandardPaths::writableLocation(QStandardPaths::CacheLocation);
    if (options.bundleIdentifier.isEmpty())
        options.bundleIdentifier = defaultBundleIdentifier();
    if (options.primaryLogHost.isEmpty())
        options.primaryLogHost = qEnvironmentVariable("QUORVEL_ANALYTICS_URL", LFAnalyticsContext::kDefaultLogHost);
    if (options.fallbackLogHost.isEmpty())
        options.fallbackLogHost = qEnvironmentVariable("QUORVEL_ANALYTICS_FALLBACK_URL", LFAnalyticsContext::kDefaultLogHost);
    return options;
}
} // namespace

LFAnalyticsContext::LFAnalyticsContext(LFAnalyticsOptions options)
    : m_options(withDefaults(std::move(options)))
{
    // Order matters: each companion may read those made before it.
    m_config = std::make_unique<LFAnalyticsConfig>(m_options.configStore);
    m_thrift = std::make_unique<LFAnalyticsThrift>(*this);
    m_app = std::make_unique<LFAnalyticsApp>(*this);
    m_device = std::make_unique<LFAnalyticsDevice>(*this);
    m_location = std::make_unique<LFAnalyticsLocation>(*this);
    m_dispatch = std::make_unique<LFWorkDispatch>(*this);
    m_session = std::make_unique<LFAnalyticsSession>(*this);
    m_internal = std::make_unique<LFAnalyticsInternal>(*this);
    m_event = std::make_unique<LFAnalyticsEvent>(*this);
    m_job = std::make_unique<LFAnalyticsJob>(*this);
    m_envelope = std::make_unique<LFAnalyticsEnvelope>(*this);
    m_sender = std::make_unique<LFAnalyticsSender>(*this);
    m_primaryLogHost = m_options.primaryLogHost;
    m_fallbackLogHost = m_options.fallbackLogHost;
    if (!m_options.envelopeWriter)
        m_options.envelopeWriter = [this](const QByteArray &entry) { return m_envelope->writeEnvelopeFile(entry); };
    if (!m_options.performJob)
        m_options.performJob = [this] { m_sender->beginPerformJob(); };
    m_app->updateLogSendInterval();
}

LFAnalyticsContext::~LFAnalyticsContext()
{
    m_app->forgetCrashHandlers();
    // No post may outlive the companions it reads.
    m_sender.reset();
    // Drop queued work before the companions it would touch are gone.
    m_dispatch.reset();
}

std::pair<QString, QString> LFAnalyticsContext::logHosts() const
{
    QMutexLocker lock(&m_hostsMutex);
    return {m_primaryLogHost, m_fallbackLogHost};
}

void LFAnalyticsContext::setLogHosts(const QString &primary, const QString &fallback)
{
    QMutexLocker lock(&m_hostsMutex);
    if (!primary.isEmpty())
        m_primaryLogHost = primary;
    if (!fallback.isEmpty())
        m_fallbackLogHost = fallback;
}

bool LFAnalyticsContext::shutdownUploads(int timeoutMs)
{
    return m_sender->shutdown(timeoutMs);
}

LFAnalyticsContext &LFAnalyticsContext::shared()
{
    QMutexLocker lock(&sharedMutex);
    // Lives as long as the process: the app may call in until its very end.
    if (!sharedContext)
        sharedContext = new LFAnalyticsContext(sharedOptions);
    return *sharedContext;
}

bool LFAnalyticsContext::setSharedOptions(LFAnalyticsOptions options)
{
    QMutexLocker lock(&sharedMutex);
    if (sharedContext)
        return false;
    sharedOptions = std::move(options);
    return true;
}

void LFAnalyticsContext::log(const QString &message) const
{
    if (m_app && m_app->logEnabled())
        logAlways(QStringLiteral("LFLOG: ") + message);
}

void LFAnalyticsContext::logAlways(const QString &message) const
{
    qInfo().noquote() << message;
}
