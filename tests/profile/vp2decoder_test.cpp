#include "profile/instrumentdecoders.h"
#include "profile/instrumentfile.h"
#include "tests/support/datafolder.h"

#include <gtest/gtest.h>

using namespace profile;

namespace {

const QByteArray header = "[HEADER]\n"
                          "InstrumentCode=00199001\n"
                          "Instrument=EXAMPLE SVP\n"
                          "DeviceSeries=SERIES\n"
                          "DeviceType=TYPE\n"
                          "Latitude=60.5\n"
                          "Longitude=-4.25\n"
                          "DataStartTime=2026/06/18 07:42:10\n"
                          "RowCount=2\n"
                          "\n";
const QByteArray columns = "[COLUMNS]\n"
                           "Date/Time=Date/Time;;\n"
                           "Depth=Float;m;Calculated\n"
                           "Pressure=Float;dBar;\n"
                           "Sound Velocity=Float;Ms-1;\n"
                           "Temperature=Float;DegC;\n"
                           "Salinity=Float;PSU;Calculated\n"
                           "Density=Float;kg/M3;Calculated\n"
                           "Conductivity=Float;mS/cm;Calculated\n"
                           "\n";
const QByteArray data =
    "[DATA]\n"
    "Date/Time\tDepth\tPressure\tSound Velocity\tTemperature\tSalinity\tDensity\tConductivity\t\n"
    "\tm\tdBar\tMs-1\tDegC\tPSU\tkg/M3\tmS/cm\n"
    "2026/06/18 07:42:10.000\t1.50\t1.51\t1480.25\t8.125\t34.5\t1026.9\t36.1\n"
    "2026/06/18 07:42:11.000\t2.50\t2.52\t1480.50\t8.000\t34.6\t1027.0\t36.2\t\n";

QByteArray replaced(QByteArray text, const char* from, const char* to)
{
    EXPECT_TRUE(text.contains(from)) << from;
    return text.replace(from, to);
}

tagDecodeFmt decoded(const QByteArray& text)
{
    tagDecodeFmt format;
    EXPECT_TRUE(fnDecodeValeportVP2(text, format)) << text.toStdString();
    return format;
}

bool isRefused(const QByteArray& text)
{
    tagDecodeFmt format;
    return !fnDecodeValeportVP2(text, format);
}

QVector<float> record(const QByteArray& text)
{
    return decodeInstrumentRows(text.toStdString(), decoded(text)).record;
}

const QVector<float> bothLevels = {1480.25F, 1.5F, 1.5F, 1480.25F, 8.125F, 34.5F, 0,
                                   1480.5F,  2.5F, 2.5F, 1480.5F,  8.0F,   34.6F, 0};

} // namespace

TEST(Vp2Decoder, FillsTheWholeRecord)
{
    tagDecodeFmt format;
    // What an earlier file left behind goes.
    format.absorptionColumn = 5;
    format.depthFactor = 2.0;
    ASSERT_TRUE(fnDecodeValeportVP2(header + columns + data, format));
    EXPECT_EQ(format.depthColumn, 1);
    EXPECT_EQ(format.pressureColumn, 2);
    EXPECT_EQ(format.speedColumn, 3);
    EXPECT_EQ(format.temperatureColumn, 4);
    EXPECT_EQ(format.salinityColumn, 5);
    EXPECT_EQ(format.conductivityColumn, 7);
    EXPECT_EQ(format.absorptionColumn, -1);
    EXPECT_EQ(format.largestColumn, 3);
    EXPECT_EQ(format.rowCount, 2);
    EXPECT_EQ(format.skipLines, QLatin1String("1-21"));
    EXPECT_EQ(format.time, QLatin1String("20260618074210"));
    EXPECT_EQ(format.latitude, QLatin1String("60.5"));
    EXPECT_EQ(format.longitude, QLatin1String("-4.25"));
    EXPECT_EQ(format.description, QLatin1String("Valeport EXAMPLE SVP vp2 format."));
    EXPECT_EQ(format.separator, '\t');
    EXPECT_EQ(format.depthFactor, 1.0);
    EXPECT_EQ(format.salinityWord, SalinityWord::Salinity);
    EXPECT_EQ(record(header + columns + data), bothLevels);
}

