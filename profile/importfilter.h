#pragma once

#include "profile/columndecoder.h"

#include <QString>
#include <QStringList>

namespace profile {

/// Fields of a filter row.
constexpr int filterFields = 12;

/// Greatest column number that a filter row may name: no cast has as many, and numbers near the
/// end of an integer would overflow where columns are counted.
constexpr int maxFilterColumn = 10000;

/// The filter rows that the engine brings along, in the order in which they are tried.
const QStringList& builtInFilters();

/// One row of the filter table: which files it is for and how their columns are read.
struct FilterRow
{
    QString name;
    QString postfix; ///< with its dot
    tagDecodeFmt format;
    QString separator; ///< the word for the separator as it stands in the row
    QString salinity;  ///< the word for salinity or conductivity as it stands in the row
};

/// The text without any white space and byte order marks: in a filter row they carry no meaning.
QString withoutWhiteSpace(const QString& text);

/// A column number as a filter row holds it: a decimal integer of at most `maxFilterColumn`, where
/// a negative one is an absent column. False for any other text; `column` is -1 then.
bool readFilterColumn(const QString& text, int& column);

/// Reads a scale factor as a filter row holds it: a decimal number with a point, at most a million.
/// False for any other text, and for a factor above 0 that three decimals would show as 0.000:
/// stored so, it would turn each value into 0. `factor` is -1 then, which no valid row has.
bool readFilterFactor(const QString& text, double& factor);

/// The character for "space", "tab", "semicolon", "colon" or "comma", in any case. False for any
/// other word; `character` is a blank then.
bool readSeparator(const QString& word, char& character);

/// What "salinity", "conductivity" or "undef", in any case, says of the salinity column. False for
/// any other word; `meaning` is `Undefined` then.
bool readSalinityWord(const QString& word, SalinityWord& meaning);

/// Reads a row of twelve fields separated by ",", white space in it dropped. False when it has
/// another number of them. A column or factor that cannot be read is -1, a separator that is none
/// of the words a blank; `filterFault` tells whether the row is valid.
bool parseFilterRow(const QString& line, FilterRow& row);

/// The first row whose postfix ends `fileName`, compared without regard to case. False when none
/// does. An empty postfix, which would end every name, selects nothing.
bool findFilter(const QStringList& lines, const QString& fileName, FilterRow& row);

} // namespace profile
