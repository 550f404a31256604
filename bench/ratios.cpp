#include "bench/ratios.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <thread>

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

namespace {

// 0 where one of the two was not measured.
double valueOf(const Ratio& ratio, const ShortestTimes& times)
{
    const double baseline = times[ratio.baseline];
    return baseline > 0.0 ? times[ratio.measured] * ratio.perUnit / baseline : 0.0;
}

bool holds(const Ratio& ratio, double value)
{
    return value > 0.0 && value <= ratio.highest;
}

bool allHold(const std::vector<Ratio>& ratios, const ShortestTimes& times)
{
    return std::all_of(ratios.begin(), ratios.end(), [&times](const Ratio& ratio) {
        return holds(ratio, valueOf(ratio, times));
    });
}

} // namespace

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
    // A busy machine can only lengthen a time, so a ratio that does not hold is measured again:
    // the shortest times of all rounds count. The pause lets what disturbs come to its end.
    constexpr int furtherRounds = 6;
    constexpr std::chrono::seconds pause(2);
    for (int round = 0; round < furtherRounds && !allHold(ratios, times); ++round) {
        std::this_thread::sleep_for(pause);
        benchmark::RunSpecifiedBenchmarks(&times);
    }

    std::printf("\n%-58s %8s %8s\n", "ratio", "measured", "allowed");
    for (const Ratio& ratio : ratios) {
        const double value = valueOf(ratio, times);
        std::printf("%-58s %8.2f %8.2f%s\n", ratio.what.c_str(), value, ratio.highest,
                    holds(ratio, value) ? "" : "  TOO HIGH OR NOT MEASURED");
    }
    return allHold(ratios, times) ? 0 : 1;
}
