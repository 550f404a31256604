#include "datagram/probe_level.h"
#include "datagram/receivedata.h"

#include <gtest/gtest.h>

#include <array>

using namespace datagram;

namespace {

CReceiveData read(int format, const QByteArray& text)
{
    CReceiveData data;
    const int count = data.parse(format, text);
    EXPECT_EQ(count, int(data.samples().size()));
    EXPECT_EQ(data.cast().reason.isEmpty(), !data.samples().empty());
    return data;
}

void expectTime(const ProbeHeader& h, std::array<int, 6> time)
{
    EXPECT_TRUE(h.hasTime);
    EXPECT_EQ((std::array<int, 6>{h.year, h.month, h.day, h.hours, h.minutes, h.seconds}), time);
}

void expectSample(const ProbeSample& sample, double depth, double speed, double third)
{
    EXPECT_NEAR(sample.depth, depth, 1e-9);
    EXPECT_NEAR(sample.speed, speed, 1e-9);
    EXPECT_NEAR(sample.third, third, 1e-9);
}

const QByteArray calc = "CALC,0001,03-14-2019,1,meters\n"
                        "DATE:19073 TIME:1527\n"
                        "DEPTH OFFSET (M):00000.0\n"
                        "DEPTH (M) VELOCITY (M/S) TEMP (C)\n";

} // namespace

TEST(Calc, TableEndsAtARowOfZerosAndNavigationFollows)
{
    const CReceiveData data = read(0, calc + "    1.5  1512.50  18.250 \n"
                                             "    3.0  1512.75  18.375 \n 0  0  0 \n"
                                             " 9 1500 10\n*** NAV ****\nBottom Depth (m): 14.5\n"
                                             "LAT ( ddmm.mmmmmmm,N):  4815.2500000,N\n"
                                             "LON (dddmm.mmmmmmm,E): 01230.7500000,W\n"
                                             "Time [hh:mm:ss.ss]: 15:27:05.50\n");
    ASSERT_EQ(data.samples().size(), 2U);
    expectSample(data.samples()[0], 1.5, 1512.5, 18.25);
    expectSample(data.samples()[1], 3.0, 1512.75, 18.375);
    expectTime(data.header(), {2019, 3, 14, 15, 27, 0}); // day 73
    EXPECT_NEAR(data.header().latitude, 4815.25, 1e-9);
    EXPECT_EQ(data.header().latitudeMark, 'N');
    EXPECT_NEAR(data.header().longitude, 1230.75, 1e-9);
    EXPECT_EQ(data.header().longitudeMark, 'W');
}

TEST(Calc, RowsScanAsThreeNumbers)
{
    EXPECT_EQ(read(0, calc + "1 1500 10\n2 1501\n3 1502 x\n4 1503 10\n").samples().size(), 2U);
    EXPECT_EQ(read(0, calc + "0 1500 10\n1 1500 10\n").samples().size(), 2U);
    EXPECT_EQ(read(0, calc + "1 1500 10\n2 -99 10\n").samples().size(), 1U);
    EXPECT_EQ(read(0, calc).samples().size(), 0U);
    EXPECT_EQ(read(0, "DEPTH (M) VELOCITY (M/S) TEMP (C)\n1 1500 10\n").samples().size(), 0U);
    EXPECT_EQ(read(0, "CALC\n1 1500 10\n").samples().size(), 0U);
    const CReceiveData feet =
        read(0, QByteArray(calc).replace("DEPTH (M) V", "DEPTH (FT) V") + "100 1500 10\n");
    ASSERT_EQ(feet.samples().size(), 1U);
    EXPECT_NEAR(feet.samples()[0].depth, 30.48, 1e-9);
}

