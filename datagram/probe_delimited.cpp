#include "datagram/probe_header.h"
#include "datagram/probe_level.h"
#include "datagram/probe_readers.h"
#include "datagram/probe_text.h"
#include "profile/textfile.h"

#include <cmath>

// Tables: rows of depth, sound speed and temperature. Where a heading right above the rows names
// the columns, the names decide, whatever the order.

namespace datagram::probe {

namespace {

// A heading, and what separates the fields below it.
struct Heading
{
    ColumnMap columns;
    Delimiter delimiter = Delimiter::Blanks;
    std::size_t fieldCount = 0;
};

bool isUnit(std::string_view field)
{
    return field.front() == '(' || field.front() == '[';
}

// "Sound velocity" and the like are one name.
bool continuesSound(std::string_view field, std::string_view before)
{
    return equalsInAnyCase(before, "sound") &&
           (startsInAnyCase(field, "vel") || startsInAnyCase(field, "speed"));
}

Delimiter delimiterOf(std::string_view heading)
{
    if (heading.find('\t') != std::string_view::npos)
        return Delimiter::Tab;
    return heading.find(',') != std::string_view::npos ? Delimiter::Comma : Delimiter::Blanks;
}

Heading headingOf(std::string_view line, Delimiter delimiter, std::vector<std::string_view>& fields)
{
    Heading heading;
    heading.delimiter = delimiter;
    const std::size_t start = std::min(line.find_first_not_of(" #%*/\""), line.size());
    splitFields(line.substr(start), delimiter, fields);
    std::string_view before;
    for (const std::string_view field : fields) {
        const bool isPart =
            delimiter == Delimiter::Blanks && (isUnit(field) || continuesSound(field, before));
        if (!isPart)
            heading.columns.takeNamed(field, int(heading.fieldCount++));
        before = field;
    }
    return heading;
}

// A row in the order depth, sound speed, temperature.
using ScanRow = bool (*)(std::string_view line, seawater::Level& level);

bool scanPlain(std::string_view line, seawater::Level& level)
{
    Scanner row(line);
    return row.number(level.depth) && row.number(level.speed) && row.number(level.temperature);
}

bool scanDelimited(std::string_view line, seawater::Level& level)
{
    constexpr std::string_view delimiters = " ,\t";
    const auto field = [&line, delimiters](double& value) {
        const std::size_t start = line.find_first_not_of(delimiters);
        if (start == std::string_view::npos)
            return false;
        std::size_t end = start;
        while (end < line.size() && line[end] != ' ' && line[end] != ',' && line[end] != '\t')
            ++end;
        value = wholeNumber(line.substr(start, end - start));
        line.remove_prefix(end);
        return !std::isnan(value);
    };
    if (!field(level.depth) || !field(level.speed))
        return false;
    field(level.temperature);
    return true;
}

// Scan number, depth, sound speed, temperature.
bool scanNumbered(std::string_view line, seawater::Level& level)
{
    Scanner row(line);
    double number = 0.0;
    if (!row.number(number) || !row.number(level.depth) || !row.number(level.speed))
        return false;
    row.number(level.temperature);
    return true;
}

class Table
{
  public:
    explicit Table(ScanRow scan) : m_scan(scan) {}

    bool hasRows() const { return m_hasRows; }

    // Takes a line into the cast. False when it is no row.
    bool takeRow(std::string_view line, ProbeCast& cast)
    {
        seawater::Level level;
        if (!(m_isNamed ? readNamed(line, level) : m_scan(line, level)))
            return false;
        m_hasRows = true;
        addLevel(cast, level, 0.0);
        return true;
    }

    // Takes the names of the columns, if the line is made of such.
    void takeHeading(std::string_view line, Delimiter delimiter)
    {
        // A line of units under the names is no new heading.
        const Heading heading = headingOf(line, delimiter, m_fields);
        if (heading.columns.isEnough()) {
            m_heading = heading;
            m_isNamed = true;
        }
    }

  private:
    bool readNamed(std::string_view line, seawater::Level& level)
    {
        splitFields(line, m_heading.delimiter, m_fields);
        // Words in a row may be prose: then there is no name for each column.
        if (!m_hasRows && m_heading.delimiter == Delimiter::Blanks &&
            m_fields.size() != m_heading.fieldCount && m_scan(line, level)) {
            m_isNamed = false;
            return true;
        }
        level = levelOf(m_fields, m_heading.columns);
        return !std::isnan(level.depth) || !std::isnan(level.pressure);
    }

    ScanRow m_scan;
    Heading m_heading;
    std::vector<std::string_view> m_fields;
    bool m_isNamed = false;
    bool m_hasRows = false;
};

int readTable(std::string_view text, ScanRow scan, ProbeCast& cast)
{
    Table table(scan);
    profile::LineReader lines(text);
    std::string_view line;
    while (lines.next(line)) {
        if (!table.takeRow(line, cast) && !table.hasRows())
            table.takeHeading(line, delimiterOf(line));
    }
    return finished(cast);
}

} // namespace

int readDelimitedRows(std::string_view text, ProbeCast& cast)
{
    return readTable(text, scanDelimited, cast);
}

int readPlainColumns(std::string_view text, ProbeCast& cast)
{
    return readTable(text, scanPlain, cast);
}

int readScanListing(std::string_view text, ProbeCast& cast)
{
    Table table(scanNumbered);
    profile::LineReader lines(text);
    std::string_view line;
    bool hasTable = false;
    while (!hasTable && lines.next(line))
        hasTable = containsInAnyCase(line, "scan");
    if (!hasTable) {
        cast.reason = QStringLiteral("no \"scan\" line");
        return 0;
    }
    table.takeHeading(line, Delimiter::Blanks);
    while (lines.next(line)) {
        if (!table.takeRow(line, cast) && !table.hasRows())
            table.takeHeading(line, Delimiter::Blanks);
    }
    return finished(cast);
}

} // namespace datagram::probe
