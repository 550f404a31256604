#pragma once

#include <QString>

#include <string>
#include <string_view>

/// Small text helpers that the readers of probe and datagram files share.
namespace profile {

/// Cuts `text` in place at each `separator` and returns a new array of pointers to the fields, in
/// order, with their number in `count`. A text without a separator is one field. The caller
/// releases the array with `std::free`; the fields live in `text`. Null, and a count of 0, when
/// `text` is null or memory is short.
char** decodeCommaString(char* text, int* count, char separator);

/// Finds `key` in a line and puts what follows it, up to the end of the line and without white
/// space around it, into `value`. The key counts where it stands whole: at the start of the line
/// or behind a character that is no letter, digit or "_"; case matters. False, and `value` as it
/// was, when the line does not hold it.
bool getFieldValue(std::string_view line, std::string_view key, std::string& value);

/// As above, but the value ends before `nextKey`, when that stands behind the key.
bool getFieldValue(std::string_view line, std::string_view key, std::string_view nextKey,
                   std::string& value);

/// Number of digits behind the "." of a number as text, but at least `minimum`. Text without a
/// "." gives the minimum (0 if that is negative), empty text gives 0.
int fnFindPrecision(const QString& number, int minimum);
int fnFindPrecision(std::string_view number, int minimum);

} // namespace profile
