#pragma once

#include "processing/extensionrows.h"
#include "raytrace/layers.h"

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

    /// Marks each sample of `samples` as valid or invalid in `marks`, by the rules of
    /// `validSampleMarks`. Returns -1, leaving no marks, when there are no samples, else 0.
    int markValidSamples();

    /// Empties all of it and gives the memory back.
    void blank();
};

} // namespace processing
