#include "processing/watermass.h"
#include "seawater/ifremer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace processing;

namespace {

struct WaterMass
{
    double temperature;
    double salinity;
};

constexpr double latitude = 60.0;
constexpr double depth = 100.0;

double speedOf(double temperature, double salinity)
{
    return seawater::ifremer_speed(temperature, salinity, latitude, depth);
}

// The search from 10 °C and 35 psu for a speed that is higher than there by `excess`.
WaterMass fitted(double excess, double temperatureMargin = 5.0, double salinityMargin = 5.0)
{
    WaterMass found{0.0, 0.0};
    adjust_salinity_and_temperature(10.0, 35.0, latitude, depth, speedOf(10.0, 35.0) + excess,
                                    temperatureMargin, salinityMargin, found.salinity,
                                    found.temperature);
    return found;
}

void expectFitted(double excess, double temperature, double salinity)
{
    const WaterMass found = fitted(excess);
    EXPECT_NEAR(found.temperature, temperature, 1e-9) << excess;
    EXPECT_NEAR(found.salinity, salinity, 1e-9) << excess;
}

raytrace::Layers layersOf(const std::vector<std::pair<double, double>>& pairs)
{
    raytrace::Layers layers;
    for (const auto& pair : pairs)
        layers.push_back({0.0, pair.first, pair.second});
    raytrace::computeGradients(layers);
    return layers;
}

} // namespace

TEST(AdjustSalinityAndTemperature, ASpeedThatIsMetMovesNothing)
{
    for (const double excess : {0.0, 0.0999, -0.0999}) {
        EXPECT_EQ(fitted(excess).temperature, 10.0) << excess;
        EXPECT_EQ(fitted(excess).salinity, 35.0) << excess;
    }
    EXPECT_NE(fitted(0.1001).temperature, 10.0);
    EXPECT_NE(fitted(-0.1001).temperature, 10.0);
}

// Found by another program, from the rules alone; the comments give salinity, temperature and
// residual after each pass.
TEST(AdjustSalinityAndTemperature, EndsWhereTheSpeedIsMet)
{
    // 38 10.5 -12.57 | 40 11 -8.41 | 40 11.5 -6.68 | 12 -4.98 | 12.5 -3.31 | 13 -1.65 | 13.5 -0.02
    expectFitted(18.0, 13.5, 40.0);
    // 38 10.5 1.43 | shrink to 2 and 0.45 | 36 10.05 -2.60 | shrink to 1 and 0.4 | 37 10.45 0.04
    expectFitted(4.0, 10.45, 37.0);
    expectFitted(-4.0, 9.55, 33.0);
    // The salinity step stays at 1 from here on, and the temperature step goes on shrinking.
    // 38 10.5 3.43 | | 36 10.05 -0.60 | | 37 10.45 2.04 | | 36 10.1 -0.42 | | 37 10.4 1.86 | |
    // 36 10.15 -0.24 | | 37 10.35 1.68 | | 36 10.2 -0.07
    expectFitted(2.0, 10.2, 36.0);
    expectFitted(-2.0, 9.8, 34.0);
    expectFitted(0.11, 10.05, 35.0);
    expectFitted(0.7, 10.2, 35.0);
    // Salinity waits at its bound while the temperature moves on, and leaves it again.
    expectFitted(10.0, 11.45, 39.0);
    expectFitted(-18.0, 6.55, 31.0);
}

TEST(AdjustSalinityAndTemperature, EndsWhereBothStandAtABound)
{
    expectFitted(24.0, 15.0, 40.0);
    expectFitted(30.0, 15.0, 40.0);
    expectFitted(1e6, 15.0, 40.0);
    expectFitted(-24.0, 5.0, 30.0);
    expectFitted(-30.0, 5.0, 30.0);
    // No room at all: the first pass ends it.
    EXPECT_EQ(fitted(30.0, 0.0, 0.0).temperature, 10.0);
    EXPECT_EQ(fitted(30.0, 0.0, 0.0).salinity, 35.0);
    // One of them at its bound is not the end.
    EXPECT_EQ(fitted(30.0, 5.0, 1.0).temperature, 15.0);
    EXPECT_EQ(fitted(30.0, 5.0, 1.0).salinity, 36.0);
    EXPECT_EQ(fitted(30.0, 0.25, 5.0).temperature, 10.25);
    EXPECT_EQ(fitted(30.0, 0.25, 5.0).salinity, 40.0);
}

