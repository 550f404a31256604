#include "raytrace/rayengine.h"
#include "raytrace/walk.h"
#include "tests/raytrace/profiles.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <limits>

using raytrace::Heading;
using raytrace::LayerRecord;
using raytrace::Layers;
using raytrace::RayEngine;
using raytrace::RayPoint;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

// The text with which the core refuses; empty when it does not.
std::string refusal(const Layers& layers, double time, double p, double depth, double speed,
                    Heading heading = Heading::Down)
{
    RayEngine engine(layers);
    RayPoint reached{-7.0, -7.0};
    const int code = engine.raypath(time, p, depth, speed, reached, heading);
    EXPECT_EQ(code, engine.message().empty() ? 0 : -2);
    EXPECT_EQ(reached.x == -7.0 && reached.z == -7.0, code == -2);
    return engine.message();
}

} // namespace

TEST(Refusals, TheLimitsAndBothSidesOfThem)
{
    const Layers layers = profiles::of({-100, 30000}, {1500, 1500});
    const auto text = [](const char* time) {
        return std::string("@raypath: out of limits : T=") + time;
    };
    const struct
    {
        double time;
        double p;
        double depth;
        double speed;
        std::string text;
    } cases[] = {
        {0.0001, 0.5, 0, 1500, ""},
        {0.000099, 0.5, 0, 1500, text("0.000099")},
        {60.0, 0.1, -100, 1500, "@raypath : return = -2, DDD"},
        {60.0, 0.9, 0, 1500, "@raypath : return = -2, DDD"},
        {60.0, 1.0, 0, 1500, ""},
        {60.000001, 1.0, 0, 1500, text("60.000001")},
        {0.0, 0.5, 0, 1500, text("0.000000")},
        {-1.0, 0.5, 0, 1500, text("-1.000000")},
        {notANumber, 0.5, 0, 1500, text("nan")},
        {infinite, 0.5, 0, 1500, text("inf")},
        {1.0, 1.0, 0, 1500, ""},
        {1.0, -1.0, 0, 1500, ""},
        {1.0, 1.0000001, 0, 1500, text("1.000000")},
        {1.0, -1.0000001, 0, 1500, text("1.000000")},
        {1.0, notANumber, 0, 1500, text("1.000000")},
        {1.0, 0.5, 11999.999, 1500, ""},
        {1.0, 0.5, 12000, 1500, text("1.000000")},
        {1.0, 0.5, notANumber, 1500, text("1.000000")},
        {1.0, 0.5, 0, 1400, ""},
        {1.0, 0.5, 0, 1399.999, text("1.000000")},
        {1.0, 0.5, 0, 1700, ""},
        {1.0, 0.5, 0, 1700.001, text("1.000000")},
        {1.0, 0.5, 0, notANumber, text("1.000000")},
    };
    for (const auto& c : cases)
        EXPECT_EQ(refusal(layers, c.time, c.p, c.depth, c.speed), c.text)
            << c.time << ' ' << c.p << ' ' << c.depth << ' ' << c.speed;
}

TEST(Refusals, TheLimitsComeFirst)
{
    EXPECT_EQ(refusal({}, 0.0, 0.5, 0, 1500), "@raypath: out of limits : T=0.000000");
    EXPECT_EQ(refusal({}, 1.0, 0.5, 0, 1500), "@raypath : return = -2, AAA");
    EXPECT_EQ(refusal(profiles::of({0}, {1500}), 1.0, 0.5, 0, 1500), "@raypath : return = -2, AAA");
}

