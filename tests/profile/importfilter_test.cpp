#include "profile/importfilter.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace profile;

TEST(ImportFilter, TheBuiltInRowsStandInTheirOrder)
{
    EXPECT_EQ(
        builtInFilters().join(QLatin1Char('\n')),
        QStringLiteral("asvp,.asvp,0,1,-1,-1,-1,1,1.0,1.0,space,undef\n"
                       "valeport,.valeport,0,2,-1,-1,-1,0;1;2;3;4;5;6;7;8;9,1.0,1.0,tab,undef\n"
                       "valeport2,.vp2,-1,-1,-1,-1,-1,-1,1.0,1.0,tab,undef\n"
                       "SSP,.ssp,0,1,2,3,4,1,1.0,1.0,comma,undef\n"
                       "AML,.aml,-1,-1,-1,-1,-1,-1,1.0,1.0,comma,undef\n"
                       "AMLx,.amlx,-1,-1,-1,-1,-1,-1,1.0,1.0,comma,undef"));
}

TEST(ImportFilter, ARowNamesColumnsFactorsAndSeparator)
{
    FilterRow row;
    ASSERT_TRUE(parseFilterRow(QStringLiteral("n,.p,3,4,5,6,7,1;2,0.1,2,Semicolon,undef"), row));
    EXPECT_EQ(row.name, QLatin1String("n"));
    EXPECT_EQ(row.postfix, QLatin1String(".p"));
    EXPECT_EQ(row.format.depthColumn, 3);
    EXPECT_EQ(row.format.speedColumn, 4);
    EXPECT_EQ(row.format.temperatureColumn, 5);
    EXPECT_EQ(row.format.salinityColumn, 6);
    EXPECT_EQ(row.format.absorptionColumn, 7);
    EXPECT_EQ(row.format.skipLines, QLatin1String("1;2"));
    EXPECT_EQ(row.format.depthFactor, 0.1);
    EXPECT_EQ(row.format.speedFactor, 2.0);
    EXPECT_EQ(row.format.separator, ';');
    EXPECT_EQ(row.separator, QLatin1String("Semicolon"));
    EXPECT_FALSE(parseFilterRow(QStringLiteral("n,.p,3,4,5,6,7,1,0.1,2,tab"), row));
    EXPECT_FALSE(parseFilterRow(QStringLiteral("n,.p,3,4,5,6,7,1,0.1,2,tab,undef,x"), row));
    struct
    {
        const char* word;
        char separator;
    } const cases[] = {
        {"space", ' '}, {"tab", '\t'}, {"SEMICOLON", ';'}, {"colon", ':'}, {"Comma", ','}};
    for (const auto& c : cases) {
        ASSERT_TRUE(parseFilterRow(
            QStringLiteral("n,.p,3,4,5,6,7,1,0.1,2,%1,undef").arg(QString::fromLatin1(c.word)),
            row));
        EXPECT_EQ(row.format.separator, c.separator) << c.word;
    }
}

TEST(ImportFilter, WhiteSpaceCarriesNoMeaning)
{
    FilterRow row;
    ASSERT_TRUE(parseFilterRow(
        QStringLiteral(" my name\t, .p ,1 0, 4,-1,-1,-1,1 ; 2,0. 5,1,c omma,undef\r\n"), row));
    EXPECT_EQ(row.name, QLatin1String("myname"));
    EXPECT_EQ(row.postfix, QLatin1String(".p"));
    EXPECT_EQ(row.format.depthColumn, 10);
    EXPECT_EQ(row.format.skipLines, QLatin1String("1;2"));
    EXPECT_EQ(row.format.depthFactor, 0.5);
    EXPECT_EQ(row.format.separator, ',');
    EXPECT_EQ(withoutWhiteSpace(QStringLiteral(" a\t\r\n\v\f") + QChar(0xA0) + QChar(0x3000) +
                                QChar(0xFEFF) + QStringLiteral("b ")),
              QLatin1String("ab"));
    EXPECT_EQ(withoutWhiteSpace(QString()), QString());
}

TEST(ImportFilter, TheLargestColumnIsThatOfDepthOrSpeed)
{
    struct
    {
        const char* columns;
        int largest;
    } const cases[] = {
        {"3,4,9,10,11", 4}, {"7,2,9,10,11", 7}, {"0,1,-1,-1,-1", 1}, {"-1,-1,-1,-1,-1", -1}};
    for (const auto& c : cases) {
        FilterRow row;
        ASSERT_TRUE(parseFilterRow(
            QStringLiteral("n,.p,%1,1,1,1,tab,undef").arg(QLatin1String(c.columns)), row));
        EXPECT_EQ(row.format.largestColumn, c.largest) << c.columns;
    }
}

TEST(ImportFilter, AWordTellsWhatTheSalinityColumnHolds)
{
    struct
    {
        const char* word;
        SalinityWord meaning;
        bool isKnown;
    } const cases[] = {
        {"salinity", SalinityWord::Salinity, true},
        {"Salinity", SalinityWord::Salinity, true},
        {"conductivity", SalinityWord::Conductivity, true},
        {"CONDUCTIVITY", SalinityWord::Conductivity, true},
        {"undef", SalinityWord::Undefined, true},
        {"UNDEF", SalinityWord::Undefined, true},
        {"sal", SalinityWord::Undefined, false},
        {"salinity2", SalinityWord::Undefined, false},
        {"", SalinityWord::Undefined, false},
    };
    for (const auto& c : cases) {
        FilterRow row;
        ASSERT_TRUE(parseFilterRow(
            QStringLiteral("n,.p,0,1,2,3,4,1,1,1,tab,%1").arg(QLatin1String(c.word)), row));
        EXPECT_EQ(row.format.salinityWord, c.meaning) << c.word;
        EXPECT_EQ(row.salinity, QLatin1String(c.word));
        SalinityWord meaning = SalinityWord::Salinity;
        EXPECT_EQ(readSalinityWord(QLatin1String(c.word), meaning), c.isKnown) << c.word;
        EXPECT_EQ(meaning, c.meaning) << c.word;
    }
}