// The steps come to rest at 1 psu and 0.01 °C, which leap over the target for ever.
TEST(AdjustSalinityAndTemperature, EndsAfterAThousandPasses)
{
    expectFitted(1.2, 10.2, 36.0);
    expectFitted(-1.2, 9.8, 34.0);
}

// Far below the sea floor warmth slows the sound: there the first step, of 0.5 °C and 3 psu, moves
// the speed by 0.00009 m/s at one depth and by 0.00011 m/s at the other (found by bisection).
TEST(AdjustSalinityAndTemperature, EndsWhereTheSpeedDoesNotMove)
{
    const auto search = [](double at) {
        const double speed = seawater::ifremer_speed(10.0, 35.0, 45.0, at);
        WaterMass found{0.0, 0.0};
        adjust_salinity_and_temperature(10.0, 35.0, 45.0, at, speed + 100.0, 5.0, 5.0,
                                        found.salinity, found.temperature);
        return found;
    };
    constexpr double still = 23947.865468;
    constexpr double moving = 23947.839537;
    EXPECT_EQ(search(still).temperature, 10.5);
    EXPECT_EQ(search(still).salinity, 38.0);
    EXPECT_EQ(search(moving).temperature, 15.0);
    EXPECT_EQ(search(moving).salinity, 40.0);
}

TEST(AdjustSalinityAndTemperature, LeavesWhatIsNoNumberAndComesToAnEnd)
{
    const double nan = std::nan("");
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double odd : {nan, infinity, -infinity}) {
        WaterMass found{0.0, 0.0};
        adjust_salinity_and_temperature(10.0, 35.0, latitude, depth, odd, 5.0, 5.0, found.salinity,
                                        found.temperature);
        EXPECT_EQ(found.temperature, 10.0);
        EXPECT_EQ(found.salinity, 35.0);
        adjust_salinity_and_temperature(10.0, 35.0, odd, depth, 1500.0, 5.0, 5.0, found.salinity,
                                        found.temperature);
        EXPECT_EQ(found.temperature, 10.0);
        adjust_salinity_and_temperature(10.0, 35.0, latitude, depth, 1400.0, odd, odd,
                                        found.salinity, found.temperature);
        EXPECT_FALSE(std::isinf(found.temperature));
        adjust_salinity_and_temperature(odd, odd, latitude, depth, 1500.0, 5.0, 5.0, found.salinity,
                                        found.temperature);
        EXPECT_FALSE(std::isfinite(found.temperature));
    }
    WaterMass found{0.0, 0.0};
    adjust_salinity_and_temperature(1e17, 1e17, latitude, depth, 1500.0, -5.0, -5.0, found.salinity,
                                    found.temperature);
    EXPECT_EQ(found.temperature, 1e17);
}

// Depths at places of the grid, and their sum, computed with 40 digits elsewhere.
TEST(SyntheticExtensionDepths, AreTheOnesOfAnotherComputation)
{
    const struct
    {
        double lastDepth;
        std::size_t count;
        double at0, at9, at10, at50, at98, at99;
        double sum;
    } rows[] = {
        {0, 200, 0.175011610, 1.750116104, 1.925127714, 43.211359912, 1807.024330224, 2000,
         731134.217223},
        {1799, 200, 1799.017588667, 1799.175886668, 1799.193475335, 1803.342741671, 1980.605945188,
         2000, 887526.488831},
        {1800, 100, 2000.875058052, 2008.750580518, 2009.625638570, 2216.056799558, 11035.121651122,
         12000, 330671.086116},
        {1999, 100, 2000.875058052, 2008.750580518, 2009.625638570, 2216.056799558, 11035.121651122,
         12000, 330671.086116},
        {2000, 100, 2000.875058052, 2008.750580518, 2009.625638570, 2216.056799558, 11035.121651122,
         12000, 330671.086116},
        {11000, 100, 11000.087505805, 11000.875058052, 11000.962563857, 11021.605679956,
         11903.512165112, 12000, 1113067.108612},
    };
    for (const auto& row : rows) {
        const std::vector<double> depths = syntheticExtensionDepths(row.lastDepth);
        ASSERT_EQ(depths.size(), row.count) << row.lastDepth;
        EXPECT_NEAR(depths[0], row.at0, 1e-8) << row.lastDepth;
        EXPECT_NEAR(depths[9], row.at9, 1e-8) << row.lastDepth;
        EXPECT_NEAR(depths[10], row.at10, 1e-8) << row.lastDepth;
        EXPECT_NEAR(depths[50], row.at50, 1e-8) << row.lastDepth;
        EXPECT_NEAR(depths[98], row.at98, 1e-8) << row.lastDepth;
        EXPECT_EQ(depths[99], row.at99) << row.lastDepth;
        EXPECT_EQ(depths.back(), 12000.0) << row.lastDepth;
        double sum = 0.0;
        for (const double each : depths)
            sum += each;
        EXPECT_NEAR(sum, row.sum, 1e-5) << row.lastDepth;
    }
}

