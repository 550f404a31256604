#pragma once

#include <QString>

namespace datagram {

/// A coordinate without its sign.
struct DegreesMinutes
{
    double degrees = 0.0; ///< whole degrees
    double minutes = 0.0; ///< 0 up to, but not, 60
    bool isNegative = false;
};

/// Degrees of a text; 0 for one that is no finite number.
double degreesOf(const QString& text);

/// A coordinate in decimal degrees, split. The minutes are rounded to `decimals` before they are
/// separated from the degrees, so that no position reads as 60 minutes.
DegreesMinutes splitDegrees(const QString& text, int decimals);

} // namespace datagram
