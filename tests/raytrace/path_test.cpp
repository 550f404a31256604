#include "raytrace/rayengine.h"
#include "raytrace/walk.h"
#include "tests/raytrace/integration.h"
#include "tests/raytrace/profiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using raytrace::Layers;
using raytrace::radians;
using raytrace::RayEngine;
using raytrace::RayPoint;

namespace {

std::vector<RayPoint> path(const Layers& layers, double degrees)
{
    return RayEngine(layers).path(radians(degrees));
}

double distanceToSegment(const RayPoint& p, const RayPoint& a, const RayPoint& b)
{
    const double dx = b.x - a.x;
    const double dz = b.z - a.z;
    const double square = dx * dx + dz * dz;
    const double along =
        square > 0 ? std::clamp(((p.x - a.x) * dx + (p.z - a.z) * dz) / square, 0.0, 1.0) : 0.0;
    return std::hypot(p.x - a.x - along * dx, p.z - a.z - along * dz);
}

// The largest distance of one of `points` from the line through `line`; both go in one direction.
double farthest(const std::vector<RayPoint>& points, const std::vector<RayPoint>& line)
{
    double most = 0.0;
    std::size_t at = 0;
    for (const RayPoint& point : points) {
        const auto near = [&](std::size_t i) {
            return distanceToSegment(point, line[i], line[i + 1]);
        };
        double least = near(at);
        for (std::size_t i = at; i + 1 < line.size() && i < at + 60; ++i) {
            if (near(i) < least) {
                least = near(i);
                at = i;
            }
        }
        most = std::max(most, least);
    }
    return most;
}

std::vector<RayPoint> integrated(const Layers& layers, double degrees)
{
    std::vector<RayPoint> points{{0.0, layers.front().d}};
    integration::follow(layers, {0.0, 0.0, layers.front().d, M_PI / 2 - radians(degrees)}, 60.0,
                        2e-3, [&](const integration::State& s) {
                            points.push_back({s.x, s.z});
                        });
    return points;
}

} // namespace

TEST(Path, LiesOnTheRayAndItsChordsDoToo)
{
    const struct
    {
        const char* name;
        Layers layers;
    } cases[] = {
        {"slowing", profiles::slowing()},
        {"quickening", profiles::quickening()},
        {"channel", profiles::channel(241)},
        {"sharp", profiles::of({0, 20, 40, 500}, {1500, 1530, 1490, 1480})},
    };
    for (const auto& c : cases) {
        for (const double degrees : {2.0, 10.0, 35.0, 75.0}) {
            const std::vector<RayPoint> points = path(c.layers, degrees);
            const std::vector<RayPoint> expected = integrated(c.layers, degrees);
            ASSERT_GT(points.size(), 2U);
            EXPECT_LT(farthest(points, expected), 0.01) << c.name << degrees;
            EXPECT_LT(farthest(expected, points), 0.0501) << c.name << degrees;
            EXPECT_NEAR(points.back().x, expected.back().x, 0.01) << c.name << degrees;
            EXPECT_NEAR(points.back().z, expected.back().z, 0.01) << c.name << degrees;
        }
    }
}

TEST(Path, HasNoMorePointsThanItNeeds)
{
    // A circle of radius 75 000 m: an arc of 173 m is 0.05 m off its chord.
    const auto points = path(profiles::of({0, 5000}, {1500, 1600}), 10.0);
    const double way = 75000.0 / std::cos(radians(10)) * 2.0 * radians(10);
    EXPECT_GT(double(points.size()), way / 174.0);
    EXPECT_LT(double(points.size()), way / 174.0 * 1.1);
    EXPECT_EQ(path(profiles::constant(), 45.0).size(), 2U);
}

TEST(Path, HasEveryBoundary)
{
    const Layers layers = profiles::rough();
    for (const double degrees : {90.0, 60.0}) {
        const auto points = path(layers, degrees);
        std::size_t found = 0;
        for (const RayPoint& point : points) {
            if (found < layers.size() && point.z == layers[found].d)
                ++found;
        }
        EXPECT_EQ(found, layers.size());
    }
}

