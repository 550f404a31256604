#pragma once

/// What a byte of a text is, by ASCII alone: whatever locale the host runs under, and whatever the
/// bytes past 127 mean.
namespace settings {

/// Whether it is one of 0 to 9.
constexpr bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// A to Z as a to z; all else as it is.
constexpr char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c;
}

/// a to z as A to Z; all else as it is.
constexpr char upper(char c)
{
    return c >= 'a' && c <= 'z' ? char(c - 'a' + 'A') : c;
}

/// Whether it is one of a to z or A to Z.
constexpr bool isLetter(char c)
{
    return lower(c) >= 'a' && lower(c) <= 'z';
}

} // namespace settings
