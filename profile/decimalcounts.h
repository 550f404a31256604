#pragma once

#include <algorithm>

namespace profile {

/// How many decimals each column of a profile is written with in a datagram. The engine begins
/// with these; each opened file raises them to what its own text shows.
struct DecimalCounts
{
    int depth = 2;
    int speed = 2;
    int alternative = 5; ///< the alternative first column
    int temperature = 0;
    int salinity = 0;
    int absorption = 0;

    /// Raises each count to that of `other` where it is higher.
    void raise(const DecimalCounts& other)
    {
        depth = std::max(depth, other.depth);
        speed = std::max(speed, other.speed);
        alternative = std::max(alternative, other.alternative);
        temperature = std::max(temperature, other.temperature);
        salinity = std::max(salinity, other.salinity);
        absorption = std::max(absorption, other.absorption);
    }
};

} // namespace profile
