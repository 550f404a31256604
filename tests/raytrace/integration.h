#pragma once

#include "raytrace/layers.h"

#include <functional>

/// Snell's law integrated numerically, as a reading that shares nothing with the engine's formulas:
/// the rates at which distance, depth and angle change are followed in small steps.
namespace integration {

struct State
{
    double time = 0.0;  ///< s
    double x = 0.0;     ///< m
    double z = 0.0;     ///< m
    double angle = 0.0; ///< from straight down, radians; pi is straight up
};

/// Follows a ray from `state` until `endTime` (s), or until it leaves the profile below or above.
/// Each step of at most `step` seconds is shown to `seen`. The layers' gradients are not used.
State follow(const raytrace::Layers& layers, State state, double endTime, double step = 1e-3,
             const std::function<void(const State&)>& seen = {});

/// The sound speed of the profile at a depth, m/s.
double speedAt(const raytrace::Layers& layers, double depth);

} // namespace integration
