#include "seawater/soundspeed.h"

#include <gtest/gtest.h>

#include <cmath>

using seawater::chenMilleroSoundSpeed;

TEST(ChenMilleroSoundSpeed, GivesThePublishedCheckValue)
{
    EXPECT_NEAR(chenMilleroSoundSpeed(40.0, 40.0, 10000.0), 1731.995, 0.0005);
}

// UNESCO technical papers in marine science 44, table of sound speed, one decimal.
TEST(ChenMilleroSoundSpeed, AgreesWithThePublishedTable)
{
    const struct
    {
        double salinity;
        double temperature;
        double pressure;
        double speed;
    } rows[] = {
        {25, 0, 0, 1435.8},  {25, 10, 0, 1477.7}, {25, 20, 0, 1510.3}, {25, 30, 0, 1535.2},
        {25, 40, 0, 1553.4}, {35, 0, 0, 1449.1},  {35, 10, 0, 1489.8}, {35, 20, 0, 1521.5},
        {35, 30, 0, 1545.6}, {35, 40, 0, 1563.2},
    };
    for (const auto& row : rows)
        EXPECT_NEAR(chenMilleroSoundSpeed(row.salinity, row.temperature, row.pressure), row.speed,
                    0.0501)
            << row.salinity << " " << row.temperature << " " << row.pressure;
}

TEST(ChenMilleroSoundSpeed, TakesPressureInDecibar)
{
    // Roughly 1.6 m/s per 100 m: a wrong unit is off by a factor of ten.
    const double rise = chenMilleroSoundSpeed(35, 10, 1000) - chenMilleroSoundSpeed(35, 10, 0);
    EXPECT_GT(rise, 15.0);
    EXPECT_LT(rise, 18.0);
}

TEST(ChenMilleroSoundSpeed, StaysANumberBelowZeroSalinityAndPassesUnknownsOn)
{
    EXPECT_TRUE(std::isfinite(chenMilleroSoundSpeed(-0.01, 10, 0)));
    EXPECT_TRUE(std::isnan(chenMilleroSoundSpeed(std::nan(""), 10, 0)));
    EXPECT_TRUE(std::isnan(chenMilleroSoundSpeed(35, std::nan(""), 0)));
    EXPECT_TRUE(std::isnan(chenMilleroSoundSpeed(35, 10, std::nan(""))));
}

// The correction by hand. 40 °C, 1000 bar: 0.01654·1000 - 3.232e-5·1e6 + 2.68 = -13.1.
TEST(UnescoSoundSpeed, IsThePublishedCheckValueLessTheCorrection)
{
    EXPECT_NEAR(seawater::unescoSoundSpeed(40.0, 40.0, 10000.0), 1731.995 + 13.1, 0.0005);
}

TEST(UnescoSoundSpeed, SubtractsTheCorrectionForBarOfPressuresInDecibar)
{
    const struct
    {
        double temperature;
        double pressure; // dbar
        double correction;
    } rows[] = {
        {0, 0, 0.0},
        {25, 0, 0.0},
        // 0.0029·100 - 4.76e-6·1e4 + 2.68e-9·1e6
        {0, 1000, 0.29 - 0.0476 + 0.00268},
        // 2.9 - 4.76 + 2.68
        {0, 10000, 0.82},
        // 0.002518·400 - 4.1696e-6·160000 + 2.68e-9·6.4e7
        {2, 4000, 1.0072 - 0.667136 + 0.17152},
        // 0.00211·200 - 3.88e-6·40000 + 2.68e-9·8e6
        {10, 2000, 0.422 - 0.1552 + 0.02144},
    };
    for (const auto& row : rows) {
        for (const double salinity : {0.0, 35.0}) {
            EXPECT_NEAR(chenMilleroSoundSpeed(salinity, row.temperature, row.pressure) -
                            seawater::unescoSoundSpeed(salinity, row.temperature, row.pressure),
                        row.correction, 1e-9)
                << salinity << " " << row.temperature << " " << row.pressure;
        }
    }
}

TEST(UnescoSoundSpeed, PassesUnknownsOn)
{
    EXPECT_TRUE(std::isnan(seawater::unescoSoundSpeed(std::nan(""), 10, 0)));
    EXPECT_TRUE(std::isnan(seawater::unescoSoundSpeed(35, std::nan(""), 0)));
    EXPECT_TRUE(std::isnan(seawater::unescoSoundSpeed(35, 10, std::nan(""))));
}
