#include "settings/numbers.h"
#include "tests/support/commalocale.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using settings::leadingDouble;
using settings::leadingInt;

TEST(Numbers, IntegersReadAsTheCLibraryDoes)
{
    struct
    {
        const char* text;
        int value;
    } const cases[] = {
        {"8", 8},
        {" \t\n8", 8},
        {"-8", -8},
        {"+8", 8},
        {"8abc", 8},
        {"0350", 350},
        {"abc", 0},
        {"", 0},
        {"+", 0},
        {"+-8", 0},
        {"2147483647", 2147483647},
        {"2147483648", std::numeric_limits<int>::max()},
        {"-2147483649", std::numeric_limits<int>::min()},
    };
    for (const auto& c : cases)
        EXPECT_EQ(leadingInt(c.text), c.value) << c.text;
}

TEST(Numbers, RealsReadAsTheCLibraryDoes)
{
    struct
    {
        const char* text;
        double value;
    } const cases[] = {
        {"1400.5", 1400.5},  {" 1400.5 m/s", 1400.5},
        {"-5", -5.0},        {"+1.5e2", 150.0},
        {"abc", 0.0},        {"", 0.0},
        {"1,5", 1.0},        {".5", 0.5},
        {"1e400", HUGE_VAL}, {"-1e400", -HUGE_VAL},
        {"1e-400", 0.0},     {"0x10", 0.0},
    };
    for (const auto& c : cases)
        EXPECT_EQ(leadingDouble(c.text), c.value) << c.text;
}

TEST(Numbers, TheDecimalPointIsAPointInEveryLocale)
{
    const CommaLocale comma;
    ASSERT_TRUE(CommaLocale::isActive());
    EXPECT_EQ(leadingDouble("1400.5"), 1400.5);
    EXPECT_EQ(leadingDouble("1e400"), HUGE_VAL);
    EXPECT_EQ(settings::fixedText(1400.5), "1400.500000");
}

TEST(Numbers, ValuesBeyondAFloatBecomeInfinite)
{
    EXPECT_EQ(settings::toFloat32(1e39), std::numeric_limits<float>::infinity());
    EXPECT_EQ(settings::toFloat32(-1e39), -std::numeric_limits<float>::infinity());
    EXPECT_EQ(settings::toFloat32(1400.0), 1400.0F);
}
