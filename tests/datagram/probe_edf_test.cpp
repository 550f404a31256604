#include "datagram/receivedata.h"

#include <QByteArrayList>
#include <gtest/gtest.h>

using namespace datagram;

namespace {

const QByteArray older = "// This is a MK21 EXPORT DATA FILE  (EDF)\n"
                         "Date of Launch:  10/22/2014\n"
                         "Time of Launch:  02:03:04\n"
                         "Latitude      :  61 30.12345N\n"
                         "Longitude     :  5 15.54321W\n"
                         "Probe Type       :  XCTD-1\n"
                         "Depth Coeff. 1   :  0.0\n";

QByteArray newer(const QByteArrayList& names, const QByteArray& rows)
{
    QByteArray text = "// MK21 EXPORT DATA FILE  (EDF)\nTime of Launch   :  16:17:18\n"
                      "Date of Launch   :  09/14/2015\n"
                      "Num Data Fields  :  " +
                      QByteArray::number(names.size()) + '\n';
    for (int i = 0; i < names.size(); ++i)
        text += "Field" + QByteArray::number(i + 1) + "           :  " + names[i] + '\n';
    return text + "// Data\n" + rows;
}

CReceiveData read(const QByteArray& text)
{
    CReceiveData data;
    const int count = data.parse(EdfExport, text);
    EXPECT_EQ(count, int(data.samples().size()));
    return data;
}

} // namespace

TEST(Edf, OlderFilesNameTheirColumnsInOneLine)
{
    const CReceiveData data =
        read(older + "Depth (m) - Temperature (\xB0"
                     "C) - Conductivity (mS/cm) - Salinity (ppt) - Sound Velocity (m/s) - Density "
                     "(kg/m^3)\n0.0\t2.50\t26.00\t30.00\t1452.50\t1023.90\n"
                     "0.5\t2.25\t26.50\t30.50\t1453.25\t1024.30\n");
    ASSERT_EQ(data.samples().size(), 2U);
    EXPECT_EQ(data.samples()[1].depth, 0.5);
    EXPECT_EQ(data.samples()[1].speed, 1453.25);
    EXPECT_EQ(data.samples()[1].third, 2.25);
    const ProbeHeader& h = data.header();
    EXPECT_TRUE(h.hasTime);
    EXPECT_EQ(h.year, 2014);
    EXPECT_EQ(h.month, 10);
    EXPECT_EQ(h.day, 22);
    EXPECT_EQ(h.hours, 2);
    EXPECT_EQ(h.minutes, 3);
    EXPECT_EQ(h.seconds, 4);
    EXPECT_NEAR(h.latitude, 6130.12345, 1e-9);
    EXPECT_EQ(h.latitudeMark, 'N');
    EXPECT_NEAR(h.longitude, 515.54321, 1e-9);
    EXPECT_EQ(h.longitudeMark, 'W');
    EXPECT_EQ(data.cast().instrument, QStringLiteral("XCTD-1"));
}

TEST(Edf, NewerFilesNameTheirColumnsOneByOne)
{
    const QByteArray degrees = "Temperature (\xC2\xB0"
                               "C)";
    const CReceiveData data =
        read(newer({"Time (sec)", "Frame", "Depth (m)", degrees, "Sound Velocity (m/s)", "Status"},
                   "0.000\t9FDDABCD\t0.7500\t6.25\t1470.50\t0000\n"
                   "0.040\t12345678\t0.8750\t6.50\t1471.25\t0000\n"));
    ASSERT_EQ(data.samples().size(), 2U);
    EXPECT_EQ(data.samples()[0].depth, 0.75);
    EXPECT_EQ(data.samples()[0].speed, 1470.5);
    EXPECT_EQ(data.samples()[0].third, 6.25);
    EXPECT_EQ(data.header().year, 2015);
    EXPECT_EQ(data.header().hours, 16);
}

TEST(Edf, MissingSpeedsAreLeftOut)
{
    const CReceiveData data =
        read(newer({"Depth (m)", "Temperature (C)", "Salinity (ppt)", "Sound Velocity (m/s)"},
                   "1\t10\t35\t-99\n2\t10\t-99\t-99.00\n3\t-99\t-99\t1500\n4\t10\t35\t\n"
                   "10\t\t35\t1500\n\t10\t35\t1500\n"));
    ASSERT_EQ(data.samples().size(), 3U);
    EXPECT_EQ(data.samples()[0].depth, 3.0);
    EXPECT_EQ(data.samples()[0].third, 0.0);
    // An empty field is not there, so that the speed is computed.
    EXPECT_EQ(data.samples()[1].depth, 4.0);
    EXPECT_NEAR(data.samples()[1].speed, 1489.9, 0.2);
    EXPECT_EQ(data.samples()[2].depth, 10.0);
    EXPECT_EQ(data.cast().leftOut, 2);
}

TEST(Edf, AssumedSalinityGivesSpeedsWhereThereAreNone)
{
    // 34 and 20 °C at the surface: 1520.5 m/s by the tables of the equation.
    const QByteArray row = "Depth (m) - Temperature (C)\n0.0\t20.0\n";
    const CReceiveData old =
        read("// (EDF)\n// Sound velocity derived with assumed salinity: 34.00 ppt\n//\n" + row);
    ASSERT_EQ(old.samples().size(), 1U);
    EXPECT_NEAR(old.samples()[0].speed, 1520.5, 0.2);
    const CReceiveData item = read("// (EDF)\nSalinity          :  34.00 ppt\n" + row);
    ASSERT_EQ(item.samples().size(), 1U);
    EXPECT_EQ(item.samples()[0].speed, old.samples()[0].speed);
    const CReceiveData none = read("// (EDF)\n" + row);
    EXPECT_TRUE(none.samples().empty());
    EXPECT_TRUE(none.cast().reason.contains(QLatin1String("no column of sound speeds")));
}

