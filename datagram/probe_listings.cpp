#include "datagram/probe_header.h"
#include "datagram/probe_level.h"
#include "datagram/probe_readers.h"
#include "datagram/probe_text.h"
#include "profile/textfile.h"

#include <QDate>

// Listings with a head and a table: those of the CALC command of sound speed profilers, and
// calibration extension files.

namespace datagram::probe {

namespace {

std::string_view behind(std::string_view line, std::string_view keyword)
{
    const std::size_t at = line.find(keyword);
    return at == std::string_view::npos ? std::string_view() : line.substr(at + keyword.size());
}

std::string_view digitsOf(std::string_view text)
{
    const std::size_t start = std::min(text.find_first_not_of(" \t"), text.size());
    const std::size_t end = text.find_first_not_of("0123456789", start);
    return text.substr(start, end - start);
}

// "DATE:19073": a year of two or four digits and the day of that year.
QDate dayOfYear(std::string_view text)
{
    const std::string_view digits = digitsOf(text);
    int year = 0;
    int day = 0;
    if ((digits.size() != 5 && digits.size() != 7) ||
        !wholeDigits(digits.substr(0, digits.size() - 3), year) ||
        !wholeDigits(digits.substr(digits.size() - 3), day))
        return {};
    if (digits.size() == 5)
        year = fullYear(year);
    const QDate first(year, 1, 1);
    return day >= 1 && day <= first.daysInYear() ? first.addDays(day - 1) : QDate();
}

// "TIME:1527", "TIME:152705" or "TIME:15:27:05"
void takeCalcTime(std::string_view date, std::string_view time, ProbeHeader& header)
{
    const QDate day = dayOfYear(date);
    const std::string_view digits = digitsOf(time);
    int hours = 0;
    int minutes = 0;
    int seconds = 0;
    if (digits.size() == 4 || digits.size() == 6) {
        wholeDigits(digits.substr(0, 2), hours);
        wholeDigits(digits.substr(2, 2), minutes);
        wholeDigits(digits.substr(4), seconds);
    } else {
        Scanner scanner(time);
        double number = 0.0;
        if (!scanner.number(number) || !(number >= 0.0 && number < 24.0))
            return;
        hours = int(number);
        if (scanner.mark(':') && scanner.number(number) && number >= 0.0 && number < 60.0)
            minutes = int(number);
        if (scanner.mark(':') && scanner.number(number) && number >= 0.0 && number < 60.0)
            seconds = int(number);
    }
    if (day.isValid())
        setDateTime(header, day.year(), day.month(), day.day(), hours, minutes, seconds);
}

// The navigation block behind the table: "LAT ( ddmm.mmm,N):  4815.25,N"
void takeNavigation(std::string_view line, ProbeHeader& header)
{
    const std::size_t colon = line.rfind(':');
    if (colon == std::string_view::npos)
        return;
    const std::string_view value = line.substr(colon + 1);
    const std::string_view label = profile::trimmedText(line);
    if (startsInAnyCase(label, "lat"))
        takeLatitude(header, value, Packing::DegreesMinutes);
    else if (startsInAnyCase(label, "lon"))
        takeLongitude(header, value, Packing::DegreesMinutes);
}

} // namespace

int readCalcListing(std::string_view text, ProbeCast& cast)
{
    if (text.find("CALC") == std::string_view::npos ||
        text.find("(M/S)") == std::string_view::npos) {
        cast.reason = QStringLiteral("no CALC table in m/s");
        return 0;
    }
    profile::LineReader lines(text);
    std::string_view line;
    std::string_view date;
    std::string_view time;
    double toMetres = 1.0;
    while (lines.next(line)) {
        if (const std::string_view value = behind(line, "DATE:"); !value.empty())
            date = value;
        if (const std::string_view value = behind(line, "TIME:"); !value.empty())
            time = value;
        if (line.find("(M/S)") != std::string_view::npos) {
            const std::size_t depth = std::min(line.find("DEPTH"), line.size());
            toMetres =
                unitOf(Quantity::Depth, line.substr(depth, line.find(')', depth) - depth)).factor;
            break;
        }
    }
    takeCalcTime(date, time, cast.header);

    bool hasEnded = false;
    while (lines.next(line)) {
        Scanner row(line);
        seawater::Level level;
        if (hasEnded || !row.number(level.depth) || !row.number(level.speed) ||
            !row.number(level.temperature)) {
            takeNavigation(line, cast.header);
            continue;
        }
        // A row of zeros ends the table.
        hasEnded = level.depth == 0.0 && level.speed == 0.0;
        level.depth *= toMetres;
        if (!hasEnded)
            addLevel(cast, level, 0.0);
    }
    return finished(cast);
}

int readCalibrationExtension(std::string_view text, ProbeCast& cast)
{
    if (text.find("CAL Extn") == std::string_view::npos) {
        cast.reason = QStringLiteral("no \"CAL Extn\" line");
        return 0;
    }
    profile::LineReader lines(text);
    std::string_view line;
    bool hasTable = false;
    while (!hasTable && lines.next(line)) {
        if (const std::string_view value = behind(line, "St.Time:"); !value.empty())
            takeDateTime(cast.header, value.substr(0, value.find("En.")));
        if (const std::string_view value = behind(line, "En.Lat.:"); !value.empty())
            takeLatitude(cast.header, value.substr(0, value.find("En.")));
        if (const std::string_view value = behind(line, "En.Long:"); !value.empty())
            takeLongitude(cast.header, value);
        hasTable = line.find("NOBS") != std::string_view::npos;
    }
    const double latitude = latitudeDegrees(cast.header);
    // Number, pressure, depth, temperature, conductivity, salinity, density, sound speed, quality.
    std::vector<std::string_view> fields;
    while (lines.next(line)) {
        splitFields(line, Delimiter::Comma, fields);
        constexpr std::size_t columns = 9;
        int number = 0;
        if (fields.size() < columns || !wholeDigits(fields[0], number))
            continue;
        seawater::Level level;
        level.pressure = wholeNumber(fields[1]);
        level.depth = wholeNumber(fields[2]);
        level.temperature = wholeNumber(fields[3]);
        level.conductivity = wholeNumber(fields[4]);
        level.salinity = wholeNumber(fields[5]);
        level.speed = wholeNumber(fields[7]);
        addLevel(cast, level, latitude);
    }
    return finished(cast);
}

} // namespace datagram::probe
