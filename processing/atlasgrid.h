#pragma once

#include <array>
#include <memory>

namespace processing {

/// The values of one quantity at the levels of cells of one degree, all around the globe: 57 MB,
/// of which a latitude costs memory once a value has been put there.
class AtlasGrid
{
  public:
    static constexpr int latitudes = 180;  ///< from 90° south, northward
    static constexpr int longitudes = 360; ///< from 0°, eastward
    static constexpr int levels = 110;     ///< of a cell at most
    static constexpr double noData = -9999.99;

    AtlasGrid();

    /// Leaves "no data" at every level of every cell.
    void clear();

    /// The `levels` values of a cell, to be written.
    double* cell(int latitude, int longitude);

    /// One value. The indices lie within the grid.
    double value(int latitude, int longitude, int level) const;

    /// Index of the cells at a latitude or longitude in degrees, which are finite. Beyond a pole
    /// it is the one at the pole; longitudes go round, so -0.5 is 359.
    static int latitudeIndex(double latitude);
    static int longitudeIndex(double longitude);

  private:
    static constexpr int perLatitude = longitudes * levels;

    std::unique_ptr<double[]> m_values;
    std::array<bool, latitudes> m_isFilled{}; // the others hold no data, whatever stands there
};

} // namespace processing
