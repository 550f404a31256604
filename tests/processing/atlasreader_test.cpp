#include "processing/atlas.h"
#include "tests/support/textstream.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#ifdef __linux__
#include <fstream>
#include <memory>
#include <unistd.h>
#endif

using namespace processing;

namespace {

constexpr double none = AtlasGrid::noData;

// What one reading of a text gives.
struct Reading
{
    explicit Reading(const std::string& text)
    {
        const TextStream stream(text);
        isRead = WorldOceanAtlas::fnReadWOAFile(stream.get(), levels, grid);
    }

    double at(double latitude, double longitude, int level = 0) const
    {
        return grid.value(AtlasGrid::latitudeIndex(latitude), AtlasGrid::longitudeIndex(longitude),
                          level);
    }

    AtlasLevels levels;
    AtlasGrid grid;
    bool isRead = false;
};

const std::string head = "title\r\ndepths (m):0,5,10\r\n";

} // namespace

TEST(AtlasGrid, IndicesGoRoundAndEndAtThePoles)
{
    const struct
    {
        double longitude;
        int index;
    } longitudes[] = {
        {0, 0},
        {0.99, 0},
        {1, 1},
        {179.99, 179},
        {180, 180},
        {-180, 180},
        {-179.99, 180},
        {-0.5, 359},
        {-1e-20, 359},
        {-1, 359},
        {-1.01, 358},
        {359.5, 359},
        {360, 0},
        {360.5, 0},
        {-360, 0},
        {-360.5, 359},
        {540.25, 180},
        {-720.5, 359},
        {1e300, AtlasGrid::longitudeIndex(std::fmod(1e300, 360))},
    };
    for (const auto& c : longitudes)
        EXPECT_EQ(AtlasGrid::longitudeIndex(c.longitude), c.index) << c.longitude;
    const struct
    {
        double latitude;
        int index;
    } latitudes[] = {
        {-90, 0},    {-89.5, 0}, {-89, 1},    {-0.5, 89}, {0, 90},    {59.5, 149},  {89, 179},
        {89.5, 179}, {90, 179},  {90.5, 179}, {-90.5, 0}, {-1000, 0}, {1e300, 179}, {-1e300, 0},
    };
    for (const auto& c : latitudes)
        EXPECT_EQ(AtlasGrid::latitudeIndex(c.latitude), c.index) << c.latitude;
}

TEST(AtlasGrid, HoldsNoDataUntilItIsWritten)
{
    AtlasGrid grid;
    EXPECT_EQ(grid.value(0, 0, 0), none);
    EXPECT_EQ(grid.value(179, 359, 109), none);
    grid.cell(179, 359)[109] = 1.5;
    EXPECT_EQ(grid.value(179, 359, 109), 1.5);
    EXPECT_EQ(grid.value(179, 359, 108), none);
    EXPECT_EQ(grid.value(179, 0, 0), none);
    EXPECT_EQ(grid.value(178, 359, 109), none);
    grid.clear();
    EXPECT_EQ(grid.value(179, 359, 109), none);
    grid.cell(179, 0)[0] = 2.5;
    EXPECT_EQ(grid.value(179, 359, 109), none);
}

#ifdef __linux__
// A host that never uses the atlas must not pay 114 MB for it.
TEST(AtlasGrid, CostsNoMemoryUntilAFileIsRead)
{
    const auto residentMegabytes = [] {
        std::ifstream file("/proc/self/statm");
        long total = 0;
        long resident = 0;
        file >> total >> resident;
        return double(resident) * double(::sysconf(_SC_PAGESIZE)) / 1e6;
    };
    const double before = residentMegabytes();
    const auto atlas = std::make_unique<WorldOceanAtlas>();
    EXPECT_TRUE(atlas->woaProfile(59.5, 10.25).depths.isEmpty());
    EXPECT_LT(residentMegabytes() - before, 20.0);
}
#endif

