#include "profile/rowreader.h"
#include "tests/support/commalocale.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

using namespace profile;

namespace {

// What the standard library reads from a text that is one number.
double expected(const std::string& text)
{
    double value = 0.0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), value);
    EXPECT_EQ(parsed.ptr, text.data() + text.size()) << text;
    return value;
}

void expectSame(const std::string& text)
{
    const RowReader<1> reader(',', {1});
    const ColumnNumber number = reader.read("x," + text + ",y")[0];
    EXPECT_EQ(number.value, expected(text)) << text;
    EXPECT_EQ(std::signbit(number.value), text[0] == '-') << text;
}

} // namespace

TEST(RowReader, NumbersAreThoseOfTheStandardLibraryToTheLastBit)
{
    const CommaLocale comma;
    for (const char* text : {"0",
                             "-0",
                             "-0.0",
                             "1.",
                             ".5",
                             "-.5",
                             "0.1",
                             "1480.123",
                             "00.075",
                             "123456789012345",
                             "12345678901234.5",
                             "0.12345678901234",
                             "123456789012345.",
                             ".123456789012345",
                             "1234567890123456",
                             "12345678901234.56",
                             "9007199254740993",
                             "0.1234567890123456789",
                             "123456789.12345678901",
                             "000000000000000000001.5",
                             "1e3",
                             "1.5E-3",
                             "-2.5e+2",
                             "1e22",
                             "4.9e-320",
                             "179769313486231570000000000000"})
        expectSame(text);
    std::mt19937 random(15060); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same each time
    for (int i = 0; i < 100000; ++i) {
        std::string text = random() % 2 == 0 ? "-" : "";
        const std::size_t before = 1 + random() % 10;
        for (std::size_t digit = 0; digit < before; ++digit)
            text += char('0' + random() % 10);
        text += '.';
        const std::size_t behind = random() % 10;
        for (std::size_t digit = 0; digit < behind; ++digit)
            text += char('0' + random() % 10);
        expectSame(text);
    }
}

TEST(RowReader, WhatIsNoNumberIsUnknown)
{
    const RowReader<1> reader(',', {0});
    for (const char* text : {"",    "-",    "+",        ".",     "-.",     "+-1",   "++1", "- 1",
                             "+ 1", "1e",   "1e+",      "1.2.3", "0x10",   "x",     "1x",  "1 2",
                             "nan", "-inf", "infinity", "1e400", "-1e400", "1\x80", "\x80"})
        EXPECT_FALSE(reader.read(text).front().isKnown()) << text;
    EXPECT_EQ(reader.read("1e-400").front().value, 0.0);
}

TEST(RowReader, DecimalsAreTheDigitsBehindThePoint)
{
    struct
    {
        const char* text;
        int decimals;
    } const cases[] = {
        {"1", 0},      {"1.", 0},      {"1.5", 1},   {"-1.50", 2},
        {"1e-3", 0},   {"1.25e-3", 2}, {".125", 3},  {"0.1234567890123456789", 19},
        {" +1.5 ", 1}, {"x", 0},       {"1.25x", 0},
    };
    const RowReader<1> reader(',', {0});
    for (const auto& c : cases)
        EXPECT_EQ(reader.read(c.text).front().decimals, c.decimals) << c.text;
}

TEST(RowReader, ColumnsMayBeChosenInAnyOrderAndTwice)
{
    const RowReader<5> reader(';', {3, 0, -1, 3, 9});
    const auto numbers = reader.read("10;11;12;13;14");
    EXPECT_EQ(numbers[0].value, 13.0);
    EXPECT_EQ(numbers[1].value, 10.0);
    EXPECT_FALSE(numbers[2].isKnown());
    EXPECT_EQ(numbers[3].value, 13.0);
    EXPECT_FALSE(numbers[4].isKnown());
    EXPECT_FALSE(RowReader<1>(';', {-1}).read("1;2").front().isKnown());
}
