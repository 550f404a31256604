#pragma once

#include <cstddef>
#include <vector>

/// The working form of a profile in checking, extension, thinning and ray tracing.
namespace raytrace {

/// One sample and the layer that begins at it.
struct LayerRecord
{
    double gradient = 0.0; ///< slope of sound speed to the next sample, 1/s; 0 for the last one
    double d = 0.0;        ///< depth, m, positive down
    double c = 0.0;        ///< sound speed, m/s
};

using Layers = std::vector<LayerRecord>;

/// The records of `count` samples, gradients included. Depths (m) and speeds (m/s) are 32-bit
/// floats, widened here; both arrays hold at least `count` values.
Layers makeLayers(const float* depths, const float* speeds, std::size_t count);

/// Computes the gradient of each record from its successor: (c[i] - c[i+1]) / (d[i] - d[i+1]).
/// Two samples at one depth give an infinity or NaN, as the division does.
void computeGradients(Layers& layers);

} // namespace raytrace