// The same curve as a geometric series, in a wider type.
TEST(SyntheticExtensionDepths, FollowAGeometricSeries)
{
    for (const double begin : {-3.5, 0.0, 12.25, 1799.0, 1799.99, 2000.0, 2500.5, 11000.0}) {
        const std::vector<double> depths = syntheticExtensionDepths(begin);
        const bool isShallow = begin < 1800.0;
        const long double end = isShallow ? 2000.0L : 12000.0L;
        ASSERT_EQ(depths.size(), isShallow ? 200U : 100U);
        const long double ratio = std::exp(7.0L / 90.0L);
        long double above = (end - begin) / 7.0L / std::exp(5.0L);
        for (std::size_t j = 0; j < 10; ++j)
            EXPECT_NEAR(depths[j],
                        double(begin + above / 11.0L * (static_cast<long double>(j) + 1)), 1e-9);
        for (std::size_t j = 10; j < 99; ++j) {
            EXPECT_NEAR(depths[j], double(begin + above), 1e-9) << begin << " " << j;
            above *= ratio;
        }
        for (std::size_t j = 100; j < depths.size(); ++j)
            EXPECT_EQ(depths[j], 2000.0 + 100.0 * double(j - 99));
    }
}

TEST(SyntheticExtensionDepths, RiseAndComeToAnEnd)
{
    for (const double begin : {0.0, 1799.0, 1800.0, 1999.0, 2000.0, 11000.0, 11999.0}) {
        const std::vector<double> depths = syntheticExtensionDepths(begin);
        double above = begin;
        for (const double each : depths) {
            EXPECT_GT(each, above) << begin;
            above = each;
        }
    }
    for (const double none :
         {12000.0, 12000.5, 1e300, std::nan(""), std::numeric_limits<double>::infinity(),
          -std::numeric_limits<double>::infinity()})
        EXPECT_TRUE(syntheticExtensionDepths(none).empty()) << none;
}

