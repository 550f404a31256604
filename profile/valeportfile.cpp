#include "profile/valeportfile.h"

#include "profile/castheader.h"
#include "profile/coordinate.h"
#include "profile/profilereply.h"
#include "profile/protocol.h"
#include "profile/rowreader.h"
#include "profile/textfile.h"
#include "profile/texthelpers.h"

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
QString stampOf(std::string_view text)
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

// Both coordinates may stand on the line of the latitude.
void takePosition(std::string_view line, ValeportFile& file)
{
    std::string latitude;
    std::string longitude;
    if (startsWith(line, "Latitude:") && getFieldValue(line, "Latitude:", "Longitude:", latitude) &&
        file.latitude.isEmpty())
        file.latitude = degreesText(latitude, Axis::Latitude);
    if ((startsWith(line, "Latitude:") || startsWith(line, "Longitude:")) &&
        getFieldValue(line, "Longitude:", longitude) && file.longitude.isEmpty())
        file.longitude = degreesText(longitude, Axis::Longitude);
}

void takeHeaderLine(std::string_view line, ValeportFile& file)
{
    constexpr std::string_view now = "Now:";
    constexpr std::string_view units = "Pressure units:";
    if (startsWith(line, now) && file.time.isEmpty())
        file.time = stampOf(line.substr(now.size()));
    else if (startsWith(line, units))
        file.pressureUnits = decodedText(trimmedText(line.substr(units.size())));
    else
        takePosition(line, file);
}

bool isRow(std::string_view line, char separator, const tagDecodeFmt& format)
{
    const RowReader<2> columns(separator, {format.depthColumn, format.speedColumn});
    const auto [depth, speed] = columns.read(line);
    return depth.isKnown() && speed.isKnown();
}

// The separator of a line that is a row: numbers and nothing else. 0 when it is none.
char rowSeparator(std::string_view line, const tagDecodeFmt& format)
{
    constexpr std::string_view rowCharacters = "0123456789+-.eE \t;,";
    if (line.find_first_not_of(rowCharacters) != line.npos)
        return '\0';
    for (const char separator : {format.separator, '\t', ';', ',', ' '}) {
        if (isRow(line, separator, format))
            return separator;
    }
    return '\0';
}

} // namespace

ValeportFile readValeport(const QByteArray& raw, const tagDecodeFmt& format)
{
    const QByteArray text = normalisedText(raw);
    const std::string_view bytes(text.constData(), std::size_t(text.size()));
    ValeportFile file;
    tagDecodeFmt rows = format;
    LineReader lines(bytes);
    std::string_view line;
    qint64 headerLines = 0;
    while (lines.next(line)) {
        if (const char separator = rowSeparator(line, format)) {
            rows.separator = separator;
            break;
        }
        takeHeaderLine(trimmedText(line), file);
        headerLines = lines.number();
    }
    rows.skipLines = QStringLiteral("1-%1").arg(headerLines);
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
