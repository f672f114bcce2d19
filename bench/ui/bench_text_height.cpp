// Text-height measuring per call at the body font: a fresh text each call (the cost a list
// pays the first time it sees a reply), and the same texts again (what scrolling back pays).

#include "JsonChangDic.h"

#include <benchmark/benchmark.h>

#include <QApplication>

#include <vector>

namespace {

std::vector<QString> replyTexts(int count, int characters)
{
    const QString pool = QStringLiteral("楼主说得很有道理，这个副本的打法我也试过，确实需要先清小怪再打首领。");
    std::vector<QString> texts;
    texts.reserve(count);
    for (int i = 0; i < count; ++i) {
        QString text;
        while (text.size() < characters)
            text += pool.mid((i + text.size()) % pool.size(), 7);
        texts.push_back(text.left(characters) + QString::number(i));
    }
    return texts;
}

void BM_FirstMeasure(benchmark::State &state)
{
    const std::vector<QString> texts = replyTexts(200000, int(state.range(0)));
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(JsonChangDic::adaptiveWithText(texts[next]));
        next = (next + 1) % texts.size();
    }
}
BENCHMARK(BM_FirstMeasure)->Arg(20)->Arg(200)->Iterations(20000);

void BM_RepeatedMeasure(benchmark::State &state)
{
    const std::vector<QString> texts = replyTexts(50, int(state.range(0)));
    for (const QString &text : texts)
        JsonChangDic::adaptiveWithText(text);
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(JsonChangDic::adaptiveWithText(texts[next]));
        next = (next + 1) % texts.size();
    }
}
BENCHMARK(BM_RepeatedMeasure)->Arg(20)->Arg(200);

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
