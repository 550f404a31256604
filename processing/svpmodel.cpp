#include "processing/svpmodel.h"

#include "processing/check.h"
#include "processing/thin.h"
#include "processing/watermass.h"

namespace processing {

int CSVPModel::markValidSamples()
{
    marks = validSampleMarks(samples);
    return samples.empty() ? -1 : 0;
}

std::vector<std::int32_t> CSVPModel::keepValid()
{
    markValidSamples();
    std::vector<std::int32_t> valid;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        if (marks[i] != 0) {
            samples[valid.size()] = samples[i];
            valid.push_back(std::int32_t(i));
        }
    }
    samples.resize(valid.size());
    raytrace::computeGradients(samples);
    return valid;
}

void CSVPModel::genExtensionData(const QString& path)
{
    extension = processing::genExtensionData(path, samples);
}

int CSVPModel::extend()
{
    return processing::extend(samples, extension);
}

void CSVPModel::extendIFREMER(double temperature, double salinity, double latitude)
{
    if (!processing::extendIFREMER(samples, extension, temperature, salinity, latitude))
        blank();
}

void CSVPModel::thinProfile(double tolerance)
{
    kept = thinnedSamples(samples, tolerance);
}

void CSVPModel::blank()
{
    *this = CSVPModel();
}

} // namespace processing
