#include "bench/ratios.h"
#include "profile/asvpfile.h"
#include "profile/importfilter.h"
#include "profile/instrumentdecoders.h"
#include "profile/instrumentfile.h"
#include "profile/textfile.h"
#include "profile/valeportfile.h"

#include <charconv>

// Reading a file, against what the standard library takes for the numbers that go into the
// profile alone.

namespace {

using Text = QByteArray (*)(qint64 rows);

QByteArray number(double value, int decimals)
{
    return QByteArray::number(value, 'f', decimals);
}

// A cast that a probe may have taken.
struct Row
{
    explicit Row(qint64 i)
        : depth(number(double(i) * 0.11, 3)), speed(number(1480.0 + double(i % 997) * 0.037, 3)),
          temperature(number(15.0 - double(i % 131) * 0.1, 3)),
          salinity(number(34.0 + double(i % 17) * 0.01, 3)),
          conductivity(number(40.0 + double(i % 131) * 0.05, 3)),
          pressure(number(double(i) * 0.111, 3))
    {
    }

    QByteArray depth, speed, temperature, salinity, conductivity, pressure;
};

QByteArray asvpText(qint64 rows)
{
    QByteArray text = "( SoundVelocity 1.0 0 20261115123456 59.5 10.25 0 0 0 x NA 3 )\r\n";
    for (qint64 i = 0; i < rows; ++i) {
        const Row row(i);
        text += row.depth + ' ' + row.speed + "\r\n";
    }
    return text;
}

QByteArray vp2Text(qint64 rows)
{
    QByteArray text = "[HEADER]\r\nInstrument=X\r\n\r\n[COLUMNS]\r\nDate/Time\r\nDepth\r\n"
                      "Pressure\r\nSound Velocity\r\nTemperature\r\nSalinity\r\nDensity\r\n"
                      "Conductivity\r\n\r\n[DATA]\r\nnames\r\nunits\r\n";
    for (qint64 i = 0; i < rows; ++i) {
        const Row row(i);
        text += "2026/06/18 07:42:10.000\t" + row.depth + '\t' + row.pressure + '\t' + row.speed +
                '\t' + row.temperature + '\t' + row.salinity + "\t1026.123\t" + row.conductivity +
                "\t\r\n";
    }
    return text;
}

// The columns that a logger without derived quantities writes: depth and salinity are computed.
QByteArray amlText(qint64 rows)
{
    QByteArray text = "[Header]\r\n\r\n[MeasurementMetadata]\r\n"
                      "Columns=Date,Time,Cond,TempCT,SV,Pressure\r\n\r\n[MeasurementData]\r\n";
    for (qint64 i = 0; i < rows; ++i) {
        const Row row(i);
        text += "2026-06-18,07:42:10.00," + row.conductivity + ',' + row.temperature + ',' +
                row.speed + ',' + row.pressure + "\r\n";
    }
    return text;
}

QByteArray valeportText(qint64 rows)
{
    QByteArray text = "Now: 20/06/2026 13:20:45\r\nLatitude: 61.25\r\nPressure units: m\r\n";
    for (qint64 i = 0; i < rows; ++i) {
        const Row row(i);
        text += row.depth + '\t' + row.temperature + '\t' + row.speed + "\r\n";
    }
    return text;
}

QByteArray columnText(qint64 rows)
{
    QByteArray text = "names\r\n";
    for (qint64 i = 0; i < rows; ++i) {
        const Row row(i);
        text += "2026-06-18;" + row.depth + ';' + row.speed + ';' + row.temperature + ';' +
                row.salinity + "\r\n";
    }
    return text;
}

profile::tagDecodeFmt formatOf(const char* line)
{
    profile::FilterRow row;
    profile::parseFilterRow(QLatin1String(line), row);
    return row.format;
}

const profile::tagDecodeFmt asvpFormat = formatOf("asvp,.asvp,0,1,-1,-1,-1,1,1.0,1.0,space,undef");
const profile::tagDecodeFmt valeportFormat =
    formatOf("valeport,.valeport,0,2,-1,-1,-1,1,1.0,1.0,tab,undef");
const profile::tagDecodeFmt columnFormat =
    formatOf("x,.col,1,2,3,4,-1,1,1.0,1.0,semicolon,salinity");

std::string_view viewOf(const QByteArray& text)
{
    return {text.constData(), std::size_t(text.size())};
}

QVector<float> readAsvp(const QByteArray& text)
{
    return profile::readAsvp(text, asvpFormat).record;
}

QVector<float> readValeport(const QByteArray& text)
{
    return profile::readValeport(text, valeportFormat).record;
}

QVector<float> readColumns(const QByteArray& text)
{
    profile::DecimalCounts decimals;
    return profile::decodeColumns(viewOf(profile::normalisedText(text)), columnFormat, &decimals);
}

template <bool (*Decoder)(const QByteArray&, profile::tagDecodeFmt&)>
QVector<float> readInstrument(const QByteArray& text)
{
    profile::tagDecodeFmt format;
    return Decoder(text, format) ? profile::decodeInstrumentRows(viewOf(text), format).record
                                 : QVector<float>();
}

template <QVector<float> (*Read)(const QByteArray&)>
void readText(benchmark::State& state, Text makeText)
{
    const QByteArray text = makeText(state.range(0));
    for (auto _ : state) {
        const QVector<float> record = Read(text);
        if (record.size() != state.range(0) * profile::recordSlots)
            state.SkipWithError("levels are missing");
        benchmark::DoNotOptimize(record.constData());
    }
}

// The baseline: the text of the wanted columns of each row, found beforehand.
void fromChars(benchmark::State& state, Text makeText, char separator,
               const std::vector<int>& columns)
{
    const QByteArray text = makeText(state.range(0));
    std::vector<std::string_view> fields;
    profile::LineReader lines(viewOf(text));
    std::string_view line;
    while (lines.next(line)) {
        int column = 0;
        std::vector<std::string_view> found;
        for (bool isLast = false; !isLast; ++column) {
            const std::size_t end = std::min(line.find(separator), line.size());
            double value = 0.0;
            if (std::find(columns.begin(), columns.end(), column) != columns.end() &&
                std::from_chars(line.data(), line.data() + end, value).ec == std::errc())
                found.push_back(line.substr(0, end));
            isLast = end == line.size();
            line.remove_prefix(isLast ? end : end + 1);
        }
        if (found.size() == columns.size())
            fields.insert(fields.end(), found.begin(), found.end());
    }
    if (fields.size() != std::size_t(state.range(0)) * columns.size())
        state.SkipWithError("numbers are missing");
    std::vector<double> numbers(fields.size());
    for (auto _ : state) {
        double* number = numbers.data();
        for (const std::string_view field : fields)
            std::from_chars(field.data(), field.data() + field.size(), *number++);
        benchmark::DoNotOptimize(numbers.data());
    }
}

void asvp(benchmark::State& state)
{
    readText<readAsvp>(state, asvpText);
}
void asvpNumbers(benchmark::State& state)
{
    fromChars(state, asvpText, ' ', {0, 1});
}
void valeport(benchmark::State& state)
{
    readText<readValeport>(state, valeportText);
}
void valeportNumbers(benchmark::State& state)
{
    fromChars(state, valeportText, '\t', {0, 2});
}
void columns(benchmark::State& state)
{
    readText<readColumns>(state, columnText);
}
void columnsNumbers(benchmark::State& state)
{
    fromChars(state, columnText, ';', {1, 2, 3, 4});
}
void vp2(benchmark::State& state)
{
    readText<readInstrument<profile::fnDecodeValeportVP2>>(state, vp2Text);
}
void vp2Numbers(benchmark::State& state)
{
    fromChars(state, vp2Text, '\t', {1, 3, 4, 5});
}
void aml(benchmark::State& state)
{
    readText<readInstrument<profile::fnDecodeAML_AML>>(state, amlText);
}
void amlNumbers(benchmark::State& state)
{
    fromChars(state, amlText, ',', {2, 3, 4, 5});
}

BENCHMARK(asvp)->Arg(5000)->Arg(50000);
BENCHMARK(asvpNumbers)->Arg(50000);
BENCHMARK(valeport)->Arg(5000)->Arg(50000);
BENCHMARK(valeportNumbers)->Arg(50000);
BENCHMARK(columns)->Arg(5000)->Arg(50000);
BENCHMARK(columnsNumbers)->Arg(50000);
BENCHMARK(vp2)->Arg(5000)->Arg(50000);
BENCHMARK(vp2Numbers)->Arg(50000);
BENCHMARK(aml)->Arg(5000)->Arg(50000);
BENCHMARK(amlNumbers)->Arg(50000);

} // namespace

int main(int argc, char** argv)
{
    std::vector<Ratio> ratios;
    for (const char* const reader : {"asvp", "valeport", "columns", "vp2", "aml"}) {
        const std::string name = reader;
        ratios.push_back({name + ": time per level, 50 000 against 5 000", name + "/50000",
                          name + "/5000", 0.1, 2.0});
        ratios.push_back({name + " against its numbers alone, 50 000", name + "/50000",
                          name + "Numbers/50000", 1.0, 3.0});
    }
    return runWithRatios(argc, argv, ratios);
}
