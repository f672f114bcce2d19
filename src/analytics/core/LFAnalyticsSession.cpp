#include "LFAnalyticsSession.h"

#include "LFAnalyticsApp.h"
#include "LFAnalyticsContext.h"
#include "LFAnalyticsInternal.h"
#include "LFAnalyticsSender.h"
#include "LFWorkDispatch.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QGuiApplication>
#include <QMutexLocker>

#include <optional>

LFAnalyticsSession::LFAnalyticsSession(LFAnalyticsContext &context)
    : m_context(context)
{
}

LFAnalyticsSession &LFAnalyticsSession::shared()
{
    return LFAnalyticsContext::shared().session();
}

void LFAnalyticsSession::appActivate()
{
    int32_t previous;
    {
        QMutexLocker lock(&m_mutex);
        m_appInBackGround = false;
        previous = m_sessionStatus;
    }
    if (previous == Active)
        m_context.log(QStringLiteral("WARNING app has already activate."));
    // The first session keeps the id made when the internal state was created.
    if (previous != NeverStarted)
        m_context.internal().setSessionId(generateSessionId());
    {
        QMutexLocker lock(&m_mutex);
        m_sessionStatus = Active;
        m_lastLaunchTime = m_context.now();
    }
    m_context.dispatch().send({}, LFEventTypeSessionStart);
}

void LFAnalyticsSession::appInactivate(bool terminating)
{
    if (terminating) {
        {
            QMutexLocker lock(&m_mutex);
            m_appBeKilling = true;
        }
        // The process ends with this call: work still queued for the main thread runs now or never.
        m_context.dispatch().workPending();
    }
    LFAnalyticsInternal &internal = m_context.internal();
    // Id and times are taken now: the next session may begin before the record is made.
    std::optional<LFANTerminate> ended;
    const QString sessionId = internal.sessionId();
    bool stopNow;
    {
        QMutexLocker lock(&m_mutex);
        m_appInBackGround = true;
        // A session that already ended (resign active, then terminate) is not ended twice.
        if (m_sessionStatus == Active) {
            LFANTerminate record;
            record.session_id = sessionId;
            record.startTime = m_lastLaunchTime;
            record.endTime = m_context.now();
            record.duration = recordedDuration(record.endTime - record.startTime);
            ended = std::move(record);
        }
        m_sessionStatus = Ended;
        stopNow = m_appCrashed || m_appBeKilling || !m_context.app().backgroundTaskEnabled();
    }
    if (!stopNow) {
        if (!ended)
            return;
        LFAnalyticsApp &app = m_context.app();
        if (!app.backgroundTaskRunning())
            app.setBackgroundTaskRunning(true);
        m_context.dispatch().send(std::move(*ended), LFEventTypeSessionEnd);
        return;
    }
    // A crash or a kill saves whatever memory holds, also when the session ended earlier.
    if (ended)
        internal.stopSession(std::move(*ended));
    internal.saveAndCleanCache();
}

void LFAnalyticsSession::registerObservers()
{
    {
        QMutexLocker lock(&m_mutex);
        if (m_observerRegistered)
            return;
        m_observerRegistered = true;
    }
    QCoreApplication *app = QCoreApplication::instance();
    if (!app)
        return;
    QObject *receiver = &m_context.dispatch();
    if (auto *guiApp = qobject_cast<QGuiApplication *>(app)) {
        QObject::connect(guiApp, &QGuiApplication::applicationStateChanged, receiver,
                         [this, active = guiApp->applicationState() == Qt::ApplicationActive](
                             Qt::ApplicationState state) mutable {
                             const bool nowActive = state == Qt::ApplicationActive;
                             if (nowActive == active)
                                 return;
                             active = nowActive;
                             if (nowActive)
                                 appActivate();
                             else
                                 appInactivate(false);
                         });
    }
    QObject::connect(app, &QCoreApplication::aboutToQuit, receiver, [this] {
        appInactivate(true);
        // A post under way gets a moment to finish; the files it leaves go at the next launch.
        m_context.shutdownUploads(LFAnalyticsSender::kQuitWaitMs);
    });
}

bool LFAnalyticsSession::observerRegistered() const
{
    QMutexLocker lock(&m_mutex);
    return m_observerRegistered;
}

bool LFAnalyticsSession::appInBackGround() const
{
    QMutexLocker lock(&m_mutex);
    return m_appInBackGround;
}

bool LFAnalyticsSession::appBeKilling() const
{
    QMutexLocker lock(&m_mutex);
    return m_appBeKilling;
}

bool LFAnalyticsSession::appCrashed() const
{
    QMutexLocker lock(&m_mutex);
    return m_appCrashed;
}

void LFAnalyticsSession::setAppCrashed(bool crashed)
{
    QMutexLocker lock(&m_mutex);
    m_appCrashed = crashed;
}

int32_t LFAnalyticsSession::sessionStatus() const
{
    QMutexLocker lock(&m_mutex);
    return m_sessionStatus;
}

double LFAnalyticsSession::lastLaunchTime() const
{
    QMutexLocker lock(&m_mutex);
    return m_lastLaunchTime;
}

double LFAnalyticsSession::currentSessionDuration() const
{
    return recordedDuration(m_context.now() - lastLaunchTime());
}

double LFAnalyticsSession::recordedDuration(double seconds)
{
    return seconds > kLongSession ? kLongSessionRecorded : seconds;
}

void LFAnalyticsSession::beginNewSessionTime()
{
    m_context.internal().setSessionId(generateSessionId());
    QMutexLocker lock(&m_mutex);
    m_lastLaunchTime = m_context.now();
}

QString LFAnalyticsSession::generateSessionId() const
{
    LFAnalyticsClock &clock = m_context.clock();
    const QString text = QString::asprintf("%f", clock.now()) + m_context.app().appid()
                         + QString::number(clock.random32()) + QString::number(clock.random32());
    return QString::fromLatin1(
        QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Md5).toHex());
}
