#pragma once

#include "profile/importfilter.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

/// The table of the user's import filters, "svp_filters_v2.txt": one row per line, shared with
/// other programs of the survey system. The functions on texts know nothing of the file.
namespace profile {

/// Largest table: some ten thousand rows. It is read at each open.
constexpr int maxFilterTable = 1024 * 1024;

/// A row as it is written: white space dropped, columns in decimal, factors with three decimals.
QString formatFilterRow(const FilterRow& row);

/// The first fault of a row of the table, as a sentence for people; empty for a valid row.
QString filterFault(const FilterRow& row);

/// Reads the body of a request to save a filter. Its values, separated by "," ("[", "]" and white
/// space are dropped): depth column, speed column, skip lines, speed factor, depth factor, name,
/// postfix, separator, third, fourth and fifth column, salinity word. Returns the reason to refuse
/// the request, and `row` is of no use then; empty when the row can be saved.
QString readSaveFilter(const QString& body, FilterRow& row);

/// The rows of a table, and what is wrong with those that are left out.
struct CheckedFilters
{
    QStringList rows;   ///< valid ones, as `formatFilterRow` writes them
    QStringList faults; ///< the first fault of each other row of twelve fields
};

/// Checks the rows of a table. A line of another number of fields is none.
CheckedFilters checkFilters(const QByteArray& table);

/// The table with `row` at its end, without the rows that have its name or its postfix, compared
/// without regard to case, and without lines of other than twelve fields. Faulty rows stay, so
/// that their owner can mend them.
QByteArray tableWithFilter(const QByteArray& table, const FilterRow& row);

/// What deleting the filter `name` leaves of a table: lines of exactly eight fields whose first
/// one is another name, compared without regard to case. Nothing else, so no row of twelve fields.
QByteArray tableWithoutFilter(const QByteArray& table, const QString& name);

/// Absolute path of the folder of the table; empty without a data root. It may be missing.
QString filterFolder();

/// What `readFilterTable` found.
enum class FilterFile
{
    Read,      ///< the file was read
    Missing,   ///< there is none, but its folder is there
    NotOpened, ///< it cannot be read, is larger than `maxFilterTable`, or its folder is missing
};

/// Reads the file of the table into `table`, which is empty when it cannot be read.
FilterFile readFilterTable(QByteArray& table);

/// Replaces the file of the table as a whole, or makes it. False, and an older file is as it was,
/// when it cannot be written or would be larger than `maxFilterTable`.
bool writeFilterTable(const QByteArray& table);

} // namespace profile
