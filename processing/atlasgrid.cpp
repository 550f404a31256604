#include "processing/atlasgrid.h"

#include <algorithm>
#include <cmath>

namespace processing {

namespace {

std::size_t cellStart(int latitude, int longitude)
{
    return (std::size_t(latitude) * AtlasGrid::longitudes + std::size_t(longitude)) *
           AtlasGrid::levels;
}

} // namespace

// Not make_unique, which would write zeros and so take the memory that most sessions never use.
AtlasGrid::AtlasGrid() : m_values(new double[std::size_t(latitudes) * perLatitude]) {}

void AtlasGrid::clear()
{
    m_isFilled.fill(false);
}

double* AtlasGrid::cell(int latitude, int longitude)
{
    if (!m_isFilled[std::size_t(latitude)]) {
        std::fill_n(m_values.get() + cellStart(latitude, 0), perLatitude, noData);
        m_isFilled[std::size_t(latitude)] = true;
    }
    return m_values.get() + cellStart(latitude, longitude);
}

double AtlasGrid::value(int latitude, int longitude, int level) const
{
    return m_isFilled[std::size_t(latitude)]
               ? m_values[cellStart(latitude, longitude) + std::size_t(level)]
               : noData;
}

int AtlasGrid::latitudeIndex(double latitude)
{
    return int(std::clamp(latitude + 90.0, 0.0, double(latitudes - 1)));
}

int AtlasGrid::longitudeIndex(double longitude)
{
    double eastward = std::fmod(longitude, double(longitudes));
    if (eastward < 0.0)
        eastward += double(longitudes);
    // A little less than 0 rounds to 360.
    return std::min(int(eastward), longitudes - 1);
}

} // namespace processing
