#pragma once

#include "raytrace/arc.h"
#include "raytrace/layers.h"
#include "raytrace/ray.h"

#include <array>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace raytrace {

class Walk;

/// The angles of the comparison: 90 (straight down) to 10 degrees below the horizontal, in radians.
constexpr std::array<double, 9> launchAngles = {radians(90), radians(80), radians(70),
                                                radians(60), radians(50), radians(40),
                                                radians(30), radians(20), radians(10)};

/// The horizontal ranges of the comparison, m.
constexpr std::array<double, 11> ranges = {10,   20,   50,   100,  200,  500,
                                           1000, 2000, 5000, 7000, 10000};

/// Depths (m) of one ray where it first reaches each of `ranges`; NaN where it does not.
using RangeDepths = std::array<double, ranges.size()>;

/// Traces rays through one profile at a time. One object serves one request.
class RayEngine
{
  public:
    /// What the core returns when it refuses.
    static constexpr int refused = -2;

    /// The profile to trace through: samples by depth, gradients included.
    explicit RayEngine(Layers layers = {}) : m_layers(std::move(layers)) {}
    void setLayers(Layers layers) { m_layers = std::move(layers); }

    /// The core: where a ray is after `time` seconds. It sets out at `depth` (m), where the sound
    /// speed is `speed` (m/s), with the sine `p` of its angle from the vertical; a negative one
    /// leads to negative distances. When the profile has another speed at that depth, the ray is
    /// refracted there.
    ///
    /// Returns 0, or `refused` with the reason in `message()` and `reached` left alone: arguments
    /// out of `limits`, a depth outside of the profile, samples that make no layers, or a ray that
    /// leaves the profile or crosses too many layers before the time is over.
    int raypath(double time, double p, double depth, double speed, RayPoint& reached,
                Heading heading = Heading::Down);

    /// The path of a ray from the first sample, `depression` radians below the horizontal (0 to
    /// pi/2), down to the last sample, back up to the depth of the first one, or for a minute. It
    /// holds the start, each boundary of layers that the ray meets, and as many points inside that
    /// no arc is off its chord by more than `limits::chordError`. Where the core refuses, it ends:
    /// it is the start alone for a ray that cannot set out, and empty without samples.
    std::vector<RayPoint> path(double depression);

    /// The depths of the ray that `path` traces; none when the ray cannot set out. No ray of 10 to
    /// 90 degrees takes a minute to the last range through water of 1400 to 1700 m/s, so that this
    /// end is not looked for.
    std::optional<RangeDepths> depthsAtRanges(double depression);

    /// Why the core last refused, at most `Walk::messageLength` characters; empty until it does.
    /// A path that ends at the bottom or the top of the profile counts, since the time is not over.
    const std::string& message() const { return m_message; }

  private:
    Launch launchFromTop(double depression) const;
    bool isBackAtTop(const Launch& launch, const Arc& arc) const;
    void keepMessage(const Walk& walk);

    Layers m_layers;
    std::string m_message;
};

} // namespace raytrace
