#include "raytrace/arc.h"

#include <gtest/gtest.h>

#include <cmath>

using raytrace::Arc;

namespace {

// An arc that begins at (0, 0), `degrees` from straight down, at 1500 m/s.
Arc arcFrom(double degrees, double gradient, double time = 1.0)
{
    Arc arc;
    arc.speed = 1500.0;
    arc.snell = std::sin(degrees * M_PI / 180.0) / arc.speed;
    arc.cosine = std::cos(degrees * M_PI / 180.0);
    arc.gradient = gradient;
    arc.time = time;
    arc.fastest = 1500.0 * std::exp(std::abs(gradient) * time); // no arc grows faster
    return arc;
}

} // namespace

TEST(Arc, TheSeriesGoesOverIntoTheFunction)
{
    // Near the place where the series ends, and far from it; long double has more digits.
    for (const double y : {0.0, 1e-300, 1e-9, 0.001, 0.003162, 0.003163, 0.02, 0.1, 0.9}) {
        for (const double sign : {1.0, -1.0}) {
            const long double exact = y == 0.0 ? 1.0L : std::atanh(static_cast<long double>(y)) / y;
            EXPECT_NEAR(raytrace::atanhOver(sign * y) / double(exact), 1.0, 1e-15) << y;
        }
    }
}

TEST(Arc, PointsLieOnTheCircle)
{
    // Radius c / (g sin), centre where the speed would be 0, seen from the begin.
    for (const double degrees : {20.0, 89.0, 90.0, 120.0}) {
        const double gradient = 0.5;
        const Arc arc = arcFrom(degrees, gradient, 3.0);
        const double radius = 1500.0 / (gradient * std::sin(degrees * M_PI / 180.0));
        const double centreX = radius * arc.cosine;
        const double centreZ = -radius * std::sin(degrees * M_PI / 180.0);
        for (const double time : {0.1, 1.0, 2.0, 3.0}) {
            const raytrace::Offset p = raytrace::offsetAfter(arc, time);
            EXPECT_NEAR(std::hypot(p.x - centreX, p.z - centreZ), radius, 1e-8);
            EXPECT_NEAR(raytrace::depthAt(arc, p.x), p.z, 1e-8) << degrees << ' ' << time;
        }
    }
}

TEST(Arc, AStraightLineWithoutAGradient)
{
    const Arc arc = arcFrom(60.0, 0.0);
    EXPECT_NEAR(raytrace::offsetAfter(arc, 0.5).x, 750.0 * std::sin(M_PI / 3), 1e-12);
    EXPECT_NEAR(raytrace::offsetAfter(arc, 0.5).z, 375.0, 1e-12);
    EXPECT_NEAR(raytrace::depthAt(arc, 100.0), 100.0 / std::tan(M_PI / 3), 1e-12);
    EXPECT_EQ(raytrace::piecesWithin(arc, 0.05), 1.0);
}

TEST(Arc, PiecesKeepTheTolerance)
{
    for (const double degrees : {5.0, 45.0, 90.0}) {
        for (const double gradient : {0.01, -0.3, 2.0}) {
            const Arc arc = arcFrom(degrees, gradient, 0.8);
            const double pieces = raytrace::piecesWithin(arc, 0.05);
            EXPECT_EQ(pieces, std::floor(pieces));
            for (int n = 0; n < int(pieces); ++n) {
                const double i = n;
                const auto a = raytrace::offsetAfter(arc, arc.time * i / pieces);
                const auto b = raytrace::offsetAfter(arc, arc.time * (i + 0.5) / pieces);
                const auto c = raytrace::offsetAfter(arc, arc.time * (i + 1) / pieces);
                const double length = std::hypot(c.x - a.x, c.z - a.z);
                const double area = (c.x - a.x) * (b.z - a.z) - (c.z - a.z) * (b.x - a.x);
                EXPECT_LE(std::abs(area) / length, 0.05) << degrees << ' ' << gradient;
            }
        }
    }
}
