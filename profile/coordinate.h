#pragma once

#include <QString>

#include <string_view>

/// Positions as instrument files write them.
namespace profile {

/// Which of the two coordinates a text is.
enum class Axis
{
    Latitude, ///< up to 90 degrees, letters N and S
    Longitude ///< up to 360 degrees, letters E and W
};

/// Reads a coordinate: decimal degrees, or degrees with minutes and seconds between blanks, hyphens
/// or their marks ("-12 14 35 S", "59-30-12 N", "59°30'12\"N"). South or west by a minus sign or by
/// the letter, which may stand in front or behind, there also behind a comma ("59.5,S"); both
/// together mean it once. Longitudes above 180 degrees become negative. False, and `degrees` as it
/// was, when the text is no coordinate of this axis: 999, too, stands for an unknown one in such
/// files.
bool parseCoordinate(std::string_view text, Axis axis, double& degrees);

/// A coordinate as text, in decimal degrees: as it stands where it is a plain decimal number, else
/// computed, with up to eight decimals. Empty when it is no coordinate.
QString degreesText(std::string_view text, Axis axis);

} // namespace profile
