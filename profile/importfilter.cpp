#include "profile/importfilter.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace profile {

namespace {

// Reads a number that is the whole of `text`.
template <typename Number> bool readWhole(const QString& text, Number& number)
{
    const QByteArray bytes = text.toUtf8();
    const char* begin = bytes.constData();
    const char* const end = begin + bytes.size();
    if (bytes.size() > 1 && begin[0] == '+' && begin[1] != '-')
        ++begin;
    const auto parsed = std::from_chars(begin, end, number);
    return parsed.ec == std::errc() && parsed.ptr == end;
}

bool isWord(const QString& text, const char* word)
{
    return text.compare(QLatin1String(word), Qt::CaseInsensitive) == 0;
}

} // namespace

const QStringList& builtInFilters()
{
    static const QStringList lines = {
        QStringLiteral("asvp,.asvp,0,1,-1,-1,-1,1,1.0,1.0,space,undef"),
        QStringLiteral("valeport,.valeport,0,2,-1,-1,-1,0;1;2;3;4;5;6;7;8;9,1.0,1.0,tab,undef"),
        QStringLiteral("valeport2,.vp2,-1,-1,-1,-1,-1,-1,1.0,1.0,tab,undef"),
        QStringLiteral("SSP,.ssp,0,1,2,3,4,1,1.0,1.0,comma,undef"),
        QStringLiteral("AML,.aml,-1,-1,-1,-1,-1,-1,1.0,1.0,comma,undef"),
        QStringLiteral("AMLx,.amlx,-1,-1,-1,-1,-1,-1,1.0,1.0,comma,undef"),
    };
    return lines;
}

QString withoutWhiteSpace(const QString& text)
{
    // A byte order mark that ended up inside a text would be taken for the file's own once it
    // stands first in the table.
    QString dense = text;
    auto* const end = std::remove_if(dense.begin(), dense.end(), [](QChar character) {
        return character.isSpace() || character == QChar(QChar::ByteOrderMark);
    });
    dense.truncate(int(end - dense.begin()));
    return dense;
}

bool readFilterColumn(const QString& text, int& column)
{
    if (readWhole(text, column) && column <= maxFilterColumn)
        return true;
    column = -1;
    return false;
}

bool readFilterFactor(const QString& text, double& factor)
{
    constexpr double leastShown = 0.0005;
    constexpr double largest = 1e6;
    const bool isRead = readWhole(text, factor) && std::abs(factor) <= largest &&
                        (factor <= 0 || factor >= leastShown);
    if (!isRead)
        factor = -1.0;
    else if (factor == 0)
        factor = 0.0; // no "-0.000"
    return isRead;
}

bool readSeparator(const QString& word, char& character)
{
    struct Separator
    {
        const char* word;
        char character;
    };
    constexpr Separator separators[] = {
        {"space", ' '}, {"tab", '\t'}, {"semicolon", ';'}, {"colon", ':'}, {"comma", ','},
    };
    for (const Separator& separator : separators) {
        if (isWord(word, separator.word)) {
            character = separator.character;
            return true;
        }
    }
    character = ' ';
    return false;
}

bool readSalinityWord(const QString& word, SalinityWord& meaning)
{
    meaning = SalinityWord::Undefined;
    if (isWord(word, "salinity"))
        meaning = SalinityWord::Salinity;
    else if (isWord(word, "conductivity"))
        meaning = SalinityWord::Conductivity;
    else
        return isWord(word, "undef");
    return true;
}

bool parseFilterRow(const QString& line, FilterRow& row)
{
    const QString text = withoutWhiteSpace(line);
    // Counted first: a long line of commas would cost a string for each.
    if (text.count(QLatin1Char(',')) != filterFields - 1)
        return false;
    const QStringList fields = text.split(QLatin1Char(','));
    row.name = fields[0];
    row.postfix = fields[1];
    tagDecodeFmt format;
    readFilterColumn(fields[2], format.depthColumn);
    readFilterColumn(fields[3], format.speedColumn);
    readFilterColumn(fields[4], format.temperatureColumn);
    readFilterColumn(fields[5], format.salinityColumn);
    readFilterColumn(fields[6], format.absorptionColumn);
    format.skipLines = fields[7];
    readFilterFactor(fields[8], format.depthFactor);
    readFilterFactor(fields[9], format.speedFactor);
    format.largestColumn = std::max(format.depthColumn, format.speedColumn);
    row.separator = fields[10];
    readSeparator(row.separator, format.separator);
    row.salinity = fields[11];
    readSalinityWord(row.salinity, format.salinityWord);
    row.format = format;
    return true;
}

bool findFilter(const QStringList& lines, const QString& fileName, FilterRow& row)
{
    return std::any_of(lines.begin(), lines.end(), [&](const QString& line) {
        return parseFilterRow(line, row) && !row.postfix.isEmpty() &&
               fileName.endsWith(row.postfix, Qt::CaseInsensitive);
    });
}

} // namespace profile
