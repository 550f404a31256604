#include "datagram/probe_header.h"
#include "datagram/probe_level.h"
#include "datagram/probe_readers.h"
#include "datagram/probe_text.h"
#include "profile/textfile.h"

#include <cmath>

// Export files of expendable probes (.edf). Two generations: the older names its columns in one
// line, "Depth (m) - Temperature (°C) - …", right above the rows; the newer one by one, "Field3 :
// Depth (m)", and the rows follow "// Data". Files that announce "pairs..." have rows of a depth
// and one measured value.

namespace datagram::probe {

namespace {

constexpr int maxFields = 1000;
constexpr double missing = -99.0;

struct EdfHeader
{
    ColumnMap columns;
    Delimiter delimiter = Delimiter::Tab;
    double salinity = seawater::unknown; // assumed for the whole drop
    std::string_view date;
    std::string_view time;
    double nearLatitude = 0.0;
    bool hasNames = false;
};

// The names of a heading stand between tabs, or " - ".
void takeHeading(std::string_view line, ColumnMap& columns)
{
    const std::string_view mark =
        line.find('\t') != std::string_view::npos ? std::string_view("\t") : " - ";
    int index = 0;
    std::size_t start = 0;
    while (start <= line.size()) {
        const std::size_t end = std::min(line.find(mark, start), line.size());
        columns.takeNamed(line.substr(start, end - start), index++);
        start = end + mark.size();
    }
}

bool isHeading(std::string_view line)
{
    return containsInAnyCase(line, "depth (m)") || containsInAnyCase(line, "depth (ft)");
}

// "Field3 : Depth (m)"
bool takeField(std::string_view line, ColumnMap& columns)
{
    constexpr std::string_view word = "field";
    const std::size_t colon = line.find(':');
    if (!startsInAnyCase(line, word) || colon == std::string_view::npos)
        return false;
    int number = 0;
    if (wholeDigits(line.substr(word.size(), colon - word.size()), number) && number >= 1 &&
        number <= maxFields)
        columns.takeNamed(line.substr(colon + 1), number - 1);
    return true;
}

// "assumed salinity: 34.00 ppt"
void takeSalinity(std::string_view line, EdfHeader& header)
{
    const std::size_t colon = line.find(':');
    double salinity = 0.0;
    if (colon != std::string_view::npos && containsInAnyCase(line.substr(0, colon), "salinity") &&
        Scanner(line.substr(colon + 1)).number(salinity))
        header.salinity = salinity;
}

void takeItem(std::string_view line, EdfHeader& header, ProbeCast& cast)
{
    std::string_view value;
    if (itemValue(line, "date of launch", value) || itemValue(line, "date", value))
        header.date = value;
    else if (itemValue(line, "time of launch", value) || itemValue(line, "time", value))
        header.time = value;
    else if (itemValue(line, "latitude", value))
        takeLatitude(cast.header, value, Packing::Degrees, &header.nearLatitude);
    else if (itemValue(line, "longitude", value))
        takeLongitude(cast.header, value);
    else if (itemValue(line, "probe type", value))
        cast.instrument = profile::decodedText(value);
    else
        takeSalinity(line, header);
}

// Takes a line above the rows. True when the rows begin after it.
bool endsHeader(std::string_view line, EdfHeader& header, ProbeCast& cast)
{
    const std::string_view text = profile::trimmedText(line);
    if (takeField(text, header.columns)) {
        header.hasNames = true;
        return false;
    }
    if (isHeading(text)) {
        takeHeading(text, header.columns);
        header.hasNames = true;
        return true;
    }
    if (equalsInAnyCase(text, "// data") || containsInAnyCase(text, "pairs..."))
        return true;
    takeItem(text, header, cast);
    return false;
}

// Without names a row is a depth and what the probe measures.
void nameByProbe(const QString& probe, ColumnMap& columns)
{
    columns.take(Quantity::Depth, {0, 1.0, 0.0});
    const bool measuresSpeed = probe.contains(QLatin1String("SV"), Qt::CaseInsensitive);
    columns.take(measuresSpeed ? Quantity::Speed : Quantity::Temperature, {1, 1.0, 0.0});
}

} // namespace

int readEdf(std::string_view text, ProbeCast& cast)
{
    if (text.find("(EDF)") == std::string_view::npos) {
        cast.reason = QStringLiteral("no \"(EDF)\" line");
        return 0;
    }
    EdfHeader header;
    profile::LineReader lines(text);
    std::string_view line;
    bool hasRows = false;
    while (!hasRows && lines.next(line))
        hasRows = endsHeader(line, header, cast);
    takeDateTime(cast.header, std::string(header.date) + ' ' + std::string(header.time));
    const double latitude =
        cast.header.latitudeMark == 'I' ? header.nearLatitude : latitudeDegrees(cast.header);
    std::vector<std::string_view> fields;
    bool isFirst = true;
    while (lines.next(line)) {
        // A heading may stand between "pairs..." and the rows.
        if (isFirst && !header.hasNames && isHeading(line)) {
            takeHeading(profile::trimmedText(line), header.columns);
            header.hasNames = true;
            continue;
        }
        if (isBlank(line) || line.substr(0, 2) == "//")
            continue;
        if (isFirst) {
            isFirst = false;
            if (!header.hasNames)
                nameByProbe(cast.instrument, header.columns);
            if (line.find('\t') == std::string_view::npos)
                header.delimiter = Delimiter::Blanks;
        }
        splitFields(line, header.delimiter, fields);
        seawater::Level level = levelOf(fields, header.columns);
        if (std::isnan(level.depth) && std::isnan(level.pressure))
            continue;
        for (double* const value : {&level.temperature, &level.salinity, &level.conductivity}) {
            if (*value <= missing)
                *value = seawater::unknown;
        }
        if (!header.columns.has(Quantity::Salinity) && !header.columns.has(Quantity::Conductivity))
            level.salinity = header.salinity;
        addLevel(cast, level, latitude);
    }
    if (!hasRows)
        cast.reason = QStringLiteral("it ends before its levels");
    else if (!std::isnan(header.salinity))
        return finished(cast);
    return finished(cast, header.columns);
}

} // namespace datagram::probe
