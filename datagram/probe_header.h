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

/// How a coordinate of a single number is written.
enum class Packing
{
    Degrees,       ///< decimal degrees
    DegreesMinutes ///< degrees times 100 plus minutes, as navigation receivers send it
};

/// Takes a coordinate into the header: up to three numbers (degrees, minutes, seconds) with a sign
/// or a letter before or behind them, e.g. `21 58.54321N`, `-52.12345`, `N47 15.250`; sign and
/// letter together count once. Degrees and minutes with neither belong to no hemisphere that
/// could be known: the header stays as it is, and `nearness` (if given) receives the degrees, which
/// still tell the gravity there. False when the header stays as it is.
bool takeLatitude(ProbeHeader& header, std::string_view text, Packing packing = Packing::Degrees,
                  double* nearness = nullptr);
bool takeLongitude(ProbeHeader& header, std::string_view text, Packing packing = Packing::Degrees);

/// Takes a date and a time of day into the header: year, month, day in this order, or day or month
/// first with a four- or two-digit year behind (of two numbers up to 12 the first is the month),
/// or with the month as an English word; then hours, minutes and seconds, 0 where they are
/// missing. A run of 12 or 14 digits is read as a stamp. False, and the header as it was, when
/// there is no such date in 1900 to 2500, or no such time of day.
bool takeDateTime(ProbeHeader& header, std::string_view text);

/// As above from parts: a year of four digits, and a time of day in 24 hours.
bool setDateTime(ProbeHeader& header, int year, int month, int day, int hours, int minutes,
                 int seconds);

/// The year of a two-digit one: 1970 to 2069. Others stay.
int fullYear(int year);

/// Finds a header item: `label` (lower case) at the start of the line, in any case and behind
/// comment signs, ended by no letter or digit. What follows it, less blanks, ":" and "=", goes into
/// `value`.
bool itemValue(std::string_view line, std::string_view label, std::string_view& value);

} // namespace datagram::probe
