#pragma once
// The in-memory containers (events, attribute events, errors, session-end records, pages),
// the work of each dispatched event, and the cache file that keeps the containers across
// launches. Work runs on the main thread; a session ended without a background task is stopped
// on the caller's thread, so the containers are guarded by a lock.

#include "LFAnalyticsRecords.h"
#include "LFWorkDispatch.h"

#include "LFCrashReport.h"

#include <QHash>
#include <QRecursiveMutex>
#include <QString>

class LFAnalyticsContext;

class LFAnalyticsInternal
{
public:
    static constexpr int kMaxEventsPerPeriod = 5000;
    static constexpr double kEventPeriod = 8 * 3600;

    explicit LFAnalyticsInternal(LFAnalyticsContext &context);

    static LFAnalyticsInternal &shared();

    QString sessionId() const;
    void setSessionId(const QString &sessionId);

    void workEvent(const LFDispatchEvent &event);

    // The source value of error records made from crashes.
    static constexpr int kCrashErrorSource = 1;
    // Records an error at once, stamped with the current session and outside the event limit,
    // with the image lines appended (of `imageInfo`, or of this process when it is empty): a
    // crashing process cannot wait for the main thread.
    void error(const QString &crashText, const QVariantMap &imageInfo = {});
    void setErrorSupportInfo(const QVariantMap &info);
    // Records a crash reported by the crash handlers and ends the session at once.
    void saveCrashInfo(const LFCrashReport &report);
    // Installs the crash handlers and observes them; first records a signal that a
    // crash at an earlier launch left behind. Once per process.
    void installUncaughtExceptionHandler();
    // Stops observing the crash handlers and restores the earlier ones.
    void removeUncaughtExceptionHandler();
    QString signalRecordPath() const;

    // Ends the current session: a session-end record with the pages and any location.
    void stopSession(double duration);
    // Ends the session `record` names (id, times and duration taken when it ended): adds the
    // pages and any location and keeps the record.
    void stopSession(LFANTerminate record);
    // Archives the containers to the cache file and empties them. While the file cannot be
    // read, nothing is written over it and memory keeps what it holds.
    void saveAndCleanCache();
    // Adds the archived containers in front of what is in memory (they are older). False while
    // a cache file is there that could not be opened: it is kept for a later attempt.
    bool loadCache();
    // Forgets the containers and the cache file.
    void removeCacheData();

    // Seam for the envelope code: encodes what is in memory and hands it to the envelope
    // writer; on success the events count towards the period and memory and cache are cleared.
    bool generateEnvelopeFile();
    // Seam for the upload code: starts posting the waiting envelope files.
    void beginPerformJob();
    bool isJobRunning() const;
    void setJobRunning(bool running);

    bool hasDataInMemory() const;
    // Plain and attribute events held in memory.
    int eventCountInMemory() const;
    // Whether envelope files wait in the envelope folder.
    bool hasEnvelopeFiles() const;
    QString cacheFilePath() const;
    QString envelopeDirectory() const;

    void setWrapperType(const QString &type);
    void setWrapperVersion(const QString &version);
    QString wrapperType() const;
    QString wrapperVersion() const;

    using Containers = LFANContainers;
    Containers containers() const;

private:
    void work(const LFDispatchEvent &event);
    void stamp(LFANBaseEvent &event) const;
    bool eventLimitAllows();
    void addEvent(LFANEvent event);
    void addEkv(LFANEkv event);
    void endTimedEvent(const LFANEvent &end);
    void endTimedEkv(const LFANEkv &end);
    void pageEnd(const QString &page);
    void profileSignIn(const QString &provider, const QString &puid);
    void profileSignOff();
    void splitSession();
    bool writeCache(const Containers &containers);
    void clearMemory();

    LFAnalyticsContext &m_context;
    mutable QRecursiveMutex m_mutex;
    QString m_sessionId;
    Containers m_memory;
    QHash<QString, LFANEvent> m_timedEvents;
    QHash<QString, LFANEkv> m_timedEkvs;
    QHash<QString, double> m_pageBegins;
    QString m_wrapperType;
    QString m_wrapperVersion;
    QVariantMap m_errorSupportInfo;
    bool m_jobRunning = false;
    // Whether memory already holds what the cache file holds (or there is none), so it is
    // neither added twice nor overwritten or removed unread.
    bool m_cacheLoaded = false;
};
