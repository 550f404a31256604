#include "processing/extensionrows.h"
#include "resources/resources.h"

#include <gtest/gtest.h>

TEST(ExtensionRows, TheCompiledInProfileIsByteForByte)
{
    EXPECT_EQ(
        resources::extensionProfile(),
        QByteArray("// Compulsory 1st line. Extension profile format: 'depth soundspeed CRLF'. "
                   "Last line must always be '12000 soundspeed CRLF'.\r\n"
                   "500.0 1498.0\r\n700.0 1486\r\n1000.0 1483\r\n1500.0 1487\r\n4000.0 1500\r\n"
                   "6000.0 1524\r\n8500.0 1558\r\n12000.0 1602\r\n\r\n\r\n"));
}

TEST(ExtensionRows, TheDefaultReachesFullOceanDepth)
{
    const processing::ExtensionRows& rows = processing::defaultExtensionRows();
    EXPECT_EQ(rows.depths, (QVector<float>{500, 700, 1000, 1500, 4000, 6000, 8500, 12000}));
    EXPECT_EQ(rows.speeds, (QVector<float>{1498, 1486, 1483, 1487, 1500, 1524, 1558, 1602}));
}

TEST(ExtensionRows, OnlyDeeperPairsAreTaken)
{
    const processing::ExtensionRows rows = processing::parseExtensionRows(
        "1 1\n 10\t1500 \r\n10 1501\n5 1502\n20\n20 1503 x\nword 1\n30 1504");
    EXPECT_EQ(rows.depths, (QVector<float>{10, 30}));
    EXPECT_EQ(rows.speeds, (QVector<float>{1500, 1504}));
    EXPECT_TRUE(processing::parseExtensionRows("").depths.isEmpty());
}