TEST(ImportFilter, AnUnknownSeparatorIsABlankAndToldApart)
{
    for (const char* word : {"", "pipe", "spaces", ",", "blank"}) {
        char separator = 'x';
        EXPECT_FALSE(readSeparator(QLatin1String(word), separator)) << word;
        EXPECT_EQ(separator, ' ');
    }
}

TEST(ImportFilter, AColumnIsAWholeNumberWithinReason)
{
    struct
    {
        const char* text;
        bool isRead;
        int column;
    } const cases[] = {
        {"0", true, 0},
        {"7", true, 7},
        {"+7", true, 7},
        {"007", true, 7},
        {"10000", true, 10000},
        {"10001", false, -1},
        {"-1", true, -1},
        {"-5", true, -5},
        {"", false, -1},
        {"+", false, -1},
        {"-", false, -1},
        {"+-1", false, -1},
        {"x", false, -1},
        {"2a", false, -1},
        {"2.0", false, -1},
        {"1e1", false, -1},
        {"0x1", false, -1},
        {"2147483648", false, -1},
        {"-2147483649", false, -1},
        {"99999999999999999999", false, -1},
    };
    for (const auto& c : cases) {
        int column = 99;
        EXPECT_EQ(readFilterColumn(QLatin1String(c.text), column), c.isRead) << c.text;
        EXPECT_EQ(column, c.column) << c.text;
        for (int place = 0; place < 5; ++place) {
            QStringList fields = {QStringLiteral("0"), QStringLiteral("1"), QStringLiteral("2"),
                                  QStringLiteral("3"), QStringLiteral("4")};
            fields[place] = QLatin1String(c.text);
            FilterRow row;
            ASSERT_TRUE(parseFilterRow(QStringLiteral("n,.p,") + fields.join(QLatin1Char(',')) +
                                           QStringLiteral(",1,1,1,tab,undef"),
                                       row));
            const int columns[] = {row.format.depthColumn, row.format.speedColumn,
                                   row.format.temperatureColumn, row.format.salinityColumn,
                                   row.format.absorptionColumn};
            for (int other = 0; other < 5; ++other)
                EXPECT_EQ(columns[other], other == place ? c.column : other) << c.text;
        }
    }
    double factor = 0.0;
    EXPECT_FALSE(readFilterFactor(QString(QChar(0x0663)), factor)) << "a digit of another script";
    EXPECT_EQ(factor, -1.0);
}

TEST(ImportFilter, AFactorIsAFiniteNumberThatThreeDecimalsCanShow)
{
    struct
    {
        const char* text;
        double factor;
    } const cases[] = {
        {"1", 1.0},        {"2.5", 2.5},     {"+2.5", 2.5},      {".5", 0.5},
        {"1e3", 1000.0},   {"0", 0.0},       {"-0", 0.0},        {"0.0005", 0.0005},
        {"0.00049", -1.0}, {"1e-300", -1.0}, {"-0.001", -0.001}, {"-2", -2.0},
        {"", -1.0},        {"x", -1.0},      {"1x", -1.0},       {"1.0.0", -1.0},
        {"+-1", -1.0},     {"nan", -1.0},    {"inf", -1.0},      {"-inf", -1.0},
        {"1e999", -1.0},   {"1e-999", -1.0}, {"0x10", -1.0},
    };
    for (const auto& c : cases) {
        double factor = 0.0;
        readFilterFactor(QLatin1String(c.text), factor);
        EXPECT_EQ(factor, c.factor) << c.text;
        EXPECT_EQ(std::signbit(factor), c.factor < 0) << c.text;
    }
}

TEST(ImportFilter, AnEmptyPostfixSelectsNothing)
{
    const QStringList rows = {QStringLiteral("all,,1,0,-1,-1,-1,1,1,1,tab,undef"),
                              QStringLiteral("mine,.p,1,0,-1,-1,-1,1,1,1,tab,undef")};
    FilterRow row;
    EXPECT_FALSE(findFilter(rows, QStringLiteral("x.txt"), row));
    EXPECT_TRUE(findFilter(rows, QStringLiteral("x.p"), row));
    EXPECT_EQ(row.name, QLatin1String("mine"));
}

TEST(ImportFilter, ThePostfixSelectsInAnyCase)
{
    FilterRow row;
    EXPECT_TRUE(findFilter(builtInFilters(), QStringLiteral("X.ASVP"), row));
    EXPECT_EQ(row.name, QLatin1String("asvp"));
    EXPECT_TRUE(findFilter(builtInFilters(), QStringLiteral("x.amlx"), row));
    EXPECT_EQ(row.name, QLatin1String("AMLx"));
    EXPECT_FALSE(findFilter(builtInFilters(), QStringLiteral("x.asvp.txt"), row));
    const QStringList two = {QStringLiteral("first,.p,1,0,-1,-1,-1,1,1,1,tab,undef"),
                             QStringLiteral("second,x.p,1,0,-1,-1,-1,1,1,1,tab,undef")};
    EXPECT_TRUE(findFilter(two, QStringLiteral("x.p"), row));
    EXPECT_EQ(row.name, QLatin1String("first"));
    EXPECT_FALSE(findFilter({QStringLiteral("bad row")}, QStringLiteral("x.asvp"), row));
}
