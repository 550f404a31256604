#include "datagram/probe_header.h"
#include "datagram/probe_level.h"
#include "datagram/probe_readers.h"
#include "datagram/probe_text.h"
#include "profile/textfile.h"
#include "seawater/pressure.h"

#include <array>
#include <cmath>

// Files of a block of labelled header lines and then rows: breakpoint profiles, and SvPlus.

namespace datagram::probe {

namespace {

// Whole seconds since 1970, as some loggers write a time; of 9 or 10 digits.
bool takeSecondsSince1970(std::string_view text, ProbeHeader& header)
{
    int seconds = 0;
    if (text.size() < 9 || !wholeDigits(text, seconds))
        return false;
    // Civil date of a day number: eras of 400 years that begin in March.
    const int days = seconds / 86400 + 719468;
    const int inDay = seconds % 86400;
    const int era = days / 146097;
    const int dayOfEra = days % 146097;
    const int yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const int dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const int month = (5 * dayOfYear + 2) / 153;
    return setDateTime(header, yearOfEra + era * 400 + (month >= 10 ? 1 : 0),
                       month < 10 ? month + 3 : month - 9, dayOfYear - (153 * month + 2) / 5 + 1,
                       inDay / 3600, inDay / 60 % 60, inDay % 60);
}

// "Logged 2026 11 15 12 34 56" or "Cast started 2026 11 15 12 34 56"
void takeSvPlusTime(std::string_view line, ProbeHeader& header)
{
    for (const int words : {2, 1}) {
        Scanner scanner(line);
        std::string_view word;
        for (int i = 0; i < words; ++i)
            scanner.word(word);
        std::array<int, 6> n{};
        bool isTime = true;
        for (int& number : n)
            isTime = isTime && scanner.word(word) && wholeDigits(word, number);
        if (!isTime)
            continue;
        if (n[0] > 31)
            setDateTime(header, n[0], n[1], n[2], n[3], n[4], n[5]);
        else if (n[1] > 12)
            setDateTime(header, fullYear(n[2]), n[0], n[1], n[3], n[4], n[5]);
        else
            setDateTime(header, fullYear(n[2]), n[1], n[0], n[3], n[4], n[5]);
        return;
    }
}

} // namespace

int readBreakpointProfile(std::string_view text, ProbeCast& cast)
{
    constexpr std::string_view keyword = "PROFILE_HEADER";
    const std::size_t start = text.find(keyword);
    if (start == std::string_view::npos) {
        cast.reason = QStringLiteral("no \"PROFILE_HEADER\" line");
        return 0;
    }
    profile::LineReader lines(text.substr(start));
    std::string_view line;
    lines.next(line);
    bool hasRows = false;
    while (lines.next(line)) {
        Scanner row(line);
        seawater::Level level;
        std::string_view value;
        if (row.number(level.depth) && row.number(level.speed)) {
            row.number(level.temperature);
            addLevel(cast, level, 0.0);
            hasRows = true;
        } else if (hasRows && !isBlank(line)) {
            break; // a further profile, or the end
        } else if (itemValue(line, "last_state_change_time", value)) {
            if (!takeSecondsSince1970(value, cast.header))
                takeDateTime(cast.header, value);
        } else if (itemValue(line, "latitude", value)) {
            takeLatitude(cast.header, value);
        } else if (itemValue(line, "longitude", value)) {
            takeLongitude(cast.header, value);
        }
    }
    return finished(cast);
}

int readSvPlus(std::string_view text, ProbeCast& cast)
{
    if (text.find("SvPlus") == std::string_view::npos) {
        cast.reason = QStringLiteral("no \"SvPlus\" line");
        return 0;
    }
    profile::LineReader lines(text);
    std::string_view line;
    bool hasTable = false;
    while (lines.next(line)) {
        Scanner row(line);
        double pressure = 0.0;
        double speed = 0.0;
        std::string_view value;
        if (hasTable && row.number(pressure) && row.number(speed)) {
            const double depth =
                cast.header.latitudeMark == 'I'
                    ? pressure * 0.1 / 1.008
                    : seawater::depthFromPressure(pressure, latitudeDegrees(cast.header));
            if (std::isfinite(depth) && speed >= 0.0)
                cast.samples.push_back({depth, speed, pressure});
            else
                ++cast.leftOut;
        } else if (itemValue(line, "latitude", value) || itemValue(line, "lat", value)) {
            takeLatitude(cast.header, value);
        } else if (itemValue(line, "longitude", value) || itemValue(line, "long", value) ||
                   itemValue(line, "lon", value)) {
            takeLongitude(cast.header, value);
        } else if (!cast.header.hasTime) {
            takeSvPlusTime(line, cast.header);
        }
        hasTable = hasTable || line.find("Sound") != std::string_view::npos;
    }
    if (cast.header.latitudeMark == 'I' && !cast.samples.empty()) {
        cast.remark = QStringLiteral("no latitude: the depths take the pressures for kPa; with "
                                     "dbar they are a tenth of the true ones: give the file a "
                                     "latitude");
    }
    return finished(cast);
}

} // namespace datagram::probe
