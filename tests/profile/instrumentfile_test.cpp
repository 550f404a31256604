#include "profile/instrumentdecoders.h"
#include "profile/instrumentfile.h"
#include "tests/places.h"
#include "tests/support/commalocale.h"
#include "tests/support/datafolder.h"
#include "tests/support/printers.h"

#include <QJsonArray>
#include <gtest/gtest.h>

#include <cmath>

using namespace profile;

namespace {

// A file of the named columns, and its rows.
QByteArray vp2(const QByteArray& columns, const QByteArray& rows, const QByteArray& header = {})
{
    return "[HEADER]\n" + header + "\n[COLUMNS]\n" + QByteArray(columns).replace(',', '\n') +
           "\n[DATA]\nnames\nunits\n" + QByteArray(rows).replace(',', '\t');
}

InstrumentRecord levels(const QByteArray& text)
{
    tagDecodeFmt format;
    EXPECT_TRUE(fnDecodeValeportVP2(text, format));
    return decodeInstrumentRows(text.toStdString(), format);
}

OpenedProfile opened(const QByteArray& text)
{
    return openInstrumentFile(text, QStringLiteral("sub/cast.vp2"), fnDecodeValeportVP2,
                              QStringLiteral("problem"));
}

QString kind(const QByteArray& text)
{
    return opened(text).reply.value(QLatin1String("hsvp_filetype")).toString();
}

} // namespace

TEST(InstrumentRows, WhatIsMeasuredIsNeverReplaced)
{
    // Values that no formula would give.
    const QVector<float> record =
        levels(vp2("Depth,Sound Velocity,Temperature,Salinity,Pressure,Conductivity",
                   "10,1234.5,5,1,900,70\n"))
            .record;
    EXPECT_EQ(record, (QVector<float>{1234.5F, 10, 10, 1234.5F, 5, 1, 0}));
}

TEST(InstrumentRows, WhatIsMissingIsComputed)
{
    // Published: conductivity ratio 1.888091 at 40 degrees and 10 000 dbar is salinity 40.0000,
    // there sound goes with 1731.995 m/s. The ratio is to 42.914 mS/cm: 81.025537.
    struct
    {
        const char* unit;
        const char* value;
    } const conductivities[] = {
        {"mS/cm", "81.025537"}, {"S/m", "8.1025537"}, {"uS/cm", "81025.537"}};
    for (const auto& c : conductivities) {
        const QByteArray columns =
            QByteArray("Pressure=Float;dBar;,Temperature,Conductivity=Float;") + c.unit + ";";
        const QVector<float> record =
            levels(vp2(columns, QByteArray("10000,40,") + c.value + "\n")).record;
        ASSERT_EQ(record.size(), recordSlots) << c.unit;
        EXPECT_NEAR(record[0], 1731.995, 1e-3) << c.unit;
        EXPECT_NEAR(record[3], 1731.995, 1e-3) << c.unit;
        EXPECT_NEAR(record[5], 40.0, 1e-4) << c.unit;
        EXPECT_EQ(record[4], 40.0F);
        EXPECT_EQ(record[2], 100.0F) << "MPa";
    }
}

TEST(InstrumentRows, DepthComesFromPressureAtTheLatitudeOfTheFile)
{
    // By Newton's method on p = 2.4696e-6 d^2 + 1.008 (1 - 0.00263 cos 2 phi) d.
    struct
    {
        const char* header;
        double depth;
    } const cases[] = {
        {"", 992.26091},
        {"Latitude=999\nLongitude=999", 992.26091},
        {"Latitude=60", 988.37044},
        {"Latitude=60 0 0 S", 988.37044},
    };
    for (const auto& c : cases) {
        const QVector<float> record =
            levels(vp2("Pressure,Sound Velocity", "1000,1500\n", c.header)).record;
        ASSERT_EQ(record.size(), recordSlots);
        EXPECT_NEAR(record[1], c.depth, 1e-3) << c.header;
        EXPECT_EQ(record[2], 10.0F) << "MPa";
    }
    const QVector<float> inAir = levels(vp2("Pressure,Sound Velocity", "-1,0.000\n")).record;
    EXPECT_NEAR(inAir[1], -0.994682, 1e-5);
    EXPECT_EQ(inAir[0], 0.0F);
    for (const char* unit : {"kPa", "bar", "MPa"}) {
        const QByteArray value = unit[0] == 'k' ? "10000" : unit[0] == 'b' ? "100" : "10";
        const QVector<float> record =
            levels(vp2(QByteArray("Pressure=F;") + unit + ",Sound Velocity", value + ",1500\n"))
                .record;
        EXPECT_NEAR(record[1], 992.26091, 1e-3) << unit;
        EXPECT_NEAR(record[2], 10.0, 1e-5) << unit;
    }
}

