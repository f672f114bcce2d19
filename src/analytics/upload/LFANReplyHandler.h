#pragma once
// Judges the log endpoint's reply to one post and applies it: the request counters, the
// success or failure line, and a valid imprint. Runs on the upload worker's thread.

#include <QByteArray>

class LFAnalyticsContext;

class LFANReplyHandler
{
public:
    static inline const QByteArray kThriftContentType = QByteArrayLiteral("application/thrift");
    static constexpr int kStatusOk = 200;
    static constexpr int32_t kRespCodeSuccess = 1;

    explicit LFANReplyHandler(LFAnalyticsContext &context);

    // Whether the post counts as done (its file may go). `status` is 0 when no answer came;
    // `error` is the transport's message then.
    bool handle(int status, const QByteArray &contentType, const QByteArray &body,
                const QString &error, qint64 elapsedMs);

private:
    void count(const QString &key);

    LFAnalyticsContext &m_context;
};
