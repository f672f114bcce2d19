#include "LFPMessageCache.h"

#include "LFPushKeys.h"
#include "LFPushUtils.h"

#include <QJsonArray>
#include <QJsonDocument>

LFPMessageCache::LFPMessageCache(UserDefaults &defaults)
    : m_defaults(defaults)
{
    m_queue.setMaxThreadCount(1);
    enqueue([this] {
        const QByteArray stored = m_defaults.stringForKey(LFPushKeys::kMsgs).toUtf8();
        m_msgCache = LFHashArray::fromJson(QJsonDocument::fromJson(stored).array());
    });
}

LFPMessageCache::~LFPMessageCache()
{
    m_queue.waitForDone();
}

void LFPMessageCache::enqueue(std::function<void()> task)
{
    m_queue.start(std::move(task));
}

void LFPMessageCache::store()
{
    m_defaults.setObject(QString::fromUtf8(QJsonDocument(m_msgCache.toJson()).toJson(QJsonDocument::Compact)),
                         LFPushKeys::kMsgs);
    m_defaults.synchronize();
}

void LFPMessageCache::saveCacheMessage(const QString &msgId, double ts)
{
    enqueue([this, msgId, ts] {
        if (msgId.isEmpty() || !(ts > 0)) {
            LFPushUtils::outLog(QStringLiteral("error:saveCacheMessage:msgId or ts error!"));
            return;
        }
        m_msgCache.insert({msgId, ts});
        store();
    });
}

void LFPMessageCache::removeCacheMessage(const QString &msgId)
{
    enqueue([this, msgId] {
        if (!m_msgCache.contains(msgId))
            return;
        m_msgCache.remove(msgId);
        store();
    });
}

void LFPMessageCache::cachedMessages(std::function<void(const QList<LFHashArray::Entry> &)> done)
{
    // The receiver outlives every queued task (the destructor waits for them); an answer
    // still posted when it goes is dropped with it.
    QObject *mainThread = &m_mainThread;
    enqueue([this, mainThread, done = std::move(done)] {
        const QList<LFHashArray::Entry> entries = m_msgCache.entries();
        QMetaObject::invokeMethod(mainThread, [done, entries] { done(entries); }, Qt::QueuedConnection);
    });
}

void LFPMessageCache::waitForQueue()
{
    m_queue.waitForDone();
}