TEST(InstrumentRows, SpeedWithoutPressureTakesTheOneAtTheDepth)
{
    // 100.559592 dbar at 100 m and latitude 0; Chen and Millero there, S 35, T 10: 1491.47808.
    const QVector<float> record = levels(vp2("Depth,Temperature,Salinity", "100,10,35\n")).record;
    ASSERT_EQ(record.size(), recordSlots);
    EXPECT_NEAR(record[0], 1491.47808, 2e-4);
    EXPECT_EQ(record[1], 100.0F);
    EXPECT_EQ(record[2], 100.0F);
    // Conductivity 40 mS/cm at 100 m: salinity 36.918673, then 1493.818338.
    const QVector<float> fromConductivity =
        levels(vp2("Depth,Temperature,Conductivity", "100,10,40\n")).record;
    EXPECT_NEAR(fromConductivity[5], 36.918673, 1e-5);
    EXPECT_NEAR(fromConductivity[0], 1493.818338, 2e-4);
}

TEST(InstrumentRows, ALevelThatCannotBeHadIsPassedOver)
{
    const QByteArray columns = "Depth,Pressure,Sound Velocity,Temperature,Salinity";
    struct
    {
        const char* row;
        int levels;
    } const cases[] = {
        {"1,1,1500,10,35", 1},
        {",1,1500,10,35", 1}, // depth from pressure
        {"1,1,,10,35", 1},    // speed from the rest
        {"1,,,10,35", 1},
        {",,1500,10,35", 0},
        {"1,1,,,35", 0},
        {"1,1,,10,", 0},
        {"x,y,1500,10,35", 0},
        {"1", 0},
        {"1,1,1500", 1},
        {"1,1,1500,x,y", 1},
        {"nan,nan,1500,10,35", 0},
        {"1,1,inf,10,1e39", 0},
        {"1e39,,1500,10,35", 0},
        {",1e300,1500,10,35", 0},
        {",-200000,1500,10,35", 0}, // a pressure that no depth has
        {"1,1,1e39,10,35", 1},
        {"1,1,,1e30,35", 0},
        {"", 0},
        {",,,,", 0},
    };
    for (const auto& c : cases) {
        const QVector<float> record = levels(vp2(columns, QByteArray(c.row) + "\n")).record;
        EXPECT_EQ(record.size(), c.levels * recordSlots) << c.row;
        for (const float value : record)
            EXPECT_TRUE(std::isfinite(value)) << c.row;
    }
}

TEST(InstrumentRows, UnknownTemperatureAndSalinityAreZero)
{
    EXPECT_EQ(
        levels(vp2("Depth,Sound Velocity,Temperature,Salinity", "1,1500,x,\n2,1501,1e39,nan\n"))
            .record,
        (QVector<float>{1500, 1, 1, 1500, 0, 0, 0, 1501, 2, 2, 1501, 0, 0, 0}));
}

TEST(InstrumentRows, DecimalsAreThoseOfTheColumnsRead)
{
    const auto shown = [](const char* columns, const char* rows) {
        const DecimalCounts d = levels(vp2(columns, rows)).decimals;
        return std::vector<int>{d.depth,       d.speed,    d.alternative,
                                d.temperature, d.salinity, d.absorption};
    };
    const char* const columns = "Date/Time,Depth,Sound Velocity,Temperature,Salinity";
    EXPECT_EQ(shown(columns, "1.2345678,1.234,1500.1234,5.1,35.12\n"),
              (std::vector<int>{3, 4, 5, 1, 2, 0}));
    EXPECT_EQ(shown(columns, "x,1,1500,5,35\n"), (std::vector<int>{2, 2, 5, 0, 0, 0}));
    EXPECT_EQ(shown(columns, "x,1,1500,5,35\nx,,1500.12345,5.123,35.123\n"),
              (std::vector<int>{2, 2, 5, 0, 0, 0}))
        << "a line that is no level shows nothing";
    // What is computed is as fine as what it comes from; the pressure in MPa has two more.
    EXPECT_EQ(
        shown("Pressure,Sound Velocity,Temperature,Conductivity", "1.2345,1500.1,5.1,35.123\n"),
        (std::vector<int>{4, 2, 6, 1, 3, 0}));
}

