#pragma once

#include <QString>

namespace datagram {

/// What the first column of a datagram's rows holds.
enum class FirstColumn
{
    NoRows,
    Depth,
    Alternative
};

/// A content identifier: the two digits behind "$QZS" that say which columns the rows of a sound
/// speed profile datagram carry and what has to be computed from them.
struct ContentIdentifier
{
    int number = -1;
    bool isLegal = false; ///< taken in requests and by the verifier

    // Columns of a row; one that is not carried stays empty.
    FirstColumn first = FirstColumn::NoRows; ///< `NoRows`: the row builder writes none at all
    bool hasSpeed = false;
    bool hasTemperature = false;
    bool hasSalinity = false;
    bool hasAbsorption = false;

    // What reading the rows takes.
    bool isConvertible = false;            ///< false: the rows are taken as they stand
    bool computesSpeed = false;            ///< sound speed from salinity, temperature, pressure
    bool salinityFromConductivity = false; ///< the fourth column is a conductivity
    bool firstIsPressure = false;          ///< the first column is a pressure
};

/// The entry of `number`; for one that does not exist an illegal identifier without rows.
ContentIdentifier contentIdentifier(int number);

/// The legal identifier that a text names. `isLegal` is false in the result when the text is no
/// integer or no legal one.
ContentIdentifier legalIdentifier(const QString& text);

} // namespace datagram
