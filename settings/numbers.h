#pragma once

#include <string>
#include <string_view>

/// Numbers in settings texts, with a decimal point whatever locale the host runs under.
namespace settings {

/// Reads as `atoi` does: white space, a sign, then digits as far as they go; 0 without digits. A
/// number beyond 32 bits becomes the nearest 32-bit integer.
int leadingInt(std::string_view text);

/// Reads as `atof` does in the "C" locale: white space, a sign, then as much as makes a decimal
/// number; 0 where nothing does. Too large a number becomes infinity, too small a one 0.
double leadingDouble(std::string_view text);

/// The text that "%f" gives in the "C" locale: six decimals, a point (1400 is "1400.000000").
std::string fixedText(double value, int decimals = 6);

/// `value` as a 32-bit float; beyond its range an infinity of the same sign.
float toFloat32(double value);

} // namespace settings