TEST(Refusals, NoLayerHoldsTheStart)
{
    const Layers layers = profiles::of({10, 20, 40}, {1500, 1500, 1500});
    const std::string text =
        "svp[L].d = 20.000000 , svp[L + 1].d = 40.000000\n@raypath : return = -2, QQQ";
    EXPECT_EQ(refusal(layers, 0.001, 0.5, 10, 1500), "");
    EXPECT_EQ(refusal(layers, 0.001, 0.5, 9.999, 1500), text);
    EXPECT_EQ(refusal(layers, 0.001, 0.5, 30, 1500), "");
    EXPECT_EQ(refusal(layers, 0.001, 0.5, 40, 1500), text);
    EXPECT_EQ(refusal(layers, 0.001, 0.5, -infinite, 1500), text);
    EXPECT_EQ(refusal(Layers({{0, notANumber, 1500}, {0, notANumber, 1500}}), 0.001, 0.5, 40, 1500),
              "svp[L].d = nan , svp[L + 1].d = nan\n@raypath : return = -2, QQQ");
    // Of samples out of order, the first layer that holds the depth.
    const Layers unsorted = profiles::of({20, 10, 30, 15, 40}, {1500, 1500, 1500, 1500, 1500});
    EXPECT_EQ(refusal(unsorted, 0.001, 0.5, 12, 1500), "");
    EXPECT_EQ(refusal(unsorted, 1.0, 0.5, 12, 1500), "@raypath : return = -2, EEE");
}

TEST(Refusals, AMessageEndsAfter499Characters)
{
    const Layers layers = Layers({{0, 1e308, 1500}, {0, 1.5e308, 1500}});
    const std::string text = refusal(layers, 1.0, 0.5, 0, 1500);
    EXPECT_EQ(text.size(), 499U);
    EXPECT_EQ(text.substr(0, 12), "svp[L].d = 1");
}

TEST(Refusals, TheRayCannotEnter)
{
    // sin 80 degrees * 1600 / 1500 is more than 1.
    const Layers layers = profiles::of({0, 100}, {1600, 1600});
    EXPECT_EQ(refusal(layers, 0.01, std::sin(80 * M_PI / 180), 0, 1500),
              "@raypath : return = -2, BBB");
    EXPECT_EQ(refusal(layers, 0.01, 1500.0 / 1600.0 - 1e-9, 0, 1500), "");
}

TEST(Refusals, TheRayLeavesTheProfile)
{
    const Layers layers = profiles::of({0, 1500}, {1500, 1500});
    const std::string surface = "@raypath : return = -2, CCC";
    const std::string bottom = "@raypath : return = -2, DDD";
    EXPECT_EQ(refusal(layers, 1.0, 0.0, 0, 1500), "");
    EXPECT_EQ(refusal(layers, 1.001, 0.0, 0, 1500), bottom);
    EXPECT_EQ(refusal(layers, 0.5, 0.0, 750, 1500, Heading::Up), "");
    EXPECT_EQ(refusal(layers, 0.501, 0.0, 750, 1500, Heading::Up), surface);
    EXPECT_EQ(refusal(layers, 0.0001, 0.0, 0, 1500, Heading::Up), surface);
    // Level at the top, where sound gets faster downward: up and out at once.
    EXPECT_EQ(refusal(profiles::quickening(), 0.0001, 1.0, 0, 1450), surface);
    // Down, turned, and up again.
    EXPECT_EQ(refusal(profiles::quickening(), 60.0, 0.99, 0, 1450), surface);
}

TEST(Refusals, SamplesThatMakeNoLayers)
{
    const std::string depths = "@raypath : return = -2, EEE";
    const std::string speeds = "@raypath : return = -2, FFF";
    const auto after = [](const LayerRecord& third) {
        return Layers({{0, 0, 1500}, {0, 10, 1500}, third, {0, 30, 1500}});
    };
    EXPECT_EQ(refusal(after({0, 20, 1500}), 0.01, 0.5, 0, 1500), "");
    EXPECT_EQ(refusal(after({0, 9, 1500}), 0.01, 0.5, 0, 1500), depths);
    EXPECT_EQ(refusal(after({0, notANumber, 1500}), 0.01, 0.5, 0, 1500), depths);
    EXPECT_EQ(refusal(after({0, 20, 0}), 0.01, 0.5, 0, 1500), speeds);
    EXPECT_EQ(refusal(after({0, 20, -1500}), 0.01, 0.5, 0, 1500), speeds);
}

