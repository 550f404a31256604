#pragma once

#include "processing/extensionrows.h"
#include "raytrace/layers.h"

#include <vector>

/// A profile continued downward by the sound speed of a water mass: a temperature and a salinity
/// close to what the operator knows of the area.
namespace processing {

/// Looks for a temperature and a salinity near the given ones at which `seawater::ifremer_speed`
/// gives `targetSpeed` (m/s) within 0.1 m/s at the depth (m, at a latitude in decimal degrees).
///
/// Both are moved together, warmer and saltier where the speed is too low: by 0.5 °C and 3 psu at
/// first, and by smaller steps each time the speed has crossed the target. They stay within the
/// margins (°C, psu) around the start. The search ends when the speed is met, when it no longer
/// moves, when both quantities stand at a bound, or after 1000 passes; what was found then need
/// not be a fit. What is no finite speed at the start is left as it was given.
void adjust_salinity_and_temperature(double temperature, double salinity, double latitude,
                                     double depth, double targetSpeed, double temperatureMargin,
                                     double salinityMargin, double& fittedSalinity,
                                     double& fittedTemperature);

/// Depths (m) of a synthetic extension below `lastDepth`, close together at first and wider
/// downward: 100 of them to 2000 m and one each 100 m from there to 12 000 m for a profile that
/// ends above 1800 m; else 100 to 12 000 m, from 2000 m or from the profile's end if that is
/// deeper. The last one is 12 000 m exactly. Below 12 000 m there are none.
std::vector<double> syntheticExtensionDepths(double lastDepth);

/// Continues a profile to 12 000 m: fits a water mass to its last sample, with margins of 5 °C and
/// 5 psu, and lets its temperature fall to 2 °C at 2000 m and stay there. `rows` receives the
/// depths below 10 m, with speeds of -1; they are joined below the samples by `extend`, and what
/// was joined gets its speed, as a 32-bit float, and its gradient.
///
/// @param temperature  degrees Celsius
/// @param salinity     practical salinity
/// @param latitude     decimal degrees
///
/// False, and nothing changed, when there is no sample or the search found no water mass that comes
/// within 1 m/s of its speed. Its steps do not shrink below 1 psu, so that it passes over some: a
/// start a little warmer or colder may find one. Below a cast that ends deeper than 11 870 m the
/// rows begin closer than 0.01 m, and near 12 000 m some are the same depth as 32-bit floats.
bool extendIFREMER(raytrace::Layers& samples, ExtensionRows& rows, double temperature,
                   double salinity, double latitude);

} // namespace processing
