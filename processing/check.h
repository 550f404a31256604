#pragma once

#include "profile/requestblock.h"
#include "raytrace/layers.h"

#include <QString>
#include <QVector>

#include <cstdint>
#include <vector>

/// What makes a profile fit to be sent, and the texts that say what is missing.
namespace processing {

/// The bounds of a valid profile. They are fixed: the limits of the settings file do not move
/// them, since the receiver of the profile applies these.
namespace limits {
constexpr double minSoundSpeed = 1400.0;   ///< m/s, itself valid
constexpr double maxSoundSpeed = 1700.0;   ///< m/s, itself valid
constexpr double minDepthStep = 0.01;      ///< m below the last valid sample
constexpr double fullOceanDepth = 11999.0; ///< m, the last sample lies here or deeper
constexpr double surface = 0.0;            ///< m, exactly
constexpr double sortedDepthStep = 0.005;  ///< m below the neighbour, for `findUnsortedDepths`
} // namespace limits

/// Marks each sample as valid (1) or not (0), in three passes: depth below 0 m; sound speed
/// outside of 1400 to 1700 m/s; not at least 0.01 m deeper than the last valid sample above it.
/// The last pass compares with the last sample that it accepted, so a run of shallower samples
/// behind a deep one falls as a whole, and the first valid sample never falls by it.
std::vector<std::int32_t> validSampleMarks(const raytrace::Layers& samples);

/// Indices, ascending, of the samples that do not lie more than 0.005 m below their direct
/// predecessor, valid or not.
QVector<int> findUnsortedDepths(const raytrace::Layers& samples);

/// Whether a profile made of these samples needs no repair at all: every sample valid, one at
/// exactly 0 m, the last one at 11999 m or deeper.
bool isReadyToSend(const raytrace::Layers& samples);

/// Whether every sample is valid and one lies at exactly 0 m, however deep the last one lies.
bool isSoundToSurface(const raytrace::Layers& samples);

/// What the check found.
struct CheckResult
{
    QVector<double> invalidSpeeds; ///< m/s, in sample order
    QVector<double> invalidDepths; ///< m, in the same order
    QString verdict;               ///< what to do, lines ended by "\n" but for a lone first one
};

/// Checks samples; needs no minimum of them.
CheckResult checkSamples(const raytrace::Layers& samples);

/// Text of a check request that cannot be judged; empty when it can.
QString checkRefusal(const profile::ValueLists& lists);

/// The short report on a profile.
struct ProfileReport
{
    QString text;          ///< "Profile seems ok!" or the faults, one line each
    QVector<int> problems; ///< samples out of depth order, see `findUnsortedDepths`
    raytrace::Layers used; ///< with `clean`: the samples to trace through; else all of them

    /// A profile with samples out of order does not pass, whatever the text says.
    bool passes() const { return problems.isEmpty(); }
};

/// Reports on `count` samples. With `clean`, the text is always the good one, and `used` holds the
/// valid samples alone, continued by the deeper rows of the default extension profile when the
/// last of them lies above 11999 m.
ProfileReport profileReport(const QVector<float>& depths, const QVector<float>& speeds, bool clean);

/// What a send request holds that the send test needs.
struct SendCheck
{
    bool passes = false;
    bool listsSwapped = false; ///< short form: the depths stood before the speeds
    QString message;           ///< set when the request's form is wrong
};

/// The send test on a request text, in the short form (7 pieces) or the full one (16 pieces).
/// Lists of unequal length are judged by their complete pairs; it is enough that the last depth
/// reaches down, with a speed or without.
/// With `expected`, another number of pieces is wrong: pieces that are empty do not count, so a
/// request of one form could look like the other.
SendCheck quickCheck(const QString& request, int expected = 0);

} // namespace processing
