#include "bench/ratios.h"
#include "datagram/sspdatagram.h"
#include "datagram/sspfields.h"

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

// Reading: the most samples that a datagram may have, taken apart and verified, every number read.
QByteArray longestDatagram(qint64 levels)
{
    return datagram::buildDatagram(profileOf(levels), decimals).bytes;
}

void takeApart(benchmark::State& state)
{
    const QByteArray file = longestDatagram(state.range(0));
    for (auto _ : state) {
        const QByteArray text = datagram::firstDatagram(file);
        const datagram::DatagramFields fields(text);
        if (datagram::fnVerifySXX(text, fields) != 0)
            state.SkipWithError("the datagram is not sound");
        const datagram::SspDatagram read = datagram::readFields(fields);
        double sum = 0.0;
        for (int sample = 0; sample < read.samples; ++sample) {
            for (int column = 0; column < 4; ++column)
                sum += read.value(sample, column);
        }
        benchmark::DoNotOptimize(sum);
        benchmark::DoNotOptimize(datagram::shownDecimals(read));
    }
}

// The baseline: the same numbers in the same text, one after the other.
void fromChars(benchmark::State& state)
{
    const QByteArray text = longestDatagram(state.range(0));
    for (auto _ : state) {
        const char* at = text.constData() + text.indexOf("2026,") + 5;
        const char* const end = text.constData() + text.size();
        double sum = 0.0;
        for (int number = 0; number < 4000; ++number) {
            while (at != end && (*at < '0' || *at > '9') && *at != '-')
                ++at;
            double value = 0.0;
            at = std::from_chars(at, end, value).ptr;
            sum += value;
        }
        benchmark::DoNotOptimize(sum);
    }
}

BENCHMARK(takeApart)->Arg(1000);
BENCHMARK(fromChars)->Arg(1000);
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
            {"datagram read against its numbers alone, 1 000", "takeApart/1000", "fromChars/1000",
             1.0, 3.0},
        });
}
