#include "profile/castheader.h"
#include "profile/coordinate.h"
#include "profile/instrumentdecoders.h"
#include "profile/instrumentheader.h"
#include "settings/characters.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace profile {

namespace {

using settings::isDigit;

constexpr ColumnName amlColumns[] = {
    {"Cond", &tagDecodeFmt::conductivityColumn},
    {"TempCT", &tagDecodeFmt::temperatureColumn},
    {"TempSVT", &tagDecodeFmt::temperatureColumn},
    {"CalcSV", &tagDecodeFmt::speedColumn},
    {"SV", &tagDecodeFmt::speedColumn},
    {"Pressure", &tagDecodeFmt::pressureColumn},
    {"Salinity", &tagDecodeFmt::salinityColumn},
    {"Density", nullptr}, // known, not kept
    {"Depth", &tagDecodeFmt::depthColumn},
};

struct DatePart
{
    int value = 0;
    std::size_t digits = 0;
};

// How many digits a text begins with.
std::size_t leadingDigits(std::string_view text)
{
    return std::size_t(std::find_if_not(text.begin(), text.end(), isDigit) - text.begin());
}

// The first three whole numbers of a text. False when there are fewer.
bool threeNumbers(std::string_view text, std::array<DatePart, 3>& parts)
{
    for (DatePart& part : parts) {
        while (!text.empty() && !isDigit(text.front()))
            text.remove_prefix(1);
        const char* const end = text.data() + text.size();
        const auto parsed = std::from_chars(text.data(), end, part.value);
        if (parsed.ec != std::errc())
            return false;
        part.digits = std::size_t(parsed.ptr - text.data());
        text.remove_prefix(part.digits);
    }
    return true;
}

// Places of year, month and day by a pattern such as "mm/dd/yyyy". Empty when it names not each
// once.
std::string_view orderOf(std::string_view pattern, std::array<char, 3>& letters)
{
    std::size_t count = 0;
    for (const char c : pattern) {
        const char letter = c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c;
        if (letter != 'y' && letter != 'm' && letter != 'd')
            continue;
        if (count > 0 && letters[count - 1] == letter)
            continue;
        if (count == letters.size())
            return {};
        letters[count++] = letter;
    }
    const std::string_view order(letters.data(), count);
    const bool isWhole = order.find('y') != order.npos && order.find('m') != order.npos &&
                         order.find('d') != order.npos;
    return isWhole ? order : std::string_view();
}

// The three numbers of a date. In eight digits without a gap the year goes first when a month can
// follow it: what ends in a year of our times has a 19 or more there. Only a day can be taken for
// that, so the pattern has to tell where the day follows the year.
bool dateParts(std::string_view date, std::string_view order, std::array<DatePart, 3>& parts)
{
    constexpr std::size_t digits = 8;
    if (date.size() != digits || leadingDigits(date) != digits)
        return threeNumbers(date, parts);
    const auto number = [date](std::size_t from, std::size_t length) {
        DatePart part = {0, length};
        std::from_chars(date.data() + from, date.data() + from + length, part.value);
        return part;
    };
    if (order == "ydm" || number(4, 2).value <= 12)
        parts = {number(0, 4), number(4, 2), number(6, 2)};
    else
        parts = {number(0, 2), number(2, 2), number(4, 4)};
    return true;
}

// yyyyMMdd of a date whose year has four digits. A date that ends in its year is read by the
// pattern, without one only when no other reading makes sense. Empty when it is no date.
QString dateDigits(std::string_view date, std::string_view pattern)
{
    std::array<char, 3> letters = {};
    std::string_view order = orderOf(pattern, letters);
    std::array<DatePart, 3> parts;
    if (!dateParts(date, order, parts))
        return {};
    const std::size_t year = parts[0].digits == 4 ? 0 : 2;
    if (parts[year].digits != 4)
        return {};
    if (order.empty() || order[year] != 'y') {
        if (year == 0)
            order = "ymd";
        else if (parts[0].value > 12)
            order = "dmy";
        else if (parts[1].value > 12)
            order = "mdy";
        else
            return {};
    }
    const auto part = [&](char letter) { return parts[order.find(letter)].value; };
    return QStringLiteral("%1%2%3")
        .arg(part('y'), 4, 10, QLatin1Char('0'))
        .arg(part('m'), 2, 10, QLatin1Char('0'))
        .arg(part('d'), 2, 10, QLatin1Char('0'));
}

// Hours and minutes alone, "hh:mm": the third number is 0.
bool isHoursAndMinutes(std::string_view time, std::array<DatePart, 3>& parts)
{
    constexpr std::size_t maxDigits = 2;
    const std::size_t colon = leadingDigits(time);
    if (colon == 0 || colon > maxDigits || colon == time.size() || time[colon] != ':')
        return false;
    const std::string_view minutes = time.substr(colon + 1);
    if (minutes.size() != maxDigits || leadingDigits(minutes) != maxDigits)
        return false;
    std::from_chars(time.data(), time.data() + colon, parts[0].value);
    std::from_chars(minutes.data(), minutes.data() + minutes.size(), parts[1].value);
    parts[2] = {};
    return true;
}

// Six digits, "hhmmss", and perhaps decimals of the seconds.
bool isCompactTime(std::string_view time)
{
    constexpr std::size_t digits = 6;
    if (leadingDigits(time) != digits)
        return false;
    if (time.size() == digits)
        return true;
    const std::string_view decimals = time.substr(digits + 1);
    return time[digits] == '.' && leadingDigits(decimals) == decimals.size();
}

// HHmmss of "hh:mm:ss" and what may follow, of "hh:mm" or of "hhmmss".
QString timeDigits(std::string_view time)
{
    if (isCompactTime(time))
        return QString::fromLatin1(time.data(), 6);
    std::array<DatePart, 3> parts;
    if (!threeNumbers(time, parts) && !isHoursAndMinutes(time, parts))
        return {};
    QString digits;
    for (const DatePart& part : parts)
        digits += QStringLiteral("%1").arg(part.value, 2, 10, QLatin1Char('0'));
    return digits;
}

// A fix of the receiver. Exactly 0, 0 is what a logger without one writes.
bool isFix(std::string_view latitude, std::string_view longitude)
{
    double north = 0.0;
    double east = 0.0;
    return parseCoordinate(latitude, Axis::Latitude, north) &&
           parseCoordinate(longitude, Axis::Longitude, east) && (north != 0.0 || east != 0.0);
}

QString descriptionOf(std::string_view model, std::string_view serialNumber)
{
    QStringList words = {QStringLiteral("AML"), decodedText(model), decodedText(serialNumber),
                         QStringLiteral("aml format.")};
    words.removeAll(QString());
    return words.join(QLatin1Char(' '));
}

// The names of the columns with their units.
std::vector<HeaderColumn> columnsOf(std::string_view names, std::string_view units)
{
    std::vector<HeaderColumn> columns;
    for (const std::string_view name : splitTrimmed(names, ','))
        columns.push_back({name, {}});
    const std::vector<std::string_view> words = splitTrimmed(units, ',');
    for (std::size_t i = 0; i < std::min(words.size(), columns.size()); ++i)
        columns[i].unit = words[i];
    return columns;
}

} // namespace

