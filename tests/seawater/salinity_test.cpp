#include "seawater/salinity.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace seawater;

// The check values that UNESCO technical papers in marine science 44 prints, and the definition.
TEST(PracticalSalinity, givesThePublishedCheckValues)
{
    EXPECT_NEAR(practicalSalinityFromRatio(1.888091, 40.0, 10000.0), 40.0, 0.00005);
    EXPECT_NEAR(practicalSalinityFromRatio(1.0, 15.0, 0.0), 35.0, 0.00005);
    EXPECT_NEAR(practicalSalinityFromRatio(1.2, 20.0, 2000.0), 37.245628, 0.000005);
    EXPECT_NEAR(practicalSalinityFromRatio(0.65, 5.0, 1500.0), 27.995347, 0.000005);
}

TEST(PracticalSalinity, takesConductivityInMillisiemensPerCentimetre)
{
    EXPECT_NEAR(practicalSalinity(42.914, 15.0, 0.0), 35.0, 0.00005);
    EXPECT_NEAR(practicalSalinity(42.914 * 1.2, 20.0, 2000.0), 37.245628, 0.000005);
}

TEST(PracticalSalinity, isZeroUpToTheLowestRatio)
{
    EXPECT_EQ(practicalSalinityFromRatio(5e-4, 15.0, 0.0), 0.0);
    EXPECT_EQ(practicalSalinityFromRatio(-1.0, 15.0, 0.0), 0.0);
    EXPECT_NE(practicalSalinityFromRatio(5.1e-4, 15.0, 0.0), 0.0);
}

TEST(PracticalSalinity, passesUnknownsOn)
{
    EXPECT_TRUE(std::isnan(practicalSalinityFromRatio(std::nan(""), 15.0, 0.0)));
    EXPECT_TRUE(std::isnan(practicalSalinityFromRatio(1.0, std::nan(""), 0.0)));
    EXPECT_TRUE(std::isnan(practicalSalinityFromRatio(1.0, 15.0, std::nan(""))));
}
