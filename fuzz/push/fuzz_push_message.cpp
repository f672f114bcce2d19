// A received notification of any shape becomes a message (perhaps without id or alert) and
// a log line, never a crash. Logging is on so the log lines' formatting runs too.
#include "LFPMessage.h"
#include "LFPushUtils.h"

#include <QJsonDocument>
#include <QLoggingCategory>

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const bool quiet = [] {
        QLoggingCategory::setFilterRules(QStringLiteral("quorvel.push.info=false"));
        LFPushUtils::setLogEnabled(true);
        return true;
    }();
    Q_UNUSED(quiet)
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const LFPMessage message(QJsonDocument::fromJson(bytes).object(), 1.0);
    Q_UNUSED(message)
    return 0;
}