TEST(ReadAtlasFile, ReadsLevelsAndCells)
{
    const Reading reading(head + "59.5,10.5,35.1,35.2,35.3\r\n-59.5,-0.5,34.1,34.2\r\n");
    EXPECT_TRUE(reading.isRead);
    EXPECT_EQ(reading.levels, (AtlasLevels{{0, 0}, {1, 5}, {2, 10}}));
    EXPECT_EQ(reading.at(59.5, 10.5, 0), 35.1);
    EXPECT_EQ(reading.at(59.5, 10.5, 1), 35.2);
    EXPECT_EQ(reading.at(59.5, 10.5, 2), 35.3);
    EXPECT_EQ(reading.at(59.5, 10.5, 3), none);
    EXPECT_EQ(reading.at(59.5, 11.5, 0), none);
    EXPECT_EQ(reading.grid.value(30, 359, 1), 34.2);
    EXPECT_EQ(reading.grid.value(30, 359, 2), none);
}

TEST(ReadAtlasFile, TheTitleAndTheHeaderMustBeThere)
{
    EXPECT_FALSE(Reading("").isRead);
    EXPECT_FALSE(Reading("title").isRead);
    EXPECT_FALSE(Reading("title\n").isRead);
    EXPECT_TRUE(Reading("title\nheader").isRead);
    EXPECT_TRUE(Reading("\nheader:0\n").isRead);
}

TEST(ReadAtlasFile, DepthsFollowTheFirstColon)
{
    EXPECT_EQ(Reading("t\nno colon, 0, 5\n").levels, AtlasLevels());
    EXPECT_EQ(Reading("t\n:0,5\n").levels, (AtlasLevels{{0, 0}, {1, 5}}));
    EXPECT_EQ(Reading("t\na: \t0 , 5\t\r\n").levels, (AtlasLevels{{0, 0}, {1, 5}}));
    EXPECT_EQ(Reading("t\na:0,5\r").levels, (AtlasLevels{{0, 0}, {1, 5}}));
    EXPECT_EQ(Reading("t\na:0,5").levels, (AtlasLevels{{0, 0}, {1, 5}}));
    // Read as integers; what has none is no level, not one at the surface.
    EXPECT_EQ(Reading("t\na:0.0,5.7,+10,15m,x,,20").levels,
              (AtlasLevels{{0, 0}, {1, 5}, {2, 10}, {3, 15}, {6, 20}}));
    EXPECT_EQ(Reading("t\na:99999999999,5").levels, (AtlasLevels{{1, 5}}));
    EXPECT_EQ(Reading("t\na:b:5,10").levels, (AtlasLevels{{1, 10}}));
    EXPECT_EQ(Reading("t\na:").levels, AtlasLevels());
    // A header without a colon leaves the cells to be read all the same.
    EXPECT_EQ(Reading("t\nh\n0.5,0.5,7\n").at(0.5, 0.5), 7.0);
}

TEST(ReadAtlasFile, AShortLineEndsTheReadingAndFails)
{
    for (const char* const line : {"60.5", "", "x", " "}) {
        const Reading reading(head + "59.5,10.5,35.1\n" + line + "\n61.5,10.5,35.3\n");
        EXPECT_FALSE(reading.isRead) << line;
        EXPECT_EQ(reading.at(59.5, 10.5), 35.1) << line;
        EXPECT_EQ(reading.at(61.5, 10.5), none) << line;
    }
    EXPECT_FALSE(Reading(head + "60.5").isRead);
    EXPECT_FALSE(Reading(head + "59.5,10.5,35.1\n\n").isRead);
    // Two fields are enough.
    EXPECT_TRUE(Reading(head + "60.5,10.5\n").isRead);
    EXPECT_TRUE(Reading(head + ",\n").isRead);
    EXPECT_TRUE(Reading(head).isRead);
    EXPECT_TRUE(Reading(head + "59.5,10.5,35.1").isRead);
}

