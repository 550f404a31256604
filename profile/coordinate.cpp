#include "profile/coordinate.h"

#include "profile/textfile.h"
#include "settings/characters.h"

#include <algorithm>
#include <charconv>

namespace profile {

namespace {

using settings::isDigit;
using settings::upper;

constexpr int mostAngleParts = 3; // degrees, minutes, seconds

// A hemisphere letter at one end of the text is taken off. 0 when there is none.
char takeLetter(std::string_view& text)
{
    constexpr std::string_view letters = "NSEW";
    char letter = '\0';
    if (!text.empty() && letters.find(upper(text.back())) != letters.npos) {
        letter = upper(text.back());
        text = trimmedText(text.substr(0, text.size() - 1));
        // "59.5,S": the letter is a field of its own.
        if (!text.empty() && text.back() == ',')
            text.remove_suffix(1);
    } else if (!text.empty() && letters.find(upper(text.front())) != letters.npos) {
        letter = upper(text.front());
        text.remove_prefix(1);
    }
    text = trimmedText(text);
    return letter;
}

bool takeMinus(std::string_view& text)
{
    const bool hasSign = !text.empty() && (text.front() == '-' || text.front() == '+');
    const bool isNegative = hasSign && text.front() == '-';
    if (hasSign)
        text.remove_prefix(1);
    text = trimmedText(text);
    return isNegative;
}

// Blanks, a colon and the marks of degrees, minutes and seconds, which in any encoding are quotes
// or no ASCII. A comma is none: "59,5" is not 59 degrees 5 minutes.
bool isGap(char c)
{
    constexpr std::string_view gaps = " \t:'\"";
    return gaps.find(c) != gaps.npos || static_cast<unsigned char>(c) >= 0x80U;
}

// Degrees, minutes and seconds without sign and letter.
bool parseParts(std::string_view text, double& degrees)
{
    double parts[mostAngleParts] = {};
    int count = 0;
    bool isWhole = true;
    while (!text.empty()) {
        if (count == mostAngleParts || !isWhole || !isDigit(text.front()))
            return false;
        const char* const end = text.data() + text.size();
        const auto parsed =
            std::from_chars(text.data(), end, parts[count], std::chars_format::fixed);
        if (parsed.ec != std::errc() || (count > 0 && parts[count] >= 60.0))
            return false;
        const auto length = std::size_t(parsed.ptr - text.data());
        // Only the last part may have decimals.
        isWhole = text.substr(0, length).find('.') == text.npos;
        text.remove_prefix(length);
        // A hyphen joins two parts, "59-30-36"; with a blank in front it would be a sign.
        if (text.size() > 1 && text[0] == '-' && isDigit(text[1]))
            text.remove_prefix(1);
        while (!text.empty() && isGap(text.front()))
            text.remove_prefix(1);
        ++count;
    }
    degrees = parts[0] + parts[1] / 60.0 + parts[2] / 3600.0;
    return count > 0;
}

bool isPlainDecimal(std::string_view text)
{
    if (!text.empty() && text.front() == '-')
        text.remove_prefix(1);
    const std::size_t point = std::min(text.find('.'), text.size());
    const auto digits = [](std::string_view part) {
        return !part.empty() && std::all_of(part.begin(), part.end(), isDigit);
    };
    return digits(text.substr(0, point)) &&
           (point == text.size() || digits(text.substr(point + 1)));
}

} // namespace

bool parseCoordinate(std::string_view text, Axis axis, double& degrees)
{
    const bool isLatitude = axis == Axis::Latitude;
    text = trimmedText(text);
    const char letter = takeLetter(text);
    const bool hasMinus = takeMinus(text);
    double size = 0.0;
    if (!parseParts(text, size) || size > (isLatitude ? 90.0 : 360.0))
        return false;
    const char negative = isLatitude ? 'S' : 'W';
    if (letter != '\0' && letter != negative && letter != (isLatitude ? 'N' : 'E'))
        return false;
    double value = hasMinus || letter == negative ? -size : size;
    if (value > 180.0)
        value -= 360.0;
    else if (value < -180.0)
        value += 360.0;
    degrees = value;
    return true;
}

QString degreesText(std::string_view text, Axis axis)
{
    double degrees = 0.0;
    if (!parseCoordinate(text, axis, degrees))
        return {};
    text = trimmedText(text);
    if (isPlainDecimal(text)) {
        // A longitude above 180 has been turned round; any other one is what its text says.
        double asWritten = 0.0;
        std::from_chars(text.data(), text.data() + text.size(), asWritten);
        if (asWritten == degrees)
            return decodedText(text);
    }
    QString written = QString::number(degrees, 'f', 8);
    while (written.endsWith(QLatin1Char('0')))
        written.chop(1);
    if (written.endsWith(QLatin1Char('.')))
        written.chop(1);
    return written;
}

} // namespace profile
