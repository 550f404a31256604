#include "datagram/svpprocessing.h"

#include <gtest/gtest.h>

using namespace datagram;

namespace {

CReceiveData asvpData(const QByteArray& rows, const QByteArray& count, const QByteArray& time)
{
    CReceiveData data;
    data.parse(4,
               "( SoundVelocity  1.0 0 " + time + " 0 0 -1 0 0 a_b P " + count + " )\r\n" + rows);
    return data;
}

} // namespace

TEST(SvpProcessing, dropsRepeatedDepths)
{
    const CSVPProcessing processing(
        asvpData("1 1500\r\n1 1501\r\n2 1502\r\n1 1503\r\n", "0004", "202601020304"));
    EXPECT_EQ(processing.samples(), 3);
    EXPECT_TRUE(processing.datagram().startsWith("$RVS00,00001,0003,030400,02,01,2026,"
                                                 "1.00,1500.00,0,0,0\r\n2.00,1502.00,0,0,0\r\n"
                                                 "1.00,1503.00,0,0,0\r\nNo Comment*"));
    EXPECT_TRUE(processing.datagram().endsWith("\\\r\n"));
}

TEST(SvpProcessing, givesNothingForFormatSeven)
{
    CReceiveData data;
    data.parse(7, "PROFILE_HEADER");
    const CSVPProcessing processing(data);
    EXPECT_EQ(processing.datagram(), QByteArray());
    EXPECT_EQ(processing.samples(), 0);
}
