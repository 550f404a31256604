#include "seawater/ifremer.h"
#include "seawater/pressure.h"
#include "seawater/soundspeed.h"

#include <gtest/gtest.h>

#include <cmath>

using seawater::ifremer_speed;

namespace {

// What the publication adds to the form in use.
double departure(double latitude, double depth)
{
    return 1.2e-6 * (depth - 1.0) * (latitude - 45.0);
}

} // namespace

// 1402.5 + 50 - 5.44 + 0.21 + 46.55 - 4.305 + 0.3045
TEST(IfremerSpeed, IsTheSumOfItsTermsAtTheSurface)
{
    EXPECT_NEAR(ifremer_speed(10.0, 35.0, 45.0, 0.0), 1489.8195, 1e-9);
    EXPECT_NEAR(ifremer_speed(0.0, 0.0, 45.0, 0.0), 1402.5, 1e-9);
}

// Each term worked out by hand at a place where few others count.
TEST(IfremerSpeed, HasEachTerm)
{
    // Pure cold water at 1000 m: 15.6 + 0.255 - 0.0073.
    EXPECT_NEAR(ifremer_speed(0.0, 0.0, 45.0, 1000.0), 1402.5 + 15.8477, 1e-9);
    // 10 000 m: 156 + 25.5 - 7.3.
    EXPECT_NEAR(ifremer_speed(0.0, 0.0, 45.0, 10000.0), 1402.5 + 174.2, 1e-9);
    // Salinity at depth: 1.33·35 + 1.43e-5·35·1000 = 46.55 + 0.5005.
    EXPECT_NEAR(ifremer_speed(0.0, 35.0, 45.0, 1000.0), 1402.5 + 15.8477 + 47.0505, 1e-9);
    // Temperature at depth: 44.77 as at the surface, - 9.5e-13·10·1e12 + 3e-7·100·1e4 = -9.5 + 0.3.
    EXPECT_NEAR(ifremer_speed(10.0, 0.0, 45.0, 10000.0), 1402.5 + 174.2 + 44.77 - 9.2, 1e-9);
    // Below 0 degrees: -5 - 0.0544 - 0.00021, and with salinity 35: 46.55 + 0.4305 + 0.003045.
    EXPECT_NEAR(ifremer_speed(-1.0, 35.0, 45.0, 0.0), 1402.5 - 5.05461 + 46.983545, 1e-9);
}

TEST(IfremerSpeed, TheLatitudeCountsForNextToNothing)
{
    EXPECT_NEAR(ifremer_speed(0.0, 0.0, 90.0, 0.0), 1402.5 + 5.4e-5, 1e-10);
    EXPECT_NEAR(ifremer_speed(0.0, 0.0, -90.0, 0.0), 1402.5 - 1.62e-4, 1e-10);
    // No factor of depth: as much at 10 000 m as at the surface.
    EXPECT_NEAR(ifremer_speed(0.0, 0.0, 0.0, 10000.0), 1402.5 + 174.2 - 5.4e-5, 1e-9);
}

// The surface values of UNESCO technical papers in marine science 44.
TEST(IfremerSpeed, LiesWithinItsAccuracyOfThePublishedTable)
{
    const struct
    {
        double salinity;
        double temperature;
        double speed;
    } rows[] = {
        {25, 0, 1435.8}, {25, 10, 1477.7}, {25, 20, 1510.3}, {25, 30, 1535.2},
        {35, 0, 1449.1}, {35, 10, 1489.8}, {35, 20, 1521.5}, {35, 30, 1545.6},
    };
    for (const auto& row : rows)
        EXPECT_NEAR(ifremer_speed(row.temperature, row.salinity, 45.0, 0.0), row.speed, 0.25)
            << row.salinity << " " << row.temperature;
}

// Another equation, in pressure: the two must tell the same of deep water once the published
// latitude term is put back. 0.2 m/s of this formula, 0.2 of the other and of its pressure.
TEST(IfremerSpeed, AgreesWithTheEquationInPressureOnceTheDepartureIsPutBack)
{
    for (const double latitude : {0.0, 45.0, 80.0}) {
        for (const double depth : {500.0, 2000.0, 4000.0, 6000.0, 8000.0}) {
            const double pressure = seawater::depthToPressure(latitude, depth);
            EXPECT_NEAR(ifremer_speed(2.0, 34.7, latitude, depth) + departure(latitude, depth),
                        seawater::unescoSoundSpeed(34.7, 2.0, pressure), 0.4)
                << latitude << " " << depth;
        }
    }
}

// The table in the header.
TEST(IfremerSpeed, TheDepartureIsAsLargeAsStated)
{
    EXPECT_NEAR(departure(0.0, 12000.0), -0.648, 0.0005);
    EXPECT_NEAR(departure(90.0, 6000.0), 0.324, 0.0005);
    EXPECT_NEAR(departure(30.0, 2000.0), -0.036, 0.0005);
    EXPECT_EQ(departure(45.0, 12000.0), 0.0);
}

TEST(IfremerSpeed, PassesUnknownsOn)
{
    const double nan = std::nan("");
    EXPECT_TRUE(std::isnan(ifremer_speed(nan, 35.0, 45.0, 0.0)));
    EXPECT_TRUE(std::isnan(ifremer_speed(10.0, nan, 45.0, 0.0)));
    EXPECT_TRUE(std::isnan(ifremer_speed(10.0, 35.0, nan, 0.0)));
    EXPECT_TRUE(std::isnan(ifremer_speed(10.0, 35.0, 45.0, nan)));
}
