#include "datagram/probe_header.h"
#include "datagram/probe_level.h"
#include "datagram/probe_readers.h"
#include "datagram/probe_text.h"
#include "profile/textfile.h"

#include <algorithm>
#include <cmath>
#include <iterator>

// Sea-Bird converted data files (.cnv): header lines that begin with "*" (from the instrument),
// "**" (typed by the operator) and "#" (from the conversion), "*END*", then rows of numbers.

namespace datagram::probe {

namespace {

constexpr int maxColumns = int(mostFields) - 1; // a line of more is cut off there
constexpr std::size_t fieldWidth = 11;
constexpr double usualBadFlag = -9.990e-29;

struct ShortName
{
    std::string_view name;
    Quantity quantity;
    double factor;
    double offset;
};

// The variables by their short names. Those of a second sensor follow: they count where the first
// one is missing.
constexpr ShortName shortNamesOfColumns[] = {
    {"depSM", Quantity::Depth, 1.0, 0.0},
    {"depS", Quantity::Depth, 1.0, 0.0},
    {"depFM", Quantity::Depth, 1.0, 0.0},
    {"depF", Quantity::Depth, 1.0, 0.0},
    {"depSF", Quantity::Depth, 0.3048, 0.0},
    {"depFF", Quantity::Depth, 0.3048, 0.0},
    {"prDM", Quantity::Pressure, 1.0, 0.0},
    {"prdM", Quantity::Pressure, 1.0, 0.0},
    {"prSM", Quantity::Pressure, 1.0, 0.0},
    {"prM", Quantity::Pressure, 1.0, 0.0},
    {"pr", Quantity::Pressure, 1.0, 0.0},
    {"pr50M", Quantity::Pressure, 1.0, 0.0},
    {"prDE", Quantity::Pressure, 0.6894757, 0.0},
    {"prdE", Quantity::Pressure, 0.6894757, 0.0},
    {"svCM", Quantity::Speed, 1.0, 0.0},
    {"svDM", Quantity::Speed, 1.0, 0.0},
    {"svWM", Quantity::Speed, 1.0, 0.0},
    {"svCM1", Quantity::Speed, 1.0, 0.0},
    {"svDM1", Quantity::Speed, 1.0, 0.0},
    {"svWM1", Quantity::Speed, 1.0, 0.0},
    {"svCF", Quantity::Speed, 0.3048, 0.0},
    {"svDF", Quantity::Speed, 0.3048, 0.0},
    {"svWF", Quantity::Speed, 0.3048, 0.0},
    {"t090C", Quantity::Temperature, 1.0, 0.0},
    {"t090Cm", Quantity::Temperature, 1.0, 0.0},
    {"t090", Quantity::Temperature, 1.0, 0.0},
    {"t068C", Quantity::Temperature, 1.0, 0.0},
    {"t068", Quantity::Temperature, 1.0, 0.0},
    {"tv290C", Quantity::Temperature, 1.0, 0.0},
    {"tv268C", Quantity::Temperature, 1.0, 0.0},
    {"t190C", Quantity::Temperature, 1.0, 0.0},
    {"t168C", Quantity::Temperature, 1.0, 0.0},
    {"t090F", Quantity::Temperature, 5.0 / 9.0, 32.0},
    {"t068F", Quantity::Temperature, 5.0 / 9.0, 32.0},
    {"sal00", Quantity::Salinity, 1.0, 0.0},
    {"sal11", Quantity::Salinity, 1.0, 0.0},
    {"c0S/m", Quantity::Conductivity, 10.0, 0.0},
    {"cond0S/m", Quantity::Conductivity, 10.0, 0.0},
    {"c0mS/cm", Quantity::Conductivity, 1.0, 0.0},
    {"cond0mS/cm", Quantity::Conductivity, 1.0, 0.0},
    {"c0uS/cm", Quantity::Conductivity, 0.001, 0.0},
    {"cond0uS/cm", Quantity::Conductivity, 0.001, 0.0},
    {"c1S/m", Quantity::Conductivity, 10.0, 0.0},
    {"c1mS/cm", Quantity::Conductivity, 1.0, 0.0},
    {"c1uS/cm", Quantity::Conductivity, 0.001, 0.0},
};

struct NameWord
{
    std::string_view word; // lower case
    Quantity quantity;
};

// Where no name begins with its quantity, these words tell it, wherever they stand: whole, with
// their punctuation.
constexpr NameWord nameWords[] = {
    {"depth,", Quantity::Depth},
    {"sound", Quantity::Speed},
    {"temperature,", Quantity::Temperature},
    {"salinity,", Quantity::Salinity},
    {"pressure", Quantity::Pressure},
};

// Words that begin so make a name that of another quantity.
constexpr std::string_view otherWords[] = {
    "potential", "average", "avg",    "mean",   "diff", "delta", "offset", "coeff",
    "specific",  "bottom",  "oxygen", "optode", "air",  "atmos", "barom",  "partial",
};

struct SeabirdHeader
{
    int columnCount = 0;
    bool statesCount = false;
    int namedColumns = 0;
    int flagColumn = -1;
    ColumnMap columns;
    ColumnMap byWord; // for what no name begins with
    double badFlag = usualBadFlag;
    std::string_view startTime;
    std::string_view conversionTime;
    double nearLatitude = 0.0; // of a position without hemisphere
    bool hasEnd = false;
    bool isBinary = false;
};

bool isOtherQuantity(std::string_view name)
{
    constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
    std::size_t end = 0;
    bool isPressure = false; // the word before, with nothing but blanks behind it
    while (true) {
        const std::size_t start = name.find_first_of(letters, end);
        if (start == std::string_view::npos)
            return false;
        isPressure = isPressure && isBlank(name.substr(end, start - end));
        end = std::min(name.find_first_not_of(letters, start), name.size());
        const std::string_view word = name.substr(start, end - start);
        const auto beginsWord = [word](std::string_view other) {
            return startsInAnyCase(word, other);
        };
        // A sensor's own temperature is no water temperature.
        if ((isPressure && beginsWord("temp")) ||
            std::any_of(std::begin(otherWords), std::end(otherWords), beginsWord))
            return true;
        isPressure = beginsWord("press");
    }
}

// A name holds one quantity: the first that one of its words tells.
void takeByWord(std::string_view name, int index, ColumnMap& columns)
{
    Scanner scanner(name);
    std::string_view word;
    while (scanner.word(word)) {
        for (const NameWord& known : nameWords) {
            if (equalsInAnyCase(word, known.word)) {
                Column column = unitOf(known.quantity, name);
                column.index = index;
                return columns.take(known.quantity, column);
            }
        }
    }
}

// "3 = depSM: Depth [salt water, m]"
void takeName(std::string_view value, SeabirdHeader& header)
{
    Scanner scanner(value);
    double number = 0.0;
    if (!scanner.number(number) || !(number >= 0.0) || number >= maxColumns || !scanner.mark('='))
        return;
    const int index = int(number);
    header.namedColumns = std::max(header.namedColumns, index + 1);
    const std::string_view names = profile::trimmedText(scanner.rest());
    const std::string_view shortName = names.substr(0, names.find(':'));
    if (shortName == "flag") {
        header.flagColumn = index;
        return;
    }
    for (const ShortName& known : shortNamesOfColumns) {
        if (shortName == known.name)
            return header.columns.take(known.quantity, {index, known.factor, known.offset});
    }
    const std::string_view name =
        shortName.size() < names.size() ? names.substr(shortName.size() + 1) : names;
    if (!isOtherQuantity(name) && !header.columns.takeNamed(name, index))
        takeByWord(names, index, header.byWord);
}

void takeConversionLine(std::string_view line, SeabirdHeader& header)
{
    std::string_view value;
    double number = 0.0;
    if (itemValue(line, "name", value)) {
        takeName(value, header);
    } else if (itemValue(line, "nquan", value)) {
        number = wholeNumber(value);
        header.statesCount = number > 0.0 && number < maxColumns;
        header.columnCount = header.statesCount ? int(number) : 0;
    } else if (itemValue(line, "bad_flag", value)) {
        if (Scanner(value).number(number))
            header.badFlag = number;
    } else if (itemValue(line, "start_time", value)) {
        header.startTime = value;
    } else if (itemValue(line, "datcnv_date", value)) {
        header.conversionTime = value;
    } else if (itemValue(line, "file_type", value)) {
        header.isBinary = startsInAnyCase(value, "bin");
    }
}

// "**   14 20.75 N"
bool isBareCoordinate(std::string_view line)
{
    return line.find_first_not_of("*0123456789. \tNSEWnsew") == std::string_view::npos &&
           line.find_first_of("NSEWnsew") != std::string_view::npos;
}

// What the deck unit heard from the navigation receiver comes first; an operator's words count
// where it heard nothing. They may hold the position without saying what it is.
void takePosition(std::string_view line, bool isTyped, ProbeHeader& position, SeabirdHeader& header)
{
    std::string_view value;
    const bool wantsLatitude = !isTyped || position.latitudeMark == 'I';
    const bool wantsLongitude = !isTyped || position.longitudeMark == 'I';
    if (itemValue(line, isTyped ? "latitude" : "nmea latitude", value) ||
        (isTyped && itemValue(line, "lat", value))) {
        if (wantsLatitude)
            takeLatitude(position, value, Packing::Degrees, &header.nearLatitude);
    } else if (itemValue(line, isTyped ? "longitude" : "nmea longitude", value) ||
               (isTyped && (itemValue(line, "lon", value) || itemValue(line, "long", value)))) {
        if (wantsLongitude)
            takeLongitude(position, value);
    } else if (isTyped && isBareCoordinate(line)) {
        if (!(wantsLatitude && takeLatitude(position, line)) && wantsLongitude)
            takeLongitude(position, line);
    }
}

// "* Sea-Bird SBE 25 Data File:"
void takeInstrument(std::string_view line, QString& instrument)
{
    constexpr std::string_view start = "* Sea-Bird ";
    constexpr std::string_view end = " Data File";
    const std::size_t last = line.find(end);
    if (instrument.isEmpty() && line.substr(0, start.size()) == start &&
        last != std::string_view::npos && last > start.size())
        instrument = profile::decodedText(line.substr(start.size(), last - start.size()));
}

void takeTime(const SeabirdHeader& header, ProbeCast& cast)
{
    if (!takeDateTime(cast.header, header.conversionTime)) {
        takeDateTime(cast.header, header.startTime);
        return;
    }
    cast.remark = QStringLiteral("the time is that of the conversion");
    ProbeHeader start;
    if (takeDateTime(start, header.startTime)) {
        // Without the remark in brackets that newer files add.
        const std::string_view time = header.startTime.substr(0, header.startTime.find('['));
        cast.remark += QStringLiteral(", the cast began at ") +
                       profile::decodedText(profile::trimmedText(time));
    }
}

SeabirdHeader takeHeader(profile::LineReader& lines, ProbeCast& cast)
{
    SeabirdHeader header;
    std::string_view line;
    while (!header.hasEnd && lines.next(line)) {
        const std::size_t start = line.find_first_not_of(" \t");
        if (start == std::string_view::npos)
            continue;
        const std::string_view text = line.substr(start);
        if (text.substr(0, 5) == "*END*") {
            header.hasEnd = true;
        } else if (text.front() == '#') {
            takeConversionLine(text, header);
        } else if (text.front() == '*') {
            takeInstrument(text, cast.instrument);
            takePosition(text, text.substr(0, 2) == "**", cast.header, header);
        }
    }
    if (header.columnCount == 0)
        header.columnCount = header.namedColumns;
    for (std::size_t i = 0; i < quantityCount; ++i)
        header.columns.take(Quantity(i), header.byWord.at(Quantity(i)));
    takeTime(header, cast);
    return header;
}

// Fields are right-aligned, eleven characters wide; a long number may touch its neighbour.
bool splitByWidth(std::string_view line, std::size_t count, std::vector<std::string_view>& fields)
{
    fields.clear();
    if (line.size() != count * fieldWidth)
        return false;
    for (std::size_t i = 0; i < count; ++i)
        fields.push_back(line.substr(i * fieldWidth, fieldWidth));
    return true;
}

class Rows
{
  public:
    explicit Rows(const SeabirdHeader& header) : m_header(header) {}

