#include "profile/importfilter.h"

#include <algorithm>

namespace profile {

namespace {

constexpr int fieldCount = 12;

char separatorOf(const QString& word)
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
        if (word.compare(QLatin1String(separator.word), Qt::CaseInsensitive) == 0)
            return separator.character;
    }
    return ' ';
}

SalinityWord salinityWordOf(const QString& word)
{
    if (word.compare(QLatin1String("salinity"), Qt::CaseInsensitive) == 0)
        return SalinityWord::Salinity;
    if (word.compare(QLatin1String("conductivity"), Qt::CaseInsensitive) == 0)
        return SalinityWord::Conductivity;
    return SalinityWord::Undefined;
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

bool parseFilterRow(const QString& line, FilterRow& row)
{
    const QStringList fields = line.split(QLatin1Char(','));
    if (fields.size() != fieldCount)
        return false;
    row.name = fields[0];
    row.postfix = fields[1];
    tagDecodeFmt format;
    format.depthColumn = fields[2].toInt();
    format.speedColumn = fields[3].toInt();
    format.temperatureColumn = fields[4].toInt();
    format.salinityColumn = fields[5].toInt();
    format.absorptionColumn = fields[6].toInt();
    format.skipLines = fields[7];
    format.depthFactor = fields[8].toDouble();
    format.speedFactor = fields[9].toDouble();
    format.largestColumn = std::max(format.depthColumn, format.speedColumn);
    format.separator = separatorOf(fields[10]);
    format.salinityWord = salinityWordOf(fields[11]);
    row.format = format;
    return true;
}

bool findFilter(const QStringList& lines, const QString& fileName, FilterRow& row)
{
    return std::any_of(lines.begin(), lines.end(), [&](const QString& line) {
        return parseFilterRow(line, row) && fileName.endsWith(row.postfix, Qt::CaseInsensitive);
    });
}

} // namespace profile
