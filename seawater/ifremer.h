#pragma once

namespace seawater {

/// Sound speed (m/s) in sea water from temperature, salinity, latitude and depth: no pressure is
/// needed.
///
/// @param temperature  degrees Celsius (ITS-90)
/// @param salinity     practical salinity
/// @param latitude     decimal degrees, south negative
/// @param depth        m, positive down, for 0 to 12 000
///
/// Source: Leroy, Robinson and Goldsmith, J. Acoust. Soc. Am. 124 (2008) 2774-2782. Published for
/// the waters of all oceans and open seas, the Baltic and the Black Sea included, within 0.2 m/s
/// of equations in pressure; brine at the sea floor is excepted. Nothing is clamped.
///
/// Departure: the term of the latitude is 1.2e-6·(φ - 45), where the publication multiplies it by
/// the depth Z as well. Profiles that were continued earlier rest on this form. The published
/// value is higher by 1.2e-6·(Z - 1)·(φ - 45) m/s:
///
///     depth       0°        30°       45°   60°       90°
///      1 000 m   -0.054    -0.018    0     +0.018    +0.054
///      2 000 m   -0.108    -0.036    0     +0.036    +0.108
///      6 000 m   -0.324    -0.108    0     +0.108    +0.324
///     12 000 m   -0.648    -0.216    0     +0.216    +0.648
///
/// Here the latitude counts for at most 0.00016 m/s, so its sign does not matter.
///
/// Check: T 10, S 35, φ 45, Z 0 gives 1489.8195, worked out by hand.
double ifremer_speed(double temperature, double salinity, double latitude, double depth);

} // namespace seawater
