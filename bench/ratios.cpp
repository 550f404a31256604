#include "bench/ratios.h"

#include <algorithm>
#include <cstdio>

void ShortestTimes::ReportRuns(const std::vector<Run>& runs)
{
    for (const Run& run : runs) {
        if (run.run_type != Run::RT_Iteration || run.error_occurred)
            continue;
        const double time = run.cpu_accumulated_time / double(run.iterations) * 1e9;
        const std::string name = run.run_name.function_name + '/' + run.run_name.args;
        const auto known = m_times.emplace(name, time).first;
        known->second = std::min(known->second, time);
    }
    ConsoleReporter::ReportRuns(runs);
}

double ShortestTimes::operator[](const std::string& name) const
{
    const auto found = m_times.find(name);
    return found == m_times.end() ? 0.0 : found->second;
}

int runWithRatios(int argc, char** argv, const std::vector<Ratio>& ratios)
{
    std::vector<char*> arguments(argv, argv + argc);
    char repetitions[] = "--benchmark_repetitions=5";
    char shortRuns[] = "--benchmark_min_time=0.05";
    arguments.insert(arguments.begin() + 1, {repetitions, shortRuns});
    int count = int(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    ShortestTimes times;
    benchmark::RunSpecifiedBenchmarks(&times);

    bool isGood = true;
    std::printf("\n%-58s %8s %8s\n", "ratio", "measured", "allowed");
    for (const Ratio& ratio : ratios) {
        const double baseline = times[ratio.baseline];
        const double measured = times[ratio.measured] * ratio.perUnit;
        const double value = baseline > 0.0 ? measured / baseline : 0.0;
        const bool holds = value > 0.0 && value <= ratio.highest;
        isGood = isGood && holds;
        std::printf("%-58s %8.2f %8.2f%s\n", ratio.what.c_str(), value, ratio.highest,
                    holds ? "" : "  TOO HIGH OR NOT MEASURED");
    }
    return isGood ? 0 : 1;
}
