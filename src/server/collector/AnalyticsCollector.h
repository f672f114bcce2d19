#pragma once
// Receives analytics uploads: opens each envelope, stores its log entry and answers with a
// Response that carries the configured imprint. Main thread, like the store it writes to.

#include "AnalyticsStore.h"
#include "CollectorOptions.h"
#include "LFTRecords.h"

#include <QByteArray>
#include <QString>

#include <functional>

class AnalyticsCollector
{
public:
    static constexpr int32_t kRespCodeSuccess = 1;
    static constexpr int32_t kRespCodeBadEnvelope = 2;
    static constexpr int32_t kRespCodeNotStored = 3;
    static inline const QByteArray kLogPath = QByteArrayLiteral("/app_logs");
    static inline const QByteArray kThriftContentType = QByteArrayLiteral("application/thrift");

    struct Reply
    {
        int status = 200;
        QByteArray contentType = kThriftContentType;
        QByteArray body;
        QString note;   // for the request log line
    };

    AnalyticsCollector(AnalyticsStore &store, const CollectorOptions &options, std::function<qint64()> nowMs);

    Reply handle(const QByteArray &method, const QByteArray &path, const QByteArray &body);

private:
    Reply respond(int32_t code, const QString &message, bool withImprint) const;

    AnalyticsStore &m_store;
    // Sent with every accepted upload; its checksum follows the client's rule.
    LFTImprint m_imprint;
    std::function<qint64()> m_nowMs;
};
