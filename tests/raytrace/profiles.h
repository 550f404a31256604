#pragma once

#include "raytrace/layers.h"

#include <cmath>
#include <vector>

/// Profiles for the tests of rays.
namespace profiles {

inline raytrace::Layers of(const std::vector<float>& depths, const std::vector<float>& speeds)
{
    return raytrace::makeLayers(depths.data(), speeds.data(), depths.size());
}

inline raytrace::Layers constant()
{
    return of({0, 12000}, {1500, 1500});
}

/// Slower downward: rays bend down.
inline raytrace::Layers slowing()
{
    return of({0, 3000, 12000}, {1560, 1520, 1430});
}

/// Faster downward: flat rays turn and come back.
inline raytrace::Layers quickening()
{
    return of({0, 3000, 12000}, {1450, 1500, 1650});
}

/// A sound channel with its axis at 1000 m and `levels` levels to 12 000 m: the speed is a cosine
/// down to the axis and grows steadily below.
inline raytrace::Layers channel(int levels)
{
    std::vector<float> depths;
    std::vector<float> speeds;
    for (int i = 0; i < levels; ++i) {
        const double depth = 12000.0 * i / (levels - 1);
        depths.push_back(float(depth));
        speeds.push_back(float(depth < 1000.0 ? 1500.0 + 20.0 * std::cos(depth / 1000.0 * M_PI)
                                              : 1480.0 + (depth - 1000.0) * 0.0145));
    }
    return of(depths, speeds);
}

/// Jumps up and down by metres per second from level to level.
inline raytrace::Layers rough()
{
    std::vector<float> depths;
    std::vector<float> speeds;
    for (int i = 0; i <= 600; ++i) {
        depths.push_back(float(i) * 20.0F);
        speeds.push_back(1500.0F + float(i * 7919 % 97) * 0.2F + (i % 5 == 0 ? 0.0F : 3.0F));
    }
    return of(depths, speeds);
}

} // namespace profiles
