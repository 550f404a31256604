#include "processing/thin.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

using processing::SampleLine;
using processing::thinnedSamples;

namespace {

using Indices = std::vector<std::int32_t>;

raytrace::LayerRecord at(double depth, double speed)
{
    return {0.0, depth, speed};
}

raytrace::Layers profile(const std::vector<std::pair<double, double>>& pairs)
{
    raytrace::Layers samples;
    for (const auto& [depth, speed] : pairs)
        samples.push_back(at(depth, speed));
    raytrace::computeGradients(samples);
    return samples;
}

// A profile of `count` samples to 12 000 m whose speed is `speed` of the depth.
template <typename Speed> raytrace::Layers sampled(int count, Speed speed)
{
    raytrace::Layers samples;
    for (int i = 0; i < count; ++i) {
        const double depth = 12000.0 * i / (count - 1);
        samples.push_back(at(depth, speed(depth)));
    }
    return samples;
}

double summerSpeed(double depth)
{
    return 1492.0 + 0.0168 * depth + 38.0 * std::exp(-depth / 180.0) +
           0.4 * std::sin(depth / 37.0) * std::exp(-depth / 900.0);
}

// Distance from the endless line through two points by the cross product.
double crossDistance(const raytrace::LayerRecord& a, const raytrace::LayerRecord& b,
                     const raytrace::LayerRecord& point)
{
    const double along = b.d - a.d;
    const double across = b.c - a.c;
    return std::abs(across * (point.d - a.d) - along * (point.c - a.c)) / std::hypot(along, across);
}

// Every sample between two kept ones, and the lower kept one where any lies between, against the
// line that passed over them: the one through the upper kept sample and its predecessor.
void expectWithin(const raytrace::Layers& samples, const Indices& kept, double tolerance)
{
    ASSERT_GE(kept.size(), 2U);
    EXPECT_EQ(kept.front(), 0);
    EXPECT_EQ(kept[1], 1);
    EXPECT_EQ(kept.back(), int(samples.size()) - 1);
    double largest = 0.0;
    for (std::size_t k = 1; k + 1 < kept.size(); ++k) {
        const auto upper = std::size_t(kept[k]);
        const auto lower = std::size_t(kept[k + 1]);
        ASSERT_LT(upper, lower);
        if (lower == upper + 1)
            continue;
        for (std::size_t i = upper + 1; i <= lower; ++i)
            largest =
                std::max(largest, crossDistance(samples[upper - 1], samples[upper], samples[i]));
    }
    // The two legs of a distance count as nothing below 0.0001.
    EXPECT_LT(largest, tolerance + 0.0002);
}

} // namespace

TEST(SampleLine, MeasuresAtRightAngles)
{
    const SampleLine line(at(0, 0), at(4, 3));
    EXPECT_NEAR(line.distanceTo(at(0, 5)), 4.0, 1e-12);
    EXPECT_NEAR(line.distanceTo(at(5, 0)), 3.0, 1e-12);
    EXPECT_NEAR(line.distanceTo(at(8, 6)), 0.0, 1e-12);
    const SampleLine falling(at(100, 1500), at(101, 1499));
    EXPECT_NEAR(falling.distanceTo(at(101, 1500)), std::sqrt(0.5), 1e-9);
    EXPECT_NEAR(falling.distanceTo(at(100, 1499)), std::sqrt(0.5), 1e-9);
}

TEST(SampleLine, IsVerticalBelowATenthOfAMillimetre)
{
    EXPECT_DOUBLE_EQ(SampleLine(at(10, 1500), at(10, 1400)).distanceTo(at(12.5, 1700)), 2.5);
    EXPECT_DOUBLE_EQ(SampleLine(at(10, 1500), at(10.00009, 1400)).distanceTo(at(12.5, 1700)), 2.5);
    EXPECT_DOUBLE_EQ(SampleLine(at(10, 1500), at(9.99991, 1400)).distanceTo(at(7.5, 1700)), 2.5);
    // One more hundredth of a millimetre and it leans.
    EXPECT_LT(SampleLine(at(10, 1500), at(10.00011, 1600)).distanceTo(at(10.00022, 1700)), 1e-3);
    // Neither depth nor speed differs: vertical goes first.
    EXPECT_DOUBLE_EQ(SampleLine(at(10, 1500), at(10, 1500)).distanceTo(at(10, 1700)), 0.0);
}

