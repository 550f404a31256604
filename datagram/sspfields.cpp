#include "datagram/sspfields.h"

#include "profile/textfile.h"
#include "profile/texthelpers.h"
#include "settings/characters.h"
#include "settings/numbers.h"

#include <algorithm>
#include <cmath>

namespace datagram {

namespace {

constexpr std::size_t headerFields = 7;
constexpr std::size_t rowFields = 5;
constexpr std::size_t positionFields = 4;

QByteArray bytesOf(std::string_view text)
{
    return {text.data(), int(text.size())};
}

std::size_t placeOf(int sample, int column)
{
    return headerFields + rowFields * std::size_t(sample) + std::size_t(column);
}

// A coordinate, in degrees times 100 plus minutes, as decimal degrees. Each field of a position
// that is there has at least three characters.
QString decimalDegrees(std::string_view field, std::string_view letter, char negativeLetter)
{
    constexpr std::size_t shortest = 3;
    if (field.size() < shortest)
        return {};
    double value = settings::leadingDouble(field);
    if (!std::isfinite(value))
        return {};
    if (profile::trimmedText(letter) == std::string_view(&negativeLetter, 1))
        value = -std::abs(value); // a sign and a letter together count once
    const double degrees = std::trunc(value / 100.0);
    const double minutes = value - degrees * 100.0;
    return QString::fromStdString(settings::fixedText(degrees + minutes / 60.0, 8));
}

// A comment with commas of its own stands in more than one field.
QString commentOf(const DatagramFields& fields, int samples)
{
    const std::size_t first = std::min(placeOf(samples, 6), fields.size() - 1);
    QByteArray text;
    for (std::size_t i = first; i < fields.size(); ++i) {
        if (i > first)
            text += ',';
        text += bytesOf(fields[i]);
    }
    const int star = text.lastIndexOf('*');
    if (star >= 0)
        text.truncate(star);
    return profile::decodedText({text.constData(), std::size_t(text.size())});
}

} // namespace

double SspDatagram::value(int sample, int column) const
{
    return settings::leadingDouble(fields[placeOf(sample, column)]);
}

SspDatagram readFields(const DatagramFields& fields)
{
    constexpr std::size_t identifierPlace = 4;
    const std::string_view tag = fields[0];
    SspDatagram read;
    read.identifier = contentIdentifier(
        tag.size() < identifierPlace ? 0 : settings::leadingInt(tag.substr(identifierPlace)));
    read.tag = bytesOf(tag).mid(1);
    read.number = bytesOf(fields[1]);
    read.samples = settings::leadingInt(fields[2]);
    read.time = bytesOf(profile::trimmedText(fields[3]));
    read.day = bytesOf(profile::trimmedText(fields[4]));
    read.month = bytesOf(profile::trimmedText(fields[5]));
    read.year = bytesOf(profile::trimmedText(fields[6]));
    const std::size_t position = placeOf(read.samples, 0);
    if (fields.size() > position - headerFields + positionFields) {
        read.latitude = decimalDegrees(fields[position], fields[position + 1], 'S');
        read.longitude = decimalDegrees(fields[position + 2], fields[position + 3], 'W');
    }
    read.comment = commentOf(fields, read.samples);
    read.fields = fields;
    return read;
}

profile::DecimalCounts shownDecimals(const SspDatagram& datagram)
{
    const ContentIdentifier& carried = datagram.identifier;
    profile::DecimalCounts shown = {0, 0, 0, 0, 0, 0};
    const auto raise = [&datagram](int& count, int sample, int column) {
        count =
            std::max(count, profile::fnFindPrecision(datagram.fields[placeOf(sample, column)], 0));
    };
    const bool isAlternative = carried.first == FirstColumn::Alternative || carried.firstIsPressure;
    for (int sample = 0; sample < datagram.samples; ++sample) {
        raise(isAlternative ? shown.alternative : shown.depth, sample, 0);
        if (carried.hasSpeed)
            raise(shown.speed, sample, 1);
        if (carried.hasTemperature)
            raise(shown.temperature, sample, 2);
        if (carried.hasSalinity)
            raise(shown.salinity, sample, 3);
        if (carried.hasAbsorption)
            raise(shown.absorption, sample, 4);
    }
    return shown;
}

QByteArray leadingIdentifier(const QByteArray& text)
{
    constexpr char tag[] = "$QZS";
    constexpr int tagLength = 4;
    constexpr int length = tagLength + 2;
    const auto isDigit = [&text](int place) { return settings::isDigit(text[place]); };
    if (text.size() <= length || !text.startsWith(tag) || !isDigit(tagLength) ||
        !isDigit(tagLength + 1) || text[length] != ',')
        return {};
    return text.mid(tagLength, 2);
}

QByteArray firstDatagram(const QByteArray& text)
{
    QByteArray datagram = text;
    const int firstEnd = text.indexOf('\n');
    if (firstEnd >= 0 && text.indexOf('\r') < 0) {
        datagram.replace('\n', "\r\n");
    } else if (firstEnd > 1 && text[firstEnd - 1] == '\r' && text[firstEnd - 2] == '\r') {
        const int lines = text.count('\n');
        if (text.count("\r\r\n") == lines && text.count('\r') == 2 * lines)
            datagram.replace("\r\r\n", "\r\n");
    }
    constexpr int checksumLength = 3; // "*" and two digits
    for (int found = datagram.indexOf('\\'); found >= 0;
         found = datagram.indexOf('\\', found + 1)) {
        const int end = found + 3;
        if (found >= checksumLength && datagram.at(found - checksumLength) == '*' &&
            end <= datagram.size() && datagram.at(found + 1) == '\r' &&
            datagram.at(found + 2) == '\n')
            return datagram.left(end);
    }
    return datagram;
}

} // namespace datagram
