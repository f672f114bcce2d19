#pragma once
// What the benchmarks report: the spread of a set of times, and the process's memory as the
// kernel reports it. Plain functions; any thread.

#include <QByteArray>
#include <QFile>

#include <algorithm>
#include <vector>

namespace benchmeasures {

// Median, p99 and worst of a set of times.
struct Spread
{
    double medianMs = 0;
    double p99Ms = 0;
    double worstMs = 0;
    int count = 0;
};

inline Spread spreadOf(std::vector<double> ms)
{
    if (ms.empty())
        return {};
    std::sort(ms.begin(), ms.end());
    return {ms[ms.size() / 2], ms[ms.size() * 99 / 100], ms.back(), int(ms.size())};
}

// A field of /proc/self/status ("VmRSS", "VmHWM") in megabytes; 0 where there is none.
inline double statusMegabytes(const QByteArray &field)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith(field + ':'))
            return line.mid(field.size() + 1).trimmed().split(' ').value(0).toDouble() / 1024.0;
    }
    return 0;
}

} // namespace benchmeasures
