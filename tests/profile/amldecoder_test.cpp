#include "profile/instrumentdecoders.h"
#include "profile/instrumentfile.h"
#include "profile/instrumentheader.h"
#include "tests/support/printers.h"

#include <gtest/gtest.h>

using namespace profile;

namespace {

const QByteArray header = "[Header]\n"
                          "Date=2026-06-19\n"
                          "Time=11:05:30\n"
                          "Model=Example-3\n"
                          "SerialNumber=E10002\n"
                          "DateFormat=yyyy-mm-dd\n"
                          "LocationMode=Instrument\n"
                          "Latitude=1.5\n"
                          "Longitude=2.5\n"
                          "GPSLatitude=60.25\n"
                          "GPSLongitude=5.75\n"
                          "\n\n"
                          "[SensorMetaData]\n"
                          "Columns=Depth,SV,Model\n"
                          "Model=wrong\n"
                          "\n"
                          "[SensorData]\n"
                          "1,2,3\n"
                          "\n";
const QByteArray metadata = "[MeasurementMetadata]\n"
                            "Columns=Date,Time,Cond,ADC,TempCT,ADC,Pressure,ADC,SV,NSV,Depth\n"
                            "Units=yyyy-mm-dd,hh:mm:ss.ss,mS/cm,none,C,none,dBar,none,m/s,n,m\n"
                            "\n";
const QByteArray data = "[MeasurementData]\n"
                        "2026-06-19,11:05:31.00,0.000,1,15.5,2,-0.25,3,0.000,9,-0.25\n"
                        "2026-06-19,11:05:32.00,30.5,1,8.5,2,10.1,3,1480.5,9,10.0\n";

QByteArray replaced(QByteArray text, const char* from, const char* to)
{
    EXPECT_TRUE(text.contains(from)) << from;
    return text.replace(from, to);
}

tagDecodeFmt decoded(const QByteArray& text)
{
    tagDecodeFmt format;
    EXPECT_TRUE(fnDecodeAML_AML(text, format)) << text.toStdString();
    return format;
}

bool isRefused(const QByteArray& text)
{
    tagDecodeFmt format;
    return !fnDecodeAML_AML(text, format);
}

tagDecodeFmt withHeader(const char* from, const char* to)
{
    return decoded(replaced(header, from, to) + metadata + data);
}

tagDecodeFmt withColumns(const QByteArray& names)
{
    return decoded(header + "[MeasurementMetadata]\nColumns=" + names + "\n" + data);
}

} // namespace

TEST(AmlDecoder, FillsTheWholeRecord)
{
    const tagDecodeFmt format = decoded(header + metadata + data);
    EXPECT_EQ(format.conductivityColumn, 2);
    EXPECT_EQ(format.temperatureColumn, 4);
    EXPECT_EQ(format.pressureColumn, 6);
    EXPECT_EQ(format.speedColumn, 8);
    EXPECT_EQ(format.depthColumn, 10);
    EXPECT_EQ(format.salinityColumn, -1);
    EXPECT_EQ(format.largestColumn, 10);
    EXPECT_EQ(format.separator, ',');
    EXPECT_EQ(format.salinityWord, SalinityWord::Conductivity);
    EXPECT_EQ(format.skipLines, QLatin1String("1-25"));
    EXPECT_EQ(format.time, QLatin1String("20260619110530"));
    EXPECT_EQ(format.latitude, QLatin1String("60.25"));
    EXPECT_EQ(format.longitude, QLatin1String("5.75"));
    EXPECT_EQ(format.description, QLatin1String("AML Example-3 E10002 aml format."));
    EXPECT_EQ(format.rowCount, 0);
}

TEST(AmlDecoder, LevelsInAirAreKeptAsMeasured)
{
    const QByteArray text = header + metadata + data;
    const QVector<float> record = decodeInstrumentRows(text.toStdString(), decoded(text)).record;
    ASSERT_EQ(record.size(), 2 * recordSlots);
    EXPECT_EQ(record.mid(0, 6), (QVector<float>{0, -0.25F, -0.25F, 0, 15.5F, 0}));
    EXPECT_EQ(record.mid(7, 5), (QVector<float>{1480.5F, 10, 10, 1480.5F, 8.5F}));
}

