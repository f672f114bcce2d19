#pragma once
// Benchmarks whose figures are compared as ratios run repeated and interleaved unless told
// otherwise: on a machine shared with other work the median of runs taken turn about with the
// peer's is far steadier than one run of each. Main thread, before benchmark::Initialize.

#include <vector>

inline std::vector<char *> withRepeatedRuns(int argc, char **argv)
{
    static char repetitions[] = "--benchmark_repetitions=15";
    static char interleaving[] = "--benchmark_enable_random_interleaving=true";
    static char aggregatesOnly[] = "--benchmark_report_aggregates_only=true";
    std::vector<char *> arguments(argv, argv + argc);
    if (argc == 1)
        arguments.insert(arguments.end(), {repetitions, interleaving, aggregatesOnly});
    arguments.push_back(nullptr);
    return arguments;
}
