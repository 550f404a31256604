#include "datagram/receiver.h"

#include <gtest/gtest.h>

TEST(Receiver, ThreePairsAreTheLeast)
{
    struct
    {
        const char* list;
        bool isPairList;
    } const cases[] = {
        {"[1,1500,2,1501,3,1502]", true},
        {"1,1500,2,1501,3,1502", true},
        {"1,1500,2,1501,3", false},
        {"1,1500,2,1501", false},
        {"", false},
        {",,,,,", true},
        {"a,b,c,d,e,f", true},
        {"1,1500,2,1501,3,1502,4", false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(datagram::isPairList(QLatin1String(c.list)), c.isPairList) << c.list;
}
