#include "bench/ratios.h"
#include "processing/atlas.h"

#include <QFile>
#include <QTemporaryDir>

#include <charconv>
#include <cstdio>
#include <memory>

// Reading a pair of atlas files of full size, against what the standard library takes for the
// numbers in their bytes; and having the same pair again.

namespace {

// As many levels as the published atlas has. The sea is shallower at most places, and two cells of
// seven are land, so that a file has some 25 MB.
QByteArray atlasText(double surface, double perLevel)
{
    constexpr int levels = 102;
    QByteArray text = "made up\nLATITUDE, LONGITUDE, VALUES AT DEPTHS (M):0";
    for (int level = 1; level < levels; ++level)
        text += ',' + QByteArray::number(level * 50);
    text += '\n';
    for (int latitude = 0; latitude < 180; ++latitude) {
        for (int longitude = 0; longitude < 360; ++longitude) {
            const int cell = latitude * 360 + longitude;
            const int deepest = cell % 7 < 2 ? 0 : cell % 11 == 0 ? levels : 55 + cell % 47;
            text += QByteArray::number(latitude - 89.5, 'f', 3) + ',' +
                    QByteArray::number(longitude - 179.5, 'f', 3);
            for (int level = 0; level < deepest; ++level)
                text +=
                    ',' + QByteArray::number(
                              surface + perLevel * level + 0.001 * ((cell + level) % 997), 'f', 3);
            text += '\n';
        }
    }
    return text;
}

// The pair, written once for all benchmarks.
struct Pair
{
    Pair()
        : salinity(atlasText(34.0, 0.005)), temperature(atlasText(18.0, -0.16)),
          salinityPath(written("salinity.csv", salinity)),
          temperaturePath(written("temperature.csv", temperature))
    {
        std::printf("pair of %.1f and %.1f MB\n", double(salinity.size()) / 1e6,
                    double(temperature.size()) / 1e6);
    }

    QString written(const char* name, const QByteArray& text) const
    {
        QFile file(folder.filePath(QLatin1String(name)));
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            return {};
        return file.fileName();
    }

    QTemporaryDir folder;
    QByteArray salinity;
    QByteArray temperature;
    QString salinityPath;
    QString temperaturePath;
};

const Pair& pairOfFiles()
{
    static const Pair pair;
    return pair;
}

void read(benchmark::State& state, processing::WorldOceanAtlas& atlas)
{
    const Pair& pair = pairOfFiles();
    if (atlas.read(pair.salinityPath, pair.temperaturePath) !=
        processing::WorldOceanAtlas::Read::Both)
        state.SkipWithError("not read");
}

// The memory of the grids is taken within the time, as it is when a host reads its first pair.
void firstTime(benchmark::State& state)
{
    pairOfFiles();
    for (auto _ : state) {
        const auto atlas = std::make_unique<processing::WorldOceanAtlas>();
        read(state, *atlas);
        // 59.5 degrees south: cells of each depth lie side by side.
        if (atlas->woaProfile(-59.5, 0.5).depths.isEmpty() &&
            atlas->woaProfile(-59.5, 2.5).depths.isEmpty())
            state.SkipWithError("no profile");
    }
}

void secondTime(benchmark::State& state)
{
    const auto atlas = std::make_unique<processing::WorldOceanAtlas>();
    read(state, *atlas);
    for (auto _ : state) {
        read(state, *atlas);
        benchmark::DoNotOptimize(atlas->woaProfile(-59.5, 0.5));
    }
}

// The baseline: one pass over the bytes that makes a double of each number.
qint64 addNumbers(const QByteArray& text, double& sum)
{
    qint64 count = 0;
    const char* at = text.constData();
    const char* const end = at + text.size();
    while (at != end) {
        double value = 0.0;
        const auto read = std::from_chars(at, end, value);
        if (read.ec == std::errc()) {
            sum += value;
            ++count;
            at = read.ptr;
        }
        if (at != end)
            ++at;
    }
    return count;
}

void numbers(benchmark::State& state)
{
    const Pair& pair = pairOfFiles();
    for (auto _ : state) {
        double sum = 0.0;
        if (addNumbers(pair.salinity, sum) + addNumbers(pair.temperature, sum) < 5000000)
            state.SkipWithError("numbers are missing");
        benchmark::DoNotOptimize(sum);
    }
}

BENCHMARK(firstTime)->Arg(102)->Unit(benchmark::kMillisecond);
BENCHMARK(secondTime)->Arg(102)->Unit(benchmark::kMillisecond);
BENCHMARK(numbers)->Arg(102)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    return runWithRatios(argc, argv,
                         {{"a pair of atlas files against its numbers alone", "firstTime/102",
                           "numbers/102", 1.0, 2.0},
                          {"the same pair again, against the first time", "secondTime/102",
                           "firstTime/102", 1.0, 0.01}});
}
