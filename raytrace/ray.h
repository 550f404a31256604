#pragma once

#include <cstddef>

namespace raytrace {

constexpr double pi = 3.14159265358979323846;

/// An angle in radians, from degrees. 90 degrees become pi/2 to the last digit.
constexpr double radians(double degrees)
{
    return degrees / 180.0 * pi;
}

/// A point of a ray's path.
struct RayPoint
{
    double x = 0.0; ///< horizontal distance from the launch, m
    double z = 0.0; ///< depth, m, positive down
};

/// Which way a ray sets out.
enum class Heading
{
    Down,
    Up
};

/// How a ray sets out.
struct Launch
{
    double sine = 0.0;         ///< of the angle from the vertical, 0 to 1
    double cosineSquare = 1.0; ///< of the same angle; apart, since near the horizontal the sine
                               ///< has lost the digits that it would take
    double depth = 0.0;        ///< m
    double speed = 1500.0;     ///< sound speed there, m/s
    Heading heading = Heading::Down;
};

/// Bounds of what is traced.
namespace limits {
constexpr double minTime = 0.0001;     ///< s, itself valid
constexpr double maxTime = 60.0;       ///< s, itself valid
constexpr double endOfDepth = 12000.0; ///< m; rays set out above it
constexpr double minSpeed = 1400.0;    ///< m/s at the launch, itself valid
constexpr double maxSpeed = 1700.0;    ///< m/s at the launch, itself valid
/// An arc of a path is off its chord by no more than this, in m.
constexpr double chordError = 0.05;
/// A ray that swings about a minimum of the sound speed by less than this (m) runs level.
constexpr double levelWithin = 1e-4;
/// A ray crosses at most twice the layers of its profile and this many more, and a path has no
/// more points than that. A ray caught in a channel of centimetres would cross millions.
constexpr std::size_t furtherCrossings = 100000;
} // namespace limits

} // namespace raytrace
