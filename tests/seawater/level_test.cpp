#include "seawater/level.h"
#include "seawater/pressure.h"
#include "seawater/salinity.h"
#include "seawater/soundspeed.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace seawater;

TEST(CompleteLevel, keepsWhatWasMeasured)
{
    Level level;
    level.depth = 12.0;
    level.pressure = 500.0;
    level.speed = 0.0;
    level.temperature = 8.0;
    level.salinity = 0.0;
    level.conductivity = 40.0;
    ASSERT_TRUE(completeLevel(level, 60.0));
    EXPECT_EQ(level.depth, 12.0);
    EXPECT_EQ(level.speed, 0.0);
    EXPECT_EQ(level.salinity, 0.0);
    EXPECT_EQ(level.pressure, 500.0);
}

TEST(CompleteLevel, computesDepthSalinityAndSpeedFromPressureAndConductivity)
{
    Level level;
    level.pressure = 10000.0;
    level.temperature = 40.0;
    level.conductivity = 1.888091 * standardConductivity;
    ASSERT_TRUE(completeLevel(level, 30.0));
    EXPECT_NEAR(level.depth, 9712.65, 15.0);
    EXPECT_NEAR(level.salinity, 40.0, 0.0001);
    EXPECT_NEAR(level.speed, 1731.995, 0.001);
}

TEST(CompleteLevel, takesThePressureAtTheDepthWhereThereIsNone)
{
    Level level;
    level.depth = 1000.0;
    level.temperature = 10.0;
    level.salinity = 35.0;
    ASSERT_TRUE(completeLevel(level, 45.0));
    EXPECT_NEAR(level.speed, chenMilleroSoundSpeed(35.0, 10.0, 1010.4696), 1e-9);
    EXPECT_TRUE(std::isnan(level.pressure));
}

TEST(CompleteLevel, computesNoSpeedFromADryOrFailedCell)
{
    for (const double conductivity : {0.0, -0.01}) {
        Level level;
        level.pressure = 2000.0;
        level.temperature = 5.0;
        level.conductivity = conductivity;
        EXPECT_FALSE(completeLevel(level, 0.0));
        EXPECT_EQ(level.salinity, 0.0);
        level.speed = 1500.0;
        EXPECT_TRUE(completeLevel(level, 0.0));
    }
}

TEST(CompleteLevel, isIncompleteWhereTooLittleIsKnown)
{
    Level noDepth;
    noDepth.speed = 1500.0;
    EXPECT_FALSE(completeLevel(noDepth, 0.0));

    Level noTemperature;
    noTemperature.depth = 5.0;
    noTemperature.salinity = 35.0;
    EXPECT_FALSE(completeLevel(noTemperature, 0.0));

    Level noSalinity;
    noSalinity.depth = 5.0;
    noSalinity.temperature = 9.0;
    EXPECT_FALSE(completeLevel(noSalinity, 0.0));

    Level noTemperatureForConductivity;
    noTemperatureForConductivity.depth = 5.0;
    noTemperatureForConductivity.speed = 1490.0;
    noTemperatureForConductivity.conductivity = 40.0;
    EXPECT_TRUE(completeLevel(noTemperatureForConductivity, 0.0));
    EXPECT_TRUE(std::isnan(noTemperatureForConductivity.salinity));
}
