#pragma once

#include "raytrace/arc.h"
#include "raytrace/layers.h"
#include "raytrace/ray.h"

#include <cstddef>
#include <initializer_list>
#include <string>

namespace raytrace {

/// Follows one ray through the layers of a profile, arc by arc.
///
///     Walk walk(layers, launch, 2.5);
///     walk.run([](const Arc& arc, const RayPoint& end) { … return true; });
///     if (walk.isRefused())
///         … walk.message() …
///
/// Snell's law is applied from the launch to each boundary, not from boundary to boundary, so that
/// rounding does not add up over the layers.
class Walk
{
  public:
    /// Characters that a message holds; a longer text is cut.
    static constexpr std::size_t messageLength = 499;

    /// Sets out for `time` seconds. The layers must outlive the walk. When they have another speed
    /// at the depth of the launch than the launch has, the ray is refracted there.
    Walk(const Layers& layers, const Launch& launch, double time);

    /// Goes on until the time is over, the ray cannot go on, or `take` answers false. It is shown
    /// each arc and where it ends: at the boundary of a layer, where the time is over, or, when the
    /// ray turns in the layer, at the depth where the arc began. Without a clock the time does not
    /// pass at boundaries, and arcs do not tell theirs.
    template <bool hasClock = true, typename Take> void run(Take take);

    /// Where the last arc ended.
    RayPoint position() const { return {m_at.x, m_at.z}; }
    /// Whether the walk ended before the time was over, or did not begin.
    bool isRefused() const { return !m_message.empty(); }
    /// Why it did; empty when it did not.
    const std::string& message() const { return m_message; }
    /// Layers that one ray crosses at most, see `limits::furtherCrossings`.
    static std::size_t crossingLimit(const Layers& layers);

  private:
    enum class Step
    {
        Enter, // the layer's gradient
        Cross  // the way through it
    };

    /// Where the ray is and how it goes on.
    struct State
    {
        std::size_t layer = 0;         // between this sample and the next one
        std::size_t crossingsLeft = 0; // of layers
        double remaining = 0.0;        // travel time, s
        double x = 0.0;
        double z = 0.0;
        double speed = 0.0;
        double cosine = 0.0;   // without its sign
        double way = 1.0;      // 1 down, -1 up
        bool isInside = false; // between two samples, not at one
        bool isLevel = false;  // and stays so for the rest of the time
    };

    bool findLayer(double depth);
    void setOut();
    void setOutLevel();
    bool leaveCrossing(Arc& arc, double cosineSquare);
    bool runLevel(Arc& arc);
    bool turn(Arc& arc, double cosineSquare);
    bool stopInside(Arc& arc);
    bool isLevelChannel() const;
    double swing(std::size_t layer) const;
    static double cosineSquareAt(const Launch& launch, double snell, double speed);
    static bool isLayer(const LayerRecord& upper, const LayerRecord& lower);
    bool refuseLayer();
    bool refuse(const char* format, std::initializer_list<double> values = {});
    bool refuseNumbers(Step step);

    bool goesDown() const { return m_at.way > 0.0; }
    const LayerRecord& upper() const { return m_layers[m_at.layer]; }
    const LayerRecord& lower() const { return m_layers[m_at.layer + 1]; }

    static constexpr std::size_t aboveTop = std::size_t(-1);

    const Layers& m_layers;
    std::size_t m_lastSample;
    Launch m_launch;
    double m_snell; // sine over sound speed, the same all along the ray
    State m_at;
    std::string m_message;
};

// What is done at each layer is here, for the sake of speed: a profile has thousands of them, and
// what changes from one to the next stays in local variables.

// From the launch, whose sound speed is c: cos^2 - (sin/c)^2 (speed^2 - c^2). The difference of
// squares as a product keeps the digits where the two speeds are close.
inline double Walk::cosineSquareAt(const Launch& launch, double snell, double speed)
{
    return launch.cosineSquare - snell * snell * ((speed - launch.speed) * (speed + launch.speed));
}

inline bool Walk::isLayer(const LayerRecord& upper, const LayerRecord& lower)
{
    return upper.d <= lower.d && !(upper.c <= 0.0) && !(lower.c <= 0.0) &&
           std::isfinite(upper.gradient);
}

template <bool hasClock, typename Take> void Walk::run(Take take)
{
    // Copies, since the compiler cannot know that `take` does not change the members.
    State at = m_at;
    const Launch launch = m_launch;
    const double snell = m_snell;
    const LayerRecord* const samples = m_layers.data();
    const std::size_t lastSample = m_lastSample;
    while (at.remaining > 0.0) {
        if (at.crossingsLeft == 0 || at.layer >= lastSample ||
            !isLayer(samples[at.layer], samples[at.layer + 1])) {
            m_at = at;
            refuseLayer();
            return;
        }
        --at.crossingsLeft;
        const double gradient = samples[at.layer].gradient;
        const LayerRecord& end = samples[at.way > 0.0 ? at.layer + 1 : at.layer];
        double cosineSquare = cosineSquareAt(launch, snell, end.c);
        if (at.isInside) {
            // Close to a boundary nothing would be left of the difference of the two speeds.
            const double faster = gradient * (end.d - at.z);
            cosineSquare =
                at.cosine * at.cosine - snell * snell * faster * (2.0 * at.speed + faster);
        }

        // The chord points along the mean of the angles at the ends: dx = dz tan(mean).
        const double cosine = std::sqrt(cosineSquare);
        const double cosines = at.cosine + cosine;
        const double way = std::abs(end.d - at.z) * (at.speed + end.c);
        Arc arc;
        arc.x = at.x;
        arc.z = at.z;
        arc.speed = at.speed;
        arc.snell = snell;
        arc.cosine = at.way * at.cosine;
        arc.gradient = gradient;
        if constexpr (hasClock) {
            // The difference of atanh(cosine) at the ends over the gradient.
            const double bent = gradient * snell * way;
            const double slowness =
                2.0 * way * cosines /
                (cosines * cosines * (at.speed * at.speed + end.c * end.c) + bent * bent);
            arc.time = slowness * atanhOver(gradient * slowness);
        }
        arc.dx = snell * way / cosines;
        arc.dz = end.d - at.z;
        arc.fastest = at.speed > end.c ? at.speed : end.c;

        if (cosineSquare > 0.0 && arc.time <= at.remaining && std::isfinite(arc.dx) &&
            !at.isLevel) {
            at.remaining -= arc.time;
            at.x += arc.dx;
            at.z = end.d;
            at.speed = end.c;
            at.cosine = cosine;
            at.isInside = false;
            at.layer += at.way > 0.0 ? std::size_t(1) : aboveTop;
            if (!take(arc, RayPoint{at.x, at.z}))
                break;
        } else {
            Arc other = arc;
            m_at = at;
            if (!leaveCrossing(other, cosineSquare))
                return;
            at = m_at;
            if (!take(other, RayPoint{at.x, at.z}))
                break;
        }
    }
    m_at = at;
}

} // namespace raytrace
