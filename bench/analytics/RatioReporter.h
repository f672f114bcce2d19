#pragma once
// A console reporter that keeps each benchmark's time per iteration and, after the table,
// prints for each pair how much faster ours is than its peer: the median when the runs are
// repeated, since the figures are noisy on a shared machine. Main thread.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

class RatioReporter : public benchmark::ConsoleReporter
{
public:
    struct Pair
    {
        std::string label;
        std::string ours;
        std::string theirs;
        std::string theirName;
    };

    explicit RatioReporter(std::vector<Pair> pairs) : m_pairs(std::move(pairs)) {}

    void ReportRuns(const std::vector<Run> &runs) override
    {
        // A repeated benchmark's aggregates follow its runs, so its median is kept last.
        for (const Run &run : runs) {
            if (run.run_type == Run::RT_Iteration || run.aggregate_name == "median")
                m_nanoseconds[run.run_name.function_name] = run.GetAdjustedRealTime();
        }
        ConsoleReporter::ReportRuns(runs);
    }

    void Finalize() override
    {
        ConsoleReporter::Finalize();
        for (const Pair &pair : m_pairs) {
            if (!m_nanoseconds.count(pair.ours) || !m_nanoseconds.count(pair.theirs))
                continue;
            const double ours = m_nanoseconds[pair.ours];
            const double theirs = m_nanoseconds[pair.theirs];
            std::printf("%s: ours %.1f us, %s %.1f us, ours takes %.2fx the time (%.2fx faster)\n",
                        pair.label.c_str(), ours / 1000, pair.theirName.c_str(), theirs / 1000, ours / theirs,
                        theirs / ours);
        }
    }

private:
    std::vector<Pair> m_pairs;
    std::map<std::string, double> m_nanoseconds;
};