TEST(Vp2Decoder, TheStartTimeHasTwoSpellings)
{
    const QByteArray text = replaced(header, "DataStartTime", "DateStartTime") + columns + data;
    EXPECT_EQ(decoded(text).time, QLatin1String("20260618074210"));
    EXPECT_EQ(record(text), bothLevels);
}

TEST(Vp2Decoder, TheTimeIsTakenByItsPlaces)
{
    struct
    {
        const char* text;
        const char* time;
    } const cases[] = {
        {"2026-06-18T07.42.10", "20260618074210"},
        {"2026/06/18 07:42:10.125", "20260618074210"},
        {"2026/06/18 07:42:1", ""},
        {"18/06/2026 07:42:10", ""},
        {"2026/6/18 07:42:10", ""},
        {"2026/13/18 07:42:10", ""},
        {"2026/06/18 24:42:10", ""},
        {"2026/06/18 07:4x:10", ""},
        {"", ""},
    };
    for (const auto& c : cases) {
        const QByteArray text = replaced(header, "2026/06/18 07:42:10", c.text) + columns + data;
        EXPECT_EQ(decoded(text).time, QLatin1String(c.time)) << c.text;
    }
}

TEST(Vp2Decoder, KeysCompareWhole)
{
    // "InstrumentCode" comes first in the header above, "Instrument" is still the other one.
    EXPECT_EQ(decoded(header + columns + data).description,
              QLatin1String("Valeport EXAMPLE SVP vp2 format."));
    const QByteArray crowded = replaced(header, "Latitude=60.5",
                                        "MinLatitude=1\nLatitude2=2\n LATITUDE \t= 60.5\t\nRow=9");
    EXPECT_EQ(decoded(crowded + columns + data).latitude, QLatin1String("60.5"));
    EXPECT_EQ(decoded(crowded + columns + data).rowCount, 2);
}

TEST(Vp2Decoder, WithoutAnInstrumentTheSeriesAndTypeNameIt)
{
    const QByteArray nameless = replaced(header, "Instrument=EXAMPLE SVP\n", "");
    EXPECT_EQ(decoded(nameless + columns + data).description,
              QLatin1String("Valeport SERIES TYPE vp2 format."));
    EXPECT_EQ(decoded(replaced(nameless, "DeviceType=TYPE\n", "") + columns + data).description,
              QLatin1String("Valeport SERIES vp2 format."));
    EXPECT_EQ(decoded(replaced(header, "=EXAMPLE SVP", "=") + columns + data).description,
              QLatin1String("Valeport SERIES TYPE vp2 format."));
    EXPECT_EQ(decoded(columns + data).description, QLatin1String("Valeport vp2 format."));
}

TEST(Vp2Decoder, KeysCountInTheirSectionOnly)
{
    const QByteArray text = "Latitude=1\n[OTHER]\nLatitude=2\nInstrument=WRONG\n" + header +
                            "[OTHER]\nDepth=3\n" + columns + data;
    EXPECT_EQ(decoded(text).latitude, QLatin1String("60.5"));
    EXPECT_EQ(decoded(text).depthColumn, 1);
    EXPECT_EQ(record(text), bothLevels);
}

TEST(Vp2Decoder, ColumnEntriesMayBeBareNames)
{
    const QByteArray bare = "[COLUMNS]\nTicks\n\nSound Velocity\t\n  Depth  \n[DATA]\n"
                            "names\nunits\n7\t1500\t1\n8\t1501\t2\t\n";
    EXPECT_EQ(record(bare), (QVector<float>{1500, 1, 1, 1500, 0, 0, 0, 1501, 2, 2, 1501, 0, 0, 0}));
}

TEST(Vp2Decoder, NeitherNamesNorUnitsAreALevel)
{
    // The line of names may end in a TAB more than the rows do, or have none of the columns.
    for (const char* names : {"", "Date/Time\tDepth\t\t\t\n", "1\n"}) {
        QByteArray text = header + columns + "[DATA]\n" + names;
        text += "\tm\tdBar\tMs-1\tDegC\tPSU\tkg/M3\tmS/cm\t\t\n";
        text += data.mid(data.indexOf("2026"));
        EXPECT_EQ(record(text), bothLevels) << names;
    }
}

