#include "convert/summary.h"

#include <algorithm>
#include <cmath>

namespace convert {

namespace {

using datagram::ProbeHeader;
using datagram::ProbeSample;

QString rangeText(const std::vector<ProbeSample>& samples, double ProbeSample::*value)
{
    const auto [lowest, highest] = std::minmax_element(
        samples.begin(), samples.end(),
        [value](const ProbeSample& a, const ProbeSample& b) { return a.*value < b.*value; });
    return QStringLiteral("%1 to %2")
        .arg((*lowest).*value, 0, 'f', 2)
        .arg((*highest).*value, 0, 'f', 2);
}

// Degrees times 100 plus minutes as "59 30.000 N".
QString coordinateText(double coordinate, char mark)
{
    // Rounded first, so that no minutes read as 60.
    const double thousandths = std::round(coordinate * 1000.0);
    double degrees = std::floor(thousandths / 100000.0);
    double minutes = thousandths / 1000.0 - degrees * 100.0;
    if (minutes >= 59.9995) {
        degrees += 1.0;
        minutes = 0.0;
    }
    return QStringLiteral("%1 %2 %3")
        .arg(int(degrees), 2, 10, QLatin1Char('0'))
        .arg(minutes, 6, 'f', 3, QLatin1Char('0'))
        .arg(QLatin1Char(mark));
}

QString padded(int number, int digits)
{
    return QStringLiteral("%1").arg(number, digits, 10, QLatin1Char('0'));
}

} // namespace

int impossibleSpeeds(const std::vector<ProbeSample>& samples)
{
    const auto count = std::count_if(samples.begin(), samples.end(), [](const ProbeSample& sample) {
        return !(sample.speed >= lowestSpeed && sample.speed <= highestSpeed);
    });
    return int(count);
}

bool hasPlausibleSpeeds(const std::vector<ProbeSample>& samples)
{
    return std::size_t(impossibleSpeeds(samples)) * 2 <= samples.size();
}

bool areDepthsIncreasing(const std::vector<ProbeSample>& samples)
{
    return std::adjacent_find(samples.begin(), samples.end(),
                              [](const ProbeSample& a, const ProbeSample& b) {
                                  return !(a.depth < b.depth);
                              }) == samples.end();
}

QString levelsText(const std::vector<ProbeSample>& samples)
{
    QString count = samples.size() == 1 ? QStringLiteral("1 level")
                                        : QStringLiteral("%1 levels").arg(samples.size());
    if (samples.empty())
        return count;
    return QStringLiteral("%1, %2 m, %3")
        .arg(count, rangeText(samples, &ProbeSample::depth), speedsText(samples));
}

QString speedsText(const std::vector<ProbeSample>& samples)
{
    return rangeText(samples, &ProbeSample::speed) + QStringLiteral(" m/s");
}

QString positionText(const ProbeHeader& header)
{
    if (header.latitudeMark == 'I' || header.longitudeMark == 'I')
        return QStringLiteral("no position");
    return coordinateText(header.latitude, header.latitudeMark) + QLatin1Char(' ') +
           coordinateText(header.longitude, header.longitudeMark);
}

QString timeText(const ProbeHeader& header)
{
    return QStringLiteral("%1-%2-%3 %4:%5:%6")
        .arg(padded(header.year, 4), padded(header.month, 2), padded(header.day, 2),
             padded(header.hours, 2), padded(header.minutes, 2), padded(header.seconds, 2));
}

QString stampText(const ProbeHeader& header)
{
    return padded(header.year, 4) + padded(header.month, 2) + padded(header.day, 2) +
           padded(header.hours, 2) + padded(header.minutes, 2) + padded(header.seconds, 2);
}

} // namespace convert
