#include "seawater/level.h"

#include "seawater/salinity.h"
#include "seawater/soundspeed.h"

#include <cmath>

namespace seawater {

bool completeLevel(Level& level, double latitude)
{
    return completeLevel(level, AtLatitude(latitude));
}

bool completeLevel(Level& level, const AtLatitude& place)
{
    double pressure = level.pressure;
    if (std::isnan(level.depth))
        level.depth = place.depthFromPressure(pressure);
    else if (std::isnan(pressure))
        pressure = place.pressureFromDepth(level.depth);
    // Not a number goes through the formulas, so that what cannot be computed stays unknown.
    // A conductivity of 0 or less is a cell in air or one that failed, and no fresh water: the
    // speed of its salinity, 0, would be smooth but wrong.
    const bool isDry = std::isnan(level.salinity) && level.conductivity <= 0.0;
    if (std::isnan(level.salinity) && !std::isnan(level.conductivity))
        level.salinity = practicalSalinity(level.conductivity, level.temperature, pressure);
    if (std::isnan(level.speed) && !isDry)
        level.speed = chenMilleroSoundSpeed(level.salinity, level.temperature, pressure);
    return std::isfinite(level.depth) && std::isfinite(level.speed);
}

} // namespace seawater