TEST(SampleLine, IsHorizontalBelowATenThousandthOfAMetrePerSecond)
{
    EXPECT_DOUBLE_EQ(SampleLine(at(0, 1500), at(10, 1500)).distanceTo(at(90, 1503)), 3.0);
    // The speed of the first sample counts, wherever the second lies.
    EXPECT_DOUBLE_EQ(SampleLine(at(0, 1500), at(1, 1500.00009)).distanceTo(at(10000, 1500)), 0.0);
    EXPECT_NEAR(SampleLine(at(0, 1500), at(1, 1500.00011)).distanceTo(at(10000, 1500)), 1.1, 0.01);
}

TEST(SampleLine, ALegBelowTheLimitLeavesTheOther)
{
    // Slope 1/100 000: the leg along the depth is a hundred-thousandth of the other.
    const SampleLine flat(at(0, 1500), at(100000, 1501));
    EXPECT_NEAR(flat.distanceTo(at(0, 1502)), 2.0, 1e-6);
    const SampleLine steep(at(0, 1500), at(0.001, 1600));
    EXPECT_NEAR(steep.distanceTo(at(3, 1500)), 3.0, 1e-6);
    // Both below: the leg along the depth is taken, which is next to nothing here.
    EXPECT_LT(flat.distanceTo(at(0, 1500.00009)), 1e-8);
}

TEST(ThinnedSamples, AStraightLineKeepsItsFirstSecondAndLast)
{
    const auto line = [](double depth) { return 1480.0 + depth * 0.0125; };
    EXPECT_EQ(thinnedSamples(sampled(101, line), 0.01), (Indices{0, 1, 100}));
    EXPECT_EQ(thinnedSamples(sampled(3, line), 0.01), (Indices{0, 1, 2}));
    EXPECT_EQ(thinnedSamples(sampled(100000, line), 0.01), (Indices{0, 1, 99999}));
    const auto constant = [](double) { return 1500.0; };
    EXPECT_EQ(thinnedSamples(sampled(5000, constant), 10.0), (Indices{0, 1, 4999}));
}

TEST(ThinnedSamples, TwoSamplesStayAndOneIsNoProfile)
{
    EXPECT_EQ(thinnedSamples(profile({{0, 1500}, {12000, 1550}}), 0.1), (Indices{0, 1}));
    EXPECT_TRUE(thinnedSamples(profile({{12000, 1550}}), 0.1).empty());
    EXPECT_TRUE(thinnedSamples({}, 0.1).empty());
}

TEST(ThinnedSamples, ALineGoesOnThroughTheLastPassedSampleAndItsPredecessor)
{
    // 0 to 4 lie on one line, 5 to 7 on the next: the kink is kept with the sample above it as
    // the second point of the next line, which 5 leaves at once.
    const raytrace::Layers samples = profile({{0, 1500},
                                              {1000, 1501},
                                              {2000, 1502},
                                              {3000, 1503},
                                              {4000, 1504},
                                              {5000, 1520},
                                              {6000, 1536},
                                              {12000, 1632}});
    EXPECT_EQ(thinnedSamples(samples, 0.5), (Indices{0, 1, 4, 5, 7}));
}

TEST(ThinnedSamples, ASampleAtTheToleranceIsNotPassedOver)
{
    const auto stepped = [](double speed) {
        return profile({{0, 1500}, {1, 1500}, {2, speed}, {12000, speed}});
    };
    EXPECT_EQ(thinnedSamples(stepped(1500.25), 0.25), (Indices{0, 1, 2, 3}));
    // The last sample lies within the tolerance too, and becomes the end.
    EXPECT_EQ(thinnedSamples(stepped(1500.2499), 0.25), (Indices{0, 1, 3}));
}

TEST(ThinnedSamples, AStepInSpeedKeepsBothSides)
{
    std::vector<std::pair<double, double>> pairs;
    for (int i = 0; i <= 60; ++i)
        pairs.emplace_back(i * 100.0, 1500.0);
    pairs.emplace_back(6000.01, 1520.0);
    for (int i = 61; i <= 120; ++i)
        pairs.emplace_back(i * 100.0, 1520.0);
    const raytrace::Layers samples = profile(pairs);
    const Indices kept = thinnedSamples(samples, 0.1);
    EXPECT_EQ(kept, (Indices{0, 1, 60, 61, 62, 121}));
    expectWithin(samples, kept, 0.1);
}

