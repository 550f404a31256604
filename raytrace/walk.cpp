#include "raytrace/walk.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>

namespace raytrace {

namespace {

// The squared cosine of a level ray, for want of digits: the sound speed at the launch may have
// been interpolated in another order than here.
constexpr double roundingOfSquare = 1e-14;

// As "%.6f" writes it, whatever the locale; without the sign that some systems give to NaN.
std::string sixDecimals(double value)
{
    if (std::isnan(value))
        return "nan";
    char text[400]; // the longest double has 309 digits before the point
    const auto written =
        std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 6);
    return {text, written.ptr};
}

bool isWithinLimits(const Launch& launch, double time)
{
    return time >= limits::minTime && time <= limits::maxTime && launch.sine >= 0.0 &&
           launch.sine <= 1.0 && launch.depth < limits::endOfDepth &&
           launch.speed >= limits::minSpeed && launch.speed <= limits::maxSpeed;
}

} // namespace

Walk::Walk(const Layers& layers, const Launch& launch, double time)
    : m_layers(layers), m_lastSample(layers.empty() ? 0 : layers.size() - 1), m_launch(launch),
      m_snell(launch.sine / launch.speed)
{
    m_at.crossingsLeft = crossingLimit(layers);
    m_at.remaining = time;
    m_at.z = launch.depth;
    if (!isWithinLimits(launch, time))
        refuse("@raypath: out of limits : T=%.6f", {time});
    else if (layers.size() < 2)
        refuse("@raypath : return = -2, AAA");
    else if (findLayer(launch.depth))
        setOut();
}

std::size_t Walk::crossingLimit(const Layers& layers)
{
    return 2 * layers.size() + limits::furtherCrossings;
}

bool Walk::findLayer(double depth)
{
    for (m_at.layer = 0; m_at.layer + 1 < m_layers.size(); ++m_at.layer) {
        if (upper().d <= depth && depth < lower().d)
            return true;
    }
    --m_at.layer;
    return refuse("svp[L].d = %.6f , svp[L + 1].d = %.6f\n@raypath : return = -2, QQQ",
                  {upper().d, lower().d});
}

void Walk::setOut()
{
    const double gradient = upper().gradient;
    m_at.way = m_launch.heading == Heading::Down ? 1.0 : -1.0;
    m_at.isInside = m_at.z != upper().d;
    m_at.speed = m_at.isInside ? upper().c + gradient * (m_at.z - upper().d) : upper().c;
    double cosineSquare = cosineSquareAt(m_launch, m_snell, m_at.speed);
    if (cosineSquare < -roundingOfSquare) {
        refuse("@raypath : return = -2, BBB");
        return;
    }
    const double levelUpTo = m_launch.cosineSquare == 0.0 ? roundingOfSquare : 0.0;
    if (m_launch.sine > 0.0 && !(cosineSquare > levelUpTo)) {
        setOutLevel();
        cosineSquare = 0.0;
    }
    m_at.cosine = std::sqrt(cosineSquare);
    if (!m_at.isInside && !m_at.isLevel && !goesDown())
        m_at.layer += aboveTop;
}

// A level ray bends to where sound is slower. Between two layers that both bend it back it goes on
// level, as it does in a layer of constant speed.
void Walk::setOutLevel()
{
    const double gradient = upper().gradient;
    m_launch.sine = 1.0;
    m_launch.cosineSquare = 0.0;
    m_launch.speed = m_at.speed;
    m_snell = 1.0 / m_at.speed;
    m_at.isLevel = gradient == 0.0 || (!m_at.isInside && gradient > 0.0 && m_at.layer > 0 &&
                                       m_layers[m_at.layer - 1].gradient <= 0.0);
    m_at.way = gradient > 0.0 ? -1.0 : 1.0;
}

bool Walk::refuseLayer()
{
    if (m_at.layer == aboveTop)
        return refuse("@raypath : return = -2, CCC");
    if (m_at.layer >= m_lastSample)
        return refuse("@raypath : return = -2, DDD");
    if (!(upper().d <= lower().d))
        return refuse("@raypath : return = -2, EEE");
    if (upper().c <= 0.0 || lower().c <= 0.0)
        return refuse("@raypath : return = -2, FFF");
    if (!std::isfinite(upper().gradient))
        return refuseNumbers(Step::Enter);
    // Not a letter of the row, and a blank before the comma: none of the exits above.
    return refuse("@raypath : return = -2 , XXX");
}

// Where a ray does not simply reach the boundary ahead.
bool Walk::leaveCrossing(Arc& arc, double cosineSquare)
{
    if (m_at.isLevel)
        return runLevel(arc);
    return cosineSquare > 0.0 ? stopInside(arc) : turn(arc, cosineSquare);
}