bool fnDecodeAML_AML(const QByteArray& text, tagDecodeFmt& format)
{
    const QByteArray bytes = normalisedText(text);
    SectionReader lines(std::string_view(bytes.constData(), std::size_t(bytes.size())),
                        "MeasurementData");
    clearFormat(format);
    format.separator = ',';

    std::string_view model;
    std::string_view serialNumber;
    std::string_view date;
    std::string_view datePattern;
    std::string_view time;
    std::string_view mode;
    std::string_view latitude;
    std::string_view longitude;
    std::string_view fixLatitude;
    std::string_view fixLongitude;
    const TextKey headerKeys[] = {
        {"Model", &model},
        {"SerialNumber", &serialNumber},
        {"Date", &date},
        {"DateFormat", &datePattern},
        {"Time", &time},
        {"LocationMode", &mode},
        {"Latitude", &latitude},
        {"Longitude", &longitude},
        {"GPSLatitude", &fixLatitude},
        {"GPSLongitude", &fixLongitude},
    };
    std::string_view names;
    std::string_view units;
    const TextKey columnKeys[] = {{"Columns", &names}, {"Units", &units}};
    std::string_view line;
    while (lines.next(line)) {
        if (lines.isIn("Header"))
            takeValue(splitKeyValue(line), headerKeys);
        else if (lines.isIn("MeasurementMetadata"))
            takeValue(splitKeyValue(line), columnKeys);
    }

    takeColumns(columnsOf(names, units), amlColumns, format);
    // Loggers that take the position from their own receiver leave older settings in the manual
    // pair, so in any other mode a fix goes first.
    const bool isExternal = equalIgnoringCase(mode, "External");
    const bool isManual = equalIgnoringCase(mode, "Manual");
    if (isExternal || (!isManual && isFix(fixLatitude, fixLongitude))) {
        latitude = fixLatitude;
        longitude = fixLongitude;
    }
    format.latitude = decodedText(latitude);
    format.longitude = decodedText(longitude);
    const QString stamp = dateDigits(date, datePattern) + timeDigits(time);
    qint64 moment = 0;
    format.time = parseStamp(stamp, moment) ? stamp : QString();
    format.isTimeUnread = !date.empty() && format.time.isEmpty();
    format.description = descriptionOf(model, serialNumber);
    return finishFormat(lines.dataLine(), format);
}

} // namespace profile
