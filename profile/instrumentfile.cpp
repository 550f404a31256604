#include "profile/instrumentfile.h"

#include "profile/castheader.h"
#include "profile/coordinate.h"
#include "profile/instrumentdecoders.h"
#include "profile/profilereply.h"
#include "profile/rowreader.h"
#include "profile/textfile.h"
#include "seawater/level.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace profile {

namespace {

constexpr double dbarPerMegapascal = 100.0;

double latitudeOf(const tagDecodeFmt& format)
{
    double latitude = 0.0;
    parseCoordinate(format.latitude.toStdString(), Axis::Latitude, latitude);
    return latitude;
}

float orZero(double value)
{
    return fitsFloat(value) ? float(value) : 0.0F;
}

// Decimals of a quantity: its own, or those of the one that it was computed from.
int decimalsOf(const ColumnNumber& measured, const ColumnNumber& origin)
{
    return measured.isKnown() ? measured.decimals : origin.decimals;
}

// The numbers of a row, in the order of `Place`.
enum Place
{
    Depth,
    Speed,
    Temperature,
    Salinity,
    Pressure,
    Conductivity,
    PlaceCount
};
using Row = std::array<ColumnNumber, PlaceCount>;

// Columns and the factors that bring their numbers into the units of the engine.
struct Columns
{
    std::array<int, PlaceCount> numbers;
    std::array<double, PlaceCount> factors;
};

Columns columnsOf(const tagDecodeFmt& format)
{
    return {{format.depthColumn, format.speedColumn, format.temperatureColumn,
             format.salinityColumn, format.pressureColumn, format.conductivityColumn},
            {format.depthFactor, format.speedFactor, 1.0, 1.0, format.pressureFactor,
             format.conductivityFactor}};
}

// Those without which a row is not whole.
Columns measuredColumnsOf(const tagDecodeFmt& format)
{
    Columns columns = columnsOf(format);
    columns.numbers[Pressure] = -1;
    columns.numbers[Conductivity] = -1;
    return columns;
}

Columns earlierColumnsOf(const tagDecodeFmt& format)
{
    constexpr int tagDecodeFmt::*quantities[PlaceCount] = {
        &tagDecodeFmt::depthColumn,       &tagDecodeFmt::speedColumn,
        &tagDecodeFmt::temperatureColumn, &tagDecodeFmt::salinityColumn,
        &tagDecodeFmt::pressureColumn,    &tagDecodeFmt::conductivityColumn,
    };
    Columns columns;
    columns.numbers.fill(-1);
    columns.factors.fill(1.0);
    for (const EarlierColumn& earlier : format.earlierColumns) {
        const auto place = std::size_t(
            std::find(std::begin(quantities), std::end(quantities), earlier.quantity) - quantities);
        if (place < columns.numbers.size()) {
            columns.numbers[place] = earlier.column;
            columns.factors[place] = earlier.factor;
        }
    }
    return columns;
}

// Reads the numbers of some columns. One that does not go into a record is as good as none.
class ScaledRows
{
  public:
    ScaledRows(char separator, const Columns& columns)
        : m_numbers(separator, columns.numbers), m_factors(columns.factors)
    {
    }

    Row read(std::string_view line) const
    {
        Row row = m_numbers.read(line);
        for (std::size_t place = 0; place < row.size(); ++place) {
            const double value = row[place].value * m_factors[place];
            row[place].value = fitsFloat(value) ? value : seawater::unknown;
        }
        return row;
    }

  private:
    RowReader<PlaceCount> m_numbers;
    std::array<double, PlaceCount> m_factors;
};

// Reads rows. Pressure and conductivity are only read where something else is missing, earlier
// columns where the later ones have no number.
class InstrumentRows
{
  public:
    explicit InstrumentRows(const tagDecodeFmt& format)
        : m_measured(format.separator, measuredColumnsOf(format)),
          m_all(format.separator, columnsOf(format)),
          m_earlier(format.separator, earlierColumnsOf(format)),
          m_needsSalinity(format.conductivityColumn >= 0),
          m_needsAll(format.depthColumn < 0 || format.speedColumn < 0 ||
                     (format.salinityColumn < 0 && m_needsSalinity))
    {
        const Columns earlier = earlierColumnsOf(format);
        for (std::size_t place = 0; place < earlier.numbers.size(); ++place) {
            if (earlier.numbers[place] >= 0)
                m_doubled.push_back(place);
        }
    }

