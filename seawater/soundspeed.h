#pragma once

namespace seawater {

/// Sound speed (m/s) in sea water by the UNESCO equation of Chen and Millero.
///
/// @param salinity     practical salinity, fitted for 0 to 40
/// @param temperature  degrees Celsius (IPTS-68), fitted for 0 to 40
/// @param pressure     decibar, 0 at the surface, fitted for 0 to 10 000
///
/// Source: Chen and Millero, J. Acoust. Soc. Am. 62 (1977) 1129-1135, with the coefficients of
/// Fofonoff and Millard, UNESCO technical papers in marine science 44 (1983). Nothing is clamped;
/// the root of a negative salinity is taken from its amount.
///
/// Check: S 40, T 40, p 10 000 gives 1731.995.
double chenMilleroSoundSpeed(double salinity, double temperature, double pressure);

} // namespace seawater
