#pragma once

#include "processing/extensionrows.h"
#include "raytrace/layers.h"

#include <QString>
#include <QVector>

#include <cstdint>
#include <vector>

namespace processing {

/// Scratch data of one action: the profile in work and what the steps derive from it. Nothing of
/// it outlives the action; `blank` empties it between two.
class CSVPModel
{
  public:
    raytrace::Layers samples;        ///< the profile in work, in request order
    std::vector<std::int32_t> marks; ///< per sample: 1 valid, 0 invalid
    ExtensionRows extension;         ///< rows to be joined below the samples
    QVector<float> workDepths;       ///< m
    QVector<float> workSpeeds;       ///< m/s
    std::vector<std::int32_t> kept;  ///< indices of the samples that thinning left

    /// Marks each sample of `samples` as valid or invalid in `marks`, by the rules of
    /// `validSampleMarks`. Returns -1, leaving no marks, when there are no samples, else 0.
    int markValidSamples();

    /// Drops the samples that are not valid and gives the indices, ascending, of those that stay.
    std::vector<std::int32_t> keepValid();

    /// Fills `extension` from the file `path`, see `processing::genExtensionData`.
    void genExtensionData(const QString& path);

    /// Joins `extension` below the samples, see `processing::extend`. Always 1.
    int extend();

    /// Joins rows below the samples that are computed for a water mass near the given one (degrees
    /// Celsius, practical salinity, decimal degrees), see `processing::extendIFREMER`. Where none
    /// fits, all is blank afterwards.
    void extendIFREMER(double temperature, double salinity, double latitude);

    /// Thins the samples to `kept`, see `thinnedSamples`; empty when nothing was thinned.
    void thinProfile(double tolerance);

    /// Empties all of it and gives the memory back.
    void blank();
};

} // namespace processing
