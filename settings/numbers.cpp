#include "settings/numbers.h"

#include <QByteArray>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace settings {

namespace {

constexpr bool isSpace(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// Drops leading white space and a plus sign, which from_chars does not take.
std::string_view numberStart(std::string_view text)
{
    while (!text.empty() && isSpace(text.front()))
        text.remove_prefix(1);
    if (text.size() > 1 && text[0] == '+' && text[1] != '-')
        text.remove_prefix(1);
    return text;
}

} // namespace

int leadingInt(std::string_view text)
{
    const std::string_view number = numberStart(text);
    int value = 0;
    const auto parsed = std::from_chars(number.data(), number.data() + number.size(), value);
    if (parsed.ec == std::errc::result_out_of_range) {
        return number.front() == '-' ? std::numeric_limits<int>::min()
                                     : std::numeric_limits<int>::max();
    }
    return parsed.ec == std::errc() ? value : 0;
}

double leadingDouble(std::string_view text)
{
    const std::string_view number = numberStart(text);
    double value = 0.0;
    const auto parsed = std::from_chars(number.data(), number.data() + number.size(), value);
    if (parsed.ec == std::errc())
        return value;
    if (parsed.ec != std::errc::result_out_of_range)
        return 0.0;
    // from_chars leaves open whether the number is too large or too small; Qt tells.
    return QByteArray(number.data(), int(parsed.ptr - number.data())).toDouble();
}

std::string fixedText(double value, int decimals)
{
    // The longest double has 309 digits before the point. Rounds as printf does.
    char text[512];
    const auto written = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed,
                                       std::min(decimals, 100));
    return {text, written.ptr};
}

float toFloat32(double value)
{
    if (std::abs(value) > double(std::numeric_limits<float>::max()) && !std::isinf(value))
        return std::copysign(std::numeric_limits<float>::infinity(), value < 0 ? -1.0F : 1.0F);
    return float(value);
}

} // namespace settings
