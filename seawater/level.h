#pragma once

#include "seawater/pressure.h"

#include <limits>

namespace seawater {

/// Stands for a quantity that is not known.
constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

/// What an instrument measured at one level; `unknown` where it did not.
struct Level
{
    double depth = unknown;        ///< m
    double pressure = unknown;     ///< dbar, 0 at the surface
    double speed = unknown;        ///< m/s
    double temperature = unknown;  ///< degrees Celsius
    double salinity = unknown;     ///< practical salinity
    double conductivity = unknown; ///< mS/cm
};

/// Computes depth, salinity and sound speed where they are unknown and the rest allows it: depth
/// from pressure; salinity from conductivity, temperature and pressure; sound speed from salinity,
/// temperature and pressure. Where there is no pressure, the one at the depth is used. What is
/// known stays as it is, and so does `pressure`. A conductivity of 0 or less makes a salinity
/// of 0, but no sound speed.
///
/// The latitude is in decimal degrees, 0 where it is not known. Returns whether depth and sound
/// speed are finite numbers then.
bool completeLevel(Level& level, double latitude);
bool completeLevel(Level& level, const AtLatitude& place);

} // namespace seawater