TEST(Calc, DatesAreDaysOfAYear)
{
    const struct
    {
        const char* item;
        bool hasTime;
        std::array<int, 6> time;
    } cases[] = {
        {"DATE:19073 TIME:1527", true, {2019, 3, 14, 15, 27, 0}},
        {"DATE:2019073 TIME:152705", true, {2019, 3, 14, 15, 27, 5}},
        {"DATE:19073 TIME:15:27:05", true, {2019, 3, 14, 15, 27, 5}},
        {"DATE: 16366 TIME: 0000", true, {2016, 12, 31, 0, 0, 0}},
        {"DATE:17365 TIME:0000", true, {2017, 12, 31, 0, 0, 0}},
        {"DATE:17366 TIME:0000", false, {}},
        {"DATE:17001 TIME:0000", true, {2017, 1, 1, 0, 0, 0}},
        {"DATE:17000 TIME:0000", false, {}},
        {"DATE:98242 TIME:2359", true, {1998, 8, 30, 23, 59, 0}},
        {"DATE:19073 TIME:2400", false, {}},
        {"DATE:19073 TIME:2360", false, {}},
        {"DATE: TIME:1527", false, {}},
        {"DATE:19073 TIME:", false, {}},
        {"TIME:1527", false, {}},
    };
    for (const auto& c : cases) {
        const CReceiveData data =
            read(0, QByteArray(calc).replace("DATE:19073 TIME:1527", c.item) + "1 1500 10\n");
        ASSERT_EQ(data.samples().size(), 1U) << c.item;
        EXPECT_EQ(data.header().hasTime, c.hasTime) << c.item;
        if (c.hasTime)
            expectTime(data.header(), c.time);
    }
}

TEST(DelimitedRows, FieldsAreSplitAtBlankCommaAndTab)
{
    for (const int format : {1, 2}) {
        for (const char* row : {"1.5 1500.25 10", "1.5,1500.25,10", "1.5\t1500.25\t10",
                                " 1.5 , 1500.25 ,\t10,extra", "+1.5,,1500.25,,10"}) {
            const CReceiveData data = read(format, QByteArray("some words\n") + row + "\n2 1501\n");
            ASSERT_EQ(data.samples().size(), 2U) << row;
            expectSample(data.samples()[0], 1.5, 1500.25, 10.0);
            expectSample(data.samples()[1], 2.0, 1501.0, 0.0);
        }
    }
}

TEST(DelimitedRows, OtherLinesArePassedOver)
{
    EXPECT_EQ(
        read(1, "1\n1 x\n1m 1500\n6-20-26, 8:30:5, 1502.50\nnan 1500\n1 inf\n,\n").samples().size(),
        0U);
    const CReceiveData data = read(1, "1,1500\n2,-99\n3,1502\n");
    EXPECT_EQ(data.samples().size(), 2U);
    EXPECT_EQ(data.cast().leftOut, 1);
}

TEST(DelimitedRows, AHeadingDecides)
{
    const CReceiveData csv =
        read(1, "% Device,7\nPressure (Decibar),Depth (Meter),Temperature (Celsius),Specific "
                "conductance (x),Sound velocity (Meters per Second)\n"
                "0.25,0.2486,19.5,50000,1515.625\n");
    ASSERT_EQ(csv.samples().size(), 1U);
    expectSample(csv.samples()[0], 0.2486, 1515.625, 19.5);

    const CReceiveData tabs = read(2, "Date / Time\tSOUND VELOCITY;M/SEC\tDEPTH;M\tCalc. SOUND "
                                      "VELOCITY\n15/11/2026 12:34:56\t1424.5\t0.75\t1400\n");
    ASSERT_EQ(tabs.samples().size(), 1U);
    expectSample(tabs.samples()[0], 0.75, 1424.5, 0.0);

    // Check value of the formulas; the depth by hand.
    const CReceiveData computed =
        read(1, "PRESSURE;DBAR\tTEMPERATURE;C\tCONDUCTIVITY;MS/CM\n10000\t40\t81.02553717\n");
    ASSERT_EQ(computed.samples().size(), 1U);
    EXPECT_NEAR(computed.samples()[0].depth, 9714.953, 0.001);
    EXPECT_NEAR(computed.samples()[0].speed, 1731.995, 0.001);
}

TEST(PlainColumns, RowsScanAsThreeNumbers)
{
    const CReceiveData data = read(13, "  1.5  1500.25  10.5\n\n+2 1501 +11 12\n3 1502\n"
                                       "4,1503,12\nend\n-0.5 1499 9\n1e400 1500 1\n");
    ASSERT_EQ(data.samples().size(), 3U);
    expectSample(data.samples()[0], 1.5, 1500.25, 10.5);
    expectSample(data.samples()[1], 2.0, 1501.0, 11.0);
    expectSample(data.samples()[2], -0.5, 1499.0, 9.0);
    EXPECT_FALSE(data.header().hasTime);
    EXPECT_EQ(data.header().latitudeMark, 'I');
}

