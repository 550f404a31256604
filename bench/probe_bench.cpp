#include "bench/ratios.h"
#include "datagram/receivedata.h"

#include <charconv>
#include <cstdio>
#include <string>
#include <utility>

// Reading probe files, against what the standard library takes for the same numbers of the same
// text alone.

namespace {

struct Level
{
    double depth;
    double speed;
    double temperature;
    double salinity;
};

struct Sample
{
    int format;
    const char* header;
    int (*row)(char* text, std::size_t size, const Level& level);
};

// By benchmark argument.
const Sample samples[] = {
    {datagram::ConvertedAsvp, "( SoundVelocity 1.0 0 20261115123456 0 0 -1 0 0 a_b P )\r\n",
     [](char* text, std::size_t size, const Level& l) {
         return std::snprintf(text, size, "%.3f %.3f\r\n", l.depth, l.speed);
     }},
    {datagram::SeaBirdConverted,
     "# nquan = 5\r\n# name 0 = depSM: Depth [salt water, m]\r\n# name 1 = svCM: Sound Velocity "
     "[Chen-Millero, m/s]\r\n# name 2 = t090C: Temperature [ITS-90, deg C]\r\n# name 3 = sal00: "
     "Salinity [PSU]\r\n# name 4 = flag: flag\r\n*END*\r\n",
     [](char* text, std::size_t size, const Level& l) {
         return std::snprintf(text, size, "%11.3f%11.2f%11.4f%11.4f 0.0000e+00\r\n", l.depth,
                              l.speed, l.temperature, l.salinity);
     }},
    {datagram::EdfExport,
     "// MK21 EXPORT DATA FILE  (EDF)\r\nField1 : Depth (m)\r\nField2 : Sound Velocity (m/s)\r\n"
     "Field3 : Temperature (C)\r\nField4 : Salinity (ppt)\r\n// Data\r\n",
     [](char* text, std::size_t size, const Level& l) {
         return std::snprintf(text, size, "%.2f\t%.2f\t%.2f\t%.2f\r\n", l.depth, l.speed,
                              l.temperature, l.salinity);
     }},
    {datagram::PlainColumns, "",
     [](char* text, std::size_t size, const Level& l) {
         return std::snprintf(text, size, "%9.2f %9.2f %8.3f\r\n", l.depth, l.speed, l.temperature);
     }},
    {datagram::DelimitedRows, "",
     [](char* text, std::size_t size, const Level& l) {
         return std::snprintf(text, size, "%.2f,%.2f,%.3f\r\n", l.depth, l.speed, l.temperature);
     }},
};

std::string rowsOf(const Sample& sample, qint64 count)
{
    std::string text;
    for (qint64 i = 0; i < count; ++i) {
        char row[128];
        const Level level = {double(i) * 0.11, 1480.0 + double(i % 997) * 0.037,
                             15.0 - double(i % 131) * 0.1, 34.0 + double(i % 17) * 0.01};
        text.append(row, std::size_t(sample.row(row, sizeof row, level)));
    }
    return text;
}

void read(benchmark::State& state)
{
    const Sample& sample = samples[state.range(0)];
    const std::string text = sample.header + rowsOf(sample, state.range(1));
    const QByteArray bytes(text.data(), int(text.size()));
    for (auto _ : state) {
        datagram::CReceiveData data;
        if (data.parse(sample.format, bytes) != int(state.range(1)))
            state.SkipWithError("not every row was read");
        benchmark::DoNotOptimize(data.samples().data());
    }
}

// The baseline: the numbers alone, one after the other.
void fromChars(benchmark::State& state)
{
    const std::string text = rowsOf(samples[state.range(0)], state.range(1));
    for (auto _ : state) {
        double sum = 0.0;
        const char* at = text.data();
        const char* const end = at + text.size();
        while (true) {
            while (at != end && (*at <= ' ' || *at == ','))
                ++at;
            if (at == end)
                break;
            double value = 0.0;
            at = std::from_chars(at, end, value).ptr;
            sum += value;
        }
        benchmark::DoNotOptimize(sum);
    }
}

void sizes(benchmark::internal::Benchmark* bench)
{
    for (int i = 0; i < int(std::size(samples)); ++i)
        bench->Args({i, 5000})->Args({i, 50000});
}

BENCHMARK(read)->Apply(sizes);
BENCHMARK(fromChars)->Apply(sizes);

} // namespace

int main(int argc, char** argv)
{
    std::vector<Ratio> ratios;
    const std::pair<const char*, const char*> names[] = {{"converted profile", "0"},
                                                         {"Sea-Bird", "1"},
                                                         {"EDF", "2"},
                                                         {"columns", "3"},
                                                         {"delimited rows", "4"}};
    for (const auto& [name, index] : names) {
        const std::string reading = std::string("read/") + index;
        ratios.push_back({std::string(name) + ": time per row, 50 000 against 5 000",
                          reading + "/50000", reading + "/5000", 0.1, 1.5});
        ratios.push_back({std::string(name) + " against its numbers alone, 50 000",
                          reading + "/50000", std::string("fromChars/") + index + "/50000", 1.0,
                          3.0});
    }
    return runWithRatios(argc, argv, ratios);
}
