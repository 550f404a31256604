#include "profile/valeportfile.h"

#include "profile/castheader.h"
#include "profile/coordinate.h"
#include "profile/profilereply.h"
#include "profile/protocol.h"
#include "profile/rowreader.h"
#include "profile/textfile.h"
#include "profile/texthelpers.h"
#include "settings/characters.h"

#include <algorithm>
#include <charconv>

namespace profile {

namespace {

bool startsWith(std::string_view text, std::string_view start)
{
    return text.substr(0, start.size()) == start;
}

// Takes a whole number of at most `digits` digits off the text.
bool takeNumber(std::string_view& text, std::size_t digits, int& number)
{
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), number);
    const auto length = std::size_t(parsed.ptr - text.data());
    if (parsed.ec != std::errc() || number < 0 || length > digits)
        return false;
    text.remove_prefix(length);
    return true;
}

bool takeCharacter(std::string_view& text, char character)
{
    if (text.empty() || text.front() != character)
        return false;
    text.remove_prefix(1);
    return true;
}

// The stamp of "dd/MM/yyyy hh:mm:ss"; empty when it is no moment.
QString dayFirstStamp(std::string_view text)
{
    int day = 0;
    int month = 0;
    int year = 0;
    int hours = 0;
    int minutes = 0;
    int seconds = 0;
    text = trimmedText(text);
    if (!takeNumber(text, 2, day) || !takeCharacter(text, '/') || !takeNumber(text, 2, month) ||
        !takeCharacter(text, '/') || !takeNumber(text, 4, year) || year < 1000)
        return {};
    text = trimmedText(text);
    if (!takeNumber(text, 2, hours) || !takeCharacter(text, ':') || !takeNumber(text, 2, minutes) ||
        !takeCharacter(text, ':') || !takeNumber(text, 2, seconds))
        return {};
    QString stamp = QStringLiteral("%1").arg(year, 4, 10, QLatin1Char('0'));
    for (const int part : {month, day, hours, minutes, seconds})
        stamp += QStringLiteral("%1").arg(part, 2, 10, QLatin1Char('0'));
    qint64 moment = 0;
    return parseStamp(stamp, moment) ? stamp : QString();
}

// The coordinate on a line; what follows it may be set apart by a comma or a semicolon.
QString coordinateOn(std::string_view line, std::string_view key, std::string_view nextKey,
                     Axis axis)
{
    std::string value;
    if (!getFieldValue(line, key, nextKey, value))
        return {};
    if (!value.empty() && (value.back() == ',' || value.back() == ';'))
        value.pop_back();
    return degreesText(value, axis);
}

// Both coordinates may stand on one line.
void takePosition(std::string_view line, ValeportFile& file)
{
    constexpr std::string_view latitude = "Latitude:";
    constexpr std::string_view longitude = "Longitude:";
    if (!startsWith(line, latitude) && !startsWith(line, longitude))
        return;
    if (file.latitude.isEmpty())
        file.latitude = coordinateOn(line, latitude, longitude, Axis::Latitude);
    if (file.longitude.isEmpty())
        file.longitude = coordinateOn(line, longitude, latitude, Axis::Longitude);
}

void takeHeaderLine(std::string_view line, ValeportFile& file)
{
    constexpr std::string_view now = "Now:";
    constexpr std::string_view units = "Pressure units:";
    if (startsWith(line, now) && file.time.isEmpty()) {
        const std::string_view text = trimmedText(line.substr(now.size()));
        file.time = dayFirstStamp(text);
        file.isTimeUnread = file.time.isEmpty() && (file.isTimeUnread || !text.empty());
    } else if (startsWith(line, units)) {
        file.pressureUnits = decodedText(trimmedText(line.substr(units.size())));
    } else {
        takePosition(line, file);
    }
}

bool isNumbersOnly(std::string_view line)
{
    constexpr std::string_view rowCharacters = "0123456789+-.eE \t;,";
    return line.find_first_not_of(rowCharacters) == line.npos;
}

