#include "datagram/probe_level.h"

#include "datagram/probe_text.h"
#include "settings/characters.h"

#include <algorithm>
#include <cmath>

namespace datagram::probe {

namespace {

using settings::isLetter;

struct QuantityName
{
    std::string_view start; // lower case
    Quantity quantity;
};

constexpr QuantityName quantityNames[] = {
    {"depth", Quantity::Depth},         {"press", Quantity::Pressure},
    {"sound", Quantity::Speed},         {"veloc", Quantity::Speed},
    {"speed", Quantity::Speed},         {"svel", Quantity::Speed},
    {"temp", Quantity::Temperature},    {"salin", Quantity::Salinity},
    {"conduc", Quantity::Conductivity},
};

// Names that are short for the whole of the word.
constexpr QuantityName shortNames[] = {
    {"pres", Quantity::Pressure}, {"sv", Quantity::Speed},          {"ss", Quantity::Speed},
    {"sal", Quantity::Salinity},  {"cond", Quantity::Conductivity},
};

struct Unit
{
    Quantity quantity;
    std::string_view word; // lower case
    double factor;
    double offset;
};

// The first that fits counts, so longer words stand before those that they hold.
constexpr Unit units[] = {
    {Quantity::Depth, "ft", 0.3048, 0.0},
    {Quantity::Depth, "feet", 0.3048, 0.0},
    {Quantity::Depth, "foot", 0.3048, 0.0},
    {Quantity::Pressure, "psi", 0.6894757, 0.0},
    {Quantity::Pressure, "mpa", 100.0, 0.0},
    {Quantity::Pressure, "kpa", 0.1, 0.0},
    {Quantity::Pressure, "mbar", 0.01, 0.0},
    {Quantity::Pressure, "bar", 10.0, 0.0},
    {Quantity::Speed, "ft", 0.3048, 0.0},
    {Quantity::Speed, "f/s", 0.3048, 0.0},
    {Quantity::Speed, "feet", 0.3048, 0.0},
    {Quantity::Temperature, "deg f", 5.0 / 9.0, 32.0},
    {Quantity::Temperature, "fahrenheit", 5.0 / 9.0, 32.0},
    {Quantity::Temperature,
     "\xB0"
     "f",
     5.0 / 9.0, 32.0},
    {Quantity::Conductivity, "us/cm", 0.001, 0.0},
    {Quantity::Conductivity, "\xB5s/cm", 0.001, 0.0},
    {Quantity::Conductivity, "\xBCs/cm", 0.001, 0.0},
    {Quantity::Conductivity, "microsiemens", 0.001, 0.0},
    {Quantity::Conductivity, "ms/cm", 1.0, 0.0},
    {Quantity::Conductivity, "ms/m", 0.01, 0.0},
    {Quantity::Conductivity, "s/m", 10.0, 0.0},
};

// Whether a unit stands in the text, not as a part of another word.
bool holdsUnit(std::string_view text, std::string_view unit)
{
    for (std::size_t i = 0; i + unit.size() <= text.size(); ++i) {
        const std::size_t end = i + unit.size();
        if ((i == 0 || !isLetter(text[i - 1])) &&
            equalsInAnyCase(text.substr(i, unit.size()), unit) &&
            (end == text.size() || !isLetter(text[end])))
            return true;
    }
    return false;
}

std::string_view firstWord(std::string_view& text)
{
    std::size_t length = 0;
    while (length < text.size() && isLetter(text[length]))
        ++length;
    const std::string_view word = text.substr(0, length);
    text.remove_prefix(length);
    return word;
}

// The name of a sensor's own temperature begins as that of a pressure does, and the difference of
// two sensors as that of either.
bool isQualified(std::string_view rest)
{
    const std::size_t start = rest.find_first_not_of(" \t_");
    if (start == std::string_view::npos)
        return false;
    rest.remove_prefix(start);
    const std::string_view second = firstWord(rest);
    return startsInAnyCase(second, "temp") || startsInAnyCase(second, "diff") ||
           startsInAnyCase(second, "offset") || startsInAnyCase(second, "coeff");
}

bool quantityOf(std::string_view name, Quantity& quantity)
{
    const std::size_t start = name.find_first_not_of(" \t\"'#*%/");
    if (start == std::string_view::npos)
        return false;
    std::string_view rest = name.substr(start);
    const std::string_view word = firstWord(rest);
    for (const QuantityName& known : quantityNames) {
        if (startsInAnyCase(word, known.start)) {
            quantity = known.quantity;
            return !isQualified(rest);
        }
    }
    for (const QuantityName& known : shortNames) {
        if (equalsInAnyCase(word, known.start)) {
            quantity = known.quantity;
            return !isQualified(rest);
        }
    }
    return false;
}

void splitAtBlanks(std::string_view line, std::vector<std::string_view>& fields, std::size_t most)
{
    const auto isBlank = [](char c) { return c == ' ' || c == '\t'; };
    const char* at = line.data();
    const char* const end = at + line.size();
    while (fields.size() < most) {
        while (at != end && isBlank(*at))
            ++at;
        if (at == end)
            return;
        const char* const start = at;
        while (at != end && !isBlank(*at))
            ++at;
        fields.emplace_back(start, std::size_t(at - start));
    }
}

void splitAtEach(std::string_view line, char mark, std::vector<std::string_view>& fields,
                 std::size_t most)
{
    const char* start = line.data();
    const char* const end = start + line.size();
    while (fields.size() < most) {
        const char* const at = std::find(start, end, mark);
        fields.emplace_back(start, std::size_t(at - start));
        if (at == end)
            return;
        start = at + 1;
    }
}

} // namespace

void ColumnMap::take(Quantity quantity, const Column& column)
{
    if (!has(quantity))
        m_columns[std::size_t(quantity)] = column;
}

bool ColumnMap::takeNamed(std::string_view name, int index)
{
    Quantity quantity = Quantity::Depth;
    if (!quantityOf(name, quantity))
        return false;
    Column column = unitOf(quantity, name);
    column.index = index;
    take(quantity, column);
    return true;
}

bool ColumnMap::isEnough() const
{
    return (has(Quantity::Depth) || has(Quantity::Pressure)) &&
           (has(Quantity::Speed) || (has(Quantity::Temperature) &&
                                     (has(Quantity::Salinity) || has(Quantity::Conductivity))));
}

QString ColumnMap::lack() const
{
    if (isEnough())
        return {};
    if (!has(Quantity::Depth) && !has(Quantity::Pressure))
        return QStringLiteral("no column of depths or pressures");
    return QStringLiteral("no column of sound speeds, nor of temperature with salinity or "
                          "conductivity to compute them from");
}

Column unitOf(Quantity quantity, std::string_view text)
{
    Column column;
    for (const Unit& unit : units) {
        if (unit.quantity == quantity && holdsUnit(text, unit.word)) {
            column.factor = unit.factor;
            column.offset = unit.offset;
            return column;
        }
    }
    return column;
}

void splitFields(std::string_view line, Delimiter delimiter, std::vector<std::string_view>& fields,
                 std::size_t most)
{
    fields.clear();
    switch (delimiter) {
    case Delimiter::Tab:
        return splitAtEach(line, '\t', fields, most);
    case Delimiter::Comma:
        return splitAtEach(line, ',', fields, most);
    case Delimiter::Blanks:
        return splitAtBlanks(line, fields, most);
    }
}

seawater::Level levelOf(const std::vector<std::string_view>& fields, const ColumnMap& columns)
{
    seawater::Level level;
    for (std::size_t i = 0; i < quantityCount; ++i) {
        const Column& column = columns.at(Quantity(i));
        if (column.index >= 0 && std::size_t(column.index) < fields.size()) {
            level.*levelMembers[i] =
                (wholeNumber(fields[std::size_t(column.index)]) - column.offset) * column.factor;
        }
    }
    return level;
}

void addLevel(ProbeCast& cast, seawater::Level level, double latitude)
{
    const bool isComplete = std::isfinite(level.depth) && std::isfinite(level.speed);
    if ((!isComplete && !seawater::completeLevel(level, latitude)) || level.speed < 0.0) {
        ++cast.leftOut;
        return;
    }
    const double third = std::isfinite(level.temperature) ? level.temperature : 0.0;
    cast.samples.push_back({level.depth, level.speed, third});
}

int finished(ProbeCast& cast, const ColumnMap& columns)
{
    if (cast.samples.empty() && cast.reason.isEmpty())
        cast.reason = columns.lack();
    return finished(cast);
}

int finished(ProbeCast& cast)
{
    if (cast.samples.empty() && cast.reason.isEmpty()) {
        cast.reason = cast.leftOut > 0
                          ? QStringLiteral("no level has both a depth and a sound speed")
                          : QStringLiteral("no rows of levels");
    }
    return int(cast.samples.size());
}

} // namespace datagram::probe
