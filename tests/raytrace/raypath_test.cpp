#include "raytrace/rayengine.h"
#include "tests/raytrace/integration.h"
#include "tests/raytrace/profiles.h"

#include <gtest/gtest.h>

#include <cmath>

using raytrace::Heading;
using raytrace::Layers;
using raytrace::RayEngine;
using raytrace::RayPoint;

namespace {

// Where the core's ray is; depth and distance NaN when it refuses.
RayPoint traced(const Layers& layers, double time, double p, double depth, double speed,
                Heading heading = Heading::Down)
{
    RayEngine engine(layers);
    RayPoint reached{NAN, NAN};
    const int code = engine.raypath(time, p, depth, speed, reached, heading);
    EXPECT_EQ(code, std::isnan(reached.x) ? -2 : 0) << engine.message();
    return reached;
}

void expectAsIntegrated(const char* name, const Layers& layers, double depth, double fromVertical,
                        double time)
{
    const double speed = integration::speedAt(layers, depth);
    const bool isUp = fromVertical > M_PI / 2;
    const RayPoint reached = traced(layers, time, std::sin(fromVertical), depth, speed,
                                    isUp ? Heading::Up : Heading::Down);
    const integration::State end =
        integration::follow(layers, {0.0, 0.0, depth, fromVertical}, time);
    ASSERT_DOUBLE_EQ(end.time, time) << name << " leaves the profile: choose a shorter time";
    EXPECT_NEAR(reached.x, end.x, 0.001) << name << ' ' << fromVertical;
    EXPECT_NEAR(reached.z, end.z, 0.001) << name << ' ' << fromVertical;
}

constexpr double degrees = M_PI / 180.0;

} // namespace

TEST(Raypath, AgreesWithTheIntegrationOverTwelveThousandMetres)
{
    const struct
    {
        const char* name;
        Layers layers;
    } cases[] = {
        {"constant", profiles::constant()},     {"slowing", profiles::slowing()},
        {"quickening", profiles::quickening()}, {"channel", profiles::channel(241)},
        {"rough", profiles::rough()},
    };
    // Over 12 000 m of way at least, but no farther than the bottom.
    for (const auto& c : cases) {
        for (const double depression : {0.05, 1.0, 5.0, 10.0, 20.0, 30.0})
            expectAsIntegrated(c.name, c.layers, 1000.0, (90.0 - depression) * degrees, 8.6);
        for (const double depression : {45.0, 60.0, 80.0, 89.0, 89.999})
            expectAsIntegrated(c.name, c.layers, 0.0, (90.0 - depression) * degrees, 7.2);
    }
    // To the bottom, nearly straight down.
    expectAsIntegrated("steep", profiles::slowing(), 0.0, 1e-7, 7.9);
    expectAsIntegrated("steep", profiles::quickening(), 0.0, 1e-7, 7.7);
}

TEST(Raypath, TurningRaysAgreeWithTheIntegration)
{
    // 2 degrees below the horizontal turn in the first layer, 20 in the second; in the channel
    // rays turn above and below its axis, time and again.
    expectAsIntegrated("first layer", profiles::quickening(), 1500.0, 88.0 * degrees, 12.0);
    expectAsIntegrated("second layer", profiles::quickening(), 2000.0, 70.0 * degrees, 9.0);
    expectAsIntegrated("channel", profiles::channel(241), 1000.0, 88.0 * degrees, 60.0);
    expectAsIntegrated("channel", profiles::channel(241), 1000.0, 85.0 * degrees, 60.0);
    expectAsIntegrated("channel", profiles::channel(1201), 700.0, 92.0 * degrees, 60.0);
    expectAsIntegrated("rough", profiles::rough(), 6010.0, 89.9 * degrees, 8.1);
}

TEST(Raypath, LevelStartsAgreeWithTheIntegration)
{
    const double level = M_PI / 2;
    expectAsIntegrated("constant", profiles::constant(), 100.0, level, 8.0);
    expectAsIntegrated("slowing, at the top", profiles::slowing(), 0.0, level, 8.0);
    expectAsIntegrated("slowing, inside", profiles::slowing(), 1234.5, level, 8.0);
    expectAsIntegrated("slowing, at a boundary", profiles::slowing(), 3000.0, level, 8.0);
    expectAsIntegrated("quickening, inside", profiles::quickening(), 5000.0, level, 8.0);
    expectAsIntegrated("quickening, at a boundary", profiles::quickening(), 3000.0, level, 8.0);
    expectAsIntegrated("channel", profiles::channel(241), 400.0, level, 60.0);
    expectAsIntegrated("channel, inside", profiles::channel(241), 1777.7, level, 60.0);
}

