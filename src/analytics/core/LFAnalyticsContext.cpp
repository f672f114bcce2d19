#include "LFAnalyticsContext.h"

#include "LFAnalyticsApp.h"
#include "LFAnalyticsConfig.h"
#include "LFAnalyticsDevice.h"
#include "LFAnalyticsEvent.h"
#include "LFAnalyticsInternal.h"
#include "LFAnalyticsJob.h"
#include "LFAnalyticsLocation.h"
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
    m_app->updateLogSendInterval();
}

LFAnalyticsContext::~LFAnalyticsContext()
{
    // Drop queued work before the companions it would touch are gone.
    m_dispatch.reset();
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
