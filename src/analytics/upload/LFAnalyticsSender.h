#pragma once
// Starts sends: validates the waiting envelope files, makes one from memory when none waits,
// and hands the list to the upload worker (the send queue). Main thread, except shutdown.

#include "LFANWorker.h"

#include <QStringList>

class LFAnalyticsContext;

class LFAnalyticsSender
{
public:
    // A file is sent only when longer than kMinFileSize, shorter than kMaxFileSize and
    // younger than kMaxFileAge seconds; at most kMaxFiles go in one job, the newest.
    static constexpr qint64 kMinFileSize = 10;
    static constexpr qint64 kMaxFileSize = 0x40000;
    static constexpr double kMaxFileAge = 1209601;
    static constexpr int kMaxFiles = 10;
    // How long quitting waits for a running post.
    static constexpr int kQuitWaitMs = 2000;

    explicit LFAnalyticsSender(LFAnalyticsContext &context);

    void beginPerformJob();
    // The files still worth sending, oldest first; the others are deleted.
    QStringList validateEnvelopeFiles(const QStringList &paths) const;
    // Lets a running post finish within the time and ends the worker.
    bool shutdown(int timeoutMs);

    LFANWorker &sendLogQueue() { return m_worker; }

private:
    QStringList listValidFiles() const;

    LFAnalyticsContext &m_context;
    LFANWorker m_worker;
};
