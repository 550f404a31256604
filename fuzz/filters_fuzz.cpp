#include "profile/filtertable.h"

#include <cstdint>
#include <cstdlib>

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

bool isEqual(const profile::FilterRow& one, const profile::FilterRow& other)
{
    const profile::tagDecodeFmt& a = one.format;
    const profile::tagDecodeFmt& b = other.format;
    return one.name == other.name && one.postfix == other.postfix &&
           one.separator == other.separator && one.salinity == other.salinity &&
           a.depthColumn == b.depthColumn && a.speedColumn == b.speedColumn &&
           a.temperatureColumn == b.temperatureColumn && a.salinityColumn == b.salinityColumn &&
           a.absorptionColumn == b.absorptionColumn && a.largestColumn == b.largestColumn &&
           a.skipLines == b.skipLines && a.depthFactor == b.depthFactor &&
           a.speedFactor == b.speedFactor && a.separator == b.separator &&
           a.salinityWord == b.salinityWord;
}

// A row that was written reads back as the row it is, and is written the same again.
profile::FilterRow writtenAndRead(const QString& line)
{
    profile::FilterRow row;
    profile::FilterRow again;
    require(profile::parseFilterRow(line, row));
    require(profile::formatFilterRow(row) == line && profile::filterFault(row).isEmpty());
    require(profile::parseFilterRow(profile::formatFilterRow(row), again) && isEqual(row, again));
    return row;
}

} // namespace

// The input is taken for a request to save a filter, and for the text of a table.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray table(reinterpret_cast<const char*>(data), int(size));
    const profile::CheckedFilters checked = profile::checkFilters(table);
    for (const QString& line : checked.rows)
        writtenAndRead(line);

    const QByteArray kept = profile::tableWithoutFilter(table, QStringLiteral("name"));
    require(profile::tableWithoutFilter(kept, QStringLiteral("name")) == kept);

    profile::FilterRow row;
    if (!profile::readSaveFilter(QString::fromUtf8(table), row).isEmpty())
        return 0;
    const QByteArray saved = profile::tableWithFilter(table, row);
    require(profile::tableWithFilter(saved, row) == saved);
    // A word that is none is saved all the same, and named by the list.
    const QString fault = profile::filterFault(row);
    if (!fault.isEmpty()) {
        require(profile::checkFilters(saved).faults.endsWith(fault));
        return 0;
    }
    const QString line = profile::formatFilterRow(row);
    writtenAndRead(line);
    require(profile::checkFilters(saved).rows.endsWith(line));
    return 0;
}
