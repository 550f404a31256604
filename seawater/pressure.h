#pragma once

namespace seawater {

/// Depth (m) of a pressure in sea water.
///
/// @param pressure  decibar, 0 at the surface, for 0 to 12 000
/// @param latitude  decimal degrees, either hemisphere
///
/// A quadratic in depth solved for depth, with gravity by latitude:
/// p = 2.45e-6·1.008·d² + g·d, g = (1 - 0.00263·cos 2φ)·1.008. The form follows Leroy,
/// J. Acoust. Soc. Am. 46 (1969) 216-226, rounded. It lies within 0.15 % of the depths of Saunders
/// and Fofonoff (UNESCO technical papers in marine science 44, 1983; check value there 9712.653 m
/// for 10 000 dbar at 30°). A pressure below 0, as probes report in air, gives a depth below 0; one
/// that no depth has, below -104 000 dbar, gives not a number.
double depthFromPressure(double pressure, double latitude);

/// Pressure (dbar) at a depth in m: the inverse of `depthFromPressure`, exact but for rounding.
double pressureFromDepth(double depth, double latitude);

/// The same by another name, with the latitude first, as the atlas profiles call it.
inline double depthToPressure(double latitude, double depth)
{
    return pressureFromDepth(depth, latitude);
}

/// Both at one latitude: what depends on it is worked out once, for casts of many levels.
class AtLatitude
{
  public:
    explicit AtLatitude(double latitude);

    double depthFromPressure(double pressure) const;
    double pressureFromDepth(double depth) const;

  private:
    double m_growth; // of pressure with depth at the surface, dbar per m
};

} // namespace seawater