TEST(AmlDecoder, ThePositionFollowsItsMode)
{
    struct
    {
        const char* mode;
        const char* fix;
        const char* latitude;
        const char* longitude;
    } const cases[] = {
        {"LocationMode=Instrument", "60.25", "60.25", "5.75"},
        {"LocationMode=External", "60.25", "60.25", "5.75"},
        {"LocationMode=Manual", "60.25", "1.5", "2.5"},
        {"LocationMode=manual ", "60.25", "1.5", "2.5"},
        {"LocationMode=", "60.25", "60.25", "5.75"},
        {"NoMode=1", "60.25", "60.25", "5.75"},
        // Without a fix: the manual pair, but an external position is never a manual one.
        {"LocationMode=Instrument", "", "1.5", "2.5"},
        {"LocationMode=Instrument", "999", "1.5", "2.5"},
        {"LocationMode=Instrument", "none", "1.5", "2.5"},
        {"LocationMode=External", "999", "999", "5.75"},
    };
    for (const auto& c : cases) {
        const QByteArray text =
            replaced(replaced(header, "LocationMode=Instrument", c.mode), "GPSLatitude=60.25",
                     QByteArray("GPSLatitude=").append(c.fix).constData());
        const tagDecodeFmt format = decoded(text + metadata + data);
        EXPECT_EQ(format.latitude, QLatin1String(c.latitude)) << c.mode << ' ' << c.fix;
        EXPECT_EQ(format.longitude, QLatin1String(c.longitude)) << c.mode << ' ' << c.fix;
    }
}

TEST(AmlDecoder, AFixOfZeroAndZeroIsNone)
{
    const auto latitude = [](const char* north, const char* east) {
        QByteArray text = replaced(header, "60.25", north);
        return decoded(replaced(text, "5.75", east) + metadata + data).latitude;
    };
    EXPECT_EQ(latitude("0.00000", "0.00000"), QLatin1String("1.5"));
    EXPECT_EQ(latitude("0.00000", "0.00001"), QLatin1String("0.00000"));
    EXPECT_EQ(latitude("-0.5", "0"), QLatin1String("-0.5"));
}

