#include "datagram/sspdatagram.h"

#include "datagram/position.h"
#include "settings/numbers.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace datagram {

namespace {

// Beyond this a 32-bit float has no digits to show; a file that holds a number with a million
// decimals must not make each row as long.
constexpr int mostDecimals = 20;

QByteArray withoutMinus(const QString& text)
{
    return QString(text).remove(QLatin1Char('-')).toUtf8();
}

// One column of the rows: its values and how they are written.
struct Column
{
    const QVector<float>* values; // null: the column stays empty
    int decimals;
};

void appendNumber(QByteArray& row, const Column& column, int sample)
{
    if (column.values == nullptr)
        return;
    const float value = sample < column.values->size() ? column.values->at(sample) : 0.0F;
    row += QByteArray::number(double(value), 'f', std::clamp(column.decimals, 0, mostDecimals));
}

int fieldInt(const DatagramFields& fields, std::size_t index, std::size_t offset = 0)
{
    const std::string_view field = fields[index];
    return field.size() < offset ? 0 : settings::leadingInt(field.substr(offset));
}

bool isTime(int time)
{
    return time >= 0 && time / 10000 <= 23 && time % 10000 < 6000 && time % 100 <= 59;
}

bool endsProperly(const QByteArray& text)
{
    const int backslash = text.lastIndexOf('\\');
    return backslash >= 0 && text.mid(backslash + 1, 2) == "\r\n";
}

} // namespace

QByteArray fnConstrSspHeader(const QString& time, int identifier, int samples)
{
    return sspHeader(QString::number(identifier).rightJustified(2, QLatin1Char('0')),
                     QString::number(samples), time);
}

QByteArray sspHeader(const QString& identifier, const QString& samples, const QString& time)
{
    const QChar comma = QLatin1Char(',');
    return (QStringLiteral("$QZS") + identifier + QStringLiteral(",00000,") + samples + comma +
            time.right(6) + comma + time.mid(6, 2) + comma + time.mid(4, 2) + comma + time.left(4) +
            comma)
        .toUtf8();
}

QByteArray fnConstrSspBody(int samples, int identifier, const Columns& columns,
                           const DecimalCounts& decimals)
{
    const ContentIdentifier content = contentIdentifier(identifier);
    if (content.first == FirstColumn::NoRows || samples < 1)
        return {};

    const bool isDepth = content.first == FirstColumn::Depth;
    const Column row[] = {
        {isDepth ? &columns.depth : &columns.alternative,
         isDepth ? decimals.depth : decimals.alternative},
        {content.hasSpeed ? &columns.speed : nullptr, decimals.speed},
        {content.hasTemperature ? &columns.temperature : nullptr, decimals.temperature},
        {content.hasSalinity ? &columns.salinity : nullptr, decimals.salinity},
        {content.hasAbsorption ? &columns.absorption : nullptr, decimals.absorption},
    };
    QByteArray rows;
    constexpr int usualRowLength = 32;
    rows.reserve(std::min(samples, 1000000) * usualRowLength);
    for (int sample = 0; sample < samples; ++sample) {
        const char* separator = "";
        for (const Column& column : row) {
            rows += separator;
            appendNumber(rows, column, sample);
            separator = ",";
        }
        rows += "\r\n";
    }
    return rows;
}

QByteArray fnConstrSspTail(const QString& latitude, const QString& longitude,
                           const QString& comment)
{
    return withoutMinus(latitude) + (degreesOf(latitude) < 0.0 ? ",S," : ",N,") +
           withoutMinus(longitude) + (degreesOf(longitude) < 0.0 ? ",W,,," : ",E,,,") +
           comment.toUtf8() + '*';
}

unsigned char checksum(const QByteArray& text, int end)
{
    unsigned char sum = 0;
    for (int i = 1; i < end && i < text.size(); ++i)
        sum = static_cast<unsigned char>(sum ^ static_cast<unsigned char>(text[i]));
    return sum;
}