TEST(ReadAtlasFile, WhatIsNoNumberIsNoDataAndNeverZero)
{
    const Reading reading(head + "59.5,10.5,35.1,,x, 35.4 ,35.5a,nan,inf,1e999,0,-9999.99,35.9,\n");
    EXPECT_TRUE(reading.isRead);
    const double expected[] = {35.1, none, none, 35.4, none, none, none,
                               none, 0.0,  none, 35.9, none, none};
    for (int level = 0; level < 13; ++level)
        EXPECT_EQ(reading.at(59.5, 10.5, level), expected[level]) << level;
}

TEST(ReadAtlasFile, CellsOutsideOfTheGridAreLeftOut)
{
    for (const char* const position :
         {"90,10.5", "90.5,10.5", "-90.01,10.5", "-90.5,10.5", "1e30,10.5", "x,10.5", ",10.5",
          "nan,10.5", "59.5,", "59.5,x", "59.5,360.5", "59.5,-360.5", "59.5,1e300",
          "1e300,1e300"}) {
        const Reading reading(head + position + ",35.1\n0.5,0.5,1\n");
        EXPECT_TRUE(reading.isRead) << position;
        EXPECT_EQ(reading.at(0.5, 0.5), 1.0) << position;
        for (int latitude = 0; latitude < AtlasGrid::latitudes; ++latitude) {
            for (int longitude = 0; longitude < AtlasGrid::longitudes; ++longitude)
                ASSERT_NE(reading.grid.value(latitude, longitude, 0), 35.1) << position;
        }
    }
    const struct
    {
        const char* position;
        int latitude;
        int longitude;
    } cells[] = {
        {"-90,0", 0, 0},      {"-89.5,0.5", 0, 0},     {"89.5,359.5", 179, 359},
        {"89.999,0", 179, 0}, {"-0.5,-0.5", 89, 359},  {"0.5,-180", 90, 180},
        {"0.5,180", 90, 180}, {"0.5,179.99", 90, 179}, {"0.5,-179.5", 90, 180},
        {"0.5,360", 90, 0},   {"0.5,-360", 90, 0},
    };
    for (const auto& c : cells)
        EXPECT_EQ(Reading(head + c.position + ",35.1\n").grid.value(c.latitude, c.longitude, 0),
                  35.1)
            << c.position;
}

// Positions are 32-bit floats: this one is 60 then, and 59.999… as a double.
TEST(ReadAtlasFile, PositionsAreNarrowed)
{
    const Reading reading(head + "59.99999999,9.99999999,35.1\n");
    EXPECT_EQ(reading.grid.value(150, 10, 0), 35.1);
}

TEST(ReadAtlasFile, LevelsBeyondTheGridAreLeftOut)
{
    std::string depths;
    std::string values;
    for (int level = 0; level < 200; ++level) {
        depths += (level > 0 ? "," : "") + std::to_string(level * 5);
        // 30 characters each: a line of more than 6000.
        values += ',' + std::to_string(level) + ".5" + std::string(28, '0');
    }
    const Reading reading("t\na:" + depths + "\n59.5,10.5" + values + "\n59.5,11.5" + values +
                          "\n");
    EXPECT_TRUE(reading.isRead);
    EXPECT_EQ(reading.levels.size(), 110);
    EXPECT_EQ(reading.levels.last(), 545);
    for (int level = 0; level < 110; ++level) {
        EXPECT_EQ(reading.at(59.5, 10.5, level), level + 0.5);
        EXPECT_EQ(reading.at(59.5, 11.5, level), level + 0.5);
    }
    EXPECT_EQ(reading.at(59.5, 12.5, 0), none);
    EXPECT_EQ(reading.at(60.5, 10.5, 0), none);
}

TEST(ReadAtlasFile, Exactly110LevelsFit)
{
    std::string values;
    for (int level = 0; level < 110; ++level)
        values += ",1";
    const Reading reading("t\na:0\n59.5,10.5" + values + "\n0.5,0.5,2\n");
    EXPECT_TRUE(reading.isRead);
    EXPECT_EQ(reading.at(59.5, 10.5, 109), 1.0);
    EXPECT_EQ(reading.at(0.5, 0.5), 2.0);
}