TEST(InstrumentFile, TheReplyTellsWhatTheFileTells)
{
    const OpenedProfile profile = opened(
        vp2("Depth,Sound Velocity,Temperature,Salinity", "1,1500,10,35\n2,1501,9,35\n",
            "Instrument=X\nLatitude=60.5\nLongitude=190\nDataStartTime=2026/06/18 07:42:10"));
    ASSERT_EQ(profile.reason, QString());
    const QJsonObject& reply = profile.reply;
    const auto text = [&reply](const char* key) {
        return reply.value(QLatin1String(key)).toString();
    };
    EXPECT_EQ(text("hsvp_filetype"), QLatin1String("01"));
    EXPECT_EQ(text("hsvp_filesource"), QLatin1String("cast.vp2"));
    EXPECT_EQ(text("filename"), QLatin1String("sub/cast.vp2"));
    EXPECT_EQ(text("hsvp_filetime"), QLatin1String("20260618074210"));
    EXPECT_EQ(text("hsvp_filelat"), QLatin1String("60.5"));
    EXPECT_EQ(text("hsvp_filelon"), QLatin1String("-170"));
    EXPECT_EQ(text("hsvp_filecomment"), QLatin1String("Valeport X vp2 format."));
    EXPECT_EQ(text("hsvp_filehistory"), QLatin1String("NA"));
    EXPECT_EQ(reply.value(QLatin1String("hsvp_filesamp")), QJsonValue(2));
    EXPECT_EQ(reply.value(QLatin1String("hsvp_fileversion")), QJsonValue(1.0));
    EXPECT_EQ(reply.value(QLatin1String("hsvp_filevalidfrom")), QJsonValue(1781682130000.0));
    EXPECT_EQ(reply.value(QLatin1String("hsvp_filevalidto")), QJsonValue(1781854930000.0));
}

TEST(InstrumentFile, AnUnknownPositionIsLeftOut)
{
    const auto keys = [](const char* header) {
        const QJsonObject reply =
            opened(vp2("Depth,Sound Velocity", "1,1500\n2,1501\n", header)).reply;
        return std::pair(reply.contains(QLatin1String("hsvp_filelat")),
                         reply.contains(QLatin1String("hsvp_filelon")));
    };
    EXPECT_EQ(keys(""), std::pair(false, false));
    EXPECT_EQ(keys("Latitude=999\nLongitude=999"), std::pair(false, false));
    EXPECT_EQ(keys("Latitude=999.0\nLongitude=5"), std::pair(false, true));
    EXPECT_EQ(keys("Latitude=5\nLongitude=\n"), std::pair(true, false));
    EXPECT_EQ(keys("Latitude=0\nLongitude=0"), std::pair(true, true));
}

