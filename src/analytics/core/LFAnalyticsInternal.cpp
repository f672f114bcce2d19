#include "LFAnalyticsInternal.h"

#include "LFAnalyticsApp.h"
#include "LFAnalyticsCache.h"
#include "LFAnalyticsConfig.h"
#include "LFAnalyticsContext.h"
#include "LFAnalyticsEvent.h"
#include "LFAnalyticsJob.h"
#include "LFAnalyticsLocation.h"
#include "LFAnalyticsSession.h"
#include "LFAnalyticsThrift.h"

#include <QDir>
#include <QMutexLocker>
#include <QStringList>

#include <cmath>

namespace {
const QString kSeparatedTimeKey = QStringLiteral("lfSeparatedTime");
const QString kPeriodEventCountKey = QStringLiteral("lfPeriodEvtCount");
const QString kProviderKey = QStringLiteral("LFProfileProvider");
const QString kPuidKey = QStringLiteral("LFProfilePUID");

QString timedKey(const QString &id, const QString &second)
{
    return id + QChar(0x1f) + second;
}
} // namespace

LFAnalyticsInternal::LFAnalyticsInternal(LFAnalyticsContext &context)
    : m_context(context)
    , m_sessionId(context.session().generateSessionId())
{
}

LFAnalyticsInternal &LFAnalyticsInternal::shared()
{
    return LFAnalyticsContext::shared().internal();
}

QString LFAnalyticsInternal::sessionId() const
{
    QMutexLocker lock(&m_mutex);
    return m_sessionId;
}

void LFAnalyticsInternal::setSessionId(const QString &sessionId)
{
    QMutexLocker lock(&m_mutex);
    m_sessionId = sessionId;
}

void LFAnalyticsInternal::workEvent(const LFDispatchEvent &event)
{
    // Nothing that goes wrong in here may take the app down.
    try {
        QMutexLocker lock(&m_mutex);
        work(event);
    } catch (const std::exception &error) {
        m_context.log(QStringLiteral("Exception occurred: %1, %2")
                          .arg(QLatin1String(typeid(error).name()), QString::fromUtf8(error.what())));
    } catch (...) {
        m_context.log(QStringLiteral("Exception occurred: %1, %2")
                          .arg(QStringLiteral("unknown"), QStringLiteral("unknown")));
    }
}

void LFAnalyticsInternal::work(const LFDispatchEvent &event)
{
    const std::any &object = event.object;
    switch (event.eEventType) {
    case LFEventTypeSessionStart:
        loadCache();
        if (!m_context.session().appInBackGround())
            m_context.job().preparePerformJob(LFAnalyticsJob::kTriggerSessionStart);
        m_context.log(QStringLiteral("session begin:%1").arg(m_sessionId));
        return;
    case LFEventTypeSessionEnd:
        stopSession(std::any_cast<LFANTerminate>(object));
        if (m_context.app().reportPolicy() == LFAnalyticsApp::kPolicyBackground
            && m_context.app().backgroundTaskEnabled())
            m_context.job().preparePerformJob(LFAnalyticsJob::kTriggerSessionEnd);
        saveAndCleanCache();
        m_context.app().setBackgroundTaskRunning(false);
        m_context.log(QStringLiteral("session end:%1").arg(m_sessionId));
        return;
    case LFEventTypePlainEvent:
        addEvent(std::any_cast<LFANEvent>(object));
        return;
    case LFEventTypeError:
        if (eventLimitAllows()) {
            LFANError error = std::any_cast<LFANError>(object);
            stamp(error);
            m_memory.errors.append(error);
        }
        return;
    case LFEventTypeEkv:
        addEkv(std::any_cast<LFANEkv>(object));
        return;
    case LFEventTypeBeginEvent: {
        LFANEvent begin = std::any_cast<LFANEvent>(object);
        stamp(begin);
        m_timedEvents.insert(timedKey(begin.event_id, begin.label), begin);
        return;
    }
    case LFEventTypeEndEvent:
        endTimedEvent(std::any_cast<LFANEvent>(object));
        return;
    case LFEventTypeBeginEkv: {
        LFANEkv begin = std::any_cast<LFANEkv>(object);
        stamp(begin);
        m_timedEkvs.insert(timedKey(begin.id, begin.key), begin);
        return;
    }
    case LFEventTypeEndEkv:
        endTimedEkv(std::any_cast<LFANEkv>(object));
        return;
    case LFEventTypePageDuration: {
        const LFANPage page = std::any_cast<LFANPage>(object);
        m_memory.pages.append(page);
        m_context.log(QStringLiteral("pageDuration:(%1, %2)").arg(page.name).arg(page.seconds));
        return;
    }
    case LFEventTypePageBegin: {
        const QString page = std::any_cast<QString>(object);
        const double now = m_context.now();
        m_pageBegins.insert(page, now);
        m_context.log(QStringLiteral("pageBegin=%1, beginTime:%2").arg(page).arg(now, 0, 'f', 3));
        return;
    }
    case LFEventTypePageEnd:
        pageEnd(std::any_cast<QString>(object));
        return;
    case LFEventTypeProfileSignIn: {
        const QStringList profile = std::any_cast<QStringList>(object);
        profileSignIn(profile.value(0), profile.value(1));
        return;
    }
    case LFEventTypeProfileSignOff:
        profileSignOff();
        return;
    default:
        m_context.log(QStringLiteral("WARNING: unkown event type"));
    }
}