TEST(ReadAtlasFile, AnyLineEndWillDo)
{
    for (const char* ending : {"\n", "\r\n", "\r\r\n", "\r"}) {
        const std::string end = ending;
        std::string text;
        for (const char* line : {"t", "a:0,5", "59.5,10.5,1,2", "58.5,10.5,3"})
            text.append(line).append(end);
        const Reading reading(text);
        EXPECT_TRUE(reading.isRead) << end.size();
        EXPECT_EQ(reading.levels.size(), 2);
        EXPECT_EQ(reading.at(59.5, 10.5, 1), 2.0);
        EXPECT_EQ(reading.at(58.5, 10.5, 0), 3.0);
    }
}

TEST(ReadAtlasFile, ASecondReadingForgetsTheFirst)
{
    Reading reading(head + "59.5,10.5,35.1,35.2\n");
    const TextStream stream("t\na:7\n59.5,10.5,36\n");
    EXPECT_TRUE(WorldOceanAtlas::fnReadWOAFile(stream.get(), reading.levels, reading.grid));
    EXPECT_EQ(reading.levels, (AtlasLevels{{0, 7}}));
    EXPECT_EQ(reading.at(59.5, 10.5, 0), 36.0);
    EXPECT_EQ(reading.at(59.5, 10.5, 1), none);
}

TEST(ReadAtlasFile, HugeLinesAndFieldsPass)
{
    constexpr int many = 20'000'000;
    const std::string commas = QByteArray(many, ',').toStdString();
    const std::string digits = QByteArray(many, '1').toStdString();
    const Reading reading(digits + "\n" + digits + ":0," + commas + "\n59.5,10.5,1" + commas +
                          "\n58.5,10.5," + digits + ",2\n57.5,10.5,3\n");
    EXPECT_TRUE(reading.isRead);
    EXPECT_EQ(reading.levels, (AtlasLevels{{0, 0}}));
    EXPECT_EQ(reading.at(59.5, 10.5, 0), 1.0);
    EXPECT_EQ(reading.at(59.5, 10.5, 1), none);
    EXPECT_EQ(reading.at(58.5, 10.5, 0), none);
    EXPECT_EQ(reading.at(58.5, 10.5, 1), 2.0);
    EXPECT_EQ(reading.at(57.5, 10.5, 0), 3.0);
}

// Cut off at each byte: never more than what stands there, and no crash.
TEST(ReadAtlasFile, AFileMayEndAnywhere)
{
    const std::string text = head + "59.5,10.5,35.1,35.2\r\n58.5,10.5,34.5";
    for (std::size_t size = 0; size <= text.size(); ++size) {
        const Reading reading(text.substr(0, size));
        EXPECT_LE(reading.levels.size(), 3);
        if (size < 7) {
            EXPECT_FALSE(reading.isRead) << size;
        }
    }
}

#ifdef __linux__
TEST(ReadAtlasFile, AnErrorOfTheStreamFails)
{
    // Gives the text and then an error.
    static const std::string text = head + "59.5,10.5,35.1\n";
    static bool isGiven = false;
    isGiven = false;
    cookie_io_functions_t functions{};
    functions.read = [](void*, char* buffer, std::size_t) -> ssize_t {
        if (isGiven)
            return -1;
        isGiven = true;
        text.copy(buffer, text.size());
        return ssize_t(text.size());
    };
    std::FILE* const stream = fopencookie(nullptr, "rb", functions);
    ASSERT_NE(stream, nullptr);
    AtlasLevels levels;
    AtlasGrid grid;
    EXPECT_FALSE(WorldOceanAtlas::fnReadWOAFile(stream, levels, grid));
    EXPECT_EQ(grid.value(149, 10, 0), 35.1);
    std::fclose(stream);
}
#endif