TEST(Refusals, NumbersThatAreNone)
{
    // Two samples at one depth, as the gradients are computed.
    const Layers step = profiles::of({0, 10, 10, 20}, {1500, 1500, 1510, 1510});
    EXPECT_EQ(refusal(step, 0.01, 0.5, 0, 1500),
              "@raypath: exception e,normal , L=1.000000 g=-inf");
    EXPECT_EQ(refusal(step, 0.01, 0.0, 0, 1500),
              "@raypath: exception e, downward ray, L=1.000000, g=-inf");
    EXPECT_EQ(refusal(step, 0.01, 0.0, 15, 1510, Heading::Up),
              "@raypath: exception e, vertical upward ray, L = 1.000000 g = -inf");
    const Layers twice = profiles::of({0, 10, 10, 20}, {1500, 1500, 1500, 1500});
    EXPECT_EQ(refusal(twice, 0.01, 0.5, 0, 1500),
              "@raypath: exception e,normal , L=1.000000 g=nan");

    const Layers speechless = Layers({{0, 0, notANumber}, {0, 10, notANumber}});
    EXPECT_EQ(refusal(speechless, 0.001, 1.0, 0, 1500),
              "@raypath: exception e,constant sound speed in layer,horizontal ray , L=0.000000,  "
              "g=0.000000");
    EXPECT_EQ(refusal(speechless, 0.001, 0.0, 0, 1500),
              "@raypath: exception e, downward ray, L=0.000000, g=0.000000");
    EXPECT_EQ(refusal(Layers({{0.5, 0, 1500}, {0, 10, notANumber}}), 0.001, 0.5, 0, 1500),
              "Exception e @raypath, normal layer iteration, L=0.000000 , g = 0.500000");
    // A gradient that is not that of the speeds: the ray would have to turn the wrong way.
    EXPECT_EQ(refusal(Layers({{-0.5, 0, 1500}, {0, 10, 9000}}), 0.001, 0.9, 0, 1500),
              "Exception e @raypath, normal layer iteration, L=0.000000 , g = -0.500000");
}

TEST(Refusals, AChannelOfCentimetresEnds)
{
    const Layers layers = profiles::of({0, 0.01F, 0.02F, 0.03F}, {1690, 1500, 1500, 1690});
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(refusal(layers, 60.0, 0.95, 0.015, 1500), "@raypath : return = -2 , XXX");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
    EXPECT_EQ(raytrace::Walk::crossingLimit(layers), 100008U);
}

TEST(Refusals, TheLastTextStays)
{
    RayEngine engine(profiles::constant());
    RayPoint reached;
    EXPECT_EQ(engine.raypath(0.0, 0.5, 0, 1500, reached), -2);
    EXPECT_EQ(engine.raypath(1.0, 0.5, 0, 1500, reached), 0);
    EXPECT_EQ(engine.message(), "@raypath: out of limits : T=0.000000");
}

TEST(Refusals, AnyRecordsAtAllComeToAnEnd)
{
    const double values[] = {0,        -1,        1,    1e-300, 1e300, -1e300, notANumber,
                             infinite, -infinite, 1500, 1499.9, 12000, 1e-9,   3e38};
    unsigned seed = 1;
    const auto any = [&] {
        seed = seed * 1664525U + 1013904223U;
        return values[(seed >> 16) % std::size(values)];
    };
    for (int i = 0; i < 20000; ++i) {
        Layers layers(2 + std::size_t(i) % 4);
        for (LayerRecord& layer : layers)
            layer = {any(), any(), any()};
        if (i % 2 == 0)
            raytrace::computeGradients(layers);
        if (i % 3 != 0) {
            layers[0].d = 0.0;
            layers[0].c = 1500.0;
        }
        RayEngine engine(layers);
        RayPoint reached;
        for (const double p : {0.0, 0.3, 1.0, -1.0}) {
            if (engine.raypath(60.0, p, 0.0, 1500.0, reached) == 0) {
                EXPECT_TRUE(std::isfinite(reached.x) && std::isfinite(reached.z)) << i;
            }
        }
        for (const RayPoint& point : engine.path(0.3))
            EXPECT_TRUE(i % 3 == 0 || (std::isfinite(point.x) && std::isfinite(point.z))) << i;
        engine.depthsAtRanges(0.3);
    }
}
