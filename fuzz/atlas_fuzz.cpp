#include "processing/atlas.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

void check(bool holds)
{
    if (!holds)
        std::abort();
}

void checkLevels(const processing::AtlasLevels& levels)
{
    check(levels.isEmpty() ||
          (levels.firstKey() >= 0 && levels.lastKey() < processing::AtlasGrid::levels));
}

} // namespace

// The text of an atlas file: however odd, it stays within the grid, and every value that is kept is
// a finite number.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static processing::AtlasGrid grid;
    processing::AtlasLevels levels;
    if (size == 0)
        return 0;
    std::FILE* const stream = fmemopen(const_cast<std::uint8_t*>(data), size, "rb");
    if (stream == nullptr)
        return 0;
    processing::WorldOceanAtlas::fnReadWOAFile(stream, levels, grid);
    std::fclose(stream);
    checkLevels(levels);
    for (int latitude = 0; latitude < processing::AtlasGrid::latitudes; latitude += 7) {
        for (const int longitude : {0, 10, 359}) {
            for (int level = 0; level < processing::AtlasGrid::levels; ++level)
                check(std::isfinite(grid.value(latitude, longitude, level)));
        }
    }
    return 0;
}
