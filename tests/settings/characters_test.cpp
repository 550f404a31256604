#include "settings/characters.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(Characters, OnlyAsciiIsALetterOrADigit)
{
    const std::string digits = "0123456789";
    const std::string small = "abcdefghijklmnopqrstuvwxyz";
    const std::string capital = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    for (int byte = 0; byte < 256; ++byte) {
        const char c = char(byte);
        const bool isSmall = small.find(c) != std::string::npos;
        const bool isCapital = capital.find(c) != std::string::npos;
        EXPECT_EQ(settings::isDigit(c), digits.find(c) != std::string::npos) << byte;
        EXPECT_EQ(settings::isLetter(c), isSmall || isCapital) << byte;
        EXPECT_EQ(settings::lower(c), isCapital ? small[capital.find(c)] : c) << byte;
        EXPECT_EQ(settings::upper(c), isSmall ? capital[small.find(c)] : c) << byte;
    }
}

} // namespace
