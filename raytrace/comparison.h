#pragma once

#include "raytrace/layers.h"
#include "raytrace/rayengine.h"

#include <array>
#include <optional>

namespace raytrace {

/// Depths (m) of two rays at one horizontal range; NaN for a ray that does not reach it.
struct DepthPair
{
    double first = 0.0;
    double second = 0.0;
};

/// How far apart two profiles lead their rays: for each of `ranges`, one pair for each of
/// `launchAngles`.
using Comparison = std::array<std::array<DepthPair, launchAngles.size()>, ranges.size()>;

/// Compares two profiles, gradients included; rays set out at the first sample of each. None when
/// one of them has fewer than two samples, or rays cannot set out in it.
std::optional<Comparison> compareProfiles(const Layers& first, const Layers& second);

} // namespace raytrace
