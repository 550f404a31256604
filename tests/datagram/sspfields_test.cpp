#include "datagram/sspdatagram.h"
#include "datagram/sspfields.h"
#include "tests/support/sspsample.h"

#include <gtest/gtest.h>

using namespace datagram;

namespace {

SspDatagram read(const SspSample& sample)
{
    return readFields(DatagramFields(sample.text()));
}

} // namespace

TEST(SspFields, tellHeaderPositionAndComment)
{
    SspSample sample;
    sample.identifier = "12";
    sample.position = "5930.000000,S,01015.000000,W";
    const SspDatagram datagram = read(sample);
    EXPECT_EQ(datagram.identifier.number, 12);
    EXPECT_EQ(datagram.tag, "QZS12");
    EXPECT_EQ(datagram.number, "00000");
    EXPECT_EQ(datagram.samples, 3);
    EXPECT_EQ(datagram.time + datagram.day + datagram.month + datagram.year, "12345615112026");
    EXPECT_EQ(datagram.latitude, QStringLiteral("-59.50000000"));
    EXPECT_EQ(datagram.longitude, QStringLiteral("-10.25000000"));
    EXPECT_EQ(datagram.comment, QStringLiteral("Deep cast"));
    EXPECT_EQ(datagram.value(1, 0), 100.0);
    EXPECT_EQ(datagram.value(2, 1), 1520.0);
    EXPECT_EQ(datagram.value(0, 4), 0.0);
}

TEST(SspFields, keepACommentWhole)
{
    const struct
    {
        const char* comment;
        const char* text;
    } rows[] = {
        {"", ""}, {"a,b", "a,b"}, {",b", ",b"}, {"a*b", "a*b"}, {"S\xc3\xb8ndre", "Søndre"},
    };
    for (const auto& row : rows) {
        SspSample sample;
        sample.comment = row.comment;
        EXPECT_EQ(read(sample).comment, QString::fromUtf8(row.text));
    }
}

TEST(SspFields, showTheDecimalsOfCarriedColumns)
{
    SspSample sample;
    sample.identifier = "01";
    sample.rows = {"0.0,1500.001,4.25,35.1234,0.000001", "1,1500,4,35,0"};
    const profile::DecimalCounts shown = shownDecimals(read(sample));
    EXPECT_EQ(shown.depth, 1);
    EXPECT_EQ(shown.speed, 3);
    EXPECT_EQ(shown.temperature, 2);
    EXPECT_EQ(shown.salinity, 4);
    EXPECT_EQ(shown.absorption, 0);
    EXPECT_EQ(shown.alternative, 0);

    sample.identifier = "07";
    sample.rows = {"0.1234567,1500.1,4,35,0"};
    EXPECT_EQ(shownDecimals(read(sample)).alternative, 7);
    EXPECT_EQ(shownDecimals(read(sample)).depth, 0);
}

TEST(LeadingIdentifier, asksForTheTagAndTwoDigits)
{
    EXPECT_EQ(leadingIdentifier("$QZS00,"), "00");
    EXPECT_EQ(leadingIdentifier("$QZS99,00000"), "99");
    for (const char* text : {"", "$QZS", "$QZS00", "$QZS0,", "$QZS0a,", "$QZS000,", "$RVS00,",
                             " $QZS00,", "$qzs00,", "$QZS-1,"})
        EXPECT_EQ(leadingIdentifier(text), QByteArray()) << text;
}

TEST(FirstDatagram, endsBehindItsChecksum)
{
    const QByteArray one = SspSample().text();
    EXPECT_EQ(firstDatagram(one), one);
    EXPECT_EQ(firstDatagram(one + one), one);
    EXPECT_EQ(firstDatagram(one + "\r\n\r\n"), one);
    EXPECT_EQ(firstDatagram("no end"), "no end");
    EXPECT_EQ(firstDatagram("\\\r\n"), "\\\r\n");
}

TEST(FirstDatagram, readsOtherLineEndsWhereTheWholeFileHasThem)
{
    const QByteArray one = SspSample().text();
    EXPECT_EQ(firstDatagram(QByteArray(one).replace("\r\n", "\n")), one);
    EXPECT_EQ(firstDatagram(QByteArray(one).replace("\r\n", "\r\r\n")), one);
    const QByteArray mixed = QByteArray(one).replace("\\\r\n", "\\\n");
    EXPECT_EQ(firstDatagram(mixed), mixed);
}
