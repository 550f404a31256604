#include "datagram/receivedata.h"

#include <QDateTime>
#include <gtest/gtest.h>

using namespace datagram;

TEST(SeaBirdDeckUnit, RowsFollowTheComputation)
{
    const QByteArray head = "1 1 1 1 1 1\nSBE 11plus\ncomputation 9 9 9 9 9 9\n";
    CReceiveData data;
    const QDateTime before = QDateTime::currentDateTimeUtc().addSecs(-1);
    ASSERT_EQ(data.parse(10, head + "1.5 1500.5 10.25 4 5 6\n2 1501 10 4 5 6 more\n"), 2);
    EXPECT_EQ(data.samples()[0].depth, 1.5);
    EXPECT_EQ(data.samples()[0].speed, 1500.5);
    EXPECT_EQ(data.samples()[0].third, 10.25);
    const ProbeHeader& h = data.header();
    ASSERT_TRUE(h.hasTime);
    const QDateTime time(QDate(h.year, h.month, h.day), QTime(h.hours, h.minutes, h.seconds),
                         Qt::UTC);
    EXPECT_GE(time, before);
    EXPECT_LE(time, QDateTime::currentDateTimeUtc());
    EXPECT_EQ(h.latitude, 0.0);
    EXPECT_EQ(h.latitudeMark, 'I');
    EXPECT_EQ(h.longitude, 0.0);
    EXPECT_EQ(h.longitudeMark, 'I');
}

TEST(SeaBirdDeckUnit, ReadingStopsAtTheFirstRowThatIsNone)
{
    const QByteArray head = "SBE 11plus\ncomputation\n";
    const struct
    {
        const char* rows;
        int count;
    } cases[] = {
        {"1 1500 1 1 1 1\n2 1500 1 1 1\n3 1500 1 1 1 1\n", 1},
        {"1 1500 1 1 1 1\n\n3 1500 1 1 1 1\n", 1},
        {"1 1500 1 1 1 1\n0 0 1 1 1 1\n3 1500 1 1 1 1\n", 1},
        {"0 1500 1 1 1 1\n1 0 1 1 1 1\n3 1500 1 1 1 1\n", 3},
        {"1 1500 1 1 1 nan\n", 0},
        {"0 0 0 0 0 0\n", 0},
        {"", 0},
    };
    for (const auto& c : cases)
        EXPECT_EQ(CReceiveData().parse(10, head + c.rows), c.count) << c.rows;
    EXPECT_EQ(CReceiveData().parse(10, "computation\n1 1500 1 1 1 1\n"), 0);
    EXPECT_EQ(CReceiveData().parse(10, "SBE 11plus\n1 1500 1 1 1 1\n"), 0);
    EXPECT_EQ(CReceiveData().parse(10, "SBE 11PLUS\ncomputation\n1 1500 1 1 1 1\n"), 0);
}