TEST(PlainColumns, AHeadingDecides)
{
    const CReceiveData data = read(13, "# depth   temp.   veloc.   salin.\n# [m] [C] [m/s] [psu]\n"
                                       "\n.profile 0\n 1.25 10.5 1500.5 35\n");
    ASSERT_EQ(data.samples().size(), 1U);
    expectSample(data.samples()[0], 1.25, 1500.5, 10.5);

    const CReceiveData words =
        read(13, "Temp (C) Sound Velocity (m/s) Depth (m)\n10.5 1500.5 1.25\n");
    ASSERT_EQ(words.samples().size(), 1U);
    expectSample(words.samples()[0], 1.25, 1500.5, 10.5);

    // A line of prose names no columns.
    const CReceiveData prose =
        read(13, "Depth and sound velocity as seen by temperature probe\n1 1500 10\n");
    ASSERT_EQ(prose.samples().size(), 1U);
    expectSample(prose.samples()[0], 1.0, 1500.0, 10.0);
}

TEST(ScanListing, ColumnsAreNumberDepthSpeedTemperatureUnlessNamed)
{
    const CReceiveData data =
        read(6, "9 9 1400\nScan listing 7\n1 0.5 1500.5 10.5\n2\t1.5\t1501\n");
    ASSERT_EQ(data.samples().size(), 2U);
    expectSample(data.samples()[0], 0.5, 1500.5, 10.5);
    expectSample(data.samples()[1], 1.5, 1501.0, 0.0);

    const CReceiveData named =
        read(6, "scan temp depth sound\n1 10.5 0.5 1500.5\n2 10.25 1.5 1501.5\n");
    ASSERT_EQ(named.samples().size(), 2U);
    expectSample(named.samples()[1], 1.5, 1501.5, 10.25);

    EXPECT_EQ(read(6, "1 0.5 1500.5 10.5\n").samples().size(), 0U);
    EXPECT_EQ(read(6, "scan\n").samples().size(), 0U);
}

TEST(CalibrationExtension, RowsHaveNineColumns)
{
    const QByteArray head = "CAL Extn\nSt.Time: 15/11/2026 12:34:56\nEn.Lat.: 33 30.00 S  "
                            "En.Long: 010 15.00 E\nNOBS 3\n";
    const CReceiveData data =
        read(11, head + "1, 10.0, 9.5, 14.25, 40.1, 34.5, 1025.5, 1500.25 ,0\n"
                        "2, 20.0, 19.5, 14.00, 40.1, 34.5, 1025.5, 1499.25 ,0\n"
                        "3, 20.0, 19.5\nx, 1, 1, 1, 1, 1, 1, 1 ,0\n");
    ASSERT_EQ(data.samples().size(), 2U);
    expectSample(data.samples()[0], 9.5, 1500.25, 14.25);
    expectTime(data.header(), {2026, 11, 15, 12, 34, 56});
    EXPECT_NEAR(data.header().latitude, 3330.0, 1e-9);
    EXPECT_EQ(data.header().latitudeMark, 'S');
    EXPECT_NEAR(data.header().longitude, 1015.0, 1e-9);
    EXPECT_EQ(data.header().longitudeMark, 'E');
    EXPECT_EQ(read(11, "NOBS 1\n1, 10.0, 9.5, 14, 40, 34, 1025, 1500 ,0\n").samples().size(), 0U);
    EXPECT_EQ(read(11, "CAL Extn\n1, 10.0, 9.5, 14, 40, 34, 1025, 1500 ,0\n").samples().size(), 0U);
}

TEST(BreakpointProfile, HeaderAndRowsAreRead)
{
    const QByteArray text = "PROFILE_HEADER\nLast_State_Change_Time = 2026-11-15 12:34:56\n"
                            "Latitude = -33.5\nLongitude: 151 15.0 E\nNo_of_Breakpoints 2\n"
                            "Deglitch_Filter_Order = 3\n\n0.0 1500.5\n10.5 1499.5 12.5\n"
                            "PROFILE_HEADER\n20 1400\n";
    for (const int format : {7, 8}) {
        const CReceiveData data = read(format, text);
        ASSERT_EQ(data.samples().size(), 2U);
        expectSample(data.samples()[0], 0.0, 1500.5, 0.0);
        expectSample(data.samples()[1], 10.5, 1499.5, 12.5);
        expectTime(data.header(), {2026, 11, 15, 12, 34, 56});
        EXPECT_NEAR(data.header().latitude, 3330.0, 1e-9);
        EXPECT_EQ(data.header().latitudeMark, 'S');
        EXPECT_NEAR(data.header().longitude, 15115.0, 1e-9);
    }
    // date -u -d @1794746096
    expectTime(read(7, QByteArray(text).replace("2026-11-15 12:34:56", "1794746096")).header(),
               {2026, 11, 15, 12, 34, 56});
    EXPECT_EQ(read(7, "0 1500\n10 1499\n").samples().size(), 0U);
    EXPECT_EQ(read(7, "PROFILE_HEADER\n").samples().size(), 0U);
}

