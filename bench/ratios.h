#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

/// What a benchmark program promises: a ratio of two measurements of the same run.
struct Ratio
{
    std::string what;     ///< for the table
    std::string measured; ///< name of a benchmark, with its argument: "open/100000"
    std::string baseline; ///< name of the one it is compared with
    double perUnit = 1.0; ///< factor on the measured time, e.g. 0.01 to compare times per level
    double highest = 0.0; ///< largest ratio that is allowed
};

/// Prints as the console does and keeps the shortest time (ns) of each benchmark's repetitions,
/// which other work on the machine disturbs the least.
class ShortestTimes : public benchmark::ConsoleReporter
{
  public:
    void ReportRuns(const std::vector<Run>& runs) override;
    double operator[](const std::string& name) const;

  private:
    std::map<std::string, double> m_times;
};

/// Runs all benchmarks, prints each ratio with its bound, and returns 1 if one exceeds it or was
/// not measured, else 0.
int runWithRatios(int argc, char** argv, const std::vector<Ratio>& ratios);
