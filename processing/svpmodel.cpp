#include "processing/svpmodel.h"

#include "processing/check.h"

namespace processing {

int CSVPModel::markValidSamples()
{
    marks = validSampleMarks(samples);
    return samples.empty() ? -1 : 0;
}

void CSVPModel::blank()
{
    *this = CSVPModel();
}

} // namespace processing