TEST(SvPlus, DepthsComeFromPressures)
{
    const QByteArray rows = "Pressure Sound\n100 1500.5\n1000 1510.25 9.5\n";
    const CReceiveData without = read(9, "SvPlus\n" + rows);
    ASSERT_EQ(without.samples().size(), 2U);
    expectSample(without.samples()[0], 100.0 * 0.1 / 1.008, 1500.5, 100.0);
    expectSample(without.samples()[1], 1000.0 * 0.1 / 1.008, 1510.25, 1000.0);
    EXPECT_EQ(without.cast().remark,
              QStringLiteral("no latitude: the depths take the pressures for kPa; with dbar they "
                             "are a tenth of the true ones: give the file a latitude"));

    // By hand, for 30 degrees north and south.
    for (const char* latitude : {"Latitude: 30 0.0 N\n", "Latitude = -30\n", "Lat 30 00 00 S\n"}) {
        const CReceiveData data = read(9, QByteArray("SvPlus\n") + latitude + rows);
        ASSERT_EQ(data.samples().size(), 2U) << latitude;
        EXPECT_NEAR(data.samples()[1].depth, 990.960698, 1e-5) << latitude;
        EXPECT_EQ(data.samples()[1].third, 1000.0);
        EXPECT_NEAR(data.header().latitude, 3000.0, 1e-9);
        EXPECT_TRUE(data.cast().remark.isEmpty());
    }
}

TEST(SvPlus, TimeLinesHaveOneOrTwoWordsAndSixNumbers)
{
    const struct
    {
        const char* line;
        bool hasTime;
    } cases[] = {
        {"Logged 2026 11 15 12 34 56", true},
        {"Cast started 2026 11 15 12 34 56", true},
        {"Logged 15 11 2026 12 34 56", true},
        {"Logged 11 15 2026 12 34 56", true},
        {"Cast started 15 11 26 12 34 56", true},
        {"Cast was started 2026 11 15 12 34 56", false},
        {"Logged 2026 11 15 12 34", false},
        {"Logged 2026 13 15 12 34 56", false},
        {"Logged 2026 11 31 12 34 56", false},
        {"Logged 2026 11 15 24 34 56", false},
        {"", false},
    };
    for (const auto& c : cases) {
        const CReceiveData data =
            read(9, QByteArray("SvPlus\n") + c.line + "\nPressure Sound\n100 1500\n");
        ASSERT_EQ(data.samples().size(), 1U);
        EXPECT_EQ(data.header().hasTime, c.hasTime) << c.line;
        if (c.hasTime)
            expectTime(data.header(), {2026, 11, 15, 12, 34, 56});
    }
}

TEST(SvPlus, RowsFollowTheSoundLine)
{
    EXPECT_EQ(read(9, "SvPlus\n100 1500\n").samples().size(), 0U);
    EXPECT_EQ(read(9, "Sound\n100 1500\n").samples().size(), 0U);
    EXPECT_EQ(read(9, "SvPlus\n100 1500\nSound\n200 1500\n300 -99\n-1e9 1500\n").samples().size(),
              2U);
}

TEST(PressureDatagram, RowsArePressureTemperatureConductivity)
{
    // 100 MPa are 10 000 dbar; 8.1025… S/m have the salinity 40 there, and 1731.995 m/s. The depth
    // by hand, for 59.5 degrees.
    const QByteArray text = "$QZS50,00000,2,123456,15,11,2026,100.00000,,40,8.102553717,\r\n"
                            "100.00000,,40,8.102553717,\r\n"
                            "5930.000000,N,01015.000000,W,,,comment*00\\\r\n";
    const CReceiveData data = read(3, text);
    ASSERT_EQ(data.samples().size(), 2U);
    for (const ProbeSample& sample : data.samples()) {
        EXPECT_NEAR(sample.depth, 9678.781, 0.001);
        EXPECT_NEAR(sample.speed, 1731.995, 0.001);
        EXPECT_EQ(sample.third, 40.0);
    }
    expectTime(data.header(), {2026, 11, 15, 12, 34, 56});
    EXPECT_NEAR(data.header().latitude, 5930.0, 1e-9);
    EXPECT_EQ(data.header().latitudeMark, 'N');
    EXPECT_NEAR(data.header().longitude, 1015.0, 1e-9);
    EXPECT_EQ(data.header().longitudeMark, 'W');

    const CReceiveData blanks = read(3, "$RVS50 00001 1 123456 15 11 2026\n100 0 40 8.102553717 0\n"
                                        "5930.0 N 1015.0 E\n");
    ASSERT_EQ(blanks.samples().size(), 1U);
    EXPECT_NEAR(blanks.samples()[0].speed, 1731.995, 0.001);
    EXPECT_EQ(blanks.header().longitudeMark, 'E');
}

