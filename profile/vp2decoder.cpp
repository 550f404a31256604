#include "profile/castheader.h"
#include "profile/instrumentdecoders.h"
#include "profile/instrumentheader.h"
#include "settings/numbers.h"

#include <algorithm>

namespace profile {

namespace {

constexpr ColumnName vp2Columns[] = {
    {"Date/Time", nullptr}, // known, not kept
    {"Depth", &tagDecodeFmt::depthColumn},
    {"Pressure", &tagDecodeFmt::pressureColumn},
    {"Sound Velocity", &tagDecodeFmt::speedColumn},
    {"Temperature", &tagDecodeFmt::temperatureColumn},
    {"Salinity", &tagDecodeFmt::salinityColumn},
    {"Density", nullptr},
    {"Conductivity", &tagDecodeFmt::conductivityColumn},
};

// An entry "Name=Type;Unit;Calculated", or the name alone.
HeaderColumn columnOf(std::string_view line)
{
    const KeyValue entry = splitKeyValue(line);
    const std::vector<std::string_view> words = splitTrimmed(entry.value, ';', 2);
    return {entry.key, words.size() > 1 ? words[1] : std::string_view()};
}

// "2026/06/18 07:42:10" and what may follow, with any separators.
QString yearFirstStamp(std::string_view text)
{
    constexpr std::size_t length = 19;
    if (text.size() < length)
        return {};
    QString stamp;
    for (const auto& [from, size] : {std::pair(0, 4), std::pair(5, 2), std::pair(8, 2),
                                     std::pair(11, 2), std::pair(14, 2), std::pair(17, 2)})
        stamp += QString::fromLatin1(text.data() + from, size);
    qint64 moment = 0;
    return parseStamp(stamp, moment) ? stamp : QString();
}

QString descriptionOf(std::string_view instrument, std::string_view series, std::string_view type)
{
    QStringList words = {QStringLiteral("Valeport")};
    if (!instrument.empty())
        words << decodedText(instrument);
    else
        words << decodedText(series) << decodedText(type);
    words << QStringLiteral("vp2 format.");
    words.removeAll(QString());
    return words.join(QLatin1Char(' '));
}

// Units of columns that the list of columns does not tell: the data begin with a line of names and
// a line of units.
void fillUnits(LineReader lines, std::vector<HeaderColumn>& columns)
{
    std::string_view line;
    if (!lines.next(line) || !lines.next(line))
        return;
    const std::vector<std::string_view> units = splitTrimmed(line, '\t');
    for (std::size_t i = 0; i < std::min(units.size(), columns.size()); ++i) {
        if (columns[i].unit.empty() && withUnitApart(columns[i].name).unit.empty())
            columns[i].unit = units[i];
    }
}

} // namespace

bool fnDecodeValeportVP2(const QByteArray& text, tagDecodeFmt& format)
{
    const QByteArray bytes = normalisedText(text);
    SectionReader lines(std::string_view(bytes.constData(), std::size_t(bytes.size())), "DATA");
    clearFormat(format);
    format.separator = '\t';

    std::string_view instrument;
    std::string_view series;
    std::string_view type;
    std::string_view time;
    std::string_view latitude;
    std::string_view longitude;
    std::string_view rows;
    const TextKey keys[] = {
        {"Instrument", &instrument}, {"DeviceSeries", &series}, {"DeviceType", &type},
        {"DataStartTime", &time},    {"DateStartTime", &time},  {"Latitude", &latitude},
        {"Longitude", &longitude},   {"RowCount", &rows},
    };
    std::vector<HeaderColumn> columns;
    std::string_view line;
    while (lines.next(line)) {
        if (lines.isIn("HEADER"))
            takeValue(splitKeyValue(line), keys);
        else if (lines.isIn("COLUMNS") && columns.size() < maxColumns)
            columns.push_back(columnOf(line));
    }
    if (lines.dataLine() == 0)
        return false;

    fillUnits(lines.dataLines(), columns);
    takeColumns(columns, vp2Columns, format);
    format.time = yearFirstStamp(time);
    format.isTimeUnread = !time.empty() && format.time.isEmpty();
    format.latitude = decodedText(latitude);
    format.longitude = decodedText(longitude);
    format.rowCount = std::max(settings::leadingInt(rows), 0);
    format.description = descriptionOf(instrument, series, type);
    return finishFormat(lines.dataLine(), format);
}

} // namespace profile