// A cast that the water mass fits as it was given, so that the speeds can be worked out outright.
TEST(ExtendIfremer, TheWaterCoolsTo2DegreesAt2000Metres)
{
    const double lastDepth = 1500.0;
    raytrace::Layers samples =
        layersOf({{0.0, 1490.0}, {lastDepth, seawater::ifremer_speed(5.0, 35.0, 60.0, lastDepth)}});
    ExtensionRows rows;
    ASSERT_TRUE(extendIFREMER(samples, rows, 5.0, 35.0, 60.0));
    const std::vector<double> grid = syntheticExtensionDepths(lastDepth);
    ASSERT_EQ(samples.size(), 2 + grid.size());
    EXPECT_EQ(rows.depths.size(), 200);
    EXPECT_EQ(rows.speeds, QVector<float>(200, -1.0F));
    for (std::size_t i = 0; i < grid.size(); ++i) {
        const double z = double(float(grid[i]));
        // Above 2000 m a sample has the temperature of the next one's depth.
        const double next = i + 1 < grid.size() ? double(float(grid[i + 1])) : z;
        const double t = i < 99 ? 5.0 - 3.0 * (next - 1500.0) / 500.0 : 2.0;
        EXPECT_EQ(samples[i + 2].d, z);
        EXPECT_NEAR(samples[i + 2].c, seawater::ifremer_speed(t, 35.0, 60.0, z), 1e-4) << z;
        EXPECT_EQ(samples[i + 2].c, double(float(samples[i + 2].c)));
    }
    // Of the point above 2000 m the water is that of 2000 m.
    EXPECT_NEAR(samples[100].c, seawater::ifremer_speed(2.0, 35.0, 60.0, samples[100].d), 1e-4);
    EXPECT_EQ(samples[101].d, 2000.0);
    EXPECT_EQ(samples.back().d, 12000.0);
    // 1402.5 + 9.7824 + 0.00168 + 46.55 - 0.861 + 0.01218 + 187.2 + 36.72 - 12.6144 + 1.8e-5
    // - 3.2832 + 0.0144 + 6.006
    EXPECT_NEAR(samples.back().c, 1672.028078, 1e-4);
    for (std::size_t i = 0; i + 1 < samples.size(); ++i)
        EXPECT_EQ(samples[i].gradient,
                  (samples[i].c - samples[i + 1].c) / (samples[i].d - samples[i + 1].d));
    EXPECT_EQ(samples.back().gradient, 0.0);
}

TEST(ExtendIfremer, AProfileThatEndsDeepIsContinuedAt2Degrees)
{
    const struct
    {
        double lastDepth;
        double firstDepth;
        std::size_t joined;
    } cases[] = {
        {1799.0, 1799.017588667, 200},   {1800.0, 2000.875058052, 100},
        {1999.0, 2000.875058052, 100},   {2000.0, 2000.875058052, 100},
        {11000.0, 11000.087505805, 100},
    };
    for (const auto& c : cases) {
        raytrace::Layers samples =
            layersOf({{c.lastDepth, seawater::ifremer_speed(3.0, 35.0, 10.0, c.lastDepth)}});
        ExtensionRows rows;
        ASSERT_TRUE(extendIFREMER(samples, rows, 3.0, 35.0, 10.0)) << c.lastDepth;
        ASSERT_EQ(samples.size(), 1 + c.joined) << c.lastDepth;
        EXPECT_EQ(samples[1].d, double(float(c.firstDepth))) << c.lastDepth;
        for (std::size_t i = 1; i < samples.size(); ++i) {
            if (samples[i].d >= 2000.0) {
                EXPECT_NEAR(samples[i].c, seawater::ifremer_speed(2.0, 35.0, 10.0, samples[i].d),
                            1e-4);
            }
        }
        EXPECT_EQ(samples.back().d, 12000.0) << c.lastDepth;
    }
}

TEST(ExtendIfremer, DepthsTo10MetresAreNotPlaced)
{
    raytrace::Layers samples = layersOf({{0.0, seawater::ifremer_speed(8.0, 33.0, 0.0, 0.0)}});
    ExtensionRows rows;
    rows.depths = {1.0F, 2.0F};
    rows.speeds = {3.0F, 4.0F};
    ASSERT_TRUE(extendIFREMER(samples, rows, 8.0, 33.0, 0.0));
    // Counted elsewhere: 168 of the 200 depths of this grid lie deeper.
    EXPECT_EQ(samples.size(), 169U);
    EXPECT_EQ(rows.depths.size(), 168);
    EXPECT_GT(samples[1].d, 10.0);
    EXPECT_LT(samples[1].d, 11.0);
}

TEST(ExtendIfremer, TheFittedSalinityGoesOnDownward)
{
    // 4 m/s above 10 °C and 35 psu: 10.45 °C and 37 psu by the search.
    raytrace::Layers samples = layersOf({{depth, speedOf(10.0, 35.0) + 4.0}});
    ExtensionRows rows;
    ASSERT_TRUE(extendIFREMER(samples, rows, 10.0, 35.0, latitude));
    EXPECT_NEAR(samples.back().c, seawater::ifremer_speed(2.0, 37.0, latitude, 12000.0), 1e-3);
    const double t = 10.45 - 8.45 * (samples[2].d - depth) / 1900.0;
    EXPECT_NEAR(samples[1].c, seawater::ifremer_speed(t, 37.0, latitude, samples[1].d), 1e-3);
}

