#include "profile/columndecoder.h"

#include <gtest/gtest.h>

using namespace profile;

namespace {

tagDecodeFmt blanks(const char* skipLines = "")
{
    tagDecodeFmt format;
    format.depthColumn = 0;
    format.speedColumn = 1;
    format.skipLines = QString::fromLatin1(skipLines);
    return format;
}

// Depths of the levels that a text gives.
QVector<float> depths(std::string_view text, const tagDecodeFmt& format)
{
    QVector<float> result;
    const QVector<float> record = decodeColumns(text, format);
    for (int i = 1; i < record.size(); i += recordSlots)
        result.append(record[i]);
    return result;
}

} // namespace

TEST(ColumnDecoder, ALevelFillsSevenSlots)
{
    tagDecodeFmt format = blanks();
    format.separator = ',';
    format.temperatureColumn = 2;
    format.salinityColumn = 3;
    format.absorptionColumn = 4;
    format.depthFactor = 0.1;
    format.speedFactor = 2.0;
    EXPECT_EQ(decodeColumns("100,750.5,-1.5,35,0.02\n200,751,,x\n", format),
              (QVector<float>{1501, 10, 10, 1501, -1.5F, 35, 0.02F, 1502, 20, 20, 1502, 0, 0, 0}));
}

TEST(ColumnDecoder, UnusableLinesArePassedOver)
{
    struct
    {
        const char* text;
        int levels;
    } const cases[] = {
        {"1 1500", 1},
        {"1 1500\n\n2 1501\n", 2},
        {"  1   1500  \n", 1},
        {"1\t1500\n", 1},
        {"1 1500 extra words\n", 1},
        {"1\n", 0},
        {"one 1500\n", 0},
        {"1 1500m\n", 0},
        {"1 nan\n", 0},
        {"inf 1500\n", 0},
        {"1 1e400\n", 0},
        {"1e-400 1500\n", 1},
        {"1 1e39\n", 0},
        {"1 0x10\n", 0},
        {"1,5 1500\n", 0},
        {"+1 +1500\n", 1},
        {"+-1 1500\n", 0},
        {"-1 1500\n", 1},
        {"1e1 1.5e3\n", 1},
        {"", 0},
    };
    for (const auto& c : cases)
        EXPECT_EQ(depths(c.text, blanks()).size(), c.levels) << c.text;
    EXPECT_TRUE(depths(std::string_view("1\0 1500\n", 8), blanks()).isEmpty());
}

TEST(ColumnDecoder, SkippedLinesAreNoSamples)
{
    const char* const text = "1 1500\n2 1500\n\n4 1500\n5 1500\n";
    EXPECT_EQ(depths(text, blanks("1")), (QVector<float>{2, 4, 5}));
    EXPECT_EQ(depths(text, blanks("1;3-4")), (QVector<float>{2, 5}));
    EXPECT_EQ(depths(text, blanks("-1")), (QVector<float>{1, 2, 4, 5}));
    EXPECT_EQ(depths(text, blanks("0;1;2")), (QVector<float>{4, 5}));
}

TEST(ColumnDecoder, SingleSeparatorsKeepEmptyColumns)
{
    tagDecodeFmt format = blanks();
    format.separator = '\t';
    format.speedColumn = 2;
    EXPECT_EQ(depths("1\t\t1500\n2\t1500\n", format), (QVector<float>{1}));
}

TEST(ColumnDecoder, WhiteSpaceAroundANumberDoesNotCount)
{
    tagDecodeFmt format = blanks();
    format.separator = ',';
    EXPECT_EQ(depths(" \t1\v , +1500\t\n2 ,1500 x\n3 3,1500\n,1500\n4,\t1500", format),
              (QVector<float>{1, 4}));
    format.separator = '\t';
    EXPECT_EQ(depths(" 1 \t 1500 \n\t2\t1500\n", format), (QVector<float>{1}));
    EXPECT_EQ(depths("\t \t1\t1500 \t\n", blanks()), (QVector<float>{1}));
}

TEST(ColumnDecoder, AColumnMayServeTwice)
{
    tagDecodeFmt format = blanks();
    format.temperatureColumn = 0;
    format.salinityColumn = 1;
    format.absorptionColumn = 2147483647;
    EXPECT_EQ(decodeColumns("7 1500\n", format), (QVector<float>{1500, 7, 7, 1500, 7, 1500, 0}));
}

TEST(ColumnDecoder, DecimalsAreThoseOfTheLevels)
{
    DecimalCounts decimals;
    tagDecodeFmt format = blanks();
    format.temperatureColumn = 2;
    decodeColumns("1.250 1500.12345 8\n1.12345678 x 9\n2 1.5e3 8.125x\n", format, &decimals);
    EXPECT_EQ(decimals.depth, 3);
    EXPECT_EQ(decimals.speed, 5);
    EXPECT_EQ(decimals.temperature, 0);
    EXPECT_EQ(decimals.absorption, 0);
}

TEST(LineSet, ReadsNumbersAndRanges)
{
    struct
    {
        const char* text;
        QVector<int> lines;
    } const cases[] = {
        {"1", {1}},
        {"1-3", {1, 2, 3}},
        {"1;3-5", {1, 3, 4, 5}},
        {"3-5;1;4-6", {1, 3, 4, 5, 6}},
        {" 2 ; 4 - 5 ", {2, 4, 5}},
        {"5-3", {}},
        {"-1", {}},
        {"x;2;y-3;4-z", {2}},
        {"", {}},
        {";;", {}},
        {"1-9223372036854775807", {1, 2, 3, 4, 5, 6, 7, 8, 9}},
        {"1-99999999999999999999", {}},
        {"1-2-3", {}},
    };
    for (const auto& c : cases) {
        const LineSet set(QString::fromLatin1(c.text));
        QVector<int> found;
        for (int line = 1; line < 10; ++line) {
            if (set.contains(line))
                found.append(line);
        }
        EXPECT_EQ(found, c.lines) << c.text;
        EXPECT_FALSE(set.contains(0));
    }
}
