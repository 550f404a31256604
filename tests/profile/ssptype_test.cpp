#include "profile/instrumentdecoders.h"

#include <gtest/gtest.h>

using namespace profile;

namespace {

// The record that has the columns named by letters: d depth, p pressure, v speed, t temperature,
// s salinity, c conductivity.
tagDecodeFmt columns(std::string_view letters)
{
    tagDecodeFmt format;
    int next = 0;
    for (const char letter : letters) {
        int* const column = letter == 'd'   ? &format.depthColumn
                            : letter == 'p' ? &format.pressureColumn
                            : letter == 'v' ? &format.speedColumn
                            : letter == 't' ? &format.temperatureColumn
                            : letter == 's' ? &format.salinityColumn
                                            : &format.conductivityColumn;
        *column = next++;
    }
    return format;
}

} // namespace

TEST(SspType, TheFirstRowThatFitsWins)
{
    struct
    {
        const char* letters;
        int type;
    } const cases[] = {
        {"dvts", 1},
        {"pvtc", 7},
        {"dts", 2},
        {"dtc", 3},
        {"pts", 4},
        {"ptc", 5},
        {"pv", -1},
        {"dv", 0},
        {"d", -1},
        // More than one row fits.
        {"dpvtsc", 1},
        {"dpvtc", 7},
        {"dptsc", 2},
        {"dptc", 3},
        {"ptsc", 4},
        {"pvts", 4},
        {"dvtc", 3},
        // A column too few for the row.
        {"dvt", 0},
        {"dvs", 0},
        {"dvsc", 0},
        {"dt", -1},
        {"ds", -1},
        {"pt", -1},
        {"ps", -1},
        {"pvt", -1},
        {"pvc", -1},
        {"vts", -1},
        {"vtc", -1},
        {"v", -1},
        {"", -1},
    };
    for (const auto& c : cases)
        EXPECT_EQ(fnDetermineSSPType(columns(c.letters)), c.type) << c.letters;
}

TEST(SspType, PressureWithoutDepthIsNeverDepthAndSpeed)
{
    for (const char* rest : {"", "v", "t", "s", "c", "vt", "vs", "vc", "ts", "tc", "sc", "vts",
                             "vtc", "vsc", "tsc", "vtsc"}) {
        const int type = fnDetermineSSPType(columns("p" + std::string(rest)));
        EXPECT_TRUE(type == 4 || type == 5 || type == 7 || type == -1) << rest << ' ' << type;
    }
}
