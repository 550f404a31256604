#pragma once

#include <cmath>

namespace raytrace {

/// A piece of a ray inside one layer: an arc of a circle, since the sound speed there is a linear
/// function of depth; a straight line where that function is constant.
///
/// Angles are measured from straight down: the cosine is positive on the way down, negative on the
/// way up, 0 where the ray is horizontal. Distances grow along the ray.
struct Arc
{
    double x = 0.0;        ///< where it begins: horizontal distance, m
    double z = 0.0;        ///< where it begins: depth, m
    double speed = 0.0;    ///< sound speed there, m/s
    double snell = 0.0;    ///< sine of the angle over the sound speed, the same all along, s/m
    double cosine = 1.0;   ///< of the angle there
    double gradient = 0.0; ///< of the sound speed in the layer, 1/s
    double time = 0.0;     ///< travel time to the end, s
    double dx = 0.0;       ///< from its begin to its end, m
    double dz = 0.0;       ///< from its begin to its end, m
    double fastest = 0.0;  ///< highest sound speed along the arc, m/s
};

/// A place relative to the begin of an arc, in m.
struct Offset
{
    double x = 0.0;
    double z = 0.0;
};

// The formulas hold for every gradient, 0 included, on both sides of the point where a ray turns.
// None of them subtracts numbers that are nearly equal, and none uses the radius, which grows
// beyond all digits as the gradient goes to 0. Arcs are taken by value where they are seldom
// needed, so that those of the other layers can stay in registers.

/// Where the ray is when it has travelled for `time` (s) since the arc's begin. With the gradient
/// g, h = g time, and sine s, cosine k and sound speed c at the begin:
///     x = s c sinh(h) / (g D),  z = c (k sinh(h) - (cosh(h) - 1)) / (g D),
///     D = cosh(h) - k sinh(h).
/// They follow from d(angle)/dt = g sin(angle), whose solution is tan(angle/2) growing as exp(h).
Offset offsetAfter(Arc arc, double time);

/// Depth below the arc's begin (m) at the horizontal distance `x` (m) from there.
double depthAt(Arc arc, double x);

/// Into how many pieces of equal travel time the arc is divided so that none of them is off its
/// chord by more than `tolerance` (m); a whole number, 1 for a straight line.
inline double piecesWithin(const Arc& arc, double tolerance)
{
    // The height of an arc over its chord is at most length^2 / (8 radius).
    const double longest = arc.time * arc.fastest;
    const double square = longest * longest * arc.snell * std::abs(arc.gradient);
    return square <= 8.0 * tolerance ? 1.0 : std::ceil(std::sqrt(square / (8.0 * tolerance)));
}

/// atanh(y) / y.
inline double atanhOver(double y)
{
    const double square = y * y;
    // Most layers are so thin that three terms of the series give every digit.
    return square < 1e-5 ? 1.0 + square * (1.0 / 3.0 + square * (1.0 / 5.0)) : std::atanh(y) / y;
}

} // namespace raytrace
