#pragma once

#include "datagram/receivedata.h"

#include <QString>

#include <vector>

/// What was read, in a surveyor's words.
namespace convert {

/// Sound speeds (m/s) that water can have; wide enough for lakes and the deepest trench.
constexpr double lowestSpeed = 1300.0;
constexpr double highestSpeed = 1700.0;

/// Whether at least half of the samples have such a speed. A few levels in air are common; a cast
/// of nothing else is a broken sensor or a wrong column.
bool hasPlausibleSpeeds(const std::vector<datagram::ProbeSample>& samples);

/// How many samples have another one.
int impossibleSpeeds(const std::vector<datagram::ProbeSample>& samples);

/// Whether each depth is greater than the one before.
bool areDepthsIncreasing(const std::vector<datagram::ProbeSample>& samples);

/// "21 levels, 0.50 to 14.50 m, 1498.12 to 1502.30 m/s"
QString levelsText(const std::vector<datagram::ProbeSample>& samples);

/// "1498.12 to 1502.30 m/s"
QString speedsText(const std::vector<datagram::ProbeSample>& samples);

/// "59 30.000 N 10 15.000 E", "no position" where either is unknown.
QString positionText(const datagram::ProbeHeader& header);

/// "2026-11-15 12:34:56"
QString timeText(const datagram::ProbeHeader& header);

/// The fourteen digits of a stamp.
QString stampText(const datagram::ProbeHeader& header);

} // namespace convert
