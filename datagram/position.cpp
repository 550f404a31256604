#include "datagram/position.h"

#include <cmath>

namespace datagram {

double degreesOf(const QString& text)
{
    const double degrees = text.toDouble();
    return std::isfinite(degrees) ? degrees : 0.0;
}

DegreesMinutes splitDegrees(const QString& text, int decimals)
{
    const double value = degreesOf(text);
    const double size = std::abs(value);
    const double scale = std::pow(10.0, decimals);
    DegreesMinutes split;
    split.isNegative = value < 0.0;
    split.degrees = std::floor(size);
    split.minutes = std::round((size - split.degrees) * 60.0 * scale) / scale;
    if (split.minutes >= 60.0) {
        split.minutes = 0.0;
        split.degrees += 1.0;
    }
    return split;
}

} // namespace datagram
