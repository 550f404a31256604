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

// What goes into a record; beyond it a number is as good as none.
double scaled(const ColumnNumber& number, double factor)
{
    const double value = number.value * factor;
    return fitsFloat(value) ? value : seawater::unknown;
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

// Reads rows. Pressure and conductivity are only read where something else is missing.
class InstrumentRows
{
  public:
    explicit InstrumentRows(const tagDecodeFmt& format)
        : m_measured(format.separator, {format.depthColumn, format.speedColumn,
                                        format.temperatureColumn, format.salinityColumn, -1, -1}),
          m_all(format.separator,
                {format.depthColumn, format.speedColumn, format.temperatureColumn,
                 format.salinityColumn, format.pressureColumn, format.conductivityColumn}),
          m_needsSalinity(format.conductivityColumn >= 0),
          m_needsAll(format.depthColumn < 0 || format.speedColumn < 0 ||
                     (format.salinityColumn < 0 && m_needsSalinity))
    {
    }

    Row read(std::string_view line) const
    {
        if (m_needsAll)
            return m_all.read(line);
        const Row row = m_measured.read(line);
        const bool isWhole = row[Depth].isKnown() && row[Speed].isKnown() &&
                             (row[Salinity].isKnown() || !m_needsSalinity);
        return isWhole ? row : m_all.read(line);
    }

  private:
    RowReader<PlaceCount> m_measured;
    RowReader<PlaceCount> m_all;
    bool m_needsSalinity; // there is something to compute it from
    bool m_needsAll;
};

} // namespace

InstrumentRecord decodeInstrumentRows(std::string_view text, const tagDecodeFmt& format)
{
    constexpr int decimalsPerMegapascal = 2; // that dbar do not show
    const InstrumentRows rows(format);
    const LineSet skipped(format.skipLines);
    const double latitude = latitudeOf(format);
    const bool isPressureFirst = format.depthColumn < 0;
    InstrumentRecord result;
    result.hasWater = fnDetermineSSPType(format) > 0;
    RecordBuilder record;
    DecimalCounts shown;
    LineReader lines(text);
    std::string_view line;
    while (lines.next(line)) {
        if (skipped.contains(lines.number()))
            continue;
        const Row row = rows.read(line);
        seawater::Level level;
        level.depth = scaled(row[Depth], format.depthFactor);
        level.speed = scaled(row[Speed], format.speedFactor);
        level.temperature = scaled(row[Temperature], 1.0);
        level.salinity = scaled(row[Salinity], 1.0);
        level.pressure = scaled(row[Pressure], format.pressureFactor);
        level.conductivity = scaled(row[Conductivity], format.conductivityFactor);
        const bool isWhole = !std::isnan(level.depth) && !std::isnan(level.speed) &&
                             (!std::isnan(level.salinity) || std::isnan(level.conductivity));
        if (!isWhole && !seawater::completeLevel(level, latitude))
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
    header.latitude = degreesText(format.latitude.toStdString(), Axis::Latitude);
    header.longitude = degreesText(format.longitude.toStdString(), Axis::Longitude);
    header.comment = format.description;
    insertCastHeader(opened.reply, header);
    opened.reason = insertProfile(opened.reply, levels.record, name);
    opened.decimals = levels.decimals;
    return opened;
}

} // namespace profile
