#include "raytrace/layers.h"

#include <gtest/gtest.h>

TEST(Layers, TheGradientIsTheSlopeToTheNextSample)
{
    const float depths[] = {0.0F, 100.0F, 300.0F};
    const float speeds[] = {1500.0F, 1490.0F, 1495.0F};
    const raytrace::Layers layers = raytrace::makeLayers(depths, speeds, 3);
    ASSERT_EQ(layers.size(), 3U);
    EXPECT_DOUBLE_EQ(layers[0].gradient, -0.1);
    EXPECT_DOUBLE_EQ(layers[1].gradient, 0.025);
    EXPECT_EQ(layers[2].gradient, 0.0);
    EXPECT_EQ(layers[1].d, 100.0);
    EXPECT_EQ(layers[1].c, 1490.0);
    EXPECT_TRUE(raytrace::makeLayers(nullptr, nullptr, 0).empty());
}
