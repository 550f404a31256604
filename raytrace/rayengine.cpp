#include "raytrace/rayengine.h"

#include "raytrace/arc.h"
#include "raytrace/walk.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace raytrace {

namespace {

// Appends the points of an arc but for its end. False when there is no room for all of them, or
// when a gradient that is not that of the speeds leads beyond all numbers.
bool appendInside(Arc arc, double pieces, std::vector<RayPoint>& points, std::size_t limit)
{
    const std::size_t count = pieces < double(limit) ? std::size_t(pieces) : limit;
    for (std::size_t i = 1; i < count; ++i) {
        if (points.size() >= limit)
            return false;
        const Offset offset = offsetAfter(arc, arc.time * (double(i) / pieces));
        const RayPoint point = {arc.x + offset.x, arc.z + offset.z};
        if (!std::isfinite(point.x) || !std::isfinite(point.z))
            return false;
        points.push_back(point);
    }
    return true;
}

} // namespace

int RayEngine::raypath(double time, double p, double depth, double speed, RayPoint& reached,
                       Heading heading)
{
    Walk walk(m_layers, {std::abs(p), (1.0 - p) * (1.0 + p), depth, speed, heading}, time);
    walk.run([](const Arc&, const RayPoint&) { return true; });
    keepMessage(walk);
    if (walk.isRefused())
        return refused;
    reached = walk.position();
    if (p < 0.0)
        reached.x = -reached.x;
    return 0;
}

void RayEngine::keepMessage(const Walk& walk)
{
    if (walk.isRefused())
        m_message = walk.message();
}

Launch RayEngine::launchFromTop(double depression) const
{
    const double cosine = std::sin(depression);
    // The angle from the vertical: the cosine of pi/2 would not be 0.
    return {std::sin(pi / 2.0 - depression), cosine * cosine, m_layers.front().d,
            m_layers.front().c, Heading::Down};
}

// A ray that set out level at the top comes back to it level: it turns there, half way along an
// arc of the first layer.
bool RayEngine::isBackAtTop(const Launch& launch, const Arc& arc) const
{
    return launch.cosineSquare == 0.0 && arc.cosine < 0.0 && arc.dz == 0.0 && arc.dx > 0.0 &&
           m_layers.size() > 1 && arc.z == m_layers[1].d;
}

std::vector<RayPoint> RayEngine::path(double depression)
{
    std::vector<RayPoint> points;
    if (m_layers.empty())
        return points;
    const Launch launch = launchFromTop(depression);
    const std::size_t limit = Walk::crossingLimit(m_layers);
    points.reserve(m_layers.size() + 1);
    points.push_back({0.0, launch.depth});
    Walk walk(m_layers, launch, limits::maxTime);
    walk.run([&](const Arc& arc, const RayPoint& end) {
        if (isBackAtTop(launch, arc)) {
            Arc half = arc;
            half.time /= 2.0;
            half.dx /= 2.0;
            appendInside(half, piecesWithin(half, limits::chordError), points, limit);
            points.push_back({half.x + half.dx, launch.depth});
            return false;
        }
        const double pieces = piecesWithin(arc, limits::chordError);
        if (pieces > 1.0 && !appendInside(arc, pieces, points, limit))
            return false;
        if (points.size() >= limit)
            return false;
        // Behind a turn the boundary is crossed where the arc ended.
        if (end.x != points.back().x || end.z != points.back().z)
            points.push_back(end);
        return true;
    });
    keepMessage(walk);
    return points;
}

std::optional<RangeDepths> RayEngine::depthsAtRanges(double depression)
{
    RangeDepths depths;
    depths.fill(std::numeric_limits<double>::quiet_NaN());
    if (m_layers.empty())
        return std::nullopt;
    Walk walk(m_layers, launchFromTop(depression), limits::maxTime);
    bool hasSetOut = false;
    std::size_t reached = 0;
    walk.run<false>([&](const Arc& arc, const RayPoint& end) {
        hasSetOut = true;
        for (; reached < ranges.size() && end.x >= ranges[reached]; ++reached)
            depths[reached] = arc.z + depthAt(arc, ranges[reached] - arc.x);
        return reached < ranges.size();
    });
    keepMessage(walk);
    if (!hasSetOut)
        return std::nullopt;
    return depths;
}

} // namespace raytrace