TEST(PressureDatagram, StatesOneToAThousandSamples)
{
    const auto datagram = [](int stated, int rows) {
        return "$QZS50,0," + QByteArray::number(stated) + ",123456,15,11,2026," +
               QByteArray("1,,10,4,\r\n").repeated(rows) + "3330.0,S,15115.0,E,,,*00\\\r\n";
    };
    EXPECT_EQ(read(3, datagram(1, 1)).samples().size(), 1U);
    const CReceiveData most = read(3, datagram(1000, 1000));
    EXPECT_EQ(most.samples().size(), 1000U);
    EXPECT_EQ(most.header().latitudeMark, 'S');
    EXPECT_NEAR(most.header().longitude, 15115.0, 1e-9);
    for (const int stated : {0, 1001}) {
        const CReceiveData data = read(3, datagram(stated, 1001));
        EXPECT_TRUE(data.samples().empty()) << stated;
        EXPECT_EQ(data.cast().reason,
                  QStringLiteral("it states %1 samples; 1 to 1000 are legal").arg(stated));
    }
    // Rows beyond the stated ones are none.
    EXPECT_EQ(read(3, datagram(2, 900)).samples().size(), 2U);
}

TEST(Fields, AreTakenUpToALimit)
{
    using namespace datagram::probe;
    std::vector<std::string_view> fields;
    for (const Delimiter delimiter : {Delimiter::Blanks, Delimiter::Comma, Delimiter::Tab}) {
        const char mark = delimiter == Delimiter::Blanks  ? ' '
                          : delimiter == Delimiter::Comma ? ','
                                                          : '\t';
        const std::string line = [mark] {
            std::string text;
            for (int i = 0; i < 20000; ++i)
                text.append("1").push_back(mark);
            return text;
        }();
        splitFields(line, delimiter, fields);
        EXPECT_EQ(fields.size(), 10000U);
        EXPECT_EQ(fields.back(), "1");
        splitFields(std::string_view(line).substr(0, 19999), delimiter, fields);
        EXPECT_EQ(fields.size(), 10000U);
        splitFields(std::string_view(line).substr(0, 19997), delimiter, fields);
        EXPECT_EQ(fields.size(), 9999U);
        splitFields(line, delimiter, fields, 3);
        EXPECT_EQ(fields.size(), 3U);
        splitFields(line, delimiter, fields, 0);
        EXPECT_TRUE(fields.empty());
        splitFields(std::string_view("1\0"), delimiter, fields, 3);
        EXPECT_EQ(fields.size(), 1U);
    }
}

TEST(PressureDatagram, OtherTextsAreNone)
{
    const QByteArray good = "$QZS50,0,1,123456,15,11,2026,1,,10,4,\r\n0,N,0,E,,,*";
    EXPECT_EQ(read(3, good).samples().size(), 1U);
    EXPECT_EQ(read(3, ' ' + good).samples().size(), 0U);
    EXPECT_EQ(read(3, QByteArray(good).replace("$QZS", "$QZT")).samples().size(), 0U);
    EXPECT_EQ(read(3, QByteArray(good).replace("S50", "S51")).samples().size(), 0U);
    EXPECT_EQ(read(3, "$QZ").samples().size(), 0U);
    EXPECT_EQ(read(3, "$QZS50").samples().size(), 0U);
    EXPECT_EQ(read(3, QByteArray(good).replace("0,1,", "0,4294967297,")).samples().size(), 0U);
    // More samples stated than there are.
    EXPECT_EQ(read(3, "$QZS50,0,900,123456,15,11,2026,1,,10,4,").samples().size(), 1U);
}