TEST(Raypath, StartsAtAndBetweenSamples)
{
    for (const double depth : {100.0, 120.0, 129.999999, 140.0, 6000.0})
        expectAsIntegrated("rough", profiles::rough(), depth, 60.0 * degrees, 7.0);
    for (const double depth : {50.0, 3000.0, 2999.999999, 3000.000001})
        expectAsIntegrated("quickening", profiles::quickening(), depth, 75.0 * degrees, 8.0);
}

TEST(Raypath, AStartNextToASampleIsNoDifferentFromOneAtIt)
{
    const Layers layers = profiles::quickening();
    for (const double depth : {std::nextafter(3000.0, 0.0), std::nextafter(3000.0, 4000.0)}) {
        const RayPoint at = traced(layers, 8.0, 1.0, 3000.0, 1500.0);
        const RayPoint next = traced(layers, 8.0, 1.0, depth, 1500.0);
        EXPECT_NEAR(at.x, next.x, 0.01);
        EXPECT_NEAR(at.z, next.z, 0.01);
    }
}

TEST(Raypath, StraightDownAndUpFollowTheLogarithm)
{
    // c = 1500 + 0.02 z: the depth after T is 1500/0.02 (exp(0.02 T) - 1).
    const Layers layers = profiles::of({0, 10000}, {1500, 1700});
    const RayPoint down = traced(layers, 5.0, 0.0, 0.0, 1500.0);
    EXPECT_EQ(down.x, 0.0);
    EXPECT_NEAR(down.z, 75000.0 * std::expm1(0.1), 1e-8);
    const RayPoint up = traced(layers, 3.0, 0.0, down.z, 1500.0 + 0.02 * down.z, Heading::Up);
    EXPECT_EQ(up.x, 0.0);
    EXPECT_NEAR(up.z, 75000.0 * std::expm1(0.04), 1e-8);
}

TEST(Raypath, AConstantLayerIsAStraightLine)
{
    const RayPoint slant = traced(profiles::constant(), 4.0, 0.6, 100.0, 1500.0);
    EXPECT_NEAR(slant.x, 3600.0, 1e-9);
    EXPECT_NEAR(slant.z, 100.0 + 4800.0, 1e-9);
    const RayPoint level = traced(profiles::constant(), 60.0, 1.0, 100.0, 1500.0);
    EXPECT_EQ(level.x, 90000.0);
    EXPECT_EQ(level.z, 100.0);
}

TEST(Raypath, GradientsGoOverIntoStraightLines)
{
    // The radius of the arc grows to 1e12 m and beyond; the ray must go over into the line.
    for (const double slope : {1e-4, 1e-6, 1e-8, 1e-10, 1e-12, 1e-15}) {
        for (const double sign : {1.0, -1.0}) {
            Layers layers(2);
            layers[0].c = 1500.0;
            layers[0].gradient = sign * slope;
            layers[1].d = 12000.0;
            layers[1].c = 1500.0 + sign * slope * 12000.0;
            const RayPoint reached = traced(layers, 8.0, 0.6, 0.0, 1500.0);
            // To first order in the gradient the arc is off the line by half the square of the
            // way times the curvature, and longer by the mean change of the speed.
            const double way = 12000.0;
            const double curvature = 0.6 / 1500.0 * sign * slope;
            const double longer = sign * slope * 0.8 * way * 8.0 / 2.0;
            EXPECT_NEAR(reached.x, 7200.0 + 0.6 * longer + 0.8 * way * way * curvature / 2,
                        1e-8 + 2e5 * slope * slope * 1e4)
                << slope;
            EXPECT_NEAR(reached.z, 9600.0 + 0.8 * longer - 0.6 * way * way * curvature / 2,
                        1e-8 + 2e5 * slope * slope * 1e4)
                << slope;
        }
    }
}

TEST(Raypath, ATurningRayComesBackOverTheDiameter)
{
    // The centre of the circle lies where the speed would be 0: 75 000 m above the start.
    const Layers layers = profiles::of({0, 5000}, {1500, 1600});
    const double angle = 80.0 * degrees;
    const double chord = 2.0 * 75000.0 / std::tan(angle);
    const double time = 2.0 / 0.02 * std::atanh(std::cos(angle));
    const RayPoint reached = traced(layers, time * (1 - 1e-12), std::sin(angle), 0.0, 1500.0);
    EXPECT_NEAR(reached.x, chord, 1e-6);
    EXPECT_NEAR(reached.z, 0.0, 1e-6);
}

