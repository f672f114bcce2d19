#pragma once
// Posts envelope files to the analytics log endpoints on a thread of its own, one job (a list
// of files) after another. submit, flush and shutdown may be called from any thread; the
// posting itself, with its blocking requests, runs only on the worker's thread.

#include <QMutex>
#include <QNetworkRequest>
#include <QStringList>
#include <QThread>
#include <QWaitCondition>

#include <deque>

class LFAnalyticsContext;
class QNetworkAccessManager;

class LFANWorker : public QThread
{
    Q_OBJECT
public:
    static constexpr int kRequestTimeoutMs = 30000;
    static inline const QString kLogPath = QStringLiteral("/app_logs");

    explicit LFANWorker(LFAnalyticsContext &context);
    ~LFANWorker() override;

    // Queues a job: its files are posted oldest first; the job-running mark is cleared at its
    // end. False once the worker is shutting down: the job is not taken.
    bool submit(QStringList envelopeFilePaths);
    // Waits until every job submitted so far has ended; false when the time ran out first.
    bool flush(int timeoutMs);
    // Takes no more jobs, lets a running post finish within the time, then cancels it and
    // drops what is left; true when the thread ended in time.
    bool shutdown(int timeoutMs);

signals:
    void cancelRequested();

protected:
    void run() override;

private:
    enum class PostOutcome { Done, Failed };

    void performJob(const QStringList &paths, QNetworkAccessManager &network);
    // Posts one file to the primary, then the fallback endpoint.
    PostOutcome postDataWithFile(const QString &path, QNetworkAccessManager &network);
    PostOutcome postDataToServer(const QString &host, const QString &path, const QByteArray &body,
                                 QNetworkAccessManager &network);
    QNetworkRequest setupRequest(const QString &host) const;
    bool stopRequested() const;

    LFAnalyticsContext &m_context;
    mutable QMutex m_mutex;
    QWaitCondition m_changed;
    std::deque<QStringList> m_jobs;
    bool m_busy = false;
    bool m_stopping = false;
    bool m_cancelled = false;
};