void LFAnalyticsInternal::stamp(LFANBaseEvent &event) const
{
    event.session_id = m_sessionId;
}

bool LFAnalyticsInternal::eventLimitAllows()
{
    LFAnalyticsConfig &config = m_context.config();
    const double now = m_context.now();
    const std::optional<double> periodStart = config.numberWithKey(kSeparatedTimeKey);
    if (!periodStart || now - *periodStart > kEventPeriod) {
        config.setConfigure(0, kPeriodEventCountKey);
        config.setConfigure(now, kSeparatedTimeKey);
    }
    const int counted = int(config.numberWithKey(kPeriodEventCountKey).value_or(0));
    if (eventCountInMemory() + counted >= kMaxEventsPerPeriod) {
        m_context.log(QStringLiteral("WARNING event max count %1 per 8 hours.").arg(kMaxEventsPerPeriod));
        return false;
    }
    return true;
}

void LFAnalyticsInternal::addEvent(LFANEvent event)
{
    if (!eventLimitAllows())
        return;
    stamp(event);
    m_memory.events.append(std::move(event));
}

void LFAnalyticsInternal::addEkv(LFANEkv event)
{
    if (!eventLimitAllows())
        return;
    stamp(event);
    m_memory.ekvs.append(std::move(event));
}

void LFAnalyticsInternal::endTimedEvent(const LFANEvent &end)
{
    const auto begin = m_timedEvents.constFind(timedKey(end.event_id, end.label));
    if (begin == m_timedEvents.constEnd())
        return;
    LFANEvent event = *begin;
    m_timedEvents.erase(begin);
    event.du = qint64(std::llround((end.ts - event.ts) * 1000));
    if (event.du >= LFAnalyticsEvent::kMaxDurationMs)
        return;
    addEvent(std::move(event));
}

void LFAnalyticsInternal::endTimedEkv(const LFANEkv &end)
{
    const auto begin = m_timedEkvs.constFind(timedKey(end.id, end.key));
    if (begin == m_timedEkvs.constEnd())
        return;
    LFANEkv event = *begin;
    m_timedEkvs.erase(begin);
    const qint64 du = qint64(std::llround((end.ts - event.ts) * 1000));
    event.du = du >= 1 ? du : 0;
    addEkv(std::move(event));
}

void LFAnalyticsInternal::pageEnd(const QString &page)
{
    const auto begin = m_pageBegins.constFind(page);
    if (begin == m_pageBegins.constEnd())
        return;
    const int duration = int(m_context.now() - *begin);
    m_pageBegins.erase(begin);
    if (duration < 1)
        return;
    m_memory.pages.append({page, duration});
    m_context.log(QStringLiteral("pageEnd=%1, duration:%2").arg(page).arg(duration));
}

void LFAnalyticsInternal::profileSignIn(const QString &provider, const QString &puid)
{
    LFAnalyticsConfig &config = m_context.config();
    if (config.stringWithKey(kProviderKey) == provider && config.stringWithKey(kPuidKey) == puid)
        return;
    splitSession();
    config.setConfigure(provider, kProviderKey);
    config.setConfigure(puid, kPuidKey);
}

void LFAnalyticsInternal::profileSignOff()
{
    LFAnalyticsConfig &config = m_context.config();
    if (config.stringWithKey(kPuidKey).isNull())
        return;
    splitSession();
    config.removeConfigureWithKey(kProviderKey);
    config.removeConfigureWithKey(kPuidKey);
}

void LFAnalyticsInternal::splitSession()
{
    LFAnalyticsSession &session = m_context.session();
    if (session.sessionStatus() != LFAnalyticsSession::Active)
        return;
    stopSession(session.currentSessionDuration());
    generateEnvelopeFile();
    session.beginNewSessionTime();
}

void LFAnalyticsInternal::stopSession(double duration)
{
    LFANTerminate record;
    record.session_id = sessionId();
    record.duration = duration;
    record.startTime = m_context.session().lastLaunchTime();
    record.endTime = m_context.now();
    stopSession(std::move(record));
}

void LFAnalyticsInternal::stopSession(LFANTerminate record)
{
    QMutexLocker lock(&m_mutex);
    LFAnalyticsLocation::Fix fix;
    if (m_context.location().takeLocation(fix)) {
        record.latitude = fix.latitude;
        record.longitude = fix.longitude;
        record.gps_time = qint64(fix.timestamp * 1000);
    }
    record.pageViews = std::exchange(m_memory.pages, {});
    m_memory.terminates.append(record);
    m_context.log(QStringLiteral("session end record:%1 duration:%2 pages:%3")
                      .arg(record.session_id)
                      .arg(record.duration)
                      .arg(record.pageViews.size()));
}