    // Takes the row into the cast unless it is no row of numbers.
    void take(std::string_view line, ProbeCast& cast, double latitude)
    {
        const Reading reading = readAs(line, m_header.columnCount);
        if (reading == Reading::None && !readAsNamed(line)) {
            if (isMiscounted(line)) {
                ++m_miscounted;
                ++cast.leftOut;
            }
            return;
        }
        if (isFlagged())
            ++cast.leftOut;
        else
            addLevel(cast, m_level, latitude);
    }

    // Rows of numbers that were dropped for how many they are.
    int miscounted() const { return m_miscounted; }

  private:
    enum class Reading
    {
        None, // no field is a number
        Part,
        Whole
    };

    // Reads the line as a row of so many fields.
    Reading readAs(std::string_view line, int columnCount)
    {
        const auto count = std::size_t(columnCount);
        const std::size_t size = line.find_last_not_of(" \t") + 1;
        splitFields(line, Delimiter::Blanks, m_fields);
        const Reading reading = m_fields.size() == count ? read() : Reading::None;
        if (reading == Reading::Whole || !splitByWidth(line.substr(0, size), count, m_fields))
            return reading;
        const Reading byWidth = read();
        if (reading == Reading::None || byWidth == Reading::Whole)
            return byWidth;
        splitFields(line, Delimiter::Blanks, m_fields);
        return read();
    }

