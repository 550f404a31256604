#include "profile/instrumentheader.h"

#include "profile/instrumentdecoders.h"

#include <algorithm>

namespace profile {

namespace {

struct Unit
{
    int tagDecodeFmt::*column;
    std::string_view name;
    double factor;
};

constexpr double dbarPerPsi = 0.6894757293168;
constexpr double metresPerFoot = 0.3048;

// "mS/M" is no mS/m: instruments write it so and mean mS/cm. Signs beyond ASCII stand here in UTF-8
// and in Latin-1.
constexpr Unit knownUnits[] = {
    {&tagDecodeFmt::depthColumn, "m", 1.0},
    {&tagDecodeFmt::depthColumn, "metre", 1.0},
    {&tagDecodeFmt::depthColumn, "metres", 1.0},
    {&tagDecodeFmt::depthColumn, "meter", 1.0},
    {&tagDecodeFmt::depthColumn, "meters", 1.0},
    {&tagDecodeFmt::depthColumn, "ft", metresPerFoot},
    {&tagDecodeFmt::depthColumn, "feet", metresPerFoot},
    {&tagDecodeFmt::speedColumn, "m/s", 1.0},
    {&tagDecodeFmt::speedColumn, "m/sec", 1.0},
    {&tagDecodeFmt::speedColumn, "Ms-1", 1.0},
    {&tagDecodeFmt::speedColumn, "m s-1", 1.0},
    {&tagDecodeFmt::speedColumn, "ft/s", metresPerFoot},
    {&tagDecodeFmt::temperatureColumn, "C", 1.0},
    {&tagDecodeFmt::temperatureColumn,
     "\xC2\xB0"
     "C",
     1.0},
    {&tagDecodeFmt::temperatureColumn,
     "\xB0"
     "C",
     1.0},
    {&tagDecodeFmt::temperatureColumn,
     "\xC2\xBA"
     "C",
     1.0},
    {&tagDecodeFmt::temperatureColumn, "DegC", 1.0},
    {&tagDecodeFmt::temperatureColumn, "deg C", 1.0},
    {&tagDecodeFmt::temperatureColumn, "degrees C", 1.0},
    {&tagDecodeFmt::temperatureColumn, "Celsius", 1.0},
    {&tagDecodeFmt::salinityColumn, "PSU", 1.0},
    {&tagDecodeFmt::salinityColumn, "PSS", 1.0},
    {&tagDecodeFmt::salinityColumn, "PSS-78", 1.0},
    {&tagDecodeFmt::salinityColumn, "ppt", 1.0},
    {&tagDecodeFmt::pressureColumn, "dbar", 1.0},
    {&tagDecodeFmt::pressureColumn, "decibar", 1.0},
    {&tagDecodeFmt::pressureColumn, "db", 1.0},
    {&tagDecodeFmt::pressureColumn, "kPa", 0.1},
    {&tagDecodeFmt::pressureColumn, "MPa", 100.0},
    {&tagDecodeFmt::pressureColumn, "bar", 10.0},
    {&tagDecodeFmt::pressureColumn, "mbar", 0.01},
    {&tagDecodeFmt::pressureColumn, "psi", dbarPerPsi},
    {&tagDecodeFmt::conductivityColumn, "mS/cm", 1.0},
    {&tagDecodeFmt::conductivityColumn, "mS/M", 1.0},
    {&tagDecodeFmt::conductivityColumn, "S/m", 10.0},
    {&tagDecodeFmt::conductivityColumn, "uS/cm", 0.001},
    {&tagDecodeFmt::conductivityColumn, "\xC2\xB5S/cm", 0.001},
    {&tagDecodeFmt::conductivityColumn, "\xCE\xBCS/cm", 0.001},
    {&tagDecodeFmt::conductivityColumn, "\xB5S/cm", 0.001},
};

// The unit of a quantity, null where the text is none.
const Unit* unitOf(int tagDecodeFmt::*column, std::string_view name)
{
    for (const Unit& unit : knownUnits) {
        if (unit.column == column && equalIgnoringCase(unit.name, name))
            return &unit;
    }
    return nullptr;
}

// Where the factor of a quantity stands. Null for those that have one unit only.
double* factorOf(int tagDecodeFmt::*column, tagDecodeFmt& format)
{
    struct Factor
    {
        int tagDecodeFmt::*column;
        double tagDecodeFmt::*factor;
    };
    constexpr Factor factors[] = {
        {&tagDecodeFmt::depthColumn, &tagDecodeFmt::depthFactor},
        {&tagDecodeFmt::speedColumn, &tagDecodeFmt::speedFactor},
        {&tagDecodeFmt::pressureColumn, &tagDecodeFmt::pressureFactor},
        {&tagDecodeFmt::conductivityColumn, &tagDecodeFmt::conductivityFactor},
    };
    for (const Factor& factor : factors) {
        if (factor.column == column)
            return &(format.*factor.factor);
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

std::vector<std::string_view> splitTrimmed(std::string_view text, char separator,
                                           std::size_t maxParts)
{
    std::vector<std::string_view> parts;
    while (parts.size() < maxParts) {
        const std::size_t end = text.find(separator);
        parts.push_back(trimmedText(text.substr(0, end)));
        if (end == text.npos)
            break;
        text.remove_prefix(end + 1);
    }
    return parts;
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

HeaderColumn withUnitApart(std::string_view name)
{
    const std::size_t open = name.find_last_of("([");
    if (open == name.npos || (name.back() != ')' && name.back() != ']'))
        return {name, {}};
    return {trimmedText(name.substr(0, open)),
            trimmedText(name.substr(open + 1, name.size() - open - 2))};
}

bool isColumn(const ColumnName& known, HeaderColumn& column)
{
    if (equalIgnoringCase(column.name, known.name))
        return true;
    const HeaderColumn apart = withUnitApart(column.name);
    if (!equalIgnoringCase(apart.name, known.name) || unitOf(known.column, apart.unit) == nullptr)
        return false;
    if (column.unit.empty())
        column.unit = apart.unit;
    return true;
}

void takeColumn(int tagDecodeFmt::*quantity, int number, std::string_view unit,
                tagDecodeFmt& format)
{
    double* const factor = factorOf(quantity, format);
    if (format.*quantity >= 0) {
        std::vector<EarlierColumn>& earlier = format.earlierColumns;
        const auto isSame = [quantity](const EarlierColumn& c) { return c.quantity == quantity; };
        earlier.erase(std::remove_if(earlier.begin(), earlier.end(), isSame), earlier.end());
        earlier.push_back({quantity, format.*quantity, factor != nullptr ? *factor : 1.0});
    }
    format.*quantity = number;
    if (factor != nullptr) {
        const Unit* const known = unitOf(quantity, unit);
        *factor = known != nullptr ? known->factor : 1.0;
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
