#pragma once

#include "profile/columndecoder.h"

#include <QString>
#include <QStringList>

namespace profile {

/// The filter rows that the engine brings along, in the order in which they are tried.
const QStringList& builtInFilters();

/// One row of the filter table: which files it is for and how their columns are read.
struct FilterRow
{
    QString name;
    QString postfix; ///< with its dot
    tagDecodeFmt format;
};

/// Reads a row of twelve fields separated by ",". False when it has another number of them. A
/// number that cannot be read is 0.
bool parseFilterRow(const QString& line, FilterRow& row);

/// The first row whose postfix ends `fileName`, compared without regard to case. False when none
/// does.
bool findFilter(const QStringList& lines, const QString& fileName, FilterRow& row);

} // namespace profile
