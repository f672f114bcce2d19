#include "AnalyticsCollector.h"

#include "CollectorLog.h"
#include "LFAnalyticsThrift.h"
#include "LFEnvelopeOpener.h"

namespace {
// Imprint values carry the time they were set and who set them.
const QString kImprintGuid = QStringLiteral("quorvel-server");

LFTImprint makeImprint(const CollectorOptions &options, qint64 nowMs)
{
    LFTImprintMap property;
    for (auto it = options.imprint.cbegin(); it != options.imprint.cend(); ++it) {
        LFTImprintValue value;
        value.setValue(it.value());
        value.setTs(nowMs);
        value.setGuid(kImprintGuid);
        property.insert(it.key(), value);
    }
    LFTImprint imprint;
    imprint.setProperty(property);
    imprint.setVersion(CollectorOptions::kImprintVersion);
    imprint.setChecksum(LFAnalyticsThrift::generateImprintChecksum(imprint));
    return imprint;
}
} // namespace

AnalyticsCollector::AnalyticsCollector(AnalyticsStore &store, const CollectorOptions &options,
                                       std::function<qint64()> nowMs)
    : m_store(store)
    , m_imprint(makeImprint(options, nowMs()))
    , m_nowMs(std::move(nowMs))
{
}

AnalyticsCollector::Reply AnalyticsCollector::respond(int32_t code, const QString &message, bool withImprint) const
{
    LFTResponse response;
    response.setResp_code(code);
    if (!message.isEmpty())
        response.setMsg(message);
    if (withImprint)
        response.setImprint(m_imprint);
    Reply reply;
    reply.body = LFTEncode(response);
    reply.note = message;
    return reply;
}

AnalyticsCollector::Reply AnalyticsCollector::handle(const QByteArray &method, const QByteArray &path,
                                                     const QByteArray &body)
{
    if (path != kLogPath)
        return {404, QByteArrayLiteral("text/plain"), QByteArrayLiteral("not found\n"), QString()};
    if (method != QByteArrayLiteral("POST"))
        return {405, QByteArrayLiteral("text/plain"), QByteArrayLiteral("only POST\n"), QString()};
    const LFEnvelopeOpener::Result opened = LFEnvelopeOpener::open(body);
    if (!opened.opened) {
        collectorLog(QStringLiteral("bad envelope (%1 bytes): %2").arg(body.size()).arg(opened.problem));
        return respond(kRespCodeBadEnvelope, opened.problem, false);
    }
    QString error;
    if (!m_store.store(opened.opened->entry, m_nowMs(), &error)) {
        collectorLog(QStringLiteral("envelope not stored: %1").arg(error));
        return respond(kRespCodeNotStored, QStringLiteral("not stored"), false);
    }
    return respond(kRespCodeSuccess, QString(), true);
}
