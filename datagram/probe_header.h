#pragma once

#include "datagram/receivedata.h"

#include <string_view>

/// Times and positions as the headers of probe files write them.
namespace datagram::probe {

/// Puts a coordinate in decimal degrees into the header. Longitudes up to 360 are understood. One
/// that is out of range or not a number leaves the header as it is.
void setLatitude(ProbeHeader& header, double degrees);
void setLongitude(ProbeHeader& header, double degrees);

/// Decimal degrees of the header, south and west negative; 0 where they are not known.
double latitudeDegrees(const ProbeHeader& header);
double longitudeDegrees(const ProbeHeader& header);

} // namespace datagram::probe
