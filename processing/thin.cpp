#include "processing/thin.h"

#include "processing/check.h"

#include <cmath>

namespace processing {

namespace {

// Differences below this, m and m/s, count as none.
constexpr double noDifference = 0.0001;

} // namespace

bool isThinTolerance(double tolerance, float most)
{
    const auto asked = float(tolerance);
    return asked >= thinning::minTolerance && asked <= most;
}

SampleLine::SampleLine(const raytrace::LayerRecord& first, const raytrace::LayerRecord& second)
    : m_intercept(first.c), m_depth(first.d)
{
    m_isVertical = std::abs(second.d - first.d) < noDifference;
    m_isHorizontal = !m_isVertical && std::abs(second.c - first.c) < noDifference;
    if (!m_isVertical && !m_isHorizontal) {
        m_slope = (second.c - first.c) / (second.d - first.d);
        m_intercept = first.c - m_slope * first.d;
    }
}

double SampleLine::distanceTo(const raytrace::LayerRecord& sample) const
{
    if (m_isVertical)
        return std::abs(sample.d - m_depth);
    if (m_isHorizontal)
        return std::abs(sample.c - m_intercept);
    const double foot = ((sample.c - m_intercept) * m_slope + sample.d) / (m_slope * m_slope + 1.0);
    const double alongDepth = std::abs(sample.d - foot);
    const double alongSpeed = std::abs(sample.c - (m_slope * foot + m_intercept));
    if (alongSpeed < noDifference)
        return alongDepth;
    if (alongDepth < noDifference)
        return alongSpeed;
    return std::sqrt(alongDepth * alongDepth + alongSpeed * alongSpeed);
}

std::vector<std::int32_t> thinnedSamples(const raytrace::Layers& samples, double tolerance)
{
    std::vector<std::int32_t> kept;
    if (!isThinTolerance(tolerance, thinning::maxTolerance) || samples.size() < 2 ||
        samples.back().d < thinning::minLastDepth || !findUnsortedDepths(samples).isEmpty())
        return kept;

    kept.push_back(0);
    std::size_t end = 1; // of the segment that begins one sample above
    while (end < samples.size()) {
        kept.push_back(std::int32_t(end));
        const SampleLine line(samples[end - 1], samples[end]);
        std::size_t next = end + 1;
        while (next < samples.size() && line.distanceTo(samples[next]) < tolerance)
            ++next;
        end = next == end + 1 ? next : next - 1;
    }
    return kept;
}

} // namespace processing
