#pragma once
// Console output of Google Benchmark plus one closing line: how many times the first named
// benchmark's CPU time is the second's, so a comparison made in one run reads at a glance.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <utility>

class RatioReporter : public benchmark::ConsoleReporter
{
public:
    RatioReporter(std::string subject, std::string reference, std::string label)
        : m_subject(std::move(subject)), m_reference(std::move(reference)), m_label(std::move(label))
    {
    }

    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs)
            m_times[run.benchmark_name()] = run.GetAdjustedCPUTime();
    }

    void Finalize() override
    {
        ConsoleReporter::Finalize();
        if (m_times.count(m_subject) && m_times.count(m_reference))
            std::printf("%s: %.2f\n", m_label.c_str(), m_times[m_subject] / m_times[m_reference]);
    }

private:
    std::string m_subject;
    std::string m_reference;
    std::string m_label;
    std::map<std::string, double> m_times;
};
