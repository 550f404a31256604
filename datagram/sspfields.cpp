#include "datagram/sspfields.h"

#include "profile/textfile.h"
#include "profile/texthelpers.h"
#include "settings/numbers.h"

#include <algorithm>
#include <cmath>

namespace datagram {

namespace {

constexpr int headerFields = 7;
constexpr int rowFields = 5;
constexpr int positionFields = 4;

std::string_view viewOf(const QByteArray& bytes)
{
    return {bytes.constData(), std::size_t(bytes.size())};
}

QByteArray fieldAt(const std::vector<QByteArray>& fields, int index)
{
    return std::size_t(index) < fields.size() ? fields[std::size_t(index)] : QByteArray();
}

// A coordinate, in degrees times 100 plus minutes, as decimal degrees. Each field of a position
// that is there has at least three characters.
QString decimalDegrees(const QByteArray& field, const QByteArray& letter, char negativeLetter)
{
    constexpr int shortest = 3;
    if (field.size() < shortest)
        return {};
    double value = settings::leadingDouble(viewOf(field));
    if (!std::isfinite(value))
        return {};
    if (letter.trimmed() == QByteArray(1, negativeLetter))
        value = -value;
    const double degrees = std::trunc(value / 100.0);
    const double minutes = value - degrees * 100.0;
    return QString::fromStdString(settings::fixedText(degrees + minutes / 60.0, 8));
}

// A comment with commas of its own stands in more than one field.
QString commentOf(const std::vector<QByteArray>& fields, int samples)
{
    const std::size_t regular = std::size_t(headerFields + rowFields * samples + 6);
    QByteArray text;
    for (std::size_t i = std::min(regular, fields.size() - 1); i < fields.size(); ++i) {
        if (!text.isEmpty() || i > regular)
            text += ',';
        text += fields[i];
    }
    const int star = text.lastIndexOf('*');
    return profile::decodedText(viewOf(star < 0 ? text : text.left(star)));
}

} // namespace

double SspDatagram::value(int sample, int column) const
{
    return settings::leadingDouble(
        viewOf(fieldAt(fields, headerFields + rowFields * sample + column)));
}

SspDatagram readFields(std::vector<QByteArray> fields)
{
    constexpr int identifierPlace = 4;
    SspDatagram read;
    read.identifier =
        contentIdentifier(settings::leadingInt(viewOf(fieldAt(fields, 0).mid(identifierPlace))));
    read.tag = fieldAt(fields, 0).mid(1);
    read.number = fieldAt(fields, 1);
    read.samples = settings::leadingInt(viewOf(fieldAt(fields, 2)));
    read.time = fieldAt(fields, 3);
    read.day = fieldAt(fields, 4);
    read.month = fieldAt(fields, 5);
    read.year = fieldAt(fields, 6);
    const int position = headerFields + rowFields * read.samples;
    if (fields.size() > std::size_t(position - headerFields + positionFields)) {
        read.latitude =
            decimalDegrees(fieldAt(fields, position), fieldAt(fields, position + 1), 'S');
        read.longitude =
            decimalDegrees(fieldAt(fields, position + 2), fieldAt(fields, position + 3), 'W');
    }
    read.comment = commentOf(fields, read.samples);
    read.fields = std::move(fields);
    return read;
}

profile::DecimalCounts shownDecimals(const SspDatagram& datagram)
{
    const ContentIdentifier& carried = datagram.identifier;
    profile::DecimalCounts shown = {0, 0, 0, 0, 0, 0};
    const auto raise = [&datagram](int& count, int sample, int column) {
        const QByteArray field =
            fieldAt(datagram.fields, headerFields + rowFields * sample + column).trimmed();
        count = std::max(count, profile::fnFindPrecision(QString::fromLatin1(field), 0));
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
    const auto isDigit = [&text](int place) { return text[place] >= '0' && text[place] <= '9'; };
    if (text.size() <= length || !text.startsWith(tag) || !isDigit(tagLength) ||
        !isDigit(tagLength + 1) || text[length] != ',')
        return {};
    return text.mid(tagLength, 2);
}

QByteArray firstDatagram(const QByteArray& text)
{
    QByteArray datagram = text;
    const int lines = text.count('\n');
    if (!text.contains('\r'))
        datagram.replace('\n', "\r\n");
    else if (text.count("\r\r\n") == lines && text.count('\r') == 2 * lines)
        datagram.replace("\r\r\n", "\r\n");
    const QByteArray end = "\\\r\n";
    constexpr int checksumLength = 3; // "*" and two digits
    for (int found = datagram.indexOf(end); found >= 0; found = datagram.indexOf(end, found + 1)) {
        if (found >= checksumLength && datagram[found - checksumLength] == '*')
            return datagram.left(found + end.size());
    }
    return datagram;
}

} // namespace datagram
