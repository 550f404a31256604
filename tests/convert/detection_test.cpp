#include "convert/detection.h"
#include "convert/summary.h"
#include "datagram/receivedata.h"
#include "datagram/receivefile.h"
#include "tests/places.h"
#include "tests/support/printers.h"

#include <QDir>
#include <gtest/gtest.h>

#include <cstring>

using namespace convert;

namespace {

QByteArray example(const char* name)
{
    datagram::CReceiveFile file;
    EXPECT_TRUE(
        file.open(QDir(QStringLiteral(SVP_EXAMPLES_DIR)).filePath(QString::fromLatin1(name))));
    return file.text();
}

int formatOf(const QByteArray& text, const char* suffix = "")
{
    return detectFormat(text, QString::fromLatin1(suffix)).format;
}

QString refusalOf(const QByteArray& text)
{
    const Detection detection = detectFormat(text, QString());
    EXPECT_EQ(detection.format, -1) << text.left(40).constData();
    return detection.refusal;
}

} // namespace

TEST(Detection, SamplesAreRecognisedByTheirContent)
{
    const struct
    {
        const char* file;
        int format;
    } cases[] = {
        {"calc-harbour.calc", datagram::CalcListing},
        {"delimited.csv", datagram::DelimitedRows},
        {"sea-bird-shelf.cnv", datagram::SeaBirdConverted},
        {"scan-listing.txt", datagram::ScanListing},
        {"breakpoints.txt", datagram::BreakpointProfile},
        {"svplus-probe.svp", datagram::SvPlusFile},
        {"deck-unit.txt", datagram::SeaBirdDeckUnit},
        {"calibration-extension.txt", datagram::CalibrationExtension},
        {"edf-xbt.edf", datagram::EdfExport},
        {"edf-xctd.edf", datagram::EdfExport},
        {"columns.txt", datagram::PlainColumns},
    };
    for (const auto& c : cases) {
        const QByteArray text = example(c.file);
        const char* const suffix = std::strchr(c.file, '.') + 1;
        EXPECT_EQ(formatOf(text, suffix), c.format) << c.file;
        EXPECT_EQ(formatOf(QByteArray(text).replace("\r\n", "\r\r\n"), suffix), c.format) << c.file;
        EXPECT_EQ(formatOf("\r\n" + QByteArray(text).replace("\r\n", "\n"), suffix), c.format)
            << c.file;
    }
}

TEST(Detection, TheMoreSpecificReaderWins)
{
    const QByteArray cnv = example("sea-bird-shelf.cnv");
    EXPECT_EQ(formatOf("* SBE 11plus V 5.2\n* computation\n** CALC (M/S) (EDF)\n" + cnv),
              datagram::SeaBirdConverted);
    EXPECT_EQ(formatOf("// scan CALC in (M/S)\n" + example("edf-xbt.edf")), datagram::EdfExport);
    // The words alone are no header.
    EXPECT_EQ(formatOf("see # nquan\n1 1500 10\n2 1501 10\n"), datagram::PlainColumns);
}

TEST(Detection, TheSuffixDecidesBetweenTablesAlone)
{
    const QByteArray rows = "1 1500 10\n2 1501 10\n";
    EXPECT_EQ(formatOf(rows, "txt"), datagram::PlainColumns);
    EXPECT_EQ(formatOf(rows, "csv"), datagram::DelimitedRows);
    EXPECT_EQ(formatOf(rows, "CSV"), datagram::DelimitedRows);
    EXPECT_EQ(formatOf(rows, "cnv"), datagram::PlainColumns);
    EXPECT_EQ(formatOf("1,1500,10\n2,1501,10\n", "txt"), datagram::DelimitedRows);
    EXPECT_EQ(formatOf("1 1500\n2 1501\n", "txt"), datagram::DelimitedRows);
}

TEST(Detection, WhatTheEditorReadsIsLeftToIt)
{
    const struct
    {
        const char* text;
        const char* kind;
        const char* suffix;
    } cases[] = {
        {"( SoundVelocity 1.0 0 20261115123456 0 0 -1 0 0 a P 2 )\n1 1500\n2 1501\n",
         "an .asvp profile", "asvp"},
        {"$QZS00,00000,3,123456,15,11,2026,0.00,1500.00,,,\n", "a profile datagram", "ssp"},
        {"[HEADER]\nInstrument=x\n[COLUMNS]\nDepth=1\n[DATA]\nDepth\n1\t1500\t10\n",
         "a Valeport cast", "vp2"},
        {"[Header]\nDate=2026-11-15\n[MeasurementData]\n1,1500,10\n2,1500,10\n", "an AML cast",
         "aml"},
        {"Now: 18/11/2026 10:20:30\n00.050\t20.500\t1480\n00.060\t20.500\t1480\n",
         "a Valeport cast", "valeport"},
    };
    for (const auto& c : cases) {
        const QString suffix = QLatin1String(c.suffix);
        const QString kind = QLatin1String(c.kind);
        const QString own = QStringLiteral("it is %1: open it in the editor").arg(kind);
        EXPECT_EQ(detectFormat(c.text, suffix).refusal, own);
        EXPECT_EQ(detectFormat(c.text, suffix.toUpper()).refusal, own);
        const QString other =
            QStringLiteral("it is %1: give it the suffix .%2, then open it in the editor")
                .arg(kind, suffix);
        EXPECT_EQ(detectFormat(c.text, QStringLiteral("txt")).refusal, other);
        EXPECT_EQ(refusalOf(c.text), other);
    }
    EXPECT_EQ(detectFormat("[MeasurementData]\n1,1500\n", QStringLiteral("amlx")).refusal,
              QStringLiteral("it is an AML cast: open it in the editor"));
    EXPECT_EQ(formatOf("$QZS50,0,1,123456,15,11,2026,1,,10,4,\r\n"), datagram::PressureDatagram);
}

