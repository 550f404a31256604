#include "profile/coordinate.h"
#include "tests/support/commalocale.h"
#include "tests/support/printers.h"

#include <gtest/gtest.h>

using namespace profile;

TEST(Coordinate, IsReadInAllItsForms)
{
    const CommaLocale comma;
    struct
    {
        const char* text;
        Axis axis;
        double degrees;
    } const cases[] = {
        {"59.5", Axis::Latitude, 59.5},
        {" -59.5\t", Axis::Latitude, -59.5},
        {"+59.5", Axis::Latitude, 59.5},
        {"59.5 S", Axis::Latitude, -59.5},
        {"-59.5 S", Axis::Latitude, -59.5}, // both mean it once
        {"59.5N", Axis::Latitude, 59.5},
        {"S59.5", Axis::Latitude, -59.5},
        {"s 59.5", Axis::Latitude, -59.5},
        {"-0 30 0", Axis::Latitude, -0.5}, // the sign survives a zero
        {"0 30 0 S", Axis::Latitude, -0.5},
        {"12 30 36 S", Axis::Latitude, -12.51},
        {"-12 30 36 S", Axis::Latitude, -12.51},
        {"12 30.6", Axis::Latitude, 12.51},
        {"12:30:36", Axis::Latitude, 12.51},
        {"12\xC2\xB0"
         "30'36\"N",
         Axis::Latitude, 12.51},
        {"12\xB0 30' 36.0\" S", Axis::Latitude, -12.51},
        {"012 30 36 E", Axis::Longitude, 12.51},
        {"12-30-36 N", Axis::Latitude, 12.51},
        {"-12-30-36", Axis::Latitude, -12.51},
        {"012-30.6 W", Axis::Longitude, -12.51},
        {"59.5,S", Axis::Latitude, -59.5},
        {"59.5 , N", Axis::Latitude, 59.5},
        {"12 30 36,S", Axis::Latitude, -12.51},
        {"90", Axis::Latitude, 90.0},
        {"-90", Axis::Latitude, -90.0},
        {"180", Axis::Longitude, 180.0},
        {"-180", Axis::Longitude, -180.0},
        {"190.25", Axis::Longitude, -169.75},
        {"360", Axis::Longitude, 0.0},
        {"169 45 0 W", Axis::Longitude, -169.75},
        {"0", Axis::Longitude, 0.0},
    };
    for (const auto& c : cases) {
        double degrees = 999.0;
        EXPECT_TRUE(parseCoordinate(c.text, c.axis, degrees)) << c.text;
        EXPECT_NEAR(degrees, c.degrees, 1e-12) << c.text;
    }
}

TEST(Coordinate, AnythingElseIsNone)
{
    struct
    {
        const char* text;
        Axis axis;
    } const cases[] = {
        {"", Axis::Latitude},        {"999", Axis::Latitude},
        {"999", Axis::Longitude},    {"-999.0", Axis::Longitude},
        {"90.001", Axis::Latitude},  {"360.001", Axis::Longitude},
        {"12 60 0", Axis::Latitude}, {"12 0 60", Axis::Latitude},
        {"12.5 30", Axis::Latitude}, {"12 30.5 10", Axis::Latitude},
        {"1 2 3 4", Axis::Latitude}, {"59,5", Axis::Latitude},
        {"12 -30", Axis::Latitude},  {"--12", Axis::Latitude},
        {"12 E", Axis::Latitude},    {"12 N", Axis::Longitude},
        {"N 12 S", Axis::Latitude},  {"unknown", Axis::Latitude},
        {"N/A", Axis::Longitude},    {"N", Axis::Latitude},
        {"-", Axis::Latitude},       {"nan", Axis::Latitude},
        {"inf", Axis::Latitude},     {".", Axis::Latitude},
        {"1e1", Axis::Latitude},     {"12 30 x", Axis::Latitude},
        {"12;30", Axis::Latitude},   {"0x10", Axis::Latitude},
        {"9e999", Axis::Longitude},  {"12..5", Axis::Latitude},
        {"59,5 N", Axis::Latitude},  {"59.5,,S", Axis::Latitude},
        {"59.5,", Axis::Latitude},   {"12--30", Axis::Latitude},
        {"12-60-0", Axis::Latitude}, {"12 - 30", Axis::Latitude},
        {"12-", Axis::Latitude},     {"12-30-36-1", Axis::Latitude},
        {",S", Axis::Latitude},      {"12.5-30", Axis::Latitude},
    };
    for (const auto& c : cases) {
        double degrees = -77.0;
        EXPECT_FALSE(parseCoordinate(c.text, c.axis, degrees)) << c.text;
        EXPECT_EQ(degrees, -77.0) << c.text;
        EXPECT_EQ(degreesText(c.text, c.axis), QString()) << c.text;
    }
}

TEST(Coordinate, APlainNumberKeepsItsText)
{
    const auto latitude = [](const char* text) { return degreesText(text, Axis::Latitude); };
    EXPECT_EQ(latitude(" 59.50 "), QLatin1String("59.50"));
    EXPECT_EQ(latitude("-00.5"), QLatin1String("-00.5"));
    EXPECT_EQ(latitude("38.123456789012"), QLatin1String("38.123456789012"));
    EXPECT_EQ(latitude("+59.5"), QLatin1String("59.5"));
    EXPECT_EQ(latitude("59.5 S"), QLatin1String("-59.5"));
    EXPECT_EQ(latitude("-12 30 36 S"), QLatin1String("-12.51"));
    EXPECT_EQ(latitude("12 20 0"), QLatin1String("12.33333333"));
    EXPECT_EQ(latitude("60 0 0"), QLatin1String("60"));
    EXPECT_EQ(degreesText("190", Axis::Longitude), QLatin1String("-170"));
}
