#pragma once
// Carries state changes to the main thread as numbered events, where LFAnalyticsInternal does
// the work. send() may be called from any thread; the work always runs queued on the main thread.

#include <QMutex>
#include <QObject>

#include <any>
#include <atomic>

class LFAnalyticsContext;

enum LFDispatchEventType : uint16_t {
    LFEventTypeSessionStart = 0,
    LFEventTypeSessionEnd = 1,
    LFEventTypePlainEvent = 2,
    LFEventTypeError = 3,
    LFEventTypeEkv = 4,
    LFEventTypeBeginEvent = 5,
    LFEventTypeEndEvent = 6,
    LFEventTypeBeginEkv = 7,
    LFEventTypeEndEkv = 8,
    LFEventTypePageDuration = 9,
    LFEventTypePageBegin = 10,
    LFEventTypePageEnd = 11,
    LFEventTypeProfileSignIn = 12,
    LFEventTypeProfileSignOff = 13,
};

struct LFDispatchEvent
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

    // Works the events still queued, when called on the main thread (the process is about to
    // end and the event loop will not run them); elsewhere it does nothing.
    void workPending();

    // Events handed over but not yet worked.
    int pendingCount() const { return m_pending.load(); }

signals:
    // The component was started with a valid application key.
    void gotAppkey();

private:
    void workWithEvent(const LFDispatchEvent &event);

    LFAnalyticsContext &m_context;
    QMutex m_mutex;
    std::atomic<int> m_pending{0};
};
