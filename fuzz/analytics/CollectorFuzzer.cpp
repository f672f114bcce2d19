// Feeds arbitrary request bodies to the collector over an in-memory database: every body gets
// a Thrift answer (resp_code 1 only when something was stored), never a crash.

#include "AnalyticsCollector.h"
#include "AnalyticsStore.h"

#include <QCoreApplication>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static int argc = 1;
    static char name[] = "fuzz_collector";
    static char *argv[] = {name, nullptr};
    static QCoreApplication app(argc, argv);
    static QString error;
    static const std::unique_ptr<AnalyticsStore> store = AnalyticsStore::open(QStringLiteral(":memory:"), &error);
    static AnalyticsCollector collector(*store, CollectorOptions(), [] { return qint64(1700000000000); });

    const QByteArray body = QByteArray::fromRawData(reinterpret_cast<const char *>(data), qsizetype(size));
    const AnalyticsCollector::Reply reply = collector.handle("POST", "/app_logs", body);
    if (reply.status != 200 || LFTDecode<LFTResponse>(reply.body).resp_code() == 0)
        std::abort();
    return 0;
}