TEST(InstrumentFile, TheKindTellsWhetherTheWaterIsKnown)
{
    struct
    {
        const char* columns;
        const char* rows;
        const char* kind;
    } const cases[] = {
        {"Depth,Sound Velocity,Temperature,Salinity", "1,1500,1,0\n2,1501,1,2\n", "01"},
        {"Pressure,Sound Velocity,Temperature,Salinity", "1,1500,1,0\n2,1501,1,2\n", "01"},
        {"Pressure,Sound Velocity,Temperature,Conductivity", "1,1500,1,0\n2,1501,1,2\n", "01"},
        {"Depth,Sound Velocity,Temperature,Conductivity", "1,1500,1,9\n2,1501,1,9\n", "01"},
        {"Depth,Sound Velocity,Temperature,Salinity", "1,1500,1,\n2,1501,1,2\n", "00"},
        {"Depth,Sound Velocity,Temperature,Salinity", "1,1500,,3\n2,1501,1,2\n", "00"},
        {"Depth,Sound Velocity,Temperature", "1,1500,1\n2,1501,1\n", "00"},
        {"Depth,Sound Velocity,Salinity", "1,1500,1\n2,1501,1\n", "00"},
        {"Pressure,Sound Velocity", "1,1500\n2,1501\n", "00"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(kind(vp2(c.columns, c.rows)), QLatin1String(c.kind)) << c.columns << c.rows;
}

TEST(InstrumentFile, RefusalsComeInTheirOrder)
{
    EXPECT_EQ(opened("[DATA]\n").reason, QLatin1String("problem"));
    const char* const columns = "Depth,Sound Velocity";
    EXPECT_EQ(opened(vp2(columns, "")).reason, QLatin1String("Too few points in file."));
    EXPECT_EQ(opened(vp2(columns, "1,1500\n")).reason, QLatin1String("Too few points in file."));
    EXPECT_EQ(opened(vp2(columns, "1,1500\n2,1501\n")).reason, QString());
}

TEST(InstrumentFile, EncodingsAndLocalesChangeNothing)
{
    const CommaLocale comma;
    const QByteArray text =
        vp2("Depth,Sound Velocity", "1.25,1500.5\n2.5,1501.5\n", "Instrument=M\xC3\xA5l");
    const QJsonObject expected = opened(text).reply;
    EXPECT_EQ(expected.value(QLatin1String("svp_Depth")).toArray(), (QJsonArray{1.25, 2.5}));
    EXPECT_EQ(expected.value(QLatin1String("hsvp_filecomment")).toString(),
              QStringLiteral("Valeport Mål vp2 format."));
    const QString wide = QChar(QChar::ByteOrderMark) + QString::fromUtf8(text);
    for (const QByteArray& variant :
         {"\xEF\xBB\xBF" + text, QByteArray(text).replace("\xC3\xA5", "\xE5"),
          QByteArray(text).replace("\n", "\r\n"), QByteArray(text).replace("\n", "\r\r\n"),
          QByteArray(reinterpret_cast<const char*>(wide.utf16()), wide.size() * 2)}) {
        QJsonObject reply = opened(variant).reply;
        for (const char* key : {"hsvp_filetime", "hsvp_filevalidfrom", "hsvp_filevalidto"})
            reply.insert(QLatin1String(key), expected.value(QLatin1String(key))); // the clock
        EXPECT_EQ(reply, expected) << variant.toStdString();
    }
}

TEST(InstrumentFile, TheExamplesMayBeCutAtEachByte)
{
    struct
    {
        const char* name;
        InstrumentDecoder decoder;
    } const cases[] = {{"/shelf-slope.vp2", fnDecodeValeportVP2},
                       {"/harbour-pressure.aml", fnDecodeAML_AML}};
    for (const auto& c : cases) {
        const QByteArray text = bytesOf(QStringLiteral(SVP_EXAMPLES_DIR) + QLatin1String(c.name));
        int opens = 0;
        for (int size = 0; size <= text.size(); ++size) {
            const QString reason =
                openInstrumentFile(text.left(size), QString(), c.decoder, QStringLiteral("problem"))
                    .reason;
            opens += reason.isEmpty() ? 1 : 0;
            EXPECT_TRUE(reason.isEmpty() || reason == QLatin1String("problem") ||
                        reason == QLatin1String("Too few points in file."))
                << c.name << ' ' << size;
        }
        EXPECT_GT(opens, 500) << c.name;
        EXPECT_LT(opens, text.size()) << c.name;
    }
}

TEST(InstrumentFile, FiftyThousandLevelsComeIn)
{
    QByteArray rows;
    for (int i = 0; i < 50000; ++i)
        rows += QByteArray::number(i * 0.1, 'f', 1) + ",1500.5\n";
    const QVector<float> record = levels(vp2("Depth,Sound Velocity", rows)).record;
    ASSERT_EQ(record.size(), 50000 * recordSlots);
    EXPECT_EQ(record[49999 * recordSlots + 1], 4999.9F);
}
