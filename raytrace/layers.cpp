#include "raytrace/layers.h"

namespace raytrace {

Layers makeLayers(const float* depths, const float* speeds, std::size_t count)
{
    Layers layers(count);
    for (std::size_t i = 0; i < count; ++i) {
        layers[i].d = double(depths[i]);
        layers[i].c = double(speeds[i]);
    }
    computeGradients(layers);
    return layers;
}

void computeGradients(Layers& layers)
{
    for (std::size_t i = 0; i + 1 < layers.size(); ++i) {
        LayerRecord& upper = layers[i];
        const LayerRecord& lower = layers[i + 1];
        upper.gradient = (upper.c - lower.c) / (upper.d - lower.d);
    }
    if (!layers.empty())
        layers.back().gradient = 0.0;
}

} // namespace raytrace
