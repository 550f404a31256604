#include "raytrace/comparison.h"
#include "tests/raytrace/integration.h"
#include "tests/raytrace/profiles.h"

#include <gtest/gtest.h>

#include <cmath>

using raytrace::Comparison;
using raytrace::launchAngles;
using raytrace::Layers;
using raytrace::ranges;

namespace {

// The depth at which the integrated ray first reaches a range; NaN when it does not.
double integratedDepth(const Layers& layers, double depression, double range)
{
    integration::State last{0.0, 0.0, layers.front().d, M_PI / 2 - depression};
    double depth = NAN;
    integration::follow(layers, last, 60.0, 1e-3, [&](const integration::State& s) {
        if (std::isnan(depth) && s.x >= range && s.x > last.x)
            depth = last.z + (s.z - last.z) * (range - last.x) / (s.x - last.x);
        last = s;
    });
    return depth;
}

} // namespace

TEST(Comparison, TheTables)
{
    const double degrees[] = {90, 80, 70, 60, 50, 40, 30, 20, 10};
    ASSERT_EQ(launchAngles.size(), 9U);
    for (std::size_t i = 0; i < 9; ++i)
        EXPECT_NEAR(launchAngles[i], degrees[i] * M_PI / 180.0, 1e-15);
    const double metres[] = {10, 20, 50, 100, 200, 500, 1000, 2000, 5000, 7000, 10000};
    ASSERT_EQ(ranges.size(), 11U);
    for (std::size_t i = 0; i < 11; ++i)
        EXPECT_EQ(ranges[i], metres[i]);
}

TEST(Comparison, ConstantSpeedsGiveTheTangent)
{
    const auto comparison =
        raytrace::compareProfiles(profiles::constant(), profiles::of({5, 1000}, {1450, 1450}));
    ASSERT_TRUE(comparison);
    for (std::size_t r = 0; r < ranges.size(); ++r) {
        EXPECT_TRUE(std::isnan((*comparison)[r][0].first)) << "straight down";
        EXPECT_TRUE(std::isnan((*comparison)[r][0].second));
        for (std::size_t a = 1; a < launchAngles.size(); ++a) {
            const double depth = ranges[r] * std::tan(launchAngles[a]);
            const raytrace::DepthPair& pair = (*comparison)[r][a];
            if (depth <= 12000.0) {
                EXPECT_NEAR(pair.first, depth, 1e-8);
            } else {
                EXPECT_TRUE(std::isnan(pair.first));
            }
            if (depth + 5.0 <= 1000.0) {
                EXPECT_NEAR(pair.second, depth + 5.0, 1e-8);
            } else {
                EXPECT_TRUE(std::isnan(pair.second));
            }
        }
    }
}

TEST(Comparison, AgreesWithTheIntegration)
{
    const Layers profilesCompared[] = {profiles::channel(121), profiles::quickening()};
    const auto comparison = raytrace::compareProfiles(profilesCompared[0], profilesCompared[1]);
    ASSERT_TRUE(comparison);
    int reached = 0;
    for (std::size_t r = 0; r < ranges.size(); ++r) {
        for (std::size_t a = 1; a < launchAngles.size(); a += 2) {
            const double expected[] = {
                integratedDepth(profilesCompared[0], launchAngles[a], ranges[r]),
                integratedDepth(profilesCompared[1], launchAngles[a], ranges[r])};
            const double found[] = {(*comparison)[r][a].first, (*comparison)[r][a].second};
            for (int i = 0; i < 2; ++i) {
                ASSERT_EQ(std::isnan(found[i]), std::isnan(expected[i])) << r << ' ' << a;
                if (!std::isnan(found[i])) {
                    EXPECT_NEAR(found[i], expected[i], 0.001) << r << ' ' << a;
                    ++reached;
                }
            }
        }
    }
    EXPECT_GT(reached, 60);
}

TEST(Comparison, ARayThatComesUpHasItsDepthOnTheWay)
{
    // Circle of 1500/0.3 m radius over its sine: turns after 868 m, is back after 1736 m.
    const Layers layers = profiles::of({0, 600}, {1500, 1680});
    const double angle = launchAngles[8];
    const auto comparison = raytrace::compareProfiles(layers, layers);
    ASSERT_TRUE(comparison);
    const double radius = 1500.0 / 0.3 / std::cos(angle);
    const double centre = radius * std::sin(angle);
    const auto depth = [&](double x) {
        return std::sqrt(radius * radius - (x - centre) * (x - centre)) - radius * std::cos(angle);
    };
    EXPECT_NEAR((*comparison)[5][8].first, depth(500), 1e-8);
    EXPECT_NEAR((*comparison)[6][8].first, depth(1000), 1e-8); // behind the turn
    EXPECT_EQ((*comparison)[6][8].first, (*comparison)[6][8].second);
    EXPECT_TRUE(std::isnan((*comparison)[7][8].first));
}

TEST(Comparison, NeedsTwoProfilesThatRaysCanSetOutIn)
{
    const Layers good = profiles::constant();
    for (const Layers& bad :
         {Layers{}, profiles::of({0}, {1500}), profiles::of({12000, 13000}, {1500, 1500}),
          profiles::of({0, 100}, {1399, 1500})}) {
        EXPECT_FALSE(raytrace::compareProfiles(good, bad));
        EXPECT_FALSE(raytrace::compareProfiles(bad, good));
    }
    EXPECT_TRUE(raytrace::compareProfiles(good, good));
}