    Row read(std::string_view line) const
    {
        if (m_needsAll)
            return completed(m_all.read(line), line);
        const Row row = completed(m_measured.read(line), line);
        const bool isWhole = row[Depth].isKnown() && row[Speed].isKnown() &&
                             (row[Salinity].isKnown() || !m_needsSalinity);
        return isWhole ? row : completed(m_all.read(line), line);
    }

  private:
    Row completed(Row row, std::string_view line) const
    {
        if (std::all_of(m_doubled.begin(), m_doubled.end(),
                        [&row](std::size_t place) { return row[place].isKnown(); }))
            return row;
        const Row earlier = m_earlier.read(line);
        for (const std::size_t place : m_doubled) {
            if (!row[place].isKnown())
                row[place] = earlier[place];
        }
        return row;
    }

    ScaledRows m_measured;
    ScaledRows m_all;
    ScaledRows m_earlier;
    std::vector<std::size_t> m_doubled; // places of quantities with an earlier column
    bool m_needsSalinity;               // there is something to compute it from
    bool m_needsAll;
};

} // namespace

InstrumentRecord decodeInstrumentRows(std::string_view text, const tagDecodeFmt& format)
{
    constexpr int decimalsPerMegapascal = 2; // that dbar do not show
    const InstrumentRows rows(format);
    const LineSet skipped(format.skipLines);
    const seawater::AtLatitude place(latitudeOf(format));
    const bool isPressureFirst = format.depthColumn < 0;
    InstrumentRecord result;
    result.hasWater = fnDetermineSSPType(format) > 0;
    RecordBuilder record;
    DecimalCounts shown;
    LineReader lines(text);
    std::string_view line;
    while (lines.next(line)) {
        if (line.empty() || skipped.contains(lines.number()))
            continue;
        const Row row = rows.read(line);
        seawater::Level level;
        level.depth = row[Depth].value;
        level.speed = row[Speed].value;
        level.temperature = row[Temperature].value;
        level.salinity = row[Salinity].value;
        level.pressure = row[Pressure].value;
        level.conductivity = row[Conductivity].value;
        const bool isWhole = !std::isnan(level.depth) && !std::isnan(level.speed) &&
                             (!std::isnan(level.salinity) || std::isnan(level.conductivity));
        if (!isWhole && !seawater::completeLevel(level, place))
            continue;
        if (!fitsFloat(level.depth) || !fitsFloat(level.speed))
            continue;
        const float first =
            isPressureFirst ? orZero(level.pressure / dbarPerMegapascal) : float(level.depth);
        record.append({float(level.speed), float(level.depth), first, float(level.speed),
                       orZero(level.temperature), orZero(level.salinity), 0.0F});
        result.hasWater =
            result.hasWater && fitsFloat(level.temperature) && fitsFloat(level.salinity);
        shown.depth = std::max(shown.depth, decimalsOf(row[Depth], row[Pressure]));
        shown.speed = std::max(shown.speed, row[Speed].decimals);
        shown.temperature = std::max(shown.temperature, row[Temperature].decimals);
        shown.salinity = std::max(shown.salinity, decimalsOf(row[Salinity], row[Conductivity]));
        if (isPressureFirst)
            shown.alternative =
                std::max(shown.alternative, row[Pressure].decimals + decimalsPerMegapascal);
    }
    result.decimals.raise(shown);
    result.record = record.take();
    return result;
}

OpenedProfile openInstrumentFile(const QByteArray& content, const QString& name,
                                 InstrumentDecoder decoder, const QString& problem)
{
    const QByteArray text = normalisedText(content);
    OpenedProfile opened;
    tagDecodeFmt format;
    if (!decoder(text, format)) {
        opened.reason = problem;
        return opened;
    }
    const InstrumentRecord levels =
        decodeInstrumentRows(std::string_view(text.constData(), std::size_t(text.size())), format);
    CastHeader header;
    header.type = levels.hasWater ? QStringLiteral("01") : QStringLiteral("00");
    header.source = baseName(name);
    header.time = format.time;
    header.isTimeUnread = format.isTimeUnread;
    header.latitude = degreesText(format.latitude.toStdString(), Axis::Latitude);
    header.longitude = degreesText(format.longitude.toStdString(), Axis::Longitude);
    header.comment = format.description;
    insertCastHeader(opened.reply, header);
    opened.reason = insertProfile(opened.reply, levels.record, name);
    opened.decimals = levels.decimals;
    return opened;
}

} // namespace profile
