#include "LFANWorker.h"

#include "LFANReplyHandler.h"
#include "LFANUtil.h"
#include "LFAnalyticsApp.h"
#include "LFAnalyticsConfig.h"
#include "LFAnalyticsContext.h"
#include "LFAnalyticsDevice.h"
#include "LFAnalyticsInternal.h"
#include "LFAnalyticsJob.h"
#include "LFAnalyticsSession.h"
#include "LFAnalyticsUtility.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QMutexLocker>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QUrl>

#include <memory>

LFANWorker::LFANWorker(LFAnalyticsContext &context)
    : m_context(context)
{
    start();
}

LFANWorker::~LFANWorker()
{
    shutdown(0);
    wait();
}

bool LFANWorker::submit(QStringList envelopeFilePaths)
{
    QMutexLocker lock(&m_mutex);
    if (m_stopping)
        return false;
    m_jobs.push_back(std::move(envelopeFilePaths));
    m_changed.wakeAll();
    return true;
}

bool LFANWorker::flush(int timeoutMs)
{
    QDeadlineTimer deadline(timeoutMs);
    QMutexLocker lock(&m_mutex);
    while (!m_jobs.empty() || m_busy) {
        if (!m_changed.wait(&m_mutex, deadline))
            return false;
    }
    return true;
}

bool LFANWorker::shutdown(int timeoutMs)
{
    {
        QMutexLocker lock(&m_mutex);
        m_stopping = true;
        m_changed.wakeAll();
    }
    if (wait(QDeadlineTimer(timeoutMs)))
        return true;
    {
        QMutexLocker lock(&m_mutex);
        m_cancelled = true;
    }
    emit cancelRequested();
    return false;
}

bool LFANWorker::stopRequested() const
{
    QMutexLocker lock(&m_mutex);
    return m_cancelled;
}

void LFANWorker::run()
{
    QNetworkAccessManager network;
    for (;;) {
        QStringList paths;
        {
            QMutexLocker lock(&m_mutex);
            while (m_jobs.empty() && !m_stopping)
                m_changed.wait(&m_mutex);
            if (m_jobs.empty() || m_cancelled)
                break;
            paths = std::move(m_jobs.front());
            m_jobs.pop_front();
            m_busy = true;
        }
        performJob(paths, network);
        QMutexLocker lock(&m_mutex);
        m_busy = false;
        m_changed.wakeAll();
    }
    QMutexLocker lock(&m_mutex);
    m_jobs.clear();
    m_changed.wakeAll();
}

void LFANWorker::performJob(const QStringList &paths, QNetworkAccessManager &network)
{
    LFAnalyticsApp &app = m_context.app();
    LFAnalyticsSession &session = m_context.session();
    for (const QString &path : paths) {
        if (stopRequested() || (session.appInBackGround() && !app.backgroundTaskEnabled()))
            break;
        if (postDataWithFile(path, network) == PostOutcome::Done)
            continue;
        // The server asked for silence: what this job held is given up, by design.
        if (m_context.job().defconLevel() != 0) {
            for (const QString &file : paths)
                LFAnalyticsUtility::removeFile(file);
        }
        break;
    }
    m_context.internal().setJobRunning(false);
}

LFANWorker::PostOutcome LFANWorker::postDataWithFile(const QString &path, QNetworkAccessManager &network)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return PostOutcome::Failed;
    const QByteArray body = file.readAll();
    file.close();
    const auto [primary, fallback] = m_context.logHosts();
    for (const QString &host : {primary, fallback}) {
        if (stopRequested())
            break;
        if (postDataToServer(host, path, body, network) == PostOutcome::Done)
            return PostOutcome::Done;
    }
    return PostOutcome::Failed;
}

QNetworkRequest LFANWorker::setupRequest(const QString &host) const
{
    QString base = host;
    while (base.endsWith(QLatin1Char('/')))
        base.chop(1);
    QNetworkRequest request(QUrl(base + kLogPath));
    request.setTransferTimeout(kRequestTimeoutMs);
    const LFAnalyticsApp &app = m_context.app();
    const LFAnalyticsDevice &device = m_context.device();
    const QByteArray keyDigest = QCryptographicHash::hash(app.appid().toUtf8(), QCryptographicHash::Md5).toHex();
    const QString sdk = QStringLiteral("%1/%2 %3/%4 %5/%6 %7")
                            .arg(LFAnalyticsApp::kSdkTypeName, LFAnalyticsApp::kSdkVersion,
                                 QString::fromLatin1(QUrl::toPercentEncoding(device.displayName())),
                                 QString::fromLatin1(QUrl::toPercentEncoding(app.appVersion())),
                                 device.model(), device.osVersion(), QString::fromLatin1(keyDigest));
    request.setRawHeader("Msg-Type", "envelope");
    request.setRawHeader("Content-Type", "envelope");
    request.setRawHeader("X-Lefiseix-Sdk", sdk.toUtf8());
    request.setRawHeader("X-Lefiseix-UTC", QByteArray::number(qint64(m_context.now() * 1000)));
    return request;
}

LFANWorker::PostOutcome LFANWorker::postDataToServer(const QString &host, const QString &path,
                                                     const QByteArray &body, QNetworkAccessManager &network)
{
    QElapsedTimer elapsed;
    elapsed.start();
    const std::unique_ptr<QNetworkReply> reply(network.post(setupRequest(host), body));
    QEventLoop loop;
    connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    connect(this, &LFANWorker::cancelRequested, reply.get(), &QNetworkReply::abort);
    if (!reply->isFinished())
        loop.exec();

    LFAnalyticsConfig &config = m_context.config();
    const double now = m_context.now();
    config.setConfigure(QDateTime::fromMSecsSinceEpoch(qint64(now * 1000)).toString(Qt::ISODate),
                        QStringLiteral("lastPostDate"));
    config.setConfigure(now, QStringLiteral("lastPostInterval"));

    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const QString error = reply->error() == QNetworkReply::NoError ? QString() : reply->errorString();
    const QByteArray contentType = reply->rawHeader("Content-Type");
    const QByteArray answer = reply->readAll();
    LFANReplyHandler handler(m_context);
    if (!handler.handle(status, contentType, answer, error, elapsed.elapsed()))
        return PostOutcome::Failed;
    LFAnalyticsUtility::removeFile(path);
    return PostOutcome::Done;
}
