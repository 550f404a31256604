#include "datagram/saverequest.h"
#include "tests/support/printers.h"

#include <gtest/gtest.h>

using namespace datagram;

TEST(SaveRequest, ListsAreAsLongAsTheDepths)
{
    profile::ValueLists lists;
    lists.depth = {1, 2, 3};
    lists.speed = {4, 5};
    lists.temperature = {6, 7, 8, 9};
    const Columns columns = columnsOf(lists);
    EXPECT_EQ(columns.depth, (QVector<float>{1, 2, 3}));
    EXPECT_EQ(columns.speed, (QVector<float>{4, 5, 0}));
    EXPECT_EQ(columns.temperature, (QVector<float>{6, 7, 8}));
    EXPECT_EQ(columns.absorption, (QVector<float>{0, 0, 0}));
}

TEST(SaveRequest, RefusalsStandInTheirOrder)
{
    const QString wrong = QStringLiteral("Wrong svp input.");
    const QString mismatch = QStringLiteral("Sample count mismatch or too small.");
    const QString stated = QStringLiteral("Stated sample count mismatch.");
    struct
    {
        int speeds;
        int depths;
        const char* statedSamples;
        QString reason;
    } const cases[] = {
        {2, 2, "2", wrong},       {2, 3, "9", wrong},    {3, 2, "9", mismatch},
        {4, 3, "3", QString()},   {4, 3, "4", stated},   {3, 4, "4", mismatch},
        {3, 3, "4", stated},      {3, 3, "x", stated},   {3, 3, "3", QString()},
        {3, 3, "003", QString()}, {3, 3, "3.0", stated}, {3, 3, "", stated},
    };
    for (const auto& c : cases) {
        profile::ValueLists lists;
        lists.speed = QVector<float>(c.speeds, 1500.0F);
        lists.depth = QVector<float>(c.depths, 1.0F);
        EXPECT_EQ(listsRefusal(lists, QLatin1String(c.statedSamples), 3), c.reason)
            << c.speeds << ' ' << c.depths << ' ' << c.statedSamples;
    }
}

TEST(SaveRequest, InstrumentSuffixesBecomeSsp)
{
    struct
    {
        const char* name;
        const char* saved;
    } const cases[] = {
        {"x.vp2", "x.ssp"},
        {"x.aml", "x.ssp"},
        {"x.ssp", "x.ssp"},
        {"x", "x"},
        {"x.vp2.aml", "x.ssp.aml"},
        {"in.vp2/x.ssp", "in.vp2/x.ssp"},
        {"in.aml\\x.aml", "in.aml\\x.ssp"},
        {"x.VP2", "x.VP2"},
        {"a.vp2_fixed.vp2", "a.ssp_fixed.ssp"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(datagramFileName(QLatin1String(c.name)), QLatin1String(c.saved));
}

TEST(SaveRequest, PairsAreDepthThenSpeed)
{
    struct
    {
        const char* list;
        int pairs; // 0: refused
    } const cases[] = {
        {"0,1500,1,1501,2,1502", 3},
        {"0,1500,1,1501,2", 0},
        {"0,1500,1,1501", 0},
        {"0,1500,1,1501,2,1502,3", 0},
        {"", 0},
        {"0,1500,1,1501,2,", 3},
        {"0,1,2,3,4,5,6,7", 4},
    };
    for (const auto& c : cases) {
        const QString text = QLatin1String(c.list);
        DepthSpeedPairs pairs;
        EXPECT_EQ(parseDepthSpeedPairs(QStringRef(&text), pairs), c.pairs > 0) << c.list;
        EXPECT_EQ(pairs.depths.size(), c.pairs);
    }
    const QString text = QStringLiteral("0,1500,1,1501,2,1502");
    DepthSpeedPairs pairs;
    parseDepthSpeedPairs(QStringRef(&text), pairs);
    EXPECT_EQ(pairs.depths, (QVector<float>{0, 1, 2}));
    EXPECT_EQ(pairs.speeds, (QVector<float>{1500, 1501, 1502}));
}