TEST(AmlDecoder, DatesAreReadByTheirPattern)
{
    struct
    {
        const char* date;
        const char* pattern;
        const char* time; // empty: none
    } const cases[] = {
        {"2026-06-19", "yyyy-mm-dd", "20260619110530"},
        {"2026/06/19", "ISO", "20260619110530"},
        {"2026-6-9", "", "20260609110530"},
        {"2026-19-06", "yyyy-dd-mm", "20260619110530"},
        {"20260619", "", "20260619110530"},
        {"20260619", "yyyy-mm-dd", "20260619110530"},
        {"20260619", "dd/mm/yyyy", "20260619110530"},
        {"20261906", "yyyyddmm", "20260619110530"},
        {"20260609", "yyyyddmm", "20260906110530"},
        {"19062026", "", "20260619110530"},
        {"06192026", "", "20260619110530"},
        {"06092026", "ddmmyyyy", "20260906110530"},
        {"06092026", "mmddyyyy", "20260609110530"},
        {"06092026", "", ""},
        {"20261301", "", ""},
        {"2026061", "", ""},
        {"202606190", "", ""},
        {"2026061x", "", ""},
        {"060926", "ddmmyy", ""},
        {"06/09/2026", "mm/dd/yyyy", "20260609110530"},
        {"06/09/2026", "dd/mm/yyyy", "20260906110530"},
        {"06/09/2026", "DD/MM/YYYY", "20260906110530"},
        {"06/19/2026", "", "20260619110530"},
        {"19/06/2026", "yyyy-mm-dd", "20260619110530"},
        {"06/09/2026", "yyyy-mm-dd", ""},
        {"06/09/2026", "", ""},
        {"06/09/26", "mm/dd/yy", ""},
        {"19/19/2026", "", ""},
        {"2026-13-01", "yyyy-mm-dd", ""},
        {"2026-06", "yyyy-mm-dd", ""},
        {"99999999999-1-1", "yyyy-mm-dd", ""},
        {"", "yyyy-mm-dd", ""},
    };
    for (const auto& c : cases) {
        const QByteArray text =
            replaced(replaced(header, "yyyy-mm-dd", c.pattern), "2026-06-19", c.date);
        EXPECT_EQ(decoded(text + metadata + data).time, QLatin1String(c.time))
            << c.date << ' ' << c.pattern;
    }
    EXPECT_EQ(withHeader("Time=11:05:30", "Time=11:05:30.75").time,
              QLatin1String("20260619110530"));
    EXPECT_EQ(withHeader("Time=11:05:30", "Time=1:5:3").time, QLatin1String("20260619010503"));
    for (const char* time : {"Time=110530", "Time=110530.75", "Time=110530."})
        EXPECT_EQ(withHeader("Time=11:05:30", time).time, QLatin1String("20260619110530")) << time;
    EXPECT_EQ(withHeader("Time=11:05:30", "Time=11:05").time, QLatin1String("20260619110500"));
    EXPECT_EQ(withHeader("Time=11:05:30", "Time=1:05").time, QLatin1String("20260619010500"));
    for (const char* time :
         {"Time=25:05:30", "Time=", "UpTime=11:05:30", "Time=11", "Time=1105", "Time=11:5",
          "Time=11:05 PM", "Time=011:05", "Time=99999999999:05", "Time=11:60", "Time=24:00",
          "Time=110560", "Time=1105300", "Time=11053", "Time=110530PM", "Time=11:", "Time=:05"})
        EXPECT_EQ(withHeader("Time=11:05:30", time).time, QString()) << time;
}

TEST(AmlDecoder, ATimeThatIsNotUnderstoodIsKnownToBeThere)
{
    EXPECT_FALSE(decoded(header + metadata + data).isTimeUnread);
    EXPECT_FALSE(withHeader("Date=2026-06-19\n", "").isTimeUnread);
    EXPECT_FALSE(withHeader("Date=2026-06-19", "Date=").isTimeUnread);
    EXPECT_TRUE(withHeader("Date=2026-06-19", "Date=06/09/26").isTimeUnread);
    EXPECT_TRUE(withHeader("Time=11:05:30", "Time=noon").isTimeUnread);
    EXPECT_TRUE(withHeader("Time=11:05:30\n", "").isTimeUnread);
    const QByteArray text = replaced(header, "2026-06-19", "19 June 2026") + metadata + data;
    EXPECT_EQ(openInstrumentFile(text, QString(), fnDecodeAML_AML, QString())
                  .reply.value(QLatin1String("hsvp_filecomment"))
                  .toString(),
              QLatin1String("AML Example-3 E10002 aml format. "
                            "The time in the file is not understood: it is the current one."));
}

TEST(AmlDecoder, KeysAndColumnNamesCompareWhole)
{
    EXPECT_EQ(withHeader("Date=", "DateFormat=mm/dd/yyyy\nUpDate=1\nDate=").time,
              QLatin1String("20260619110530"));
    EXPECT_EQ(withHeader("Model=", "SubModel=x\nModelName=y\n Model = ").description,
              QLatin1String("AML Example-3 E10002 aml format."));
    EXPECT_EQ(withColumns("NSV,ADC,XDepth,SV, Depth ,DepthX").speedColumn, 3);
    EXPECT_EQ(withColumns("NSV,ADC,XDepth,SV, Depth ,DepthX").depthColumn, 4);
}

