#pragma once
// The unsent click reports ("msgCache"), kept in the user defaults under
// "kLFPushUserDefaultKeyForMsgs" so they survive a restart. Every touch of the cache runs on
// its own serial queue (one worker thread, tasks in order); answers come back on the main
// thread. Created, called and destroyed on the main thread.

#include "LFHashArray.h"
#include "UserDefaults.h"

#include <QObject>
#include <QThreadPool>

#include <functional>

class LFPMessageCache
{
public:
    explicit LFPMessageCache(UserDefaults &defaults);
    ~LFPMessageCache();
    LFPMessageCache(const LFPMessageCache &) = delete;
    LFPMessageCache &operator=(const LFPMessageCache &) = delete;

    // Keeps a click report until it is sent; one without id or time is refused and logged.
    void saveCacheMessage(const QString &msgId, double ts);
    void removeCacheMessage(const QString &msgId);
    // The waiting reports, oldest first, handed to `done` on the main thread.
    void cachedMessages(std::function<void(const QList<LFHashArray::Entry> &)> done);
    // Returns once every task asked for so far has run.
    void waitForQueue();

private:
    void enqueue(std::function<void()> task);
    void store();  // on the queue

    UserDefaults &m_defaults;
    LFHashArray m_msgCache;  // touched only on the queue
    QThreadPool m_queue;
    QObject m_mainThread;  // answers are posted to it
};
