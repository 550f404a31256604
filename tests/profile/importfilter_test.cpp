#include "profile/importfilter.h"

#include <gtest/gtest.h>

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
