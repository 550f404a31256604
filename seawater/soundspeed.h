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

/// The same less the correction of Millero and Li, which lowers the speed of cold deep water: by
/// 0.51 m/s at 2 °C and 4000 dbar. Temperature and pressure as above, the pressure in decibar too
/// (the correction is published for bar, and converted here).
///
/// Source: Millero and Li, J. Acoust. Soc. Am. 95 (1994) 2757-2759:
/// (0.0029 - 0.000219·T + 1.4e-5·T²)·P + (-4.76e-6 + 3.47e-7·T - 2.59e-8·T²)·P² + 2.68e-9·P³.
/// Nothing is clamped: at 40 °C and 10 000 dbar, where no sea is, the correction is -13.1 m/s.
///
/// Check: S 40, T 40, p 10 000 gives 1731.995 + 13.1, the latter worked out by hand.
double unescoSoundSpeed(double salinity, double temperature, double pressureDbar);

} // namespace seawater
