#include "profile/texthelpers.h"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace profile;

TEST(TextHelpers, FieldsAreCutInPlace)
{
    struct
    {
        std::string text;
        std::vector<std::string> fields;
    } cases[] = {
        {"a,b,c", {"a", "b", "c"}},
        {"a,,c,", {"a", "", "c", ""}},
        {"", {""}},
        {"abc", {"abc"}},
        {",", {"", ""}},
    };
    for (auto& c : cases) {
        int count = -1;
        char** const fields = decodeCommaString(c.text.data(), &count, ',');
        ASSERT_NE(fields, nullptr);
        EXPECT_EQ(std::vector<std::string>(fields, fields + count), c.fields);
        std::free(fields);
    }
    int count = -1;
    EXPECT_EQ(decodeCommaString(nullptr, &count, ','), nullptr);
    EXPECT_EQ(count, 0);
}

TEST(TextHelpers, AKeyedValueIsFound)
{
    struct
    {
        const char* line;
        const char* key;
        const char* next;
        const char* value; // null: not found
    } const cases[] = {
        {"TIME:1234", "TIME:", "", "1234"},
        {"DATE:26319 TIME: 1234 ", "TIME:", "", "1234"},
        {"DATE:26319 TIME:1234", "DATE:", "TIME:", "26319"},
        {"DATE:26319", "DATE:", "TIME:", "26319"},
        {"TIME:1 DATE:2", "DATE:", "TIME:", "2"},
        {"InstrumentCode=1", "Instrument", "", nullptr},
        {"InstrumentCode=1 Instrument 2", "Instrument", "", "2"},
        {"XDATE:1", "DATE:", "", nullptr},
        {"date:1", "DATE:", "", nullptr},
        {"DATE:", "DATE:", "", ""},
        {"", "DATE:", "", nullptr},
        {"x", "", "", nullptr},
    };
    for (const auto& c : cases) {
        std::string value = "before";
        const bool isFound = getFieldValue(c.line, c.key, c.next, value);
        EXPECT_EQ(isFound, c.value != nullptr) << c.line;
        EXPECT_EQ(value, c.value != nullptr ? c.value : "before") << c.line;
    }
    std::string value;
    EXPECT_TRUE(getFieldValue("TIME:1234", "TIME:", value));
    EXPECT_EQ(value, "1234");
}

TEST(TextHelpers, PrecisionIsTheNumberOfDecimals)
{
    struct
    {
        const char* text;
        int minimum;
        int precision;
    } const cases[] = {
        {"1.25", 0, 2}, {"1.25", 3, 3}, {" 1.250 ", 0, 3}, {"1", 2, 2},
        {"1", -1, 0},   {"1.", -1, 0},  {"1.", 2, 2},      {"", 3, 0},
        {"  ", 3, 0},   {".5", 0, 1},   {"1.5e-3", 0, 1},  {"-0.001", -1, 3},
    };
    for (const auto& c : cases)
        EXPECT_EQ(fnFindPrecision(QString::fromLatin1(c.text), c.minimum), c.precision) << c.text;
}
