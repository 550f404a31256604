#include "tests/raytrace/integration.h"

#include <cmath>

namespace integration {

namespace {

struct Line
{
    double depth;
    double speed;
    double slope;
};

Line lineOf(const raytrace::Layers& layers, std::size_t layer)
{
    const auto& a = layers[layer];
    const auto& b = layers[layer + 1];
    return {a.d, a.c, (b.c - a.c) / (b.d - a.d)};
}

struct Rates
{
    double x;
    double z;
    double angle;
};

// sin(angle) / c stays the same (Snell), so the angle changes with the speed that the ray meets.
Rates ratesAt(const Line& line, double z, double angle)
{
    const double speed = line.speed + line.slope * (z - line.depth);
    return {speed * std::sin(angle), speed * std::cos(angle), line.slope * std::sin(angle)};
}

// One Runge-Kutta step of fourth order.
State stepped(const Line& line, const State& s, double h)
{
    const Rates k1 = ratesAt(line, s.z, s.angle);
    const Rates k2 = ratesAt(line, s.z + h / 2 * k1.z, s.angle + h / 2 * k1.angle);
    const Rates k3 = ratesAt(line, s.z + h / 2 * k2.z, s.angle + h / 2 * k2.angle);
    const Rates k4 = ratesAt(line, s.z + h * k3.z, s.angle + h * k3.angle);
    return {s.time + h, s.x + h / 6 * (k1.x + 2 * k2.x + 2 * k3.x + k4.x),
            s.z + h / 6 * (k1.z + 2 * k2.z + 2 * k3.z + k4.z),
            s.angle + h / 6 * (k1.angle + 2 * k2.angle + 2 * k3.angle + k4.angle)};
}

bool headsDown(const Line& line, const State& s)
{
    const double cosine = std::cos(s.angle);
    return std::abs(cosine) < 1e-12 ? line.slope < 0.0 : cosine > 0.0;
}

} // namespace

double speedAt(const raytrace::Layers& layers, double depth)
{
    std::size_t layer = 0;
    while (layer + 2 < layers.size() && layers[layer + 1].d <= depth)
        ++layer;
    const Line line = lineOf(layers, layer);
    return line.speed + line.slope * (depth - line.depth);
}

State follow(const raytrace::Layers& layers, State state, double endTime, double step,
             const std::function<void(const State&)>& seen)
{
    std::size_t layer = 0;
    while (layer + 2 < layers.size() && layers[layer + 1].d <= state.z)
        ++layer;
    if (layers[layer].d == state.z && !headsDown(lineOf(layers, layer), state)) {
        if (layer == 0)
            return state;
        --layer;
    }
    while (state.time < endTime) {
        const Line line = lineOf(layers, layer);
        const double top = layers[layer].d;
        const double bottom = layers[layer + 1].d;
        double h = std::min(step, endTime - state.time);
        State next = stepped(line, state, h);
        const bool isBelow = next.z > bottom;
        const bool isAbove = next.z < top;
        if (isBelow || isAbove) {
            // The step that ends at the boundary, by halving.
            double inside = 0.0;
            double outside = h;
            for (int i = 0; i < 100; ++i) {
                h = (inside + outside) / 2;
                next = stepped(line, state, h);
                (next.z > bottom || next.z < top ? outside : inside) = h;
            }
            next = stepped(line, state, outside);
            next.z = isBelow ? bottom : top;
            if (seen)
                seen(next);
            if ((isAbove && layer == 0) || (isBelow && layer + 2 == layers.size()))
                return next;
            layer = isBelow ? layer + 1 : layer - 1;
        } else if (seen) {
            seen(next);
        }
        state = next;
    }
    return state;
}

} // namespace integration