TEST(AmlDecoder, ColumnsCountInTheirSectionOnly)
{
    // "[SensorMetaData]" lists columns of its own, in front or behind.
    const QByteArray behind = "[SensorMetaData]\nColumns=SV,Depth\n";
    EXPECT_EQ(decoded(header + metadata + behind + data).speedColumn, 8);
    EXPECT_TRUE(isRefused(header + data));
}

TEST(AmlDecoder, TheLaterColumnWins)
{
    EXPECT_EQ(withColumns("Depth,SV,TempCT,TempSVT").temperatureColumn, 3);
    EXPECT_EQ(withColumns("Depth,SV,TempSVT,TempCT").temperatureColumn, 3);
    EXPECT_EQ(withColumns("Depth,SV,NSV,CalcSV").speedColumn, 3);
    EXPECT_EQ(withColumns("Depth,CalcSV,NSV,SV").speedColumn, 3);
}

TEST(AmlDecoder, TheEarlierColumnStandsInWhereTheLaterHasNoNumber)
{
    // Levels of a file with these columns, units and rows: speed, depth, temperature each.
    const auto levels = [](const char* names, const char* units, const char* rows) {
        const QByteArray text = header + "[MeasurementMetadata]\nColumns=" + names +
                                "\nUnits=" + units + "\n[MeasurementData]\n" + rows;
        const QVector<float> record =
            decodeInstrumentRows(text.toStdString(), decoded(text)).record;
        QVector<float> values;
        for (int i = 0; i < record.size(); i += recordSlots)
            values << record[i] << record[i + 1] << record[i + 4];
        return values;
    };
    EXPECT_EQ(levels("Depth,CalcSV,SV", "", "1,1500,1501\n2,1502,\n3,1504,x\n4,1506\n5,,1509\n"),
              (QVector<float>{1501, 1, 0, 1502, 2, 0, 1504, 3, 0, 1506, 4, 0, 1509, 5, 0}));
    EXPECT_EQ(levels("Depth,SV,CalcSV", "", "1,1500,\n2,1502,1503\n3,,\n"),
              (QVector<float>{1500, 1, 0, 1503, 2, 0}));
    EXPECT_EQ(levels("Depth,SV,TempCT,TempSVT", "", "1,1500,8,9\n2,1501,8,\n3,1502,8,1e39\n"),
              (QVector<float>{1500, 1, 9, 1501, 2, 8, 1502, 3, 8}));
    // A zero is a number.
    EXPECT_EQ(levels("Depth,CalcSV,SV", "", "1,1500,0\n"), (QVector<float>{0, 1, 0}));
    // Each column has its own unit.
    EXPECT_EQ(levels("Depth,CalcSV,SV", "m,m/s,ft/s", "1,1500,5000\n2,1502,\n"),
              (QVector<float>{1524, 1, 0, 1502, 2, 0}));
    EXPECT_EQ(levels("Depth,CalcSV,SV", "m,ft/s,m/s", "1,5000,\n2,1,1502\n"),
              (QVector<float>{1524, 1, 0, 1502, 2, 0}));
    EXPECT_EQ(levels("Depth,Depth,SV", "ft,m", "10,,1500\n10,4,1500\n"),
              (QVector<float>{1500, 3.048F, 0, 1500, 4, 0}));
    // What the file carries is not computed, though it could be.
    EXPECT_EQ(levels("Pressure,CalcSV,SV,TempCT,Salinity,Depth,Depth", "", "10,1234.5,,8,35,12,\n"),
              (QVector<float>{1234.5F, 12, 8}));
    // Of three the last two count.
    EXPECT_EQ(levels("Depth,SV,CalcSV,SV", "", "1,1500,1501,1502\n2,1500,1501,\n3,1500,,\n"),
              (QVector<float>{1502, 1, 0, 1501, 2, 0}));
}

TEST(AmlDecoder, ColumnsBehindTenThousandDoNotCount)
{
    const QByteArray names = "Depth" + QByteArray(9999, ',');
    EXPECT_EQ(withColumns(names + "SV").speedColumn, 9999);
    EXPECT_TRUE(isRefused("[MeasurementMetadata]\nColumns=" + names + ",SV\n" + data));
}

