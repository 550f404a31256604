#include "raytrace/arc.h"

#include <algorithm>
#include <cmath>

namespace raytrace {

namespace {

// sinh(h) / h
double sinhOver(double h)
{
    return h == 0.0 ? 1.0 : std::sinh(h) / h;
}

} // namespace

Offset offsetAfter(Arc arc, double time)
{
    const double h = arc.gradient * time;
    const double sinhPart = sinhOver(h);
    const double halfPart = sinhOver(h / 2.0);
    const double coshPart = h / 2.0 * halfPart * halfPart; // (cosh(h) - 1) / h
    const double slowing = 1.0 + h * (coshPart - arc.cosine * sinhPart);
    const double length = arc.speed * time / slowing;
    return {arc.snell * arc.speed * length * sinhPart, length * (arc.cosine * sinhPart - coshPart)};
}

double depthAt(Arc arc, double x)
{
    const double cosine = arc.cosine - arc.snell * arc.gradient * x;
    const double sine = std::sqrt(std::max(0.0, (1.0 - cosine) * (1.0 + cosine)));
    return x * (arc.cosine + cosine) / (arc.snell * arc.speed + sine);
}

} // namespace raytrace