QByteArray sealed(const QByteArray& text)
{
    const QByteArray digits = QByteArray::number(checksum(text, text.size() - 1), 16).toUpper();
    return text + digits.rightJustified(2, '0') + "\\\r\n";
}

QString degreesMinutesText(const QString& degrees)
{
    const DegreesMinutes split = splitDegrees(degrees, 6);
    const QString text = QString::number(split.degrees * 100.0 + split.minutes, 'f', 6);
    return split.isNegative ? QLatin1Char('-') + text : text;
}

BuiltDatagram buildDatagram(const DatagramParts& parts, const DecimalCounts& decimals)
{
    const QByteArray rows =
        fnConstrSspBody(parts.samples.toInt(), parts.identifier.toInt(), parts.columns, decimals);
    if (rows.isEmpty())
        return {{}, QStringLiteral("No samples extracted.")};
    const QByteArray tail = fnConstrSspTail(degreesMinutesText(parts.latitude),
                                            degreesMinutesText(parts.longitude), parts.comment);
    if (tail.isEmpty())
        return {{}, QStringLiteral("No SSP datagram tail generated.")};
    return {sealed(sspHeader(parts.identifier, parts.samples, parts.time) + rows + tail), {}};
}

DatagramFields::DatagramFields(const QByteArray& text) : m_flat(text)
{
    constexpr int endLength = 7;
    // More than any legal datagram has. What is beyond stays in the last field, so that a file full
    // of commas is refused for its number of fields and not for want of memory.
    constexpr std::size_t mostFields = 6000;
    char* const bytes = m_flat.data();
    const int size = m_flat.size();
    m_fields.reserve(std::min(mostFields + 1, std::size_t(size) / 4 + 1));
    int start = 0;
    const auto endField = [&](int end) {
        if (m_fields.size() < mostFields) {
            m_fields.emplace_back(bytes + start, std::size_t(end - start));
            start = end + 1;
        }
    };
    for (int i = 0; i < size; ++i) {
        const char byte = bytes[i];
        if (byte > ',') // the digits, most of all
            continue;
        const bool isInside = i < size - endLength;
        if (byte == ',' || (byte == '\n' && isInside)) {
            endField(i);
        } else if (byte == '\r') {
            if (i + 2 < size && bytes[i + 1] == '\n' && bytes[i + 2] == ',')
                bytes[i + 2] = ' ';
            if (isInside)
                bytes[i] = ' ';
        }
    }
    m_fields.emplace_back(bytes + start, std::size_t(size - start));
}

int fnVerifySXX(const QByteArray& text, const DatagramFields& fields)
{
    constexpr std::size_t identifierPlace = 4;
    if (!text.startsWith('$'))
        return 1;
    if (fields[0].size() < identifierPlace || fields[0][3] != 'S')
        return 2;
    if (!contentIdentifier(fieldInt(fields, 0, identifierPlace)).isLegal)
        return 3;
    const int samples = fieldInt(fields, 2);
    if (samples < 1 || samples > 1000)
        return 4;
    if (!isTime(fieldInt(fields, 3)))
        return 5;
    const int day = fieldInt(fields, 4);
    if (day < 1 || day > 31)
        return 6;
    const int month = fieldInt(fields, 5);
    if (month < 1 || month > 12)
        return 7;
    const int year = fieldInt(fields, 6);
    if (year < 0 || year > 9999)
        return 8;
    if (std::abs(int(fields.size()) - (5 * samples + 14)) >= 3)
        return 9;
    return endsProperly(text) ? 0 : 10;
}

double getFromS00(const ConvertedProfile& profile, int index, int vector)
{
    constexpr double none = -99.0;
    if (vector < 0 || std::size_t(vector) >= profile.size())
        return none;
    const QVector<float>& values = profile[std::size_t(vector)];
    return index >= 0 && index < values.size() ? double(values[index]) : none;
}

} // namespace datagram