TEST(ThinnedSamples, NoDroppedSampleLiesFurtherThanTheToleranceFromItsLine)
{
    std::mt19937 random(20261115);
    std::normal_distribution<double> noise(0.0, 0.05);
    for (const double tolerance : {0.01, 0.1, 1.0, 10.0}) {
        expectWithin(sampled(2000, summerSpeed),
                     thinnedSamples(sampled(2000, summerSpeed), tolerance), tolerance);
        raytrace::Layers rough = sampled(20000, summerSpeed);
        for (raytrace::LayerRecord& sample : rough)
            sample.c += noise(random);
        expectWithin(rough, thinnedSamples(rough, tolerance), tolerance);
    }
    const raytrace::Layers large = sampled(100000, summerSpeed);
    const Indices kept = thinnedSamples(large, 0.1);
    expectWithin(large, kept, 0.1);
    EXPECT_LT(kept.size(), large.size() / 2);
}

TEST(ThinnedSamples, AKeptSampleAboveADropEndsALineThatTheNextOneLeaves)
{
    // Keeping everything would pass the test above: each line goes as far as it can.
    const raytrace::Layers samples = sampled(5000, summerSpeed);
    const Indices kept = thinnedSamples(samples, 0.05);
    for (std::size_t k = 1; k + 1 < kept.size(); ++k) {
        const auto upper = std::size_t(kept[k]);
        const std::size_t beyond = std::size_t(kept[k + 1]) + (kept[k + 1] > kept[k] + 1 ? 1 : 0);
        if (beyond < samples.size()) {
            EXPECT_GT(crossDistance(samples[upper - 1], samples[upper], samples[beyond]),
                      0.05 - 0.0002)
                << upper;
        }
    }
}

TEST(ThinnedSamples, TheToleranceComparesAsA32BitFloat)
{
    const raytrace::Layers samples = sampled(50, summerSpeed);
    for (const double good : {0.01, double(0.01F), 1.0, 10.0})
        EXPECT_FALSE(thinnedSamples(samples, good).empty()) << good;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double bad : {0.0099999, 0.0, -0.1, 10.000001, infinity, nan})
        EXPECT_TRUE(thinnedSamples(samples, bad).empty()) << bad;
    EXPECT_TRUE(processing::isThinTolerance(1.0, processing::thinning::maxAskedTolerance));
    EXPECT_FALSE(processing::isThinTolerance(1.0000001, processing::thinning::maxAskedTolerance));
    EXPECT_FALSE(processing::isThinTolerance(nan, processing::thinning::maxAskedTolerance));
}

TEST(ThinnedSamples, AShallowOrUnsortedProfileIsNotThinned)
{
    const auto ending = [](double depth) {
        return profile({{0, 1500}, {10, 1500}, {20, 1500}, {depth, 1500}});
    };
    EXPECT_EQ(thinnedSamples(ending(11500.0), 0.1), (Indices{0, 1, 3}));
    EXPECT_TRUE(thinnedSamples(ending(11499.99), 0.1).empty());
    const auto stepping = [](double step) {
        return profile({{0, 1500}, {10, 1500}, {10 + step, 1500}, {12000, 1500}});
    };
    EXPECT_EQ(thinnedSamples(stepping(0.0051), 0.1), (Indices{0, 1, 3}));
    EXPECT_TRUE(thinnedSamples(stepping(0.0049), 0.1).empty());
    EXPECT_TRUE(thinnedSamples(stepping(0.0), 0.1).empty());
    EXPECT_TRUE(thinnedSamples(stepping(-1.0), 0.1).empty());
}

TEST(ThinnedSamples, ValuesBeyondAnyOceanDoNoHarm)
{
    const double huge = std::numeric_limits<float>::max();
    const Indices kept = thinnedSamples(
        profile({{0, huge}, {0.01, -huge}, {1, huge}, {2, 0}, {12000, huge}, {huge, -huge}}), 0.1);
    EXPECT_EQ(kept.front(), 0);
    EXPECT_EQ(kept.back(), 5);
}