TEST(ExtendIfremer, WhatCannotBeFittedWithinAMetrePerSecondIsLeft)
{
    const double warmest = speedOf(15.0, 40.0);
    const double coldest = speedOf(5.0, 30.0);
    const struct
    {
        double speed;
        bool fits;
    } cases[] = {
        {warmest + 0.999, true},  {warmest + 1.001, false}, {coldest - 0.999, true},
        {coldest - 1.001, false}, {warmest + 500.0, false}, {0.0, false},
    };
    for (const auto& c : cases) {
        raytrace::Layers samples = layersOf({{0.0, 1500.0}, {depth, c.speed}});
        ExtensionRows rows;
        rows.depths = {7.0F};
        EXPECT_EQ(extendIFREMER(samples, rows, 10.0, 35.0, latitude), c.fits) << c.speed;
        EXPECT_EQ(samples.size() > 2, c.fits) << c.speed;
        EXPECT_EQ(rows.depths == QVector<float>{7.0F}, !c.fits) << c.speed;
    }
}

TEST(ExtendIfremer, MeasuredSpeedsStayAsMeasured)
{
    raytrace::Layers samples = layersOf({{0.0, -5.0}, {depth, speedOf(10.0, 35.0)}});
    ExtensionRows rows;
    ASSERT_TRUE(extendIFREMER(samples, rows, 10.0, 35.0, latitude));
    EXPECT_EQ(samples[0].c, -5.0);
    EXPECT_EQ(samples[1].c, speedOf(10.0, 35.0));
    EXPECT_GT(samples[2].c, 1400.0);
}

TEST(ExtendIfremer, OddInputEndsWithoutAProfile)
{
    const double nan = std::nan("");
    const double infinity = std::numeric_limits<double>::infinity();
    ExtensionRows rows;
    raytrace::Layers none;
    EXPECT_FALSE(extendIFREMER(none, rows, 10.0, 35.0, latitude));
    EXPECT_TRUE(none.empty());
    for (const double odd : {nan, infinity, -infinity, 1e300, -1e300}) {
        raytrace::Layers samples = layersOf({{depth, speedOf(10.0, 35.0)}});
        EXPECT_FALSE(extendIFREMER(samples, rows, odd, 35.0, latitude)) << odd;
        EXPECT_FALSE(extendIFREMER(samples, rows, 10.0, odd, latitude)) << odd;
        EXPECT_FALSE(extendIFREMER(samples, rows, 10.0, 35.0, odd)) << odd;
        EXPECT_EQ(samples.size(), 1U);
        raytrace::Layers oddDepth = layersOf({{odd, 1500.0}});
        EXPECT_FALSE(extendIFREMER(oddDepth, rows, 10.0, 35.0, latitude)) << odd;
        raytrace::Layers oddSpeed = layersOf({{depth, odd}});
        EXPECT_FALSE(extendIFREMER(oddSpeed, rows, 10.0, 35.0, latitude)) << odd;
    }
}

TEST(ExtendIfremer, AProfileThatReachesFullDepthGainsNothing)
{
    for (const double lastDepth : {12000.0, 12500.0}) {
        raytrace::Layers samples =
            layersOf({{lastDepth, seawater::ifremer_speed(2.0, 35.0, latitude, lastDepth)}});
        ExtensionRows rows;
        EXPECT_TRUE(extendIFREMER(samples, rows, 2.0, 35.0, latitude));
        EXPECT_EQ(samples.size(), 1U);
        EXPECT_TRUE(rows.depths.isEmpty());
    }
    // Above the surface the profile is continued as well.
    raytrace::Layers above = layersOf({{-2.0, seawater::ifremer_speed(10.0, 35.0, 0.0, -2.0)}});
    ExtensionRows rows;
    EXPECT_TRUE(extendIFREMER(above, rows, 10.0, 35.0, 0.0));
    EXPECT_EQ(above.back().d, 12000.0);
    for (std::size_t i = 1; i < above.size(); ++i)
        EXPECT_GT(above[i].c, 1400.0);
}
