#include "fuzz/fuzzengine.h"
#include "raytrace/rayengine.h"
#include "raytrace/walk.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

// Layers as no request makes them: any numbers at all.
void traceRecords(const std::uint8_t* data, std::size_t size)
{
    raytrace::Layers layers(std::min<std::size_t>(size / sizeof(raytrace::LayerRecord), 64));
    for (std::size_t i = 0; i < layers.size(); ++i)
        std::memcpy(&layers[i], data + i * sizeof layers[i], sizeof layers[i]);
    raytrace::RayEngine engine(layers);
    raytrace::RayPoint reached;
    for (const double p : {0.0, 0.5, 1.0}) {
        for (const raytrace::Heading heading : {raytrace::Heading::Down, raytrace::Heading::Up}) {
            const int code = engine.raypath(60.0, p, 10.0, 1500.0, reached, heading);
            if (code != 0 && engine.message().empty())
                std::abort();
            if (!std::isfinite(reached.x) || !std::isfinite(reached.z))
                std::abort();
        }
    }
    if (engine.message().size() > raytrace::Walk::messageLength)
        std::abort();
    engine.depthsAtRanges(0.2);
    if (engine.path(0.2).size() > raytrace::Walk::crossingLimit(layers))
        std::abort();
}

} // namespace

// The body of a request for ray paths, and the same bytes as layers.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzzEngine().requestWebSocket(
        0, QStringLiteral("SVP_WebInterface"),
        QStringLiteral("x,ACTION=SVP_WebInterface/ShowRaypath,") +
            QString::fromUtf8(reinterpret_cast<const char*>(data), int(size)));
    traceRecords(data, size);
    return 0;
}
