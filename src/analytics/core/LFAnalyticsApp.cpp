#include "LFAnalyticsApp.h"

#include "LFANUtil.h"
#include "LFAnalyticsConfig.h"
#include "LFAnalyticsContext.h"
#include "LFAnalyticsInternal.h"
#include "LFAnalyticsSession.h"
#include "LFAnalyticsThrift.h"
#include "LFWorkDispatch.h"

#include <QCoreApplication>
#include <QMutexLocker>

#include <optional>

namespace {
// Settings are taken from the first source that has them: a value that is there but not a
// number reads as 0 and is left to the range checks after it.
std::optional<double> storedValue(const LFAnalyticsContext &context, const QString &key)
{
    return LFANUtil::presentNumber(context.config().configureWithKey(key));
}

std::optional<double> serverValue(const LFAnalyticsContext &context, const QString &key)
{
    return LFANUtil::presentNumber(context.thrift().imprintPropertyValueWithKey(key));
}
} // namespace

LFAnalyticsApp::LFAnalyticsApp(LFAnalyticsContext &context)
    : m_context(context)
{
    m_appVersion = context.options().appVersion;
    if (m_appVersion.isEmpty())
        m_appVersion = QCoreApplication::applicationVersion();
    const QVariant stored = context.config().configureWithKey(QStringLiteral("appkey"));
    if (stored.typeId() == QMetaType::QString && !stored.toString().isEmpty())
        m_appid = stored.toString();
}

LFAnalyticsApp &LFAnalyticsApp::shared()
{
    return LFAnalyticsContext::shared().app();
}

#define LF_GUARDED_ACCESSORS(Type, getter, setter, member)                                         \
    Type LFAnalyticsApp::getter() const                                                             \
    {                                                                                               \
        QMutexLocker lock(&m_mutex);                                                                \
        return member;                                                                              \
    }                                                                                               \
    void LFAnalyticsApp::setter(Type value)                                                         \
    {                                                                                               \
        QMutexLocker lock(&m_mutex);                                                                \
        member = value;                                                                             \
    }

void LFAnalyticsApp::startWithAppkey(const QString &appKey, uint32_t reportPolicy, const QString &channelId)
{
    m_context.log(QStringLiteral("analytics sdk version %1 , app version %2").arg(kSdkVersion, appVersion()));
    const QString key = appKey.trimmed();
    if (key.isEmpty()) {
        m_context.logAlways(QStringLiteral(
            "LFLOG: appkey can not be found or not valid. LFAnalytics methods must be called after "
            "[LFAnalytics startWithAppkey...]!"));
        return;
    }
    LFAnalyticsConfig &config = m_context.config();
    const QString stored = config.stringWithKey(QStringLiteral("appkey"));
    if (!stored.isNull() && stored != appKey)
        m_context.logAlways(QStringLiteral("WARNING: Appkey is different from the past."));
    config.setConfigure(appKey, QStringLiteral("appkey"));
    config.setConfigure(reportPolicy, QStringLiteral("lfcReportPolicy"));
    setAppid(appKey);
    setReportPolicy(reportPolicy);
    if (!config.configureWithKey(QStringLiteral("lfSeparatedTime")).isValid())
        config.setConfigure(m_context.now(), QStringLiteral("lfSeparatedTime"));

    LFWorkDispatch &dispatch = m_context.dispatch();
    emit dispatch.gotAppkey();
    if (!channelId.isEmpty())
        setChannel(channelId);

    LFAnalyticsSession &session = m_context.session();
    if (!session.observerRegistered()) {
        session.registerObservers();
        applyCrashReportSetting();
    }
    auto activateFirstSession = [&session] {
        if (session.sessionStatus() == LFAnalyticsSession::NeverStarted)
            session.appActivate();
    };
    if (QCoreApplication::instance())
        QMetaObject::invokeMethod(&dispatch, activateFirstSession, Qt::QueuedConnection);
    else
        activateFirstSession();
}

void LFAnalyticsApp::setLogSendInterval(double seconds)
{
    if (seconds < kMinReportInterval) {
        m_context.logAlways(QStringLiteral("ERROR: can't less 90s for log send interval."));
        return;
    }
    m_context.config().setConfigure(seconds, QStringLiteral("lfcReportInterval"));
    updateLogSendInterval();
}