TEST(Edf, PairsAreDepthAndWhatTheProbeMeasures)
{
    const CReceiveData speeds = read("// (EDF)\nProbe Type : XSV-01\n// Here are the data "
                                     "pairs...\n0.0 1500.5\n0.5 1501.5\n");
    ASSERT_EQ(speeds.samples().size(), 2U);
    EXPECT_EQ(speeds.samples()[1].depth, 0.5);
    EXPECT_EQ(speeds.samples()[1].speed, 1501.5);

    const CReceiveData named = read("// (EDF)\nProbe Type : T-7\n// data pairs...\n"
                                    "Depth (m) - Sound Velocity (m/s) - Temperature (C)\n"
                                    "0.0\t1500.5\t20\n");
    ASSERT_EQ(named.samples().size(), 1U);
    EXPECT_EQ(named.samples()[0].speed, 1500.5);
    EXPECT_EQ(named.samples()[0].third, 20.0);

    const CReceiveData temperatures =
        read("// (EDF)\nProbe Type : T-7\nSalinity : 34 ppt\n// data pairs...\n0.0 20.0\n");
    ASSERT_EQ(temperatures.samples().size(), 1U);
    EXPECT_NEAR(temperatures.samples()[0].speed, 1520.5, 0.2);
    EXPECT_EQ(temperatures.samples()[0].third, 20.0);
}

TEST(Edf, DatesAndPositionsComeInSeveralForms)
{
    const struct
    {
        const char* header;
        int year;
        int month;
        int day;
        double latitude;
        char latitudeMark;
        double longitude;
        char longitudeMark;
    } cases[] = {
        {"Date of Launch:  10/12/2012\nLatitude : 64.5\nLongitude : -53.25\n", 2012, 10, 12, 6430.0,
         'N', 5315.0, 'W'},
        {"Date of Launch:  12/12/2012\n", 2012, 12, 12, 0.0, 'I', 0.0, 'I'},
        {"Date of Launch:  13/12/2012\n", 2012, 12, 13, 0.0, 'I', 0.0, 'I'},
        {"Date of Launch:  2012-12-13\n", 2012, 12, 13, 0.0, 'I', 0.0, 'I'},
        {"Date of Launch:  01/05/98\n", 1998, 1, 5, 0.0, 'I', 0.0, 'I'},
        {"Date of Launch:  02/30/2012\n", 0, 0, 0, 0.0, 'I', 0.0, 'I'},
        {"Date of Launch:  13/13/2012\n", 0, 0, 0, 0.0, 'I', 0.0, 'I'},
        {"Date of Launch:\nLatitude      :  \nLongitude     :  \n", 0, 0, 0, 0.0, 'I', 0.0, 'I'},
        {"Latitude : 21 58.54321N\nLongitude : 0 30.0W\n", 0, 0, 0, 2158.54321, 'N', 30.0, 'W'},
        {"Latitude : 21 58.5\nLongitude : 10 30\n", 0, 0, 0, 0.0, 'I', 0.0, 'I'},
        {"Latitude : -0.5\nLongitude : 190.5\n", 0, 0, 0, 30.0, 'S', 16930.0, 'W'},
    };
    for (const auto& c : cases) {
        const CReceiveData data = read(QByteArray("// (EDF)\n") + c.header +
                                       "Depth (m) - Sound Velocity (m/s)\n1\t1500\n");
        ASSERT_EQ(data.samples().size(), 1U);
        const ProbeHeader& h = data.header();
        EXPECT_EQ(h.hasTime, c.year != 0) << c.header;
        EXPECT_EQ(h.year, c.year) << c.header;
        EXPECT_EQ(h.month, c.month) << c.header;
        EXPECT_EQ(h.day, c.day) << c.header;
        EXPECT_NEAR(h.latitude, c.latitude, 1e-9) << c.header;
        EXPECT_EQ(h.latitudeMark, c.latitudeMark) << c.header;
        EXPECT_NEAR(h.longitude, c.longitude, 1e-9) << c.header;
        EXPECT_EQ(h.longitudeMark, c.longitudeMark) << c.header;
    }
}

TEST(Edf, FeetAndFahrenheitAreConverted)
{
    const CReceiveData data = read(
        newer({"Depth (ft)", "Temperature (deg F)", "Sound Velocity (ft/s)"}, "100\t50\t5000\n"));
    ASSERT_EQ(data.samples().size(), 1U);
    EXPECT_NEAR(data.samples()[0].depth, 30.48, 1e-9);
    EXPECT_NEAR(data.samples()[0].speed, 1524.0, 1e-9);
    EXPECT_NEAR(data.samples()[0].third, 10.0, 1e-9);
}

TEST(Edf, FilesThatAreNoneOrCutOffSayWhy)
{
    EXPECT_TRUE(read("Depth (m) - Sound Velocity (m/s)\n1\t1500\n").samples().empty());
    EXPECT_TRUE(read(older).cast().reason.contains(QLatin1String("ends before")));
    EXPECT_TRUE(read("// (EDF)\nDepth (m) - Sound Velocity (m/s)\n")
                    .cast()
                    .reason.contains(QLatin1String("no rows")));
    EXPECT_TRUE(read(newer({"Depth (m)", "Sound Velocity (m/s)"}, "1\t-99\n"))
                    .cast()
                    .reason.contains(QLatin1String("no level")));
    // Field numbers that no file has.
    EXPECT_TRUE(read("// (EDF)\nField0 : Depth (m)\nField4294967297 : Depth (m)\nField2 : Sound "
                     "Velocity (m/s)\n// Data\n1\t1500\n")
                    .samples()
                    .empty());
}
