#pragma once
// Carries state changes to the main thread as numbered events, where LFAnalyticsInternal does
// the work. send() may be called from any thread; the work always runs queued on the main thread.

#include <QMutex>
#include <QObject>

#include <any>
#include <atomic>

class LFAnalyticsContext;

enum LFDispatchEventType : uint16_t {
    LFDispatchSessionStart = 0,
    LFDispatchSessionEnd = 1,
    LFDispatchEvent = 2,
    LFDispatchError = 3,
    LFDispatchEkv = 4,
    LFDispatchBeginEvent = 5,
    LFDispatchEndEvent = 6,
    LFDispatchBeginEkv = 7,
    LFDispatchEndEkv = 8,
    LFDispatchPageDuration = 9,
    LFDispatchPageBegin = 10,
    LFDispatchPageEnd = 11,
    LFDispatchProfileSignIn = 12,
    LFDispatchProfileSignOff = 13,
};

struct LFDispatchEventRecord
{
    uint16_t eEventType = 0;
    std::any object;    // the payload, owned here
};

class LFWorkDispatch : public QObject
{
    Q_OBJECT
public:
    explicit LFWorkDispatch(LFAnalyticsContext &context);

    // Hands the event to the process-wide component.
    static void sendEvent(std::any object, uint16_t type);
    void send(std::any object, uint16_t type);

    // Events handed over but not yet worked.
    int pendingCount() const { return m_pending.load(); }

signals:
    // The component was started with a valid application key.
    void gotAppkey();

private:
    void workWithEvent(const LFDispatchEventRecord &event);

    LFAnalyticsContext &m_context;
    QMutex m_mutex;
    std::atomic<int> m_pending{0};
};