void LFAnalyticsInternal::saveAndCleanCache()
{
    QMutexLocker lock(&m_mutex);
    // A session may end before its start was worked: keep what the file already holds.
    if (loadCache() && writeCache(m_memory)) {
        clearMemory();
        m_cacheLoaded = false;
    }
    m_context.config().synchronize();
}

bool LFAnalyticsInternal::loadCache()
{
    QMutexLocker lock(&m_mutex);
    if (m_cacheLoaded)
        return true;
    const LFAnalyticsCache::ReadResult read = LFAnalyticsCache::read(cacheFilePath());
    if (!read.problem.isEmpty() && !read.damaged) {
        m_context.log(QStringLiteral("cache file not read: %1").arg(read.problem));
        return false;
    }
    m_cacheLoaded = true;
    if (read.damaged) {
        m_context.log(QStringLiteral("cache file discarded: %1").arg(read.problem));
        QFile::remove(cacheFilePath());
    }
    if (!read.containers)
        return true;
    const Containers &archived = *read.containers;
    m_memory.events = archived.events + m_memory.events;
    m_memory.errors = archived.errors + m_memory.errors;
    m_memory.ekvs = archived.ekvs + m_memory.ekvs;
    m_memory.terminates = archived.terminates + m_memory.terminates;
    m_memory.pages = archived.pages + m_memory.pages;
    return true;
}

void LFAnalyticsInternal::removeCacheData()
{
    QMutexLocker lock(&m_mutex);
    clearMemory();
    m_cacheLoaded = false;
    QFile::remove(cacheFilePath());
}

bool LFAnalyticsInternal::generateEnvelopeFile()
{
    const auto &writer = m_context.options().envelopeWriter;
    if (!writer)
        return false;
    QMutexLocker lock(&m_mutex);
    // The cache file goes once the envelope is written, so its records must be in it: a
    // profile change may come before the session start has read the file.
    const bool cacheIncluded = loadCache();
    const QByteArray entry = m_context.thrift().toData();
    if (entry.isNull() || !writer(entry))
        return false;
    LFAnalyticsConfig &config = m_context.config();
    const int counted = int(config.numberWithKey(kPeriodEventCountKey).value_or(0));
    config.setConfigure(counted + eventCountInMemory(), kPeriodEventCountKey);
    if (cacheIncluded)
        removeCacheData();
    else
        clearMemory();
    return true;
}

void LFAnalyticsInternal::beginPerformJob()
{
    if (const auto &performJob = m_context.options().performJob)
        performJob();
}

bool LFAnalyticsInternal::isJobRunning() const
{
    QMutexLocker lock(&m_mutex);
    return m_jobRunning;
}

void LFAnalyticsInternal::setJobRunning(bool running)
{
    QMutexLocker lock(&m_mutex);
    m_jobRunning = running;
}

bool LFAnalyticsInternal::hasDataInMemory() const
{
    QMutexLocker lock(&m_mutex);
    return !m_memory.events.isEmpty() || !m_memory.errors.isEmpty() || !m_memory.ekvs.isEmpty()
           || !m_memory.terminates.isEmpty();
}

int LFAnalyticsInternal::eventCountInMemory() const
{
    QMutexLocker lock(&m_mutex);
    return int(m_memory.events.size() + m_memory.ekvs.size());
}

bool LFAnalyticsInternal::hasEnvelopeFiles() const
{
    const QDir folder(envelopeDirectory());
    return !folder.entryList({QStringLiteral("*_envelope.log")}, QDir::Files).isEmpty();
}

QString LFAnalyticsInternal::cacheFilePath() const
{
    return m_context.options().cacheDirectory
           + QStringLiteral("/.%1_lefiseixCache.plist").arg(m_context.options().bundleIdentifier);
}

QString LFAnalyticsInternal::envelopeDirectory() const
{
    return m_context.options().cacheDirectory + QStringLiteral("/.lefiseix");
}

void LFAnalyticsInternal::setWrapperType(const QString &type)
{
    QMutexLocker lock(&m_mutex);
    m_wrapperType = type;
}

void LFAnalyticsInternal::setWrapperVersion(const QString &version)
{
    QMutexLocker lock(&m_mutex);
    m_wrapperVersion = version;
}

QString LFAnalyticsInternal::wrapperType() const
{
    QMutexLocker lock(&m_mutex);
    return m_wrapperType;
}

QString LFAnalyticsInternal::wrapperVersion() const
{
    QMutexLocker lock(&m_mutex);
    return m_wrapperVersion;
}

LFAnalyticsInternal::Containers LFAnalyticsInternal::containers() const
{
    QMutexLocker lock(&m_mutex);
    return m_memory;
}

bool LFAnalyticsInternal::writeCache(const Containers &containers)
{
    QString problem;
    if (LFAnalyticsCache::write(cacheFilePath(), containers, problem))
        return true;
    m_context.log(QStringLiteral("cache file not written: %1").arg(problem));
    return false;
}

void LFAnalyticsInternal::clearMemory()
{
    m_memory = {};
}