TEST(Vp2Decoder, ARowCountIsNoPromise)
{
    for (const char* count : {"RowCount=1", "RowCount=99", "RowCount=", "RowCount=x", "RowCount=-5",
                              "RowCount=99999999999999999999", "Rows=2"}) {
        const QByteArray text = replaced(header, "RowCount=2", count) + columns + data;
        EXPECT_EQ(record(text), bothLevels) << count;
        EXPECT_GE(decoded(text).rowCount, 0) << count;
    }
    EXPECT_EQ(decoded(columns + data).rowCount, 0);
}

TEST(Vp2Decoder, LinesCountAlikeForTheHeaderAndTheRows)
{
    // A header line that would be a level if it were not skipped.
    const QByteArray trap = "[HEADER]\n\n\na\t900\t900\t1400\n\n[COLUMNS]\n";
    const QByteArray text = trap + columns.mid(10) + "\n\n" + data;
    for (const char* end : {"\n", "\r\n", "\r\r\n", "\r"})
        EXPECT_EQ(record(QByteArray(text).replace("\n", end)), bothLevels);
}

TEST(Vp2Decoder, CastsKeepTheOrderOfTheFile)
{
    const QByteArray upAndDown = "[COLUMNS]\nDepth\nSound Velocity\n[DATA]\n"
                                 "3\t1503\n1\t1501\n1\t1501\n2\t3004\n-0.5\t0.000\n";
    const QVector<float> levels = record(upAndDown);
    QVector<float> depths;
    QVector<float> speeds;
    for (int i = 0; i < levels.size(); i += recordSlots) {
        speeds.append(levels[i]);
        depths.append(levels[i + 1]);
    }
    EXPECT_EQ(depths, (QVector<float>{3, 1, 1, 2, -0.5F}));
    EXPECT_EQ(speeds, (QVector<float>{1503, 1501, 1501, 3004, 0}));
}

TEST(Vp2Decoder, UnitsScaleTheColumns)
{
    struct
    {
        const char* unit;
        double factor;
    } const conductivities[] = {
        {"mS/cm", 1.0},      {"MS/CM", 1.0},   {"S/m", 10.0},
        {"s/M", 10.0},       {"uS/cm", 0.001}, {"\xC2\xB5S/cm", 0.001},
        {"\xB5S/cm", 0.001}, {"mS/M", 1.0},    {"", 1.0},
    };
    for (const auto& c : conductivities)
        EXPECT_EQ(decoded(header + replaced(columns, "mS/cm", c.unit) + data).conductivityFactor,
                  c.factor)
            << c.unit;
    struct
    {
        const char* unit;
        double factor;
    } const pressures[] = {
        {"dBar", 1.0},  {"dbar", 1.0}, {"DBAR", 1.0},  {"kPa", 0.1},
        {"MPa", 100.0}, {"bar", 10.0}, {"mbar", 0.01}, {"psi", 0.68947572931683}};
    for (const auto& c : pressures)
        EXPECT_NEAR(decoded(header + replaced(columns, "dBar", c.unit) + data).pressureFactor,
                    c.factor, 1e-12)
            << c.unit;
    // In brackets behind the name, and from the line of units where the entry has none.
    EXPECT_EQ(
        decoded(header +
                replaced(columns, "Conductivity=", "Conductivity (S/m)=").replace("mS/cm", "") +
                data)
            .conductivityFactor,
        10.0);
    EXPECT_EQ(decoded(header + replaced(columns, "Float;mS/cm;Calculated", "") +
                      replaced(data, "mS/cm\n", "uS/cm\n"))
                  .conductivityFactor,
              0.001);
}

TEST(Vp2Decoder, OnlyAUnitInBracketsIsNoPartOfTheName)
{
    const auto with = [](const char* entry) {
        return decoded(header + replaced(columns, "Density=Float;kg/M3;Calculated", entry) + data);
    };
    EXPECT_EQ(with("Sound Velocity (Calculated)=Float;Ms-1;Calculated").speedColumn, 3);
    EXPECT_EQ(with("Temperature (F)=Float;;").temperatureColumn, 4);
    EXPECT_EQ(with("Pressure (absolute)=Float;dBar;").pressureColumn, 2);
    EXPECT_EQ(with("Sound Velocity (Ms-1)=Float;;").speedColumn, 6);
    EXPECT_EQ(with("Sound Velocity [m/s]").speedColumn, 6);
    EXPECT_EQ(with("Temperature (degC)").temperatureColumn, 6);
}

