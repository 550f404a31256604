#include "profile/filtertable.h"

#include "platform/platform.h"
#include "profile/textfile.h"
#include "settings/numbers.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace profile {

namespace {

constexpr int factorDecimals = 3;

bool isSame(const QString& one, const QString& other)
{
    return one.compare(other, Qt::CaseInsensitive) == 0;
}

QString factorText(double factor)
{
    return QString::fromStdString(settings::fixedText(factor, factorDecimals));
}

// Calls `take` with each line of a table, white space dropped.
template <typename Take> void forEachLine(const QByteArray& table, const Take& take)
{
    const QByteArray text = normalisedText(table);
    LineReader lines({text.constData(), std::size_t(text.size())});
    std::string_view line;
    while (lines.next(line))
        take(withoutWhiteSpace(decodedText(line)));
}

// CR LF, as in the other text files that travel between the programs of the survey system.
void appendLine(QByteArray& table, const QString& line)
{
    table += line.toUtf8();
    table += "\r\n";
}

QString tablePath()
{
    const QString folder = filterFolder();
    return folder.isEmpty() ? QString() : folder + QStringLiteral("/svp_filters_v2.txt");
}

// The checks on a row to be saved, in the order in which front ends expect their reasons.
QString saveFault(const FilterRow& row)
{
    const tagDecodeFmt& format = row.format;
    if (format.depthColumn < 0)
        return QStringLiteral("Depthcolumn cannot be negative.");
    if (format.speedColumn < 0)
        return QStringLiteral("Speedcolumn cannot be negative.");
    if (format.speedColumn == format.depthColumn)
        return QStringLiteral("Speedcolumn and Depthcolumn cannot be the same.");
    if (format.speedFactor < 0)
        return QStringLiteral("Speed multiplier cannot be negative.");
    if (format.depthFactor < 0)
        return QStringLiteral("Depth multiplier cannot be negative.");
    for (const QString& reserved : {QStringLiteral("asvp"), QStringLiteral("valeport")}) {
        if (isSame(row.name, reserved))
            return QStringLiteral("Name ") + reserved + QStringLiteral(" is reserved.");
        if (isSame(row.postfix, QLatin1Char('.') + reserved))
            return QStringLiteral("Postfix .") + reserved + QStringLiteral(" is reserved.");
    }
    return {};
}

// Whether each column and factor of a save request is a number; a further column may be missing.
bool holdsNumbers(const QStringList& values)
{
    int column = -1;
    double factor = -1.0;
    return readFilterColumn(values[0], column) && readFilterColumn(values[1], column) &&
           readFilterFactor(values[3], factor) && readFilterFactor(values[4], factor) &&
           std::all_of(values.begin() + 8, values.begin() + 11, [&column](const QString& value) {
               return value.isEmpty() || readFilterColumn(value, column);
           });
}

QString separatorFault(const FilterRow& row)
{
    char separator = ' ';
    return readSeparator(row.separator, separator)
               ? QString()
               : QStringLiteral("Separator must be space, tab, semicolon, colon or comma.");
}

QString salinityFault(const FilterRow& row)
{
    SalinityWord meaning = SalinityWord::Undefined;
    return readSalinityWord(row.salinity, meaning)
               ? QString()
               : QStringLiteral("Sal/Con must be salinity, conductivity, or undef.");
}

} // namespace

QString formatFilterRow(const FilterRow& row)
{
    const tagDecodeFmt& format = row.format;
    // Joined, not filled into a pattern: a name may hold "%1" itself.
    const QStringList fields = {row.name,
                                row.postfix,
                                QString::number(format.depthColumn),
                                QString::number(format.speedColumn),
                                QString::number(format.temperatureColumn),
                                QString::number(format.salinityColumn),
                                QString::number(format.absorptionColumn),
                                format.skipLines,
                                factorText(format.depthFactor),
                                factorText(format.speedFactor),
                                row.separator,
                                row.salinity};
    return fields.join(QLatin1Char(','));
}