TEST(SplitTrimmed, StopsWhereItIsTold)
{
    using Parts = std::vector<std::string_view>;
    EXPECT_EQ(splitTrimmed(" a ; b;c", ';'), (Parts{"a", "b", "c"}));
    EXPECT_EQ(splitTrimmed(" a ; b;c", ';', 3), (Parts{"a", "b", "c"}));
    EXPECT_EQ(splitTrimmed(" a ; b;c", ';', 2), (Parts{"a", "b"}));
    EXPECT_EQ(splitTrimmed("", ';', 2), Parts{""});
    EXPECT_EQ(splitTrimmed(std::string(9999, ';'), ';').size(), 10000U);
    EXPECT_EQ(splitTrimmed(std::string(20000, ';'), ';').size(), 10000U);
}

TEST(AmlDecoder, UnitsBelongToTheColumnThatIsRead)
{
    const auto format = [](const char* names, const char* units) {
        return decoded(header + "[MeasurementMetadata]\nColumns=" + names + "\nUnits=" + units +
                       "\n" + data);
    };
    EXPECT_EQ(format("SV,Pressure,Cond", "m/s,dBar,mS/cm").pressureFactor, 1.0);
    EXPECT_EQ(format("SV,Pressure,Cond", "m/s,dbar,S/m").conductivityFactor, 10.0);
    EXPECT_EQ(format("SV,Pressure,Cond", "m/s,dbar,uS/cm").conductivityFactor, 0.001);
    EXPECT_EQ(format("SV,Pressure,Cond", "m/s,kPa").pressureFactor, 0.1);
    EXPECT_EQ(format("SV,Depth", "ft/s,ft").depthFactor, 0.3048);
    EXPECT_EQ(format("SV,Depth", "ft/s,ft").speedFactor, 0.3048);
    EXPECT_EQ(format("SV,Pressure,CalcSV", "ft/s,dbar,m/s").speedFactor, 1.0);
    EXPECT_EQ(format("SV,Cond(S/m),Pressure[bar]", "").conductivityFactor, 10.0);
    EXPECT_EQ(format("SV,Cond(S/m),Pressure[bar]", "").pressureFactor, 10.0);
    EXPECT_EQ(format("SV,Cond(S/m),Pressure[bar]", "m/s,mS/cm").conductivityFactor, 1.0);
}

