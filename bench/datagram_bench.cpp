#include "bench/ratios.h"
#include "datagram/sspdatagram.h"

#include <charconv>

// Writing a datagram, against what the standard library takes for the same numbers alone.

namespace {

datagram::DatagramParts profileOf(qint64 levels)
{
    datagram::DatagramParts parts;
    parts.identifier = QStringLiteral("01");
    parts.samples = QString::number(levels);
    parts.time = QStringLiteral("20261115123456");
    parts.latitude = QStringLiteral("59.5");
    parts.longitude = QStringLiteral("10.25");
    parts.comment = QStringLiteral("bench");
    for (qint64 i = 0; i < levels; ++i) {
        parts.columns.depth.append(float(i) * 0.11F);
        parts.columns.speed.append(1480.0F + float(i % 997) * 0.037F);
        parts.columns.temperature.append(15.0F - float(i % 131) * 0.1F);
        parts.columns.salinity.append(34.0F + float(i % 17) * 0.01F);
    }
    return parts;
}

const datagram::DecimalCounts decimals = {2, 2, 5, 3, 3, 0};

void build(benchmark::State& state)
{
    const datagram::DatagramParts parts = profileOf(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(datagram::buildDatagram(parts, decimals));
}

// The baseline: the numbers alone, one after the other into a buffer.
void toChars(benchmark::State& state)
{
    const datagram::DatagramParts parts = profileOf(state.range(0));
    std::vector<char> text(std::size_t(state.range(0)) * 48);
    for (auto _ : state) {
        char* at = text.data();
        char* const end = at + text.size();
        for (int i = 0; i < parts.columns.depth.size(); ++i) {
            const auto write = [&](float value, int places) {
                at = std::to_chars(at, end, double(value), std::chars_format::fixed, places).ptr;
            };
            write(parts.columns.depth[i], decimals.depth);
            write(parts.columns.speed[i], decimals.speed);
            write(parts.columns.temperature[i], decimals.temperature);
            write(parts.columns.salinity[i], decimals.salinity);
        }
        benchmark::DoNotOptimize(at);
    }
}

BENCHMARK(build)->Arg(1000)->Arg(100000);
BENCHMARK(toChars)->Arg(1000)->Arg(100000);

} // namespace

int main(int argc, char** argv)
{
    return runWithRatios(
        argc, argv,
        {
            {"datagram: time per level, 100 000 against 1 000", "build/100000", "build/1000", 0.01,
             1.5},
            {"datagram against its numbers alone, 1 000", "build/1000", "toChars/1000", 1.0, 4.0},
            {"datagram against its numbers alone, 100 000", "build/100000", "toChars/100000", 1.0,
             4.0},
        });
}
