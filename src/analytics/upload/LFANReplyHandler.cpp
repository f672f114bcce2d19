#include "LFANReplyHandler.h"

#include "LFAnalyticsConfig.h"
#include "LFAnalyticsContext.h"
#include "LFAnalyticsThrift.h"

namespace {
const QString kSuccessfulRequestsKey = QStringLiteral("lfSuccessfulRequests");
const QString kFailedRequestsKey = QStringLiteral("lfFailedRequests");
const QString kLastRequestSpentKey = QStringLiteral("lfLastRequestSpentMS");

bool isThrift(const QByteArray &contentType)
{
    return contentType.split(';').value(0).trimmed().toLower() == LFANReplyHandler::kThriftContentType;
}
} // namespace

LFANReplyHandler::LFANReplyHandler(LFAnalyticsContext &context)
    : m_context(context)
{
}

void LFANReplyHandler::count(const QString &key)
{
    LFAnalyticsConfig &config = m_context.config();
    config.setConfigure(int(config.numberWithKey(key).value_or(0)) + 1, key);
}

bool LFANReplyHandler::handle(int status, const QByteArray &contentType, const QByteArray &body,
                              const QString &error, qint64 elapsedMs)
{
    if (status != 0 && status != kStatusOk) {
        m_context.log(QStringLiteral("(Response Applog) {\"fail\": \"statusCode\":%1}").arg(status));
        count(kFailedRequestsKey);
        return false;
    }
    if (body.isEmpty() || !isThrift(contentType)) {
        if (!error.isEmpty())
            m_context.log(QStringLiteral("(Error   Applog) %1").arg(error));
        count(kFailedRequestsKey);
        return false;
    }
    LFAnalyticsThrift &thrift = m_context.thrift();
    const std::optional<LFTResponse> response = thrift.verifyResponseData(body);
    if (!response) {
        // A reply that cannot be read leaves the file for the next attempt.
        count(kFailedRequestsKey);
        return false;
    }
    const bool success = response->resp_code() == kRespCodeSuccess;
    m_context.log(success ? QStringLiteral("(Response Applog) {\"success\": \"ok\"}")
                          : QStringLiteral("(Response Applog) {\"fail\": \"error\"}"));
    count(success ? kSuccessfulRequestsKey : kFailedRequestsKey);
    if (elapsedMs >= 1)
        m_context.config().setConfigure(elapsedMs, kLastRequestSpentKey);
    if (success && response->imprintIsSet() && thrift.validateImprintChecksum(response->imprint()))
        thrift.updateImprint(response->imprint());
    return true;
}