TEST(Vp2Decoder, ABracketGoesBeforeTheLineOfUnits)
{
    const QByteArray entry =
        replaced(columns, "Conductivity=Float;mS/cm;", "Conductivity (S/m)=;;");
    EXPECT_EQ(decoded(header + entry + data).conductivityFactor, 10.0);
    EXPECT_EQ(decoded(header + replaced(entry, "=;;", "=Float;uS/cm;") + data).conductivityFactor,
              0.001);
}

TEST(Vp2Decoder, TheEarlierColumnStandsInWhereTheLaterHasNoNumber)
{
    const QByteArray text = "[COLUMNS]\nDepth\nSound Velocity\nSound Velocity\nTemperature\n"
                            "Salinity\n[DATA]\nnames\nunits\n"
                            "1\t1500\t1501\t8\t35\n2\t1502\t\t8\t35\n3\t\t\t8\t35\n";
    const QVector<float> levels = record(text);
    ASSERT_EQ(levels.size(), 3 * recordSlots);
    EXPECT_EQ(levels[0], 1501.0F);
    EXPECT_EQ(levels[recordSlots], 1502.0F);
    // Chen and Millero at S 35, T 8 and 3 m, where nothing was measured.
    EXPECT_NEAR(levels[2 * recordSlots], 1482.518, 1e-3);
}

TEST(Vp2Decoder, ColumnsBehindTenThousandDoNotCount)
{
    const auto text = [](int others) {
        return "[COLUMNS]\nDepth\n" + QByteArray("x\n").repeated(others) +
               "Sound Velocity\n[DATA]\n";
    };
    EXPECT_EQ(decoded(text(9998)).speedColumn, 9999);
    EXPECT_TRUE(isRefused(text(9999)));
}

TEST(Vp2Decoder, ATimeThatIsNotUnderstoodIsKnownToBeThere)
{
    EXPECT_FALSE(decoded(header + columns + data).isTimeUnread);
    EXPECT_FALSE(decoded(columns + data).isTimeUnread);
    EXPECT_FALSE(
        decoded(replaced(header, "2026/06/18 07:42:10", "") + columns + data).isTimeUnread);
    EXPECT_TRUE(
        decoded(replaced(header, "2026/06/18", "18/06/2026") + columns + data).isTimeUnread);
}

TEST(Vp2Decoder, RefusesWhatItCannotRead)
{
    const QByteArray dataOnly = data;
    EXPECT_TRUE(isRefused(""));
    EXPECT_TRUE(isRefused(header + columns)) << "no data";
    EXPECT_TRUE(isRefused(header + columns + "DATA\n1\t2\n"));
    EXPECT_TRUE(isRefused(header + dataOnly)) << "no columns";
    EXPECT_TRUE(isRefused(QByteArray(1000, '\0')));
    EXPECT_TRUE(isRefused("( a b c d e f g h i j k l )\n0 1500\n1 1500\n"));
    struct
    {
        const char* columns;
        bool isUsable;
    } const cases[] = {
        {"Depth\nSound Velocity\n", true},
        {"Pressure\nSound Velocity\n", true},
        {"Depth\nTemperature\nSalinity\n", true},
        {"Pressure\nTemperature\nConductivity\n", true},
        {"Sound Velocity\nTemperature\nSalinity\n", false},
        {"Depth\nTemperature\n", false},
        {"Pressure\nSalinity\nConductivity\n", false},
        {"Depth\nPressure\nDensity\n", false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(!isRefused(QByteArray("[COLUMNS]\n") + c.columns + "[DATA]\n"), c.isUsable)
            << c.columns;
}

TEST(Vp2Decoder, SurvivesBeingCutAtEachByte)
{
    const QByteArray text = header + columns + data;
    for (int size = 0; size <= text.size(); ++size) {
        tagDecodeFmt format;
        if (fnDecodeValeportVP2(text.left(size), format)) {
            const QVector<float> levels =
                decodeInstrumentRows(text.left(size).toStdString(), format).record;
            EXPECT_EQ(levels.size() % recordSlots, 0);
            EXPECT_LE(levels.size(), 2 * recordSlots);
        }
    }
}
