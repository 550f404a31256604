#include "bench/ratios.h"
#include "processing/thin.h"

#include <cmath>
#include <cstdint>
#include <string>

// Thinning against one pass that measures each sample's distance to one line.

namespace {

raytrace::Layers profileOf(std::int64_t count)
{
    raytrace::Layers samples(static_cast<std::size_t>(count));
    for (std::int64_t i = 0; i < count; ++i) {
        raytrace::LayerRecord& sample = samples[static_cast<std::size_t>(i)];
        sample.d = 12000.0 * double(i) / double(count - 1);
        sample.c = 1492.0 + 0.0168 * sample.d + 38.0 * std::exp(-sample.d / 180.0) +
                   0.4 * std::sin(sample.d / 37.0);
    }
    return samples;
}

void thin(benchmark::State& state)
{
    const raytrace::Layers samples = profileOf(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(processing::thinnedSamples(samples, 0.1));
}

// Every sample leaves the line before it: nothing is dropped.
void thinRough(benchmark::State& state)
{
    raytrace::Layers samples = profileOf(state.range(0));
    for (std::size_t i = 0; i < samples.size(); i += 2)
        samples[i].c += 20.0;
    for (auto _ : state)
        benchmark::DoNotOptimize(processing::thinnedSamples(samples, 0.1));
}

void distances(benchmark::State& state)
{
    const raytrace::Layers samples = profileOf(state.range(0));
    const processing::SampleLine line(samples.front(), samples.back());
    for (auto _ : state) {
        double sum = 0.0;
        for (const raytrace::LayerRecord& sample : samples)
            sum += line.distanceTo(sample);
        benchmark::DoNotOptimize(sum);
    }
}

BENCHMARK(thin)->Arg(1000)->Arg(10000)->Arg(100000)->Arg(1000000);
BENCHMARK(thinRough)->Arg(1000)->Arg(10000)->Arg(100000)->Arg(1000000);
BENCHMARK(distances)->Arg(1000)->Arg(10000)->Arg(100000)->Arg(1000000);

} // namespace

int main(int argc, char** argv)
{
    std::vector<Ratio> ratios = {
        {"thin: time per sample, 10 000 against 1 000", "thin/10000", "thin/1000", 0.1, 1.5},
        {"thin: time per sample, 100 000 against 1 000", "thin/100000", "thin/1000", 0.01, 1.5},
        {"thin: time per sample, 1 000 000 against 1 000", "thin/1000000", "thin/1000", 0.001, 1.5},
    };
    const std::vector<std::string> counts = {"1000", "10000", "100000", "1000000"};
    for (const std::string& count : counts) {
        ratios.push_back({"thin against the distances to one line, " + count, "thin/" + count,
                          "distances/" + count, 1.0, 4.0});
        ratios.push_back({"thin, nothing dropped, against the same, " + count, "thinRough/" + count,
                          "distances/" + count, 1.0, 4.0});
    }
    return runWithRatios(argc, argv, ratios);
}
