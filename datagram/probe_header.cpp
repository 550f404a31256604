#include "datagram/probe_header.h"

#include "datagram/probe_text.h"
#include "profile/textfile.h"
#include "settings/characters.h"

#include <QDate>

#include <array>
#include <cmath>

namespace datagram::probe {

namespace {

using settings::isDigit;
using settings::isLetter;

double degreesAndMinutes(double degrees)
{
    const double whole = std::trunc(degrees);
    return whole * 100.0 + (degrees - whole) * 60.0;
}

double decimalDegrees(double packed, bool isNegative)
{
    const double whole = std::trunc(packed / 100.0);
    const double degrees = whole + (packed - whole * 100.0) / 60.0;
    return isNegative ? -degrees : degrees;
}

struct Coordinate
{
    double degrees = 0.0; // signed
    bool hasSide = false; // whether north or south, east or west, is certain
};

// What a coordinate's text is made of.
struct CoordinateParts
{
    std::array<double, 3> numbers{};
    std::size_t count = 0;
    bool isNegative = false;
    char side = 0;
};

bool splitCoordinate(std::string_view text, std::string_view sides, CoordinateParts& parts)
{
    while (!text.empty()) {
        const char c = text.front();
        if (isDigit(c) || c == '.' || c == '+' || c == '-') {
            const bool isSigned = c == '+' || c == '-';
            Scanner scanner(isSigned ? text.substr(1) : text);
            double number = 0.0;
            if (parts.count == parts.numbers.size() || (isSigned && parts.count > 0) ||
                !scanner.number(number) || number < 0.0)
                return false;
            parts.isNegative = parts.isNegative || c == '-';
            parts.numbers[parts.count++] = number;
            text = scanner.rest();
            continue;
        }
        const std::size_t length = isLetter(c)
                                       ? text.find_first_not_of("abcdefghijklmnopqrstuvwxyz"
                                                                "ABCDEFGHIJKLMNOPQRSTUVWXYZ")
                                       : 1;
        if (isLetter(c) && std::min(length, text.size()) == 1) {
            const char letter = settings::upper(c);
            if (parts.side != 0 || sides.find(letter) == std::string_view::npos)
                return false;
            parts.side = letter;
        }
        text.remove_prefix(std::min(length, text.size()));
    }
    return parts.count > 0;
}

// `sides` are the letters of the positive and of the negative side.
bool readCoordinate(std::string_view text, std::string_view sides, double highest, Packing packing,
                    Coordinate& coordinate)
{
    CoordinateParts parts;
    if (!splitCoordinate(text, sides, parts))
        return false;
    const auto& [first, minutes, seconds] = parts.numbers;
    if (parts.count > 1 && (first != std::trunc(first) || minutes >= 60.0 || seconds >= 60.0 ||
                            (parts.count > 2 && minutes != std::trunc(minutes))))
        return false;
    double degrees = first + minutes / 60.0 + seconds / 3600.0;
    if (parts.count == 1 && packing == Packing::DegreesMinutes)
        degrees = decimalDegrees(first, false);
    if (!(degrees <= highest))
        return false;
    const bool isNegative = parts.isNegative || parts.side == sides[1];
    coordinate.degrees = isNegative ? -degrees : degrees;
    coordinate.hasSide =
        parts.side != 0 || parts.isNegative || (parts.count == 1 && packing == Packing::Degrees);
    return true;
}

constexpr std::array<std::string_view, 12> months = {
    "january", "february", "march",     "april",   "may",      "june",
    "july",    "august",   "september", "october", "november", "december"};

// 0 where the word is no month.
int monthOf(std::string_view word)
{
    if (word.size() < 3)
        return 0;
    for (std::size_t i = 0; i < months.size(); ++i) {
        if (word.size() <= months[i].size() &&
            equalsInAnyCase(word, months[i].substr(0, word.size())))
            return int(i) + 1;
    }
    return 0;
}

struct DateParts
{
    std::array<int, 6> numbers{};
    std::size_t count = 0;
    int month = 0;
};

// A number that is too long for a date ends it.
DateParts splitDate(std::string_view text)
{
    DateParts parts;
    while (!text.empty() && parts.count < parts.numbers.size()) {
        std::size_t length = 1;
        if (isDigit(text.front())) {
            while (length < text.size() && isDigit(text[length]))
                ++length;
            if (!wholeDigits(text.substr(0, length), parts.numbers[parts.count]))
                return parts;
            ++parts.count;
        } else if (isLetter(text.front())) {
            while (length < text.size() && isLetter(text[length]))
                ++length;
            if (parts.month == 0 && parts.count < 3)
                parts.month = monthOf(text.substr(0, length));
        }
        text.remove_prefix(length);
    }
    return parts;
}

bool takeStamp(ProbeHeader& header, std::string_view text)
{
    const std::size_t end = std::min(text.find_first_not_of("0123456789"), text.size());
    if (end != 12 && end != 14)
        return false;
    const auto number = [text, end](std::size_t first, std::size_t length) {
        int value = 0;
        return first < end && wholeDigits(text.substr(first, length), value) ? value : 0;
    };
    return setDateTime(header, number(0, 4), number(4, 2), number(6, 2), number(8, 2),
                       number(10, 2), number(12, 2));
}

} // namespace

void setLatitude(ProbeHeader& header, double degrees)
{
    if (!(std::abs(degrees) <= 90.0))
        return;
    header.latitude = degreesAndMinutes(std::abs(degrees));
    header.latitudeMark = std::signbit(degrees) ? 'S' : 'N';
}

void setLongitude(ProbeHeader& header, double degrees)
{
    if (!(std::abs(degrees) <= 360.0))
        return;
    double turned = degrees;
    if (degrees > 180.0)
        turned -= 360.0;
    else if (degrees < -180.0)
        turned += 360.0;
    header.longitude = degreesAndMinutes(std::abs(turned));
    header.longitudeMark = std::signbit(turned) ? 'W' : 'E';
}

double latitudeDegrees(const ProbeHeader& header)
{
    return header.latitudeMark == 'I' ? 0.0
                                      : decimalDegrees(header.latitude, header.latitudeMark == 'S');
}

double longitudeDegrees(const ProbeHeader& header)
{
    return header.longitudeMark == 'I'
               ? 0.0
               : decimalDegrees(header.longitude, header.longitudeMark == 'W');
}

bool takeLatitude(ProbeHeader& header, std::string_view text, Packing packing, double* nearness)
{
    Coordinate latitude;
    if (!readCoordinate(text, "NS", 90.0, packing, latitude))
        return false;
    if (latitude.hasSide)
        setLatitude(header, latitude.degrees);
    else if (nearness != nullptr)
        *nearness = latitude.degrees;
    return latitude.hasSide;
}

bool takeLongitude(ProbeHeader& header, std::string_view text, Packing packing)
{
    Coordinate longitude;
    if (!readCoordinate(text, "EW", 360.0, packing, longitude) || !longitude.hasSide)
        return false;
    setLongitude(header, longitude.degrees);
    return true;
}

int fullYear(int year)
{
    if (year < 0 || year > 99)
        return year;
    return year < 70 ? 2000 + year : 1900 + year;
}

bool setDateTime(ProbeHeader& header, int year, int month, int day, int hours, int minutes,
                 int seconds)
{
    if (year < 1900 || year > 2500 || !QDate::isValid(year, month, day) || hours < 0 ||
        hours > 23 || minutes < 0 || minutes > 59 || seconds < 0 || seconds > 59)
        return false;
    header.year = year;
    header.month = month;
    header.day = day;
    header.hours = hours;
    header.minutes = minutes;
    header.seconds = seconds;
    header.hasTime = true;
    return true;
}

bool takeDateTime(ProbeHeader& header, std::string_view text)
{
    text = profile::trimmedText(text);
    if (takeStamp(header, text))
        return true;
    const DateParts parts = splitDate(text);
    const std::size_t dateNumbers = parts.month != 0 ? 2 : 3;
    if (parts.count < dateNumbers)
        return false;
    const auto& number = parts.numbers;
    int year = 0;
    int month = parts.month;
    int day = 0;
    if (month != 0) {
        year = fullYear(number[0] > 31 ? number[0] : number[1]);
        day = number[0] > 31 ? number[1] : number[0];
    } else if (number[0] > 31) {
        year = number[0];
        month = number[1];
        day = number[2];
    } else {
        year = fullYear(number[2]);
        month = number[0] > 12 ? number[1] : number[0];
        day = number[0] > 12 ? number[0] : number[1];
    }
    // Zeros stand behind the last number that is there.
    const auto clock = [&parts, dateNumbers](std::size_t place) {
        const std::size_t index = dateNumbers + place;
        return index < parts.count ? parts.numbers[index] : 0;
    };
    return setDateTime(header, year, month, day, clock(0), clock(1), clock(2));
}

bool itemValue(std::string_view line, std::string_view label, std::string_view& value)
{
    const std::size_t start = line.find_first_not_of(" \t*#%/;");
    if (start == std::string_view::npos || !startsInAnyCase(line.substr(start), label))
        return false;
    const std::string_view rest = line.substr(start + label.size());
    if (!rest.empty() && (isLetter(rest.front()) || isDigit(rest.front()) || rest.front() == '_'))
        return false;
    const std::size_t first = rest.find_first_not_of(" \t:=");
    value = first == std::string_view::npos ? std::string_view()
                                            : profile::trimmedText(rest.substr(first));
    return true;
}

} // namespace datagram::probe
