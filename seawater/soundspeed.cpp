#include "seawater/soundspeed.h"

#include <cmath>

namespace seawater {

double chenMilleroSoundSpeed(double salinity, double temperature, double pressure)
{
    const double s = salinity;
    const double t = temperature;
    const double p = pressure / 10.0; // bar

    // Pure water.
    const double c3 = (-2.3643e-12 * t + 3.8504e-10) * t - 9.7729e-9;
    const double c2 =
        (((1.0405e-12 * t - 2.5335e-10) * t + 2.5974e-8) * t - 1.7107e-6) * t + 3.1260e-5;
    const double c1 =
        (((-6.1185e-10 * t + 1.3621e-7) * t - 8.1788e-6) * t + 6.8982e-4) * t + 0.153563;
    const double c0 =
        ((((3.1464e-9 * t - 1.47800e-6) * t + 3.3420e-4) * t - 5.80852e-2) * t + 5.03711) * t +
        1402.388;
    const double pureWater = ((c3 * p + c2) * p + c1) * p + c0;

    // What salinity adds: terms in s, s to the power of 3/2, and s squared.
    const double a3 = (-3.389e-13 * t + 6.649e-12) * t + 1.100e-10;
    const double a2 = ((7.988e-12 * t - 1.6002e-10) * t + 9.1041e-9) * t - 3.9064e-7;
    const double a1 =
        (((-2.0122e-10 * t + 1.0507e-8) * t - 6.4885e-8) * t - 1.2580e-5) * t + 9.4742e-5;
    const double a0 = (((-3.21e-8 * t + 2.006e-6) * t + 7.164e-5) * t - 1.262e-2) * t + 1.389;
    const double a = ((a3 * p + a2) * p + a1) * p + a0;
    const double b = -1.922e-2 - 4.42e-5 * t + (7.3637e-5 + 1.7945e-7 * t) * p;
    const double d = 1.727e-3 - 7.9836e-6 * p;
    return pureWater + (a + b * std::sqrt(std::abs(s)) + d * s) * s;
}

double unescoSoundSpeed(double salinity, double temperature, double pressureDbar)
{
    const double t = temperature;
    const double p = pressureDbar / 10.0; // bar
    const double k1 = (1.4e-5 * t - 2.19e-4) * t + 0.0029;
    const double k2 = (-2.59e-8 * t + 3.47e-7) * t - 4.76e-6;
    const double correction = ((2.68e-9 * p + k2) * p + k1) * p;
    return chenMilleroSoundSpeed(salinity, temperature, pressureDbar) - correction;
}

} // namespace seawater
