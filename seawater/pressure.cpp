#include "seawater/pressure.h"

#include <cmath>

namespace seawater {

namespace {

constexpr double radiansPerDegree = 0.017453292519943295;
constexpr double scale = 1.008;
constexpr double compression = 2.45e-6; // per m

} // namespace

AtLatitude::AtLatitude(double latitude)
    : m_growth((1.0 - 0.00263 * std::cos(2.0 * latitude * radiansPerDegree)) * scale)
{
}

double AtLatitude::depthFromPressure(double pressure) const
{
    constexpr double perUnit = 1.0 / 4.9392e-6; // a product is quicker than a quotient
    return (std::sqrt(m_growth * m_growth + 9.8784e-6 * pressure) - m_growth) * perUnit;
}

double AtLatitude::pressureFromDepth(double depth) const
{
    return (compression * scale * depth + m_growth) * depth;
}

double depthFromPressure(double pressure, double latitude)
{
    return AtLatitude(latitude).depthFromPressure(pressure);
}

double pressureFromDepth(double depth, double latitude)
{
    return AtLatitude(latitude).pressureFromDepth(depth);
}

} // namespace seawater