TEST(Raypath, ANegativeParameterLeadsToTheOtherSide)
{
    const RayPoint right = traced(profiles::channel(241), 8.0, 0.9, 50.0, 1500.0);
    const RayPoint left = traced(profiles::channel(241), 8.0, -0.9, 50.0, 1500.0);
    EXPECT_EQ(left.x, -right.x);
    EXPECT_EQ(left.z, right.z);
    EXPECT_LT(left.x, -1000.0);
}

TEST(Raypath, ParameterAndTravelTimeAreKeptAcrossLayers)
{
    // From where a ray is after a while, it goes on as if it had not been stopped.
    const Layers layers = profiles::rough();
    const double p = std::sin(75.0 * degrees);
    const double snell = p / layers[0].c;
    const RayPoint whole = traced(layers, 9.0, p, 0.0, layers[0].c);
    for (const double time : {0.5, 2.0, 4.3, 7.7}) {
        const RayPoint first = traced(layers, time, p, 0.0, layers[0].c);
        const double speed = integration::speedAt(layers, first.z);
        const RayPoint second = traced(layers, 9.0 - time, snell * speed, first.z, speed);
        EXPECT_NEAR(first.x + second.x, whole.x, 1e-6) << time;
        EXPECT_NEAR(second.z, whole.z, 1e-6) << time;
    }
}

TEST(Raypath, LevelsOnTheLineBetweenTwoChangeNothing)
{
    const Layers coarse = profiles::quickening();
    Layers fine(97);
    for (int i = 0; i <= 96; ++i) {
        fine[std::size_t(i)].d = i * 125.0;
        fine[std::size_t(i)].c = integration::speedAt(coarse, i * 125.0);
    }
    raytrace::computeGradients(fine);
    for (const double depression : {0.5, 3.0, 15.0, 40.0, 89.0}) {
        const double p = std::cos(depression * degrees);
        const RayPoint a = traced(coarse, 6.0, p, 2000.0, integration::speedAt(coarse, 2000.0));
        const RayPoint b = traced(fine, 6.0, p, 2000.0, integration::speedAt(coarse, 2000.0));
        EXPECT_NEAR(a.x, b.x, 1e-6) << depression;
        EXPECT_NEAR(a.z, b.z, 1e-6) << depression;
    }
}

TEST(Raypath, TheWayBackIsTheSame)
{
    const Layers layers = profiles::rough();
    const double p = std::sin(30.0 * degrees);
    const RayPoint down = traced(layers, 5.0, p, 3.0, integration::speedAt(layers, 3.0));
    const double speed = integration::speedAt(layers, down.z);
    const double back = p * speed / integration::speedAt(layers, 3.0);
    const RayPoint up = traced(layers, 5.0, back, down.z, speed, Heading::Up);
    EXPECT_NEAR(up.x, down.x, 1e-6);
    EXPECT_NEAR(up.z, 3.0, 1e-6);
}

TEST(Raypath, AnotherSpeedAtTheLaunchRefracts)
{
    // sin 30 degrees at 1450 m/s is 0.5 * 1500 / 1450 at 1500 m/s.
    const RayPoint reached = traced(profiles::constant(), 2.0, 0.5, 0.0, 1450.0);
    const double sine = 0.5 * 1500.0 / 1450.0;
    EXPECT_NEAR(reached.x, 3000.0 * sine, 1e-9);
    EXPECT_NEAR(reached.z, 3000.0 * std::sqrt(1.0 - sine * sine), 1e-9);
}

TEST(Raypath, ALevelRayStaysOnTheAxisOfAChannel)
{
    const Layers layers = profiles::of({0, 1000, 3000}, {1520, 1480, 1520});
    const RayPoint level = traced(layers, 60.0, 1.0, 1000.0, 1480.0);
    EXPECT_EQ(level.x, 88800.0);
    EXPECT_EQ(level.z, 1000.0);
    // And one that would leave it by a hair.
    const RayPoint nearly = traced(layers, 60.0, std::cos(1e-6), 1000.0, 1480.0);
    EXPECT_NEAR(nearly.x, 88800.0, 1e-3);
    EXPECT_NEAR(nearly.z, 1000.0, 1e-3);
    // Below a layer of constant speed it runs along its edge.
    const Layers edge = profiles::of({0, 1000, 3000}, {1480, 1480, 1520});
    EXPECT_EQ(traced(edge, 60.0, 1.0, 1000.0, 1480.0).x, 88800.0);
}
