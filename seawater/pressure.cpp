#include "seawater/pressure.h"

#include <cmath>

namespace seawater {

namespace {

constexpr double radiansPerDegree = 0.017453292519943295;
constexpr double scale = 1.008;
constexpr double compression = 2.45e-6; // per m

// Growth of pressure with depth at the surface, dbar per m.
double surfaceGrowth(double latitude)
{
    return (1.0 - 0.00263 * std::cos(2.0 * latitude * radiansPerDegree)) * scale;
}

} // namespace

double depthFromPressure(double pressure, double latitude)
{
    const double growth = surfaceGrowth(latitude);
    return (std::sqrt(growth * growth + 9.8784e-6 * pressure) - growth) / 4.9392e-6;
}

double pressureFromDepth(double depth, double latitude)
{
    return (compression * scale * depth + surfaceGrowth(latitude)) * depth;
}

} // namespace seawater