    // Some programs write fewer or more columns than nquan states, and a name for each.
    bool readAsNamed(std::string_view line)
    {
        return m_header.namedColumns != m_header.columnCount &&
               readAs(line, m_header.namedColumns) != Reading::None;
    }

    bool isMiscounted(std::string_view line)
    {
        double number = 0.0;
        if (!Scanner(line).number(number))
            return false;
        splitFields(line, Delimiter::Blanks, m_fields);
        return m_fields.size() != std::size_t(m_header.columnCount) &&
               m_fields.size() != std::size_t(m_header.namedColumns);
    }

    bool isBad(double value) const { return value == m_header.badFlag || value == usualBadFlag; }

    // The level in the fields; what is marked as bad in it is unknown.
    Reading read()
    {
        m_level = {};
        bool isWhole = true;
        bool isNone = true;
        for (std::size_t i = 0; i < quantityCount; ++i) {
            const Column& column = m_header.columns.at(Quantity(i));
            if (column.index < 0)
                continue;
            const double value = std::size_t(column.index) < m_fields.size()
                                     ? wholeNumber(m_fields[std::size_t(column.index)])
                                     : seawater::unknown;
            isWhole = isWhole && !std::isnan(value);
            isNone = isNone && std::isnan(value);
            if (!isBad(value))
                m_level.*levelMembers[i] = (value - column.offset) * column.factor;
        }
        if (isNone)
            return Reading::None;
        return isWhole ? Reading::Whole : Reading::Part;
    }

