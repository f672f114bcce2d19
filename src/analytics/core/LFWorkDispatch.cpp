#include "LFWorkDispatch.h"

#include "LFAnalyticsContext.h"
#include "LFAnalyticsInternal.h"

#include <QCoreApplication>
#include <QMutexLocker>
#include <QThread>

LFWorkDispatch::LFWorkDispatch(LFAnalyticsContext &context)
    : m_context(context)
{
    if (QCoreApplication *app = QCoreApplication::instance(); app && thread() != app->thread())
        moveToThread(app->thread());
}

void LFWorkDispatch::sendEvent(std::any object, uint16_t type)
{
    LFAnalyticsContext::shared().dispatch().send(std::move(object), type);
}

void LFWorkDispatch::send(std::any object, uint16_t type)
{
    LFDispatchEvent event{type, std::move(object)};
    QMutexLocker lock(&m_mutex);
    ++m_pending;
    if (!QCoreApplication::instance()) {
        // Without an event loop there is no main thread to defer to: work at once.
        workWithEvent(event);
        return;
    }
    QMetaObject::invokeMethod(this, [this, event = std::move(event)] { workWithEvent(event); },
                              Qt::QueuedConnection);
}

void LFWorkDispatch::workPending()
{
    if (QCoreApplication::instance() && QThread::currentThread() == thread())
        QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
}

void LFWorkDispatch::workWithEvent(const LFDispatchEvent &event)
{
    m_context.internal().workEvent(event);
    --m_pending;
}
