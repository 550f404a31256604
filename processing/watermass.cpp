#include "processing/watermass.h"

#include "seawater/ifremer.h"
#include "settings/numbers.h"

#include <algorithm>
#include <cmath>

namespace processing {

namespace {

constexpr double matched = 0.1;    // m/s, itself a match
constexpr double unmoved = 0.0001; // m/s
constexpr int mostPasses = 1000;

constexpr double transitionDepth = 2000.0; // m, where the deep water begins
constexpr double deepTemperature = 2.0;    // degrees Celsius
constexpr double oceanDepth = 12000.0;     // m

// A value that may move within a margin on both sides of its start.
class Bounded
{
  public:
    // A margin below 0 leaves no room, and neither does one that is no number.
    Bounded(double start, double margin)
        : m_value(start), m_lowest(start - std::max(0.0, margin)),
          m_highest(start + std::max(0.0, margin))
    {
    }

    double value() const { return m_value; }
    void move(double by) { m_value += by; }
    bool isAtBound() const { return m_value <= m_lowest || m_value >= m_highest; }
    void clamp()
    {
        if (m_value < m_lowest)
            m_value = m_lowest;
        if (m_value > m_highest)
            m_value = m_highest;
    }

  private:
    double m_value;
    double m_lowest;
    double m_highest;
};

// Appends the depths of a segment, which lie by an exponential law: ten steps to the first point
// of the curve, the curve, and the end itself.
void appendSegment(std::vector<double>& depths, double begin, double end)
{
    constexpr int linear = 10;
    constexpr int curve = 90;
    const auto shape = [](int i) { return std::exp(double(i) * 7.0 / 90.0 - 5.0); };
    const double scale = (end - begin) / 7.0;
    for (int i = 0; i < linear; ++i)
        depths.push_back(begin + double(i + 1) * scale * shape(0) / 11.0);
    for (int i = 0; i < curve; ++i)
        depths.push_back(begin + scale * shape(i));
    depths.back() = end;
}

} // namespace

void adjust_salinity_and_temperature(double temperature, double salinity, double latitude,
                                     double depth, double targetSpeed, double temperatureMargin,
                                     double salinityMargin, double& fittedSalinity,
                                     double& fittedTemperature)
{
    Bounded s(salinity, salinityMargin);
    Bounded t(temperature, temperatureMargin);
    double salinityStep = 3.0;
    double temperatureStep = 0.5;
    const auto residualNow = [&] {
        return seawater::ifremer_speed(t.value(), s.value(), latitude, depth) - targetSpeed;
    };

    double residual = residualNow();
    double previous = residual;
    bool isDone = std::abs(residual) <= matched || !std::isfinite(residual);
    for (int pass = 0; pass < mostPasses && !isDone; ++pass) {
        const bool changesSign = (residual > 0.0) != (previous > 0.0);
        if (changesSign) {
            salinityStep -= 1.0;
            if (salinityStep <= 0.0)
                salinityStep = 1.0;
            temperatureStep -= 0.05;
            if (temperatureStep < 0.0)
                temperatureStep = 0.01;
        } else {
            const double direction = residual > 0.0 ? -1.0 : 1.0;
            s.move(direction * salinityStep);
            t.move(direction * temperatureStep);
        }
        s.clamp();
        t.clamp();
        previous = residual;
        residual = residualNow();
        isDone = std::abs(residual) <= matched ||
                 (!changesSign && std::abs(residual - previous) < unmoved) ||
                 (t.isAtBound() && s.isAtBound());
    }
    fittedSalinity = s.value();
    fittedTemperature = t.value();
}

std::vector<double> syntheticExtensionDepths(double lastDepth)
{
    std::vector<double> depths;
    if (!std::isfinite(lastDepth) || lastDepth >= oceanDepth)
        return depths;
    if (lastDepth < 1800.0) {
        appendSegment(depths, lastDepth, transitionDepth);
        for (int i = 1; i <= 100; ++i)
            depths.push_back(transitionDepth + 100.0 * double(i));
    } else {
        appendSegment(depths, std::max(lastDepth, transitionDepth), oceanDepth);
    }
    return depths;
}

bool extendIFREMER(raytrace::Layers& samples, ExtensionRows& rows, double temperature,
                   double salinity, double latitude)
{
    constexpr double margin = 5.0;       // degrees Celsius and psu
    constexpr double placedBelow = 10.0; // m
    constexpr float placeholder = -1.0F;

    if (samples.empty())
        return false;
    const raytrace::LayerRecord last = samples.back();
    double fittedSalinity = 0.0;
    double fittedTemperature = 0.0;
    adjust_salinity_and_temperature(temperature, salinity, latitude, last.d, last.c, margin, margin,
                                    fittedSalinity, fittedTemperature);
    const double misfit =
        seawater::ifremer_speed(fittedTemperature, fittedSalinity, latitude, last.d) - last.c;
    // What is not a number does not fit either.
    if (!(std::abs(misfit) < 1.0))
        return false;

    rows = ExtensionRows();
    for (const double depth : syntheticExtensionDepths(last.d)) {
        if (depth > placedBelow) {
            rows.depths.append(float(depth));
            rows.speeds.append(placeholder);
        }
    }
    const std::size_t measured = samples.size();
    extend(samples, rows);

    // Only for depths above the transition, so the divisor is not 0.
    const auto fallingTemperature = [&](double depth) {
        return fittedTemperature + (deepTemperature - fittedTemperature) * (depth - last.d) /
                                       (transitionDepth - last.d);
    };
    for (std::size_t i = measured; i < samples.size(); ++i) {
        raytrace::LayerRecord& sample = samples[i];
        if (!(sample.c < 0.0))
            continue;
        // The layer below a sample has the temperature of its lower end.
        const double end = i + 1 < samples.size() ? samples[i + 1].d : sample.d;
        const double inLayer =
            sample.d < transitionDepth ? fallingTemperature(end) : deepTemperature;
        sample.c = double(settings::toFloat32(
            seawater::ifremer_speed(inLayer, fittedSalinity, latitude, sample.d)));
    }
    raytrace::computeGradients(samples);
    return true;
}

} // namespace processing
