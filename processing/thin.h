#pragma once

#include "raytrace/layers.h"

#include <cstdint>
#include <vector>

namespace processing {

/// Bounds of thinning. Tolerances compare as 32-bit floats, as which requests give them.
namespace thinning {
constexpr float minTolerance = 0.01F;     ///< itself allowed
constexpr float maxTolerance = 10.0F;     ///< itself allowed, by the routine
constexpr float maxAskedTolerance = 1.0F; ///< itself allowed, in a request
constexpr double minLastDepth = 11500.0;  ///< m, the last sample lies here or deeper
} // namespace thinning

/// Whether `tolerance` lies from 0.01 up to `most`; not a number does not.
bool isThinTolerance(double tolerance, float most);

/// The straight line through two samples, in the plane of depth (m) and sound speed (m/s), which
/// are taken as they are: a distance mixes the two units.
class SampleLine
{
  public:
    /// A line whose depths differ by less than 0.0001 m is vertical, else one whose speeds differ
    /// by less than 0.0001 m/s horizontal, at the speed of `first`.
    SampleLine(const raytrace::LayerRecord& first, const raytrace::LayerRecord& second);

    /// Distance of a sample: from a vertical line the difference in depth to `first`, from a
    /// horizontal one the difference in speed, else the length of the perpendicular. Where one
    /// leg of that is below 0.0001, the other leg.
    double distanceTo(const raytrace::LayerRecord& sample) const;

  private:
    double m_slope = 0.0;     // m/s per m
    double m_intercept = 0.0; // m/s
    double m_depth = 0.0;     // of the first sample, m
    bool m_isVertical = false;
    bool m_isHorizontal = false;
};

/// Indices, ascending, of the samples that carry the shape of a profile: the first, the second,
/// the last, and where the line through a kept sample and its predecessor leaves the samples by
/// `tolerance` or more. Between two kept samples none lies that far from the line through the
/// upper one and its predecessor. One pass over the samples.
///
/// Empty where nothing is thinned: a tolerance outside of 0.01 to 10, fewer than 2 samples, one
/// out of depth order (`findUnsortedDepths`), the last one above 11500 m.
std::vector<std::int32_t> thinnedSamples(const raytrace::Layers& samples, double tolerance);

} // namespace processing
