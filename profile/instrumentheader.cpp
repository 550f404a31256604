#include "profile/instrumentheader.h"

#include "profile/instrumentdecoders.h"

#include <algorithm>

namespace profile {

namespace {

struct Unit
{
    double tagDecodeFmt::*factor;
    int tagDecodeFmt::*column;
    std::string_view name;
    double value;
};

constexpr double dbarPerPsi = 0.6894757293168;
constexpr double metresPerFoot = 0.3048;

// Only units that differ from the usual one. "mS/M" is not among them: instruments write it so and
// mean mS/cm.
constexpr Unit units[] = {
    {&tagDecodeFmt::conductivityFactor, &tagDecodeFmt::conductivityColumn, "S/m", 10.0},
    {&tagDecodeFmt::conductivityFactor, &tagDecodeFmt::conductivityColumn, "uS/cm", 0.001},
    {&tagDecodeFmt::conductivityFactor, &tagDecodeFmt::conductivityColumn, "\xC2\xB5S/cm", 0.001},
    {&tagDecodeFmt::conductivityFactor, &tagDecodeFmt::conductivityColumn, "\xCE\xBCS/cm", 0.001},
    {&tagDecodeFmt::conductivityFactor, &tagDecodeFmt::conductivityColumn, "\xB5S/cm", 0.001},
    {&tagDecodeFmt::pressureFactor, &tagDecodeFmt::pressureColumn, "kPa", 0.1},
    {&tagDecodeFmt::pressureFactor, &tagDecodeFmt::pressureColumn, "MPa", 100.0},
    {&tagDecodeFmt::pressureFactor, &tagDecodeFmt::pressureColumn, "bar", 10.0},
    {&tagDecodeFmt::pressureFactor, &tagDecodeFmt::pressureColumn, "mbar", 0.01},
    {&tagDecodeFmt::pressureFactor, &tagDecodeFmt::pressureColumn, "psi", dbarPerPsi},
    {&tagDecodeFmt::depthFactor, &tagDecodeFmt::depthColumn, "ft", metresPerFoot},
    {&tagDecodeFmt::depthFactor, &tagDecodeFmt::depthColumn, "feet", metresPerFoot},
    {&tagDecodeFmt::speedFactor, &tagDecodeFmt::speedColumn, "ft/s", metresPerFoot},
};

double* factorOf(int tagDecodeFmt::*column, tagDecodeFmt& format)
{
    for (const Unit& unit : units) {
        if (unit.column == column)
            return &(format.*unit.factor);
    }
    return nullptr;
}

} // namespace

bool equalIgnoringCase(std::string_view a, std::string_view b)
{
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; };
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                              [&](char x, char y) { return lower(x) == lower(y); });
}

KeyValue splitKeyValue(std::string_view line)
{
    const std::size_t sign = std::min(line.find('='), line.size());
    KeyValue split;
    split.key = trimmedText(line.substr(0, sign));
    if (sign < line.size())
        split.value = trimmedText(line.substr(sign + 1));
    return split;
}

std::vector<std::string_view> splitTrimmed(std::string_view text, char separator)
{
    std::vector<std::string_view> parts;
    while (true) {
        const std::size_t end = text.find(separator);
        parts.push_back(trimmedText(text.substr(0, end)));
        if (end == text.npos)
            return parts;
        text.remove_prefix(end + 1);
    }
}

bool SectionReader::next(std::string_view& line)
{
    while (m_dataLine == 0 && m_lines.next(line)) {
        line = trimmedText(line);
        if (line.empty())
            continue;
        if (line.front() != '[' || line.back() != ']')
            return true;
        m_section = trimmedText(line.substr(1, line.size() - 2));
        if (isIn(m_dataSection))
            m_dataLine = m_lines.number();
    }
    return false;
}

void clearFormat(tagDecodeFmt& format)
{
    const char separator = format.separator;
    format = tagDecodeFmt();
    format.separator = separator;
}

HeaderColumn withUnitApart(HeaderColumn column)
{
    const std::size_t open = column.name.find_first_of("([");
    if (open == column.name.npos)
        return column;
    const std::size_t close = std::min(column.name.find_first_of(")]", open), column.name.size());
    if (column.unit.empty())
        column.unit = trimmedText(column.name.substr(open + 1, close - open - 1));
    column.name = trimmedText(column.name.substr(0, open));
    return column;
}

void takeUnit(int tagDecodeFmt::*column, std::string_view unit, tagDecodeFmt& format)
{
    double* const factor = factorOf(column, format);
    if (factor == nullptr)
        return;
    *factor = 1.0;
    for (const Unit& known : units) {
        if (known.column == column && equalIgnoringCase(known.name, unit))
            *factor = known.value;
    }
}

bool finishFormat(qint64 dataLine, tagDecodeFmt& format)
{
    format.skipLines = QStringLiteral("1-%1").arg(dataLine);
    format.largestColumn = std::max(format.depthColumn, format.speedColumn);
    if (format.salinityColumn >= 0)
        format.salinityWord = SalinityWord::Salinity;
    else if (format.conductivityColumn >= 0)
        format.salinityWord = SalinityWord::Conductivity;
    const bool isMeasured =
        format.speedColumn >= 0 && (format.depthColumn >= 0 || format.pressureColumn >= 0);
    return dataLine > 0 && (isMeasured || fnDetermineSSPType(format) > 0);
}

int fnDetermineSSPType(const tagDecodeFmt& format)
{
    const bool depth = format.depthColumn >= 0;
    const bool speed = format.speedColumn >= 0;
    const bool temperature = format.temperatureColumn >= 0;
    const bool salinity = format.salinityColumn >= 0;
    const bool pressure = format.pressureColumn >= 0;
    const bool conductivity = format.conductivityColumn >= 0;
    // The order counts: the first row that fits.
    if (depth && speed && temperature && salinity)
        return 1;
    if (pressure && speed && temperature && conductivity)
        return 7;
    if (depth && temperature && salinity)
        return 2;
    if (depth && temperature && conductivity)
        return 3;
    if (pressure && temperature && salinity)
        return 4;
    if (pressure && temperature && conductivity)
        return 5;
    return depth && speed ? 0 : -1;
}

} // namespace profile