TEST(Detection, AnOlderAmlExportNeedsAnImportFilter)
{
    // It has no sections that the editor's reader of .aml files could go by.
    const QString refusal = QStringLiteral("it is an older AML export: the editor opens it with an "
                                           "import filter that describes its columns");
    EXPECT_EQ(refusalOf("[cast header]\r\r\n1,1500,10\n2,1500,10\n"), refusal);
    EXPECT_EQ(detectFormat("[Cast Header]\n1,1500,10\n2,1500,10\n", QStringLiteral("csv")).refusal,
              refusal);
    EXPECT_EQ(refusalOf("[cast header]\n[MeasurementData]\n1,1500\n"),
              QStringLiteral("it is an AML cast: give it the suffix .aml, then open it in the "
                             "editor"));
}

TEST(Detection, NoProfileIsMadeOfOtherTexts)
{
    EXPECT_TRUE(refusalOf("").contains(QLatin1String("empty")));
    EXPECT_TRUE(refusalOf(" \r\n\x1A").contains(QLatin1String("empty")));
    EXPECT_TRUE(
        refusalOf(QByteArray("1 1500 10\n2 1501\0 10\n", 21)).contains(QLatin1String("binary")));
    EXPECT_TRUE(
        refusalOf(QByteArray("\x01\x02\x03\x04 1500 10\n")).contains(QLatin1String("binary")));
    EXPECT_TRUE(
        refusalOf("Dear surveyor,\nthe probe is lost.\n").contains(QLatin1String("import filter")));
    for (const char* text : {"$", "${", "$QZ", "$QZS", "(", "#", "["})
        EXPECT_TRUE(refusalOf(text).contains(QLatin1String("import filter"))) << text;
    EXPECT_TRUE(refusalOf("1 1500 10\n").contains(QLatin1String("import filter")));
    // Speeds first: read as they stand they would be depths.
    EXPECT_TRUE(refusalOf("1500 1 10\n1501 2 10\n").contains(QLatin1String("none of water")));
    EXPECT_TRUE(refusalOf("1 10 1500\n2 10 1501\n").contains(QLatin1String("none of water")));
}

TEST(Detection, TextsInUtf16AreRecognised)
{
    const QString text = QStringLiteral("\uFEFF1 1500 10\r\n2 1501 10\r\n");
    const QByteArray bytes(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
    EXPECT_EQ(formatOf(bytes), datagram::PlainColumns);
}

TEST(Summary, HalfOfTheSpeedsMustBeThoseOfWater)
{
    const auto isPlausible = [](const std::vector<double>& speeds) {
        std::vector<datagram::ProbeSample> samples;
        samples.reserve(speeds.size());
        for (const double speed : speeds)
            samples.push_back({1.0, speed, 0.0});
        return hasPlausibleSpeeds(samples);
    };
    EXPECT_TRUE(isPlausible({1300.0}));
    EXPECT_FALSE(isPlausible({1299.99}));
    EXPECT_TRUE(isPlausible({1700.0}));
    EXPECT_FALSE(isPlausible({1700.01}));
    EXPECT_TRUE(isPlausible({0.0, 1500.0}));
    EXPECT_FALSE(isPlausible({0.0, 0.0, 1500.0}));
}

TEST(Summary, DepthsMustIncreaseThroughout)
{
    EXPECT_TRUE(areDepthsIncreasing({}));
    EXPECT_TRUE(areDepthsIncreasing({{-1, 0, 0}, {0, 0, 0}, {0.01, 0, 0}}));
    EXPECT_FALSE(areDepthsIncreasing({{0, 0, 0}, {1, 0, 0}, {1, 0, 0}}));
    EXPECT_FALSE(areDepthsIncreasing({{2, 0, 0}, {1, 0, 0}}));
}

TEST(Summary, TextsNameUnitsAndHemispheres)
{
    datagram::ProbeHeader header;
    EXPECT_EQ(positionText(header), QStringLiteral("no position"));
    header.latitude = 30.0;
    header.latitudeMark = 'S';
    EXPECT_EQ(positionText(header), QStringLiteral("no position"));
    header.longitude = 1059.99996;
    header.longitudeMark = 'W';
    EXPECT_EQ(positionText(header), QStringLiteral("00 30.000 S 11 00.000 W"));
    header.year = 2026;
    header.month = 1;
    header.day = 2;
    header.seconds = 9;
    EXPECT_EQ(timeText(header), QStringLiteral("2026-01-02 00:00:09"));
    EXPECT_EQ(stampText(header), QStringLiteral("20260102000009"));
    EXPECT_EQ(levelsText({{2.0, 1500.0, 0.0}, {1.0, 1490.126, 0.0}}),
              QStringLiteral("2 levels, 1.00 to 2.00 m, 1490.13 to 1500.00 m/s"));
    EXPECT_EQ(levelsText({{2.0, 1500.0, 0.0}}),
              QStringLiteral("1 level, 2.00 to 2.00 m, 1500.00 to 1500.00 m/s"));
}
