#include "profile/instrumentdecoders.h"
#include "profile/instrumentfile.h"
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
    for (const char* time : {"Time=11:05", "Time=25:05:30", "Time=", "UpTime=11:05:30"})
        EXPECT_EQ(withHeader("Time=11:05:30", time).time, QString()) << time;
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