std::size_t firstLetter(std::string_view line)
{
    return std::size_t(std::find_if(line.begin(), line.end(), settings::isLetter) - line.begin());
}

// "Name: value"
bool isHeaderLine(std::string_view line)
{
    return line.find(':', firstLetter(line)) != line.npos;
}

// Where the rows begin, as lines count; 0 where there are none.
struct RowStart
{
    qint64 line = 0;
    qint64 behindSkipped = 0; // the first one that is none of the lines to skip
};

// Looks for rows with this separator. Headers hold tables of numbers too, so that rows in front of
// another header line are none, unless they are more than a header has.
RowStart findRows(std::string_view text, char separator, const tagDecodeFmt& format)
{
    constexpr int moreThanHeaders = 20;
    const RowReader<2> columns(separator, {format.depthColumn, format.speedColumn});
    const LineSet skipped(format.skipLines);
    RowStart start;
    int count = 0;
    LineReader lines(text);
    std::string_view line;
    while (count < moreThanHeaders && lines.next(line)) {
        if (line.empty())
            continue;
        const auto [depth, speed] = columns.read(line);
        const bool isSkipped = skipped.contains(lines.number());
        if (depth.isKnown() && speed.isKnown()) {
            if (!isNumbersOnly(line))
                continue;
            if (count++ == 0)
                start.line = lines.number();
            if (!isSkipped && start.behindSkipped == 0)
                start.behindSkipped = lines.number();
        } else if (!depth.isKnown() &&
                   (isHeaderLine(line) || (isSkipped && firstLetter(line) < line.size()))) {
            start = RowStart();
            count = 0;
        }
    }
    return start;
}

// Finds the rows and their separator. One that differs from the usual one must show behind the
// lines to skip: among them stand calibration tables separated by anything.
RowStart findRows(std::string_view text, tagDecodeFmt& format)
{
    RowStart start = findRows(text, format.separator, format);
    if (start.line > 0)
        return start;
    const char usual = format.separator;
    for (const char separator : {'\t', ';', ',', ' '}) {
        if (separator == usual)
            continue;
        const RowStart other = findRows(text, separator, format);
        if (other.behindSkipped > 0 &&
            (start.line == 0 || other.behindSkipped < start.behindSkipped)) {
            start = other;
            format.separator = separator;
        }
    }
    return start;
}

} // namespace

ValeportFile readValeport(const QByteArray& raw, const tagDecodeFmt& format)
{
    const QByteArray text = normalisedText(raw);
    const std::string_view bytes(text.constData(), std::size_t(text.size()));
    ValeportFile file;
    tagDecodeFmt rows = format;
    const RowStart start = findRows(bytes, rows);
    LineReader lines(bytes);
    std::string_view line;
    while (lines.number() + 1 != start.line && lines.next(line))
        takeHeaderLine(trimmedText(line), file);
    if (start.line == 0)
        return file;
    rows.skipLines = QStringLiteral("1-%1").arg(start.line - 1);
    file.record = decodeColumns(bytes, rows, &file.decimals);
    return file;
}

OpenedProfile openValeportFile(const QByteArray& content, const tagDecodeFmt& format,
                               const QString& name)
{
    const ValeportFile file = readValeport(content, format);
    CastHeader header;
    header.type = protocol::soundVelocity;
    header.source = baseName(name);
    header.time = file.time;
    header.isTimeNumber = true;
    header.isTimeUnread = file.isTimeUnread;
    header.latitude = file.latitude;
    header.longitude = file.longitude;
    // The first column goes into the profile as it stands; the surveyor has to know when it is a
    // pressure, which is about a hundredth more than the depth.
    const QString& units = file.pressureUnits;
    if (!units.isEmpty() && units.compare(QLatin1String("m"), Qt::CaseInsensitive) != 0)
        header.comment = QStringLiteral("Depths are pressures in %1 as in the file.").arg(units);
    OpenedProfile opened;
    insertCastHeader(opened.reply, header);
    opened.reason = insertProfile(opened.reply, file.record, name);
    opened.decimals = file.decimals;
    return opened;
}

} // namespace profile
