#include "seawater/salinity.h"

#include <cmath>

namespace seawater {

namespace {

// The lowest ratio that the scale is evaluated for.
constexpr double lowestRatio = 5e-4;

// Conductivity at salinity 35 and atmospheric pressure, relative to that at 15 °C.
double ratioOfTemperature(double t)
{
    return (((1.0031e-9 * t - 6.9698e-7) * t + 1.104259e-4) * t + 2.00564e-2) * t + 0.6766097;
}

} // namespace

double practicalSalinityFromRatio(double ratio, double temperature, double pressure)
{
    if (ratio <= lowestRatio)
        return 0.0;
    const double t = temperature;
    const double p = pressure;
    const double risen = ((3.989e-15 * p - 6.370e-10) * p + 2.070e-5) * p;
    const double a = -3.107e-3 * t + 4.215e-1;
    const double b = (4.464e-4 * t + 3.426e-2) * t + 1.0;
    // The ratio over that of the temperature and that of the pressure, 1 + risen / (b + a·ratio),
    // as one fraction.
    const double below = b + a * ratio;
    const double x = std::sqrt(std::abs(ratio * below / (ratioOfTemperature(t) * (below + risen))));
    const double from15 = t - 15.0;
    const double atFifteen =
        ((((2.7081 * x - 7.0261) * x + 14.0941) * x + 25.3851) * x - 0.1692) * x + 0.0080;
    const double correction =
        ((((-0.0144 * x + 0.0636) * x - 0.0375) * x - 0.0066) * x - 0.0056) * x + 0.0005;
    return atFifteen + from15 / (1.0 + 0.0162 * from15) * correction;
}

double practicalSalinity(double conductivity, double temperature, double pressure)
{
    return practicalSalinityFromRatio(conductivity / standardConductivity, temperature, pressure);
}

} // namespace seawater
