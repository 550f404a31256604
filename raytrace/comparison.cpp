#include "raytrace/comparison.h"

#include <utility>

namespace raytrace {

std::optional<Comparison> compareProfiles(const Layers& first, const Layers& second)
{
    Comparison comparison;
    RayEngine engine;
    for (const auto& [layers, place] :
         {std::make_pair(&first, &DepthPair::first), std::make_pair(&second, &DepthPair::second)}) {
        engine.setLayers(*layers);
        for (std::size_t angle = 0; angle < launchAngles.size(); ++angle) {
            const std::optional<RangeDepths> depths = engine.depthsAtRanges(launchAngles[angle]);
            if (!depths)
                return std::nullopt;
            for (std::size_t range = 0; range < ranges.size(); ++range)
                comparison[range][angle].*place = (*depths)[range];
        }
    }
    return comparison;
}

} // namespace raytrace