TEST(AmlDecoder, OnlyAUnitInBracketsIsNoPartOfTheName)
{
    struct
    {
        const char* names;
        int speed;
        int depth;
    } const cases[] = {
        {"Depth,SV,SV (raw)", 1, 0},       {"Depth,SV,SV(calculated)", 1, 0},
        {"Depth,SV,SV ()", 1, 0},          {"Depth,SV,SV (m/s) raw", 1, 0},
        {"Depth,SV,SV (raw) (m/s)", 1, 0}, {"Depth,SV,SV (m/s", 1, 0},
        {"Depth,SV,SV (dbar)", 1, 0}, // no unit of a speed
        {"Depth,SV,CalcSV (m/s)", 2, 0},   {"Depth,SV,SV[M/S]", 2, 0},
        {"Depth,SV,SV ( ft/s ) ", 2, 0},   {"Depth (2),Depth (m),SV", 2, 1},
        {"Depth (ft),SV", 1, 0},           {"Depth [metres],SV,Depth (bar)", 1, 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(withColumns(c.names).speedColumn, c.speed) << c.names;
        EXPECT_EQ(withColumns(c.names).depthColumn, c.depth) << c.names;
    }
    struct
    {
        const char* name;
        int tagDecodeFmt::*column;
    } const units[] = {
        {"Pressure (dbar)", &tagDecodeFmt::pressureColumn},
        {"Pressure (dBar)", &tagDecodeFmt::pressureColumn},
        {"Pressure [psi]", &tagDecodeFmt::pressureColumn},
        {"TempCT (C)", &tagDecodeFmt::temperatureColumn},
        {"TempCT (deg C)", &tagDecodeFmt::temperatureColumn},
        {"TempCT (DegC)", &tagDecodeFmt::temperatureColumn},
        {"TempCT (\xC2\xB0"
         "C)",
         &tagDecodeFmt::temperatureColumn},
        {"TempCT (\xB0"
         "C)",
         &tagDecodeFmt::temperatureColumn},
        {"Salinity (PSU)", &tagDecodeFmt::salinityColumn},
        {"Cond (mS/cm)", &tagDecodeFmt::conductivityColumn},
        {"Cond (mS/M)", &tagDecodeFmt::conductivityColumn},
        {"Cond (S/m)", &tagDecodeFmt::conductivityColumn},
    };
    for (const auto& c : units)
        EXPECT_EQ(withColumns(QByteArray("Depth,SV,") + c.name).*c.column, 2) << c.name;
    for (const char* name : {"TempCT (F)", "TempCT (K)", "TempCT (2)", "TempCT (raw)"})
        EXPECT_EQ(withColumns(QByteArray("Depth,SV,") + name).temperatureColumn, -1) << name;
}

TEST(AmlDecoder, WhatIsNotNamedLeavesNoGap)
{
    const QByteArray anonymous = replaced(header, "Model=Example-3\n", "");
    EXPECT_EQ(decoded(anonymous + metadata + data).description,
              QLatin1String("AML E10002 aml format."));
    EXPECT_EQ(decoded(metadata + data).description, QLatin1String("AML aml format."));
}

TEST(AmlDecoder, EveryLineEndReadsAlike)
{
    const QByteArray text = header + metadata + data;
    const QVector<float> expected = decodeInstrumentRows(text.toStdString(), decoded(text)).record;
    ASSERT_EQ(expected.size(), 2 * recordSlots);
    for (const char* end : {"\r\n", "\r\r\n", "\r"}) {
        const QByteArray variant = QByteArray(text).replace("\n", end);
        EXPECT_EQ(decoded(variant).skipLines, QLatin1String("1-25"));
        EXPECT_EQ(decodeInstrumentRows(variant.toStdString(), decoded(variant)).record, expected);
    }
}

TEST(AmlDecoder, RefusesWhatItCannotRead)
{
    EXPECT_TRUE(isRefused(""));
    EXPECT_TRUE(isRefused(header + metadata)) << "no data";
    EXPECT_TRUE(isRefused("[HEADER]\n[COLUMNS]\nDepth\nSound Velocity\n[DATA]\n1\t1500\n"));
    EXPECT_TRUE(isRefused(QByteArray(1000, '\xFF')));
    const auto isUsable = [](const char* names) {
        return !isRefused(QByteArray("[MeasurementMetadata]\nColumns=") + names +
                          "\n[MeasurementData]\n");
    };
    EXPECT_TRUE(isUsable("Depth,SV"));
    EXPECT_TRUE(isUsable("Pressure,CalcSV"));
    EXPECT_TRUE(isUsable("Pressure,Cond,TempCT"));
    EXPECT_TRUE(isUsable("Depth,Salinity,TempSVT"));
    EXPECT_FALSE(isUsable("Depth,Cond"));
    EXPECT_FALSE(isUsable("SV,Cond,TempCT"));
    EXPECT_FALSE(isUsable("Pressure,TempCT,Density"));
    EXPECT_FALSE(isUsable(""));
}

TEST(AmlDecoder, SurvivesBeingCutAtEachByte)
{
    const QByteArray text = header + metadata + data;
    for (int size = 0; size <= text.size(); ++size) {
        tagDecodeFmt format;
        if (!fnDecodeAML_AML(text.left(size), format))
            continue;
        const std::string cut = text.left(size).toStdString();
        EXPECT_LE(decodeInstrumentRows(cut, format).record.size(), 2 * recordSlots) << size;
    }
}
