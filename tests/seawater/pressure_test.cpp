#include "seawater/pressure.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace seawater;

TEST(DepthFromPressure, IsZeroAtTheSurface)
{
    EXPECT_EQ(depthFromPressure(0.0, 0.0), 0.0);
    EXPECT_EQ(pressureFromDepth(0.0, 59.5), 0.0);
}

// Depths of Saunders and Fofonoff as UNESCO technical papers in marine science 44 prints them.
TEST(DepthFromPressure, LiesWithinItsAccuracyOfThePublishedTable)
{
    const struct
    {
        double pressure;
        double latitude;
        double depth;
    } rows[] = {
        {500, 0, 496.65},    {500, 30, 496.00},    {500, 90, 494.03},    {1000, 0, 992.12},
        {1000, 30, 990.81},  {1000, 90, 986.88},   {5000, 0, 4915.04},   {5000, 90, 4889.13},
        {10000, 0, 9725.47}, {10000, 30, 9712.65}, {10000, 90, 9674.23},
    };
    for (const auto& row : rows)
        EXPECT_NEAR(depthFromPressure(row.pressure, row.latitude), row.depth, row.depth * 0.0015)
            << row.pressure << " dbar at " << row.latitude;
}

// g = 1.008 at 45 degrees, so p = 2.4696e-6 d^2 + 1.008 d can be worked out by hand.
TEST(PressureFromDepth, FollowsItsQuadratic)
{
    EXPECT_NEAR(pressureFromDepth(1000.0, 45.0), 1010.4696, 1e-9);
    EXPECT_NEAR(depthFromPressure(1010.4696, 45.0), 1000.0, 1e-7);
    EXPECT_NEAR(pressureFromDepth(1000.0, 0.0), 2.4696 + (1 - 0.00263) * 1008.0, 1e-9);
    EXPECT_NEAR(pressureFromDepth(1000.0, 90.0), 2.4696 + (1 + 0.00263) * 1008.0, 1e-9);
}

TEST(DepthFromPressure, IsTheInverseOnBothHemispheres)
{
    for (const double latitude : {-90.0, -33.25, 0.0, 12.5, 90.0}) {
        for (const double depth : {-2.0, 0.5, 100.0, 12000.0})
            EXPECT_NEAR(depthFromPressure(pressureFromDepth(depth, latitude), latitude), depth,
                        1e-7);
    }
}

TEST(DepthFromPressure, HasNoDepthForAnImpossiblePressure)
{
    EXPECT_TRUE(std::isnan(depthFromPressure(-1e6, 0.0)));
    EXPECT_TRUE(std::isnan(depthFromPressure(std::nan(""), 0.0)));
}

// The formula in another arrangement and a wider type.
TEST(DepthToPressure, IsTheFormulaAsWritten)
{
    for (const double latitude : {-90.0, -33.25, 0.0, 45.0, 59.5, 90.0}) {
        for (const double z : {-2.0, 0.0, 0.5, 1000.0, 5500.0, 12000.0}) {
            const long double phi = latitude * 0.017453292519943295L;
            const long double written =
                (2.45e-6L * z + (1.0L - 0.00263L * std::cos(2.0L * phi))) * 1.008L * z;
            EXPECT_NEAR(depthToPressure(latitude, z), double(written), 1e-11 * std::abs(z))
                << latitude << " " << z;
        }
    }
    // By hand: cos 2φ is 0 at 45°, 0.5 at 30°.
    EXPECT_NEAR(depthToPressure(45.0, 1000.0), 1010.4696, 1e-9);
    EXPECT_NEAR(depthToPressure(30.0, 2000.0), (0.0049 + 0.998685) * 2016.0, 1e-9);
}
