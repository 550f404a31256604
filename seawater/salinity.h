#pragma once

namespace seawater {

/// Conductivity of sea water of practical salinity 35 at 15 °C and atmospheric pressure, mS/cm.
constexpr double standardConductivity = 42.914;

/// Practical salinity by the scale of 1978.
///
/// @param ratio        conductivity over `standardConductivity`
/// @param temperature  degrees Celsius (IPTS-68), for -2 to 35
/// @param pressure     decibar, 0 at the surface, for 0 to 10 000
///
/// Fitted for salinities of 2 to 42. A ratio of 0.0005 or less, as in air, gives 0.
///
/// Source: Lewis, IEEE J. Oceanic Eng. OE-5 (1980) 3-8; Fofonoff and Millard, UNESCO technical
/// papers in marine science 44 (1983).
///
/// Check: ratio 1.888091, 40 °C, 10 000 dbar gives 40.0000.
double practicalSalinityFromRatio(double ratio, double temperature, double pressure);

/// The same from a conductivity in mS/cm.
double practicalSalinity(double conductivity, double temperature, double pressure);

} // namespace seawater