    // Whether the processing has marked the whole scan as bad.
    bool isFlagged() const
    {
        const int column = m_header.flagColumn;
        return column >= 0 && std::size_t(column) < m_fields.size() &&
               isBad(wholeNumber(m_fields[std::size_t(column)]));
    }

    const SeabirdHeader& m_header;
    std::vector<std::string_view> m_fields;
    seawater::Level m_level;
    int m_miscounted = 0;
};

} // namespace

int readSeaBirdConverted(std::string_view text, ProbeCast& cast)
{
    if (text.find("# nquan") == std::string_view::npos) {
        cast.reason = QStringLiteral("no \"# nquan\" line");
        return 0;
    }
    profile::LineReader lines(text);
    const SeabirdHeader header = takeHeader(lines, cast);
    if (!header.hasEnd || header.isBinary) {
        cast.reason = header.isBinary ? QStringLiteral("its levels are binary; convert it to ASCII")
                                      : QStringLiteral("it ends before its levels");
        return 0;
    }
    const double latitude =
        cast.header.latitudeMark == 'I' ? header.nearLatitude : latitudeDegrees(cast.header);
    Rows rows(header);
    std::string_view line;
    while (lines.next(line))
        rows.take(line, cast, latitude);
    if (cast.samples.empty() && rows.miscounted() > 0 && header.columns.isEnough()) {
        cast.reason = QStringLiteral("its rows have not the %1 columns that %2")
                          .arg(header.columnCount)
                          .arg(header.statesCount ? QLatin1String("nquan states")
                                                  : QLatin1String("it names"));
    }
    return finished(cast, header.columns);
}

} // namespace datagram::probe