LF_GUARDED_ACCESSORS(QString, appid, setAppid, m_appid)
LF_GUARDED_ACCESSORS(QString, channel, setChannel, m_channel)
LF_GUARDED_ACCESSORS(QString, appVersion, setAppVersion, m_appVersion)
LF_GUARDED_ACCESSORS(bool, logEnabled, setLogEnabled, m_logEnabled)
LF_GUARDED_ACCESSORS(bool, encryptEnabled, setEncryptEnabled, m_encryptEnabled)
LF_GUARDED_ACCESSORS(bool, backgroundTaskEnabled, setBackgroundTaskEnabled, m_backgroundTaskEnabled)

bool LFAnalyticsApp::crashReportEnabled() const
{
    QMutexLocker lock(&m_mutex);
    return m_crashReportEnabled;
}

void LFAnalyticsApp::setCrashReportEnabled(bool enabled)
{
    {
        QMutexLocker lock(&m_mutex);
        m_crashReportEnabled = enabled;
    }
    applyCrashReportSetting();
}

void LFAnalyticsApp::applyCrashReportSetting()
{
    const bool enabled = crashReportEnabled();
    if (enabled == appCrashedHandlerInstalled())
        return;
    if (enabled)
        m_context.internal().installUncaughtExceptionHandler();
    else
        m_context.internal().removeUncaughtExceptionHandler();
    QMutexLocker lock(&m_mutex);
    m_appCrashedHandlerInstalled = enabled;
}

void LFAnalyticsApp::forgetCrashHandlers()
{
    if (!appCrashedHandlerInstalled())
        return;
    m_context.internal().removeUncaughtExceptionHandler();
    QMutexLocker lock(&m_mutex);
    m_appCrashedHandlerInstalled = false;
}
LF_GUARDED_ACCESSORS(bool, backgroundTaskRunning, setBackgroundTaskRunning, m_backgroundTaskRunning)
LF_GUARDED_ACCESSORS(uint32_t, storedReportPolicy, setReportPolicy, m_reportPolicy)

bool LFAnalyticsApp::appCrashedHandlerInstalled() const
{
    QMutexLocker lock(&m_mutex);
    return m_appCrashedHandlerInstalled;
}

double LFAnalyticsApp::logSendInterval() const
{
    QMutexLocker lock(&m_mutex);
    return m_logSendInterval;
}

uint32_t LFAnalyticsApp::reportPolicy() const
{
    const LFAnalyticsOptions &options = m_context.options();
    std::optional<double> policy;
    if (!options.integratedTestMode)
        policy = storedValue(m_context, QStringLiteral("lfExperimentRPT"));
    if (!policy)
        policy = serverValue(m_context, QStringLiteral("report_policy"));
    if (!policy)
        policy = storedValue(m_context, QStringLiteral("report_policy"));
    if (!policy)
        policy = storedValue(m_context, QStringLiteral("lfcReportPolicy"));
    const uint32_t value = policy ? LFANUtil::toUnsigned32(*policy) : storedReportPolicy();

    if (value == kPolicyRealtime && options.integratedTestMode && options.debugging)
        return kPolicyRealtime;
    if (value != kPolicyLaunch && value != kPolicyInterval && value != kPolicyBackground)
        return kPolicyLaunch;
    return value;
}

double LFAnalyticsApp::minReportInterval() const
{
    if (m_context.options().integratedTestMode)
        return kMinReportInterval;
    std::optional<double> interval;
    const std::optional<double> experiment = m_context.config().numberWithKey(QStringLiteral("lfExperimentRPT"));
    if (experiment && *experiment == kPolicyInterval)
        interval = serverValue(m_context, QStringLiteral("test_report_interval"));
    if (!interval)
        interval = serverValue(m_context, QStringLiteral("report_interval"));
    if (!interval)
        interval = storedValue(m_context, QStringLiteral("lefiseix_report_interval"));
    if (!interval)
        interval = storedValue(m_context, QStringLiteral("lfcReportInterval"));
    if (!interval || *interval < kMinReportInterval || *interval > kMaxReportInterval)
        return kMinReportInterval;
    return *interval;
}

void LFAnalyticsApp::updateLogSendInterval()
{
    const double interval = minReportInterval();
    QMutexLocker lock(&m_mutex);
    m_logSendInterval = interval;
}
