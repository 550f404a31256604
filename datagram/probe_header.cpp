#include "datagram/probe_header.h"

#include <cmath>

namespace datagram::probe {

namespace {

double degreesAndMinutes(double degrees)
{
    const double whole = std::trunc(degrees);
    return whole * 100.0 + (degrees - whole) * 60.0;
}

double decimalDegrees(double degreesAndMinutes, bool isNegative)
{
    const double whole = std::trunc(degreesAndMinutes / 100.0);
    const double degrees = whole + (degreesAndMinutes - whole * 100.0) / 60.0;
    return isNegative ? -degrees : degrees;
}

} // namespace

void setLatitude(ProbeHeader& header, double degrees)
{
    if (!(std::abs(degrees) <= 90.0))
        return;
    header.latitude = degreesAndMinutes(std::abs(degrees));
    header.latitudeMark = std::signbit(degrees) ? 'S' : 'N';
}

void setLongitude(ProbeHeader& header, double degrees)
{
    if (!(std::abs(degrees) <= 360.0))
        return;
    const double turned = degrees > 180.0    ? degrees - 360.0
                          : degrees < -180.0 ? degrees + 360.0
                                             : degrees;
    header.longitude = degreesAndMinutes(std::abs(turned));
    header.longitudeMark = std::signbit(turned) ? 'W' : 'E';
}

double latitudeDegrees(const ProbeHeader& header)
{
    return header.latitudeMark == 'I' ? 0.0
                                      : decimalDegrees(header.latitude, header.latitudeMark == 'S');
}

double longitudeDegrees(const ProbeHeader& header)
{
    return header.longitudeMark == 'I'
               ? 0.0
               : decimalDegrees(header.longitude, header.longitudeMark == 'W');
}

} // namespace datagram::probe
