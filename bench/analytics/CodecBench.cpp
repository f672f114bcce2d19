// Encoding and decoding one log entry of 1,000 events in 10 sessions with 5 pages each: our
// records against Apache Thrift's C++ library (TBinaryProtocol over TMemoryBuffer) on the same
// data, in the same run. Prints the speed ratios at the end.

#include "LFTRecords.h"
#include "LogEntrySample.h"
#include "RatioReporter.h"
#include "RepeatedRuns.h"
#include "analytics_types.h"

#include <benchmark/benchmark.h>
#include <thrift/protocol/TBinaryProtocol.h>
#include <thrift/transport/TBufferTransports.h>

#include <cstdio>
#include <map>
#include <memory>

namespace {

namespace o = quorvel_oracle;
using apache::thrift::protocol::TBinaryProtocol;
using apache::thrift::transport::TMemoryBuffer;

using namespace benchentry;

o::UALogEntry theirEntry()
{
    o::UALogEntry entry;
    entry.client_stats.successful_requests = 10;
    entry.client_stats.failed_requests = 1;
    entry.app_info.key = "3c1f9a27b84e0d65a2f7c913";
    entry.app_info.__set_version("1.0.0");
    entry.app_info.sdk_type = 1;
    entry.app_info.sdk_version = "3.6.6";
    entry.app_info.channel = "App Store";
    entry.device_info.__set_device_id("699ea1fa5adbd7cb5d6741621e931b622d99c077");
    entry.device_info.__set_model("x86_64");
    entry.device_info.__set_os("debian");

    std::vector<o::InstantMsg> messages;
    std::vector<o::Session> sessions;
    for (int s = 0; s < kSessions; ++s) {
        std::vector<o::Event> events;
        for (int e = 0; e < kEventsPerSession; ++e) {
            o::Event event;
            event.name = "event_" + std::to_string(e % 20);
            if (e % 2 == 0) {
                o::PropertyValue label;
                label.__set_string_value("label_" + std::to_string(e));
                event.properties[event.name] = label;
                event.__set_acc(1);
            } else {
                for (int k = 0; k < 3; ++k) {
                    o::PropertyValue value;
                    value.__set_string_value("value_" + std::to_string(e * 3 + k));
                    event.properties["key_" + std::to_string(k)] = value;
                }
                event.__set_duration(250 + e);
            }
            event.ts = kStartMs + s * 600000 + e * 1000;
            events.push_back(event);
        }
        o::InstantMsg message;
        message.id = sessionId(s);
        message.__set_events(events);
        messages.push_back(message);

        std::vector<o::Page> pages;
        for (int p = 0; p < kPagesPerSession; ++p) {
            o::Page page;
            page.page_name = "ViewController" + std::to_string(p);
            page.duration = 1000 * (p + 3);
            pages.push_back(page);
        }
        o::Session session;
        session.id = sessionId(s);
        session.start_time = kStartMs + s * 600000;
        session.end_time = kStartMs + s * 600000 + 300000;
        session.duration = 300000;
        session.__set_pages(pages);
        sessions.push_back(session);
    }
    entry.__set_instant_msgs(messages);
    entry.__set_sessions(sessions);
    return entry;
}

std::string theirEncode(const o::UALogEntry &entry)
{
    auto buffer = std::make_shared<TMemoryBuffer>();
    TBinaryProtocol protocol(buffer);
    entry.write(&protocol);
    return buffer->getBufferAsString();
}

void BM_Ours_Encode(benchmark::State &state)
{
    const LFTUALogEntry entry = ourEntry();
    for (auto _ : state) {
        QByteArray bytes = LFTEncode(entry);
        benchmark::DoNotOptimize(bytes.constData());
    }
}

void BM_Thrift_Encode(benchmark::State &state)
{
    const o::UALogEntry entry = theirEntry();
    for (auto _ : state) {
        auto buffer = std::make_shared<TMemoryBuffer>();
        TBinaryProtocol protocol(buffer);
        entry.write(&protocol);
        uint8_t *bytes;
        uint32_t size;
        buffer->getBuffer(&bytes, &size);
        benchmark::DoNotOptimize(bytes);
    }
}

void BM_Ours_Decode(benchmark::State &state)
{
    const QByteArray bytes = LFTEncode(ourEntry());
    for (auto _ : state) {
        LFTUALogEntry entry = LFTDecode<LFTUALogEntry>(bytes);
        benchmark::DoNotOptimize(&entry);
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * bytes.size());
}

void BM_Thrift_Decode(benchmark::State &state)
{
    std::string bytes = theirEncode(theirEntry());
    for (auto _ : state) {
        auto buffer = std::make_shared<TMemoryBuffer>(reinterpret_cast<uint8_t *>(bytes.data()),
                                                      uint32_t(bytes.size()));
        TBinaryProtocol protocol(buffer);
        o::UALogEntry entry;
        entry.read(&protocol);
        benchmark::DoNotOptimize(&entry);
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(bytes.size()));
}

BENCHMARK(BM_Ours_Encode);
BENCHMARK(BM_Thrift_Encode);
BENCHMARK(BM_Ours_Decode);
BENCHMARK(BM_Thrift_Decode);

} // namespace

int main(int argc, char **argv)
{
    // Both sides must produce the same bytes, or the comparison means nothing.
    if (LFTEncode(ourEntry()).toStdString() != theirEncode(theirEntry())) {
        std::fprintf(stderr, "the two encoders disagree on the benchmark entry\n");
        return 1;
    }
    std::vector<char *> arguments = withRepeatedRuns(argc, argv);
    int count = int(arguments.size()) - 1;
    benchmark::Initialize(&count, arguments.data());
    RatioReporter reporter({{"Encode", "BM_Ours_Encode", "BM_Thrift_Encode", "Apache Thrift"},
                            {"Decode", "BM_Ours_Decode", "BM_Thrift_Decode", "Apache Thrift"}});
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