QString filterFault(const FilterRow& row)
{
    // The name "valeport" is not among the faults: rows of that name stand in older tables.
    if (isSame(row.name, QStringLiteral("asvp")))
        return QStringLiteral("asvp is a reserved filtername.");
    for (const QString& reserved : {QStringLiteral(".asvp"), QStringLiteral(".valeport")}) {
        if (isSame(row.postfix, reserved))
            return reserved + QStringLiteral(" is a reserved filter postfix.");
    }
    QString separator = separatorFault(row);
    if (!separator.isEmpty())
        return separator;
    QString salinity = salinityFault(row);
    if (!salinity.isEmpty())
        return salinity;
    const tagDecodeFmt& format = row.format;
    if (format.depthColumn < 0)
        return QStringLiteral("Depthcolumn cannot be negative.");
    if (format.speedColumn < 0)
        return QStringLiteral("Speedcolumn cannot be negative.");
    if (format.speedColumn == format.depthColumn)
        return QStringLiteral("Speedcolumn cannot be the same as Depthcolumn.");
    if (format.depthFactor < 0)
        return QStringLiteral("Depthfactor cannot be negative.");
    if (format.speedFactor < 0)
        return QStringLiteral("Speedfactor cannot be negative.");
    return {};
}

QString readSaveFilter(const QString& body, FilterRow& row)
{
    QString wrongInput = QStringLiteral("Wrong input parameters.");
    QString text = withoutWhiteSpace(body);
    text.remove(QLatin1Char('[')).remove(QLatin1Char(']'));
    if (text.count(QLatin1Char(',')) != filterFields - 1)
        return wrongInput;
    const QStringList values = text.split(QLatin1Char(','));
    // The request has an order of its own; the factors, too, stand the other way round.
    const QStringList fields = {values[5],  values[6], values[0], values[1], values[8], values[9],
                                values[10], values[2], values[4], values[3], values[7], values[11]};
    // Read as 0, a number that is none would take the first column for the depth, or turn each
    // depth into 0.
    if (!holdsNumbers(values))
        return wrongInput;
    parseFilterRow(fields.join(QLatin1Char(',')), row);
    QString fault = saveFault(row);
    if (!fault.isEmpty())
        return fault;
    // What could be stored but not be used: a row for every file or for none, a "|" that takes the
    // reply's list apart.
    if (row.name.isEmpty() || row.postfix.isEmpty() || text.contains(QLatin1Char('|')))
        return wrongInput;
    return {};
}

CheckedFilters checkFilters(const QByteArray& table)
{
    CheckedFilters checked;
    forEachLine(table, [&checked](const QString& line) {
        FilterRow row;
        if (!parseFilterRow(line, row))
            return;
        const QString fault = filterFault(row);
        if (fault.isEmpty())
            checked.rows.append(formatFilterRow(row));
        else
            checked.faults.append(fault);
    });
    return checked;
}

QByteArray tableWithFilter(const QByteArray& table, const FilterRow& row)
{
    QByteArray result;
    forEachLine(table, [&result, &row](const QString& line) {
        FilterRow older;
        if (parseFilterRow(line, older) && !isSame(older.name, row.name) &&
            !isSame(older.postfix, row.postfix))
            appendLine(result, line);
    });
    appendLine(result, formatFilterRow(row));
    return result;
}

QByteArray tableWithoutFilter(const QByteArray& table, const QString& name)
{
    // Eight fields is a row of an older form of the table. Rows have twelve today, so deleting any
    // filter empties the table. Kept on purpose: front ends delete by emptying the table and
    // saving the other rows again, and would leave a filter behind if rows stayed.
    constexpr int keptFields = 8;
    QByteArray result;
    forEachLine(table, [&result, &name](const QString& line) {
        if (line.count(QLatin1Char(',')) == keptFields - 1 &&
            !isSame(line.left(line.indexOf(QLatin1Char(','))), name))
            appendLine(result, line);
    });
    return result;
}

QString filterFolder()
{
    const QString root = platform::dataRoot();
    // The root ends in a separator; systems take the two for one.
    return root.isEmpty()
               ? QString()
               : QDir(platform::nativePath(root + QStringLiteral("\\qrvdata\\svp_abscoeff")))
                     .absolutePath();
}

FilterFile readFilterTable(QByteArray& table)
{
    table.clear();
    const QString path = tablePath();
    const QFileInfo file(path);
    if (path.isEmpty())
        return FilterFile::NotOpened;
    if (!file.exists() && !file.isSymLink())
        return QFileInfo(filterFolder()).isDir() ? FilterFile::Missing : FilterFile::NotOpened;
    if (file.size() > maxFilterTable || !platform::readFile(path, table))
        return FilterFile::NotOpened;
    return FilterFile::Read;
}

bool writeFilterTable(const QByteArray& table)
{
    return table.size() <= maxFilterTable && platform::replaceFile(tablePath(), table);
}

} // namespace profile
