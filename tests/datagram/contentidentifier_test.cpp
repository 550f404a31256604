#include "datagram/contentidentifier.h"

#include <gtest/gtest.h>

#include <set>

using namespace datagram;

TEST(ContentIdentifier, TheLegalOnesAreKnown)
{
    const std::set<int> legal = {0,  1,  2,  3,  4,  5,  6,  7,  10, 11, 12, 13, 14, 20, 21,
                                 22, 23, 30, 31, 32, 33, 40, 41, 42, 43, 50, 51, 52, 53};
    for (int number = -2; number < 120; ++number)
        EXPECT_EQ(contentIdentifier(number).isLegal, legal.count(number) == 1) << number;
}

TEST(ContentIdentifier, EachRowOfTheTableCarriesItsColumns)
{
    // Columns: first d(epth), a(lternative) or none, speed, temperature, salinity, absorption.
    struct
    {
        std::set<int> numbers;
        const char* columns;
    } const groups[] = {
        {{0, 10}, "ds"},
        {{1, 12}, "dsti"},
        {{2, 3, 20, 22, 30, 32}, "dti"},
        {{4, 5, 40, 42, 50, 52}, "ati"},
        {{6, 11}, "dsb"},
        {{7, 14}, "asti"},
        {{21, 31}, "dtib"},
        {{41, 51}, "atib"},
        {{-1, 8, 9, 13, 15, 16, 17, 18, 19, 23, 29, 33, 39, 43, 49, 53, 54, 99}, ""},
    };
    for (const auto& group : groups) {
        for (const int number : group.numbers) {
            const ContentIdentifier entry = contentIdentifier(number);
            std::string columns;
            if (entry.first != FirstColumn::NoRows)
                columns += entry.first == FirstColumn::Depth ? 'd' : 'a';
            columns += entry.hasSpeed ? "s" : "";
            columns += entry.hasTemperature ? "t" : "";
            columns += entry.hasSalinity ? "i" : "";
            columns += entry.hasAbsorption ? "b" : "";
            EXPECT_EQ(columns, group.columns) << number;
        }
    }
}

TEST(ContentIdentifier, EachGroupIsConvertedInItsWay)
{
    struct
    {
        std::set<int> numbers;
        bool speed;
        bool conductivity;
        bool pressure;
    } const groups[] = {
        {{0, 1, 6, 10, 11, 12, 13}, false, false, false},
        {{2, 20, 21, 22, 23}, true, false, false},
        {{3, 30, 31, 32, 33}, true, true, false},
        {{4, 40, 41, 42, 43, 53}, true, false, true},
        {{5, 50, 51, 52}, true, true, true},
        {{7, 14}, false, true, true},
    };
    for (const auto& group : groups) {
        for (const int number : group.numbers) {
            const ContentIdentifier entry = contentIdentifier(number);
            EXPECT_TRUE(entry.isConvertible) << number;
            EXPECT_EQ(entry.computesSpeed, group.speed) << number;
            EXPECT_EQ(entry.salinityFromConductivity, group.conductivity) << number;
            EXPECT_EQ(entry.firstIsPressure, group.pressure) << number;
        }
    }
    EXPECT_FALSE(contentIdentifier(8).isConvertible);
}

TEST(ContentIdentifier, ATextMustBeALegalInteger)
{
    struct
    {
        const char* text;
        bool isLegal;
    } const cases[] = {
        {"00", true},
        {"0", true},
        {"7", true},
        {"07", true},
        {"53", true},
        {"13", true},
        {"8", false},
        {"9", false},
        {"15", false},
        {"24", false},
        {"54", false},
        {"-1", false},
        {"", false},
        {"1.0", false},
        {"0x1", false},
        {"one", false},
        {"99999999999", false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(legalIdentifier(QLatin1String(c.text)).isLegal, c.isLegal) << c.text;
}