bool Walk::runLevel(Arc& arc)
{
    arc.snell = 1.0 / m_at.speed;
    arc.cosine = 0.0;
    arc.gradient = 0.0;
    arc.time = m_at.remaining;
    arc.dx = m_at.speed * m_at.remaining;
    arc.dz = 0.0;
    arc.fastest = m_at.speed;
    if (!std::isfinite(arc.dx))
        return refuseNumbers(Step::Cross);
    m_at.x += arc.dx;
    m_at.remaining = 0.0;
    return true;
}

bool Walk::turn(Arc& arc, double cosineSquare)
{
    // Rays turn where sound gets faster ahead; what else comes here is not a number, or comes
    // from a gradient that is not that of the speeds.
    const double bending = arc.gradient * m_at.way;
    if (!(cosineSquare <= 0.0 && bending > 0.0 && m_at.cosine > 0.0))
        return refuseNumbers(Step::Cross);
    if (isLevelChannel()) {
        m_at.isLevel = true;
        return runLevel(arc);
    }
    arc.dz = 0.0;
    arc.dx = 2.0 * m_at.cosine / (m_snell * bending);
    arc.time = 2.0 * std::atanh(m_at.cosine) / bending;
    arc.fastest = 1.0 / m_snell;
    if (!(arc.time <= m_at.remaining) || !std::isfinite(arc.dx))
        return stopInside(arc);
    m_at.remaining -= arc.time;
    m_at.x += arc.dx;
    m_at.way = -m_at.way;
    return true;
}

// The time ends inside of the arc, or the arc is not made of numbers.
bool Walk::stopInside(Arc& arc)
{
    if (!std::isfinite(arc.time) || !std::isfinite(arc.dx))
        return refuseNumbers(Step::Cross);
    const Offset offset = offsetAfter(arc, m_at.remaining);
    arc.time = m_at.remaining;
    arc.dx = offset.x;
    arc.dz = offset.z;
    if (!std::isfinite(offset.x) || !std::isfinite(offset.z))
        return refuseNumbers(Step::Cross);
    m_at.remaining = 0.0;
    m_at.x += arc.dx;
    m_at.z += arc.dz;
    return true;
}

// Whether the ray lies at a minimum of the sound speed and leaves it by next to nothing on either
// side. The arcs would be short without end, and their sum is a straight line.
bool Walk::isLevelChannel() const
{
    if (swing(m_at.layer) >= limits::levelWithin)
        return false;
    if (goesDown()) {
        return m_at.z == upper().d && m_at.layer > 0 && m_layers[m_at.layer - 1].gradient < 0.0 &&
               swing(m_at.layer - 1) <
                   std::min(limits::levelWithin, m_at.z - m_layers[m_at.layer - 1].d);
    }
    return m_at.z == lower().d && m_at.layer + 2 < m_layers.size() &&
           m_layers[m_at.layer + 1].gradient > 0.0 &&
           swing(m_at.layer + 1) <
               std::min(limits::levelWithin, m_layers[m_at.layer + 2].d - m_at.z);
}

// How far the ray gets into a layer before it is level there, m.
double Walk::swing(std::size_t layer) const
{
    const double sine = m_snell * m_at.speed;
    return m_at.cosine * m_at.cosine / (sine * (1.0 + sine)) * m_at.speed /
           std::abs(m_layers[layer].gradient);
}

bool Walk::refuse(const char* format, std::initializer_list<double> values)
{
    m_at.remaining = 0.0;
    std::string_view rest = format;
    constexpr std::string_view place = "%.6f";
    m_message.clear();
    for (const double value : values) {
        const std::size_t found = rest.find(place);
        m_message.append(rest.substr(0, found)).append(sixDecimals(value));
        rest.remove_prefix(found + place.size());
    }
    m_message.append(rest);
    if (m_message.size() > messageLength)
        m_message.resize(messageLength);
    return false;
}

bool Walk::refuseNumbers(Step step)
{
    const char* format = "@raypath: exception e,normal , L=%.6f g=%.6f";
    if (m_at.isLevel)
        format = "@raypath: exception e,constant sound speed in layer,horizontal ray , L=%.6f,  "
                 "g=%.6f";
    else if (m_launch.sine == 0.0 && goesDown())
        format = "@raypath: exception e, downward ray, L=%.6f, g=%.6f";
    else if (m_launch.sine == 0.0)
        format = "@raypath: exception e, vertical upward ray, L = %.6f g = %.6f";
    else if (step == Step::Cross)
        format = "Exception e @raypath, normal layer iteration, L=%.6f , g = %.6f";
    return refuse(format, {double(m_at.layer), upper().gradient});
}

} // namespace raytrace