TEST(Path, EndsAtTheBottomAtTheTopOrAfterAMinute)
{
    const auto bottom = path(profiles::slowing(), 30.0);
    EXPECT_EQ(bottom.back().z, 12000.0);
    const auto top = path(profiles::of({5, 3000, 12000}, {1450, 1500, 1650}), 5.0);
    EXPECT_EQ(top.front().z, 5.0);
    EXPECT_EQ(top.back().z, 5.0);
    EXPECT_GT(top.back().x, 1000.0);
    const auto minute = path(profiles::constant(), 0.0);
    ASSERT_EQ(minute.size(), 2U);
    EXPECT_EQ(minute[1].x, 90000.0);
    EXPECT_EQ(minute[1].z, 0.0);
    const auto slow = path(profiles::constant(), 5.0);
    EXPECT_NEAR(slow.back().x, 90000.0 * std::cos(radians(5)), 1e-6);
    EXPECT_NEAR(slow.back().z, 90000.0 * std::sin(radians(5)), 1e-6);
}

TEST(Path, StraightDownHasNoDistance)
{
    EXPECT_EQ(radians(90), M_PI / 2);
    for (const RayPoint& point : path(profiles::channel(100), 90.0))
        EXPECT_EQ(point.x, 0.0);
}

TEST(Path, StaysWithinTheProfile)
{
    for (const Layers& layers : {profiles::channel(241), profiles::quickening()}) {
        for (int i = 0; i <= 243; ++i) {
            const double degrees = i * 0.37;
            double x = 0.0;
            for (const RayPoint& point : path(layers, degrees)) {
                EXPECT_GE(point.z, -1e-9);
                EXPECT_LE(point.z, 12000.0);
                EXPECT_GE(point.x, x);
                x = point.x;
            }
        }
    }
}

TEST(Path, EndsWhereTheCoreRefuses)
{
    EXPECT_TRUE(path({}, 45.0).empty());
    EXPECT_EQ(path(profiles::of({0}, {1500}), 45.0).size(), 1U);
    EXPECT_EQ(path(profiles::of({12000, 12500}, {1500, 1500}), 45.0).size(), 1U);
    EXPECT_EQ(path(profiles::of({0, 100}, {1399, 1500}), 45.0).size(), 1U);
    // Level at the top, where it bends up and out.
    EXPECT_EQ(path(profiles::quickening(), 0.0).size(), 1U);
    const auto broken = path(profiles::of({0, 10, 10, 20}, {1500, 1500, 1510, 1510}), 45.0);
    ASSERT_EQ(broken.size(), 2U);
    EXPECT_EQ(broken[1].z, 10.0);
}

TEST(Path, OfARayThatSetsOutLevelEndsBackAtTheTop)
{
    // Level at the top, where it bends down: it comes back level, as far away as its neighbours.
    const Layers wide = profiles::of({0, 1, 500}, {1500, 1450, 1690});
    const auto level = path(wide, 0.0);
    const auto neighbour = path(wide, 0.001);
    EXPECT_EQ(level.back().z, 0.0);
    EXPECT_EQ(neighbour.back().z, 0.0);
    EXPECT_NEAR(level.back().x, neighbour.back().x, 0.01);
    // Half of it, to the turn, by integration: the arcs of both halves are the same.
    double deepest = 0.0;
    for (const RayPoint& point : level)
        deepest = std::max(deepest, point.z);
    const auto half =
        integration::follow(wide, {0.0, 0.0, 0.0, M_PI / 2}, level.back().x / 2.0 / 1475.0);
    EXPECT_NEAR(half.z, deepest, 0.05);
    const Layers narrow = profiles::of({0, 0.01F, 0.02F}, {1500, 1400, 1690});
    EXPECT_LT(path(narrow, 0.0).size(), 10U);
    EXPECT_EQ(path(narrow, 0.0).back().z, 0.0);
}

TEST(Path, NoPointStandsTwice)
{
    for (const Layers& layers : {profiles::channel(241), profiles::quickening()}) {
        for (int i = 0; i <= 243; ++i) {
            const auto points = path(layers, i * 0.37);
            for (std::size_t k = 1; k < points.size(); ++k)
                EXPECT_TRUE(points[k].x != points[k - 1].x || points[k].z != points[k - 1].z);
        }
    }
}
