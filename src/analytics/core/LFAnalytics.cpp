#include "LFAnalytics.h"

#include "LFAnalyticsApp.h"
#include "LFAnalyticsContext.h"
#include "LFAnalyticsEvent.h"
#include "LFAnalyticsInternal.h"
#include "LFAnalyticsJob.h"
#include "LFAnalyticsSession.h"
#include "LFWorkDispatch.h"

#include <QStringList>

namespace {
LFAnalyticsContext &component()
{
    return LFAnalyticsContext::shared();
}

LFAnalyticsEvent &events()
{
    return component().event();
}
} // namespace

bool LFAnalytics::setupWithOptions(LFAnalyticsOptions options)
{
    return LFAnalyticsContext::setSharedOptions(std::move(options));
}

void LFAnalytics::startWithAppkey(const QString &appKey)
{
    startWithAppkey(appKey, 1, QString());
}

void LFAnalytics::startWithAppkey(const QString &appKey, uint32_t reportPolicy, const QString &channelId)
{
    component().app().startWithAppkey(appKey, reportPolicy, channelId);
}

void LFAnalytics::setAppVersion(const QString &appVersion) { component().app().setAppVersion(appVersion); }
void LFAnalytics::setCrashReportEnabled(bool enabled) { component().app().setCrashReportEnabled(enabled); }
void LFAnalytics::setLogEnabled(bool enabled) { component().app().setLogEnabled(enabled); }
void LFAnalytics::setBackgroundTaskEnabled(bool enabled) { component().app().setBackgroundTaskEnabled(enabled); }
void LFAnalytics::setEncryptEnabled(bool enabled) { component().app().setEncryptEnabled(enabled); }
void LFAnalytics::setLogSendInterval(double seconds) { component().app().setLogSendInterval(seconds); }

void LFAnalytics::event(const QString &eventId) { events().event(eventId, QString(), 1, 0); }
void LFAnalytics::event(const QString &eventId, const QString &label) { events().event(eventId, label, 1, 0); }
void LFAnalytics::event(const QString &eventId, int acc) { events().event(eventId, QString(), acc, 0); }
void LFAnalytics::event(const QString &eventId, const QString &label, int acc) { events().event(eventId, label, acc, 0); }
void LFAnalytics::eventDurations(const QString &eventId, int durations) { events().event(eventId, QString(), 1, durations); }

void LFAnalytics::eventLabelDurations(const QString &eventId, const QString &label, int durations)
{
    events().event(eventId, label, 1, durations);
}

void LFAnalytics::event(const QString &eventId, const QVariantMap &attributes) { events().event(eventId, attributes, 0); }

void LFAnalytics::event(const QString &eventId, const QVariantMap &attributes, int durations)
{
    events().event(eventId, attributes, durations);
}

void LFAnalytics::eventAttributesCounter(const QString &eventId, const QVariantMap &attributes, int counter)
{
    events().eventAttributesCounter(eventId, attributes, counter);
}

void LFAnalytics::beginEvent(const QString &eventId) { events().beginEvent(eventId, QString()); }
void LFAnalytics::endEvent(const QString &eventId) { events().endEvent(eventId, QString()); }
void LFAnalytics::beginEvent(const QString &eventId, const QString &label) { events().beginEvent(eventId, label); }
void LFAnalytics::endEvent(const QString &eventId, const QString &label) { events().endEvent(eventId, label); }

void LFAnalytics::beginEvent(const QString &eventId, const QString &primarykey, const QVariantMap &attributes)
{
    events().beginEvent(eventId, primarykey, attributes);
}

void LFAnalytics::endEventPrimarykey(const QString &eventId, const QString &primarykey)
{
    events().endEventPrimarykey(eventId, primarykey);
}

void LFAnalytics::logPageView(const QString &pageName, int seconds) { events().logPageView(pageName, seconds); }
void LFAnalytics::beginLogPageView(const QString &pageName) { events().beginLogPageView(pageName); }
void LFAnalytics::endLogPageView(const QString &pageName) { events().endLogPageView(pageName); }

void LFAnalytics::setLatitude(double latitude, double longitude) { component().location().setLatitude(latitude, longitude); }
void LFAnalytics::setLocation(const LFAnalyticsLocation::Fix &location) { component().location().setLocation(location); }

void LFAnalytics::profileSignInWithPUID(const QString &puid)
{
    profileSignInWithPUID(puid, QString());
}

void LFAnalytics::profileSignInWithPUID(const QString &puid, const QString &provider)
{
    if (puid.trimmed().isEmpty())
        return;
    component().dispatch().send(QStringList{provider, puid}, LFEventTypeProfileSignIn);
}

void LFAnalytics::profileSignOff() { component().dispatch().send({}, LFEventTypeProfileSignOff); }

void LFAnalytics::setWrapperType(const QString &wrapperType) { component().internal().setWrapperType(wrapperType); }
void LFAnalytics::setWrapperVersion(const QString &wrapperVersion) { component().internal().setWrapperVersion(wrapperVersion); }

void LFAnalytics::setWrapperType(const QString &wrapperType, const QString &wrapperVersion)
{
    setWrapperType(wrapperType);
    setWrapperVersion(wrapperVersion);
}

void LFAnalytics::setLogUrls(const QString &primaryUrl, const QString &fallbackUrl)
{
    component().setLogHosts(primaryUrl, fallbackUrl);
}

bool LFAnalytics::finishUploads(int timeoutMs)
{
    return component().shutdownUploads(timeoutMs);
}

void LFAnalytics::setLatency(int seconds) { component().job().setLatency(seconds); }
void LFAnalytics::startSession() { component().session().appActivate(); }
