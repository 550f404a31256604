#include "seawater/ifremer.h"

namespace seawater {

double ifremer_speed(double temperature, double salinity, double latitude, double depth)
{
    const double t = temperature;
    const double s = salinity;
    const double z = depth;
    return 1402.5 + ((0.00021 * t - 0.0544) * t + 5.0) * t +
           ((8.7e-5 * t - 0.0123) * t + 1.33) * s + ((-7.3e-12 * z + 2.55e-7) * z + 0.0156) * z +
           1.2e-6 * (latitude - 45.0) - 9.5e-13 * t * z * z * z + 3e-7 * t * t * z +
           1.43e-5 * s * z;
}

} // namespace seawater
