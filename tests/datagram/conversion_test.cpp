#include "datagram/conversion.h"
#include "tests/support/datafolder.h"
#include "tests/support/sspsample.h"

#include <QDir>
#include <QFileInfo>
#include <gtest/gtest.h>

using namespace datagram;

namespace {

const settings::ProfileLimits limits;
const QDateTime noon(QDate(2026, 11, 21), QTime(12, 0, 30));

class CalcS00 : public testing::Test
{
  protected:
    Conversion convert(const SspSample& sample) const { return convert(sample.text()); }
    Conversion convert(const QByteArray& text) const
    {
        return calcS00(text, convertedFolder(), limits, noon);
    }
    QByteArray written(const char* name = "20261115_123456.asvp") const
    {
        return bytesOf(folder.path(QLatin1String("qrvdata/svp_abscoeff/") + QLatin1String(name)));
    }
    QList<QByteArray> lines() const { return written().split('\n'); }
    int files() const
    {
        return QDir(folder.path(QStringLiteral("qrvdata/svp_abscoeff")))
            .entryList(QDir::Files)
            .size();
    }

    DataFolder folder;
};

} // namespace

TEST_F(CalcS00, writesTheLevelsAndGivesThemBack)
{
    const Conversion result = convert(SspSample());
    EXPECT_EQ(result.report.number, 0);
    EXPECT_EQ(written(), "( SoundVelocity  1.0 0 20261115123456 59.50000000 10.25000000 -1 0 0 "
                         "QZS00_00000 P 0003 )\r\n"
                         "0.000 1500.000\r\n100.000 1490.000\r\n12000.000 1520.000\r\n");
    ASSERT_EQ(result.profile.size(), 7U);
    EXPECT_EQ(result.profile[ConvertedSpeed], (QVector<float>{1500, 1490, 1520}));
    EXPECT_EQ(result.profile[ConvertedDepth], (QVector<float>{0, 100, 12000}));
    EXPECT_EQ(result.time, QStringLiteral("20261115123456"));
}

// A pressure of 100 MPa, 40 °C and a salinity of 40 make 1731.995 m/s, the published check value;
// 8.1025537 S/m is the conductivity of that salinity there. 9690.563 m is the depth of 10 000 dbar
// at 45 degrees: (sqrt(1.008^2 + 0.098784) - 1.008) / 4.9392e-6.
TEST_F(CalcS00, convertsEachContentIdentifier)
{
    struct Group
    {
        QList<int> identifiers;
        const char* fourth;
        const char* line;
    };
    const char* const salinity = "40";
    const char* const conductivity = "8.102553717";
    const Group groups[] = {
        {{0, 1, 6, 10, 11, 12, 13}, salinity, "100.000 1500.250\r"},
        {{2, 20, 21, 22, 23}, salinity, "100.000 1731.995\r"},
        {{3, 30, 31, 32, 33}, conductivity, "100.000 1731.995\r"},
        {{4, 40, 41, 42, 43, 53}, salinity, "9690.563 1731.995\r"},
        {{5, 50, 51, 52}, conductivity, "9690.563 1731.995\r"},
        {{7, 14}, conductivity, "9690.563 1500.250\r"},
    };
    for (const Group& group : groups) {
        for (const int identifier : group.identifiers) {
            SspSample sample;
            sample.identifier = QByteArray::number(identifier).rightJustified(2, '0');
            sample.position = "4500.0,S,00000.0,E";
            sample.rows = {QByteArray("100,1500.25,40,") + group.fourth + ",0", "12000,1500,2,3,0"};
            convert(sample);
            EXPECT_EQ(lines().value(1), group.line) << identifier;
        }
    }
}

TEST_F(CalcS00, takesTheLatitudeIntoTheDepth)
{
    SspSample sample;
    sample.identifier = "07";
    sample.rows = {"100,1500,4,3,0"};
    const struct
    {
        const char* position;
        const char* line;
    } rows[] = {
        {"5930.0,S,00000.0,E", "9678.781 1500.000\r"},
        {"5930.0,N,00000.0,E", "9678.781 1500.000\r"},
        {"0000.0,N,00000.0,E", "9714.953 1500.000\r"},
        {",,,", "9714.953 1500.000\r"},
    };
    for (const auto& row : rows) {
        sample.position = row.position;
        convert(sample);
        EXPECT_EQ(lines().value(1), row.line) << row.position;
    }
}

TEST_F(CalcS00, writesPositionsAsDecimalDegrees)
{
    const struct
    {
        const char* position;
        const char* words;
    } rows[] = {
        {"5930.000000,S,01015.000000,W", " -59.50000000 -10.25000000 "},
        {"0030.0,S,00030.0,W", " -0.50000000 -0.50000000 "},
        {"5930.5,N,17959.4,E", " 59.50833333 179.99000000 "},
        {"59,N,10,E", " 0 0 "}, // two characters are no coordinate
        {"559,N,559,E", " 5.98333333 5.98333333 "},
        {"5930.0,N,,E", " 59.50000000 0 "},
        // The comma behind a row end makes no field, so the rest of this one moves up.
        {",,1015.0,E", " 0 0 "},
        {"1e999,N,1015.0,E", " 0 10.25000000 "},
    };
    for (const auto& row : rows) {
        SspSample sample;
        sample.position = row.position;
        convert(sample);
        EXPECT_TRUE(lines().value(0).contains(row.words)) << lines().value(0).constData();
    }
}

TEST_F(CalcS00, takesTheCurrentTimeToTheMinuteWhereThereIsNone)
{
    SspSample sample;
    sample.time = "";
    const Conversion result = convert(sample);
    EXPECT_EQ(result.report.number, 0);
    EXPECT_TRUE(written("20261121_120030.asvp")
                    .startsWith("( SoundVelocity  1.0 0 202611211200 59.50000000"));
    EXPECT_EQ(result.time, noon.toUTC().toString(QStringLiteral("yyyyMMddHHmmss")));

    SspSample noYear;
    noYear.date = "15,11,";
    EXPECT_EQ(convert(noYear).report.number, 0);
    EXPECT_EQ(files(), 1);
}

TEST_F(CalcS00, refusesATimeThatIsNoFileName)
{
    for (const char* date :
         {"15,11,2026/../..", "15/..,11,2026", "15,11\\..,2026", "15,1 1,2026"}) {
        SspSample sample;
        sample.date = date;
        EXPECT_EQ(convert(sample).report.number, 2631) << date;
    }
    SspSample sample;
    sample.time = "123456/../../x";
    EXPECT_EQ(convert(sample).report.number, 2631);
    EXPECT_EQ(files(), 0);
    EXPECT_FALSE(QFileInfo::exists(folder.path(QStringLiteral("x.asvp"))));
}

TEST_F(CalcS00, refusesFieldsOfATimeThatWouldJoinToAnother)
{
    // 05-11-24 12:15:00 would be joined to 241105121500, the year 2411.
    const struct
    {
        const char* time;
        const char* date;
        int number;
    } rows[] = {
        {"121500", "05,11,24", 2627},    {"123456", "015,1,2026", 2627},
        {"123456", "5,11,2026", 2627},   {"12345", "15,11,2026", 2627},
        {"012345", "15,11,02026", 2627}, {"123456 ", "15,11, 2026", 0},
    };
    for (const auto& row : rows) {
        SspSample sample;
        sample.time = row.time;
        sample.date = row.date;
        EXPECT_EQ(convert(sample).report.number, row.number) << row.time << " " << row.date;
    }
    EXPECT_EQ(files(), 1);
}

TEST_F(CalcS00, readsAHeaderThatEndsInItsOwnLine)
{
    // The line end and the comma behind the year leave a blank that is no part of it.
    const QByteArray text = SspSample().text().replace("2026,", "2026\r\n,");
    EXPECT_EQ(convert(text).report.number, 0);
    EXPECT_EQ(lines().value(1), "0.000 1500.000\r");
}

TEST_F(CalcS00, computesTheSoundSpeedOfDepthRows)
{
    // The formulas take the depth times 100 for a pressure, so only salinities and temperatures
    // made for it give speeds of water at 12 000 m; the surface is as anywhere.
    SspSample sample;
    sample.identifier = "02";
    sample.rows = {"0,,10,35,", "12000,,10,35,"};
    EXPECT_EQ(convert(sample).report.number, 2616);
    // 1489.8 m/s at the surface is in the published table.
    EXPECT_TRUE(lines().value(1).startsWith("0.000 1489.8"));
}

TEST_F(CalcS00, refusesAPressureThatNoDepthHas)
{
    SspSample sample;
    sample.identifier = "07";
    sample.rows = {"-2000,1500,4,3,0", "124.5,1500,4,3,0"};
    EXPECT_EQ(convert(sample).report.number, 2618);
}

TEST_F(CalcS00, takesEachSignAndLetterOnce)
{
    const struct
    {
        const char* position;
        const char* words;
    } rows[] = {
        {"5930.0,s,1015.0,w", " 59.50000000 10.25000000 "}, // only the capital letters count
        {"-5930.0,N,-1015.0,E", " -59.50000000 -10.25000000 "},
        {"-5930.0,S,-1015.0,W", " -59.50000000 -10.25000000 "},
    };
    for (const auto& row : rows) {
        SspSample sample;
        sample.position = row.position;
        convert(sample);
        EXPECT_TRUE(lines().value(0).contains(row.words)) << lines().value(0).constData();
    }
}

TEST_F(CalcS00, reportsTooFewFieldsBeforeAnyStructure)
{
    // 14 fields, and not even a "$" in front.
    EXPECT_EQ(convert(QByteArray("x,1,2,3,4,5,6,7,8,9,10,11,12,13")).report.number, 2600);
    EXPECT_EQ(convert(QByteArray("x,1,2,3,4,5,6,7,8,9,10,11,12,13,14")).report.number, 2601);
    EXPECT_EQ(convert(QByteArray()).report.number, 2600);
    EXPECT_EQ(files(), 0);
}

TEST_F(CalcS00, reportsEachStructuralRule)
{
    const QByteArray sound = SspSample().text();
    const auto with = [&sound](const char* before, const char* after) {
        return QByteArray(sound).replace(before, after);
    };
    const struct
    {
        QByteArray text;
        int number;
    } rows[] = {
        {with("$QZS", "!QZS"), 2601},
        {with("$QZS", "$QZT"), 2602},
        {with("$QZS00", "$QZS15"), 2603},
        {with("00000,3,", "00000,0,"), 2604},
        {with("00000,3,", "00000,1001,"), 2604},
        {with(",123456,", ",236000,"), 2605},
        {with(",15,11,", ",32,11,"), 2606},
        {with(",15,11,", ",15,13,"), 2607},
        {with(",2026,", ",10000,"), 2608},
        {with("00000,3,", "00000,4,"), 2609},
        {with("\\\r\n", "\\\n"), 2610},
        {with("Deep cast", "a,b,c"), 0},
        {with("Deep cast", "a,b,c,d"), 2609},
    };
    for (const auto& row : rows)
        EXPECT_EQ(convert(row.text).report.number, row.number) << row.text.constData();
}

TEST_F(CalcS00, reportsEachSampleRule)
{
    using Arguments = std::vector<settings::ReportArgument>;
    const struct
    {
        QList<QByteArray> rows;
        int number;
        Arguments arguments;
    } cases[] = {
        {{"0,1500,,,", "5,1399.99,,,", "12000,1500,,,"}, 2616, {2, 5.0, 1399.99}},
        {{"0,1500,,,", "5,1700.01,,,", "12000,1500,,,"}, 2616, {2, 5.0, 1700.01}},
        {{"-0.01,1500,,,", "5,1500,,,", "12000,1500,,,"}, 2617, {1, -0.01, 1500.0}},
        {{"0,1500,,,", "5,1500,,,", "12000.02,1500,,,"}, 2617, {3, 12000.02, 1500.0}},
        {{"0,1500,,,", "5,1500,,,", "4,1501,,,", "12000,1500,,,"}, 2618, {3, 4.0, 1501.0}},
        {{"0,1500,,,", "5,1500,,,", "5,1501,,,", "12000,1500,,,"}, 2619, {3, 5.0, 1501.0}},
        {{"0,1500,,,", "5,1500,,,", "11899,1502,,,"}, 2620, {3, 11899.0, 1502.0}},
        {{"0,1500,,,", "10.000,1500,,,", "10.005,1501,,,", "12000,1500,,,"},
         2621,
         {3, 10.005, 1501.0}},
        {{"0,1500,,,", "10.00,1400,,,", "10.01,1700,,,", "12000.01,1500,,,"}, 0, {}},
        {{"0,1500,,,", "11900.5,1500,,,"}, 0, {}},
        {{"0,1500,,,", "11900,1500,,,"}, 0, {}},
        {{"12000,1500,,,"}, 2600, {}}, // the built datagram of one sample has 13 fields
        {{"nan,1500,,,", "12000,1500,,,"}, 2618, {}},
        {{"0,nan,,,", "12000,1500,,,"}, 2616, {}},
    };
    for (const auto& test : cases) {
        SspSample sample;
        sample.rows = test.rows;
        const Conversion result = convert(sample);
        EXPECT_EQ(result.report.number, test.number) << test.rows.join('|').constData();
        EXPECT_EQ(result.profile.empty(), test.number != 0);
        if (!test.arguments.empty()) {
            EXPECT_EQ(result.report.arguments, test.arguments);
        }
    }
}

TEST_F(CalcS00, readsRowsThatEndInACommaAsFive)
{
    SspSample sample;
    sample.rows = {"0,1500,,,", "12000,1500,,,"};
    QByteArray text = sample.text();
    text.replace("\r\n12000", "\r\n,12000"); // the comma after a line end makes no field
    const Conversion result = convert(text);
    EXPECT_EQ(result.report.number, 0);
    EXPECT_EQ(result.profile[ConvertedDepth], (QVector<float>{0, 12000}));
}

TEST_F(CalcS00, keepsTheRowsUnroundedAndAsTheyStand)
{
    SspSample sample;
    sample.identifier = "14";
    sample.rows = {"0.00004,1500.1234,1.5,2.5,0.25", "118.9,1501,2,3,0.5", "124.5,1501,2,3,0.5"};
    const Conversion result = convert(sample);
    ASSERT_EQ(result.report.number, 0);
    EXPECT_EQ(result.profile[ConvertedSpeed][0], 1500.1234F);
    EXPECT_NEAR(double(result.profile[ConvertedDepth][0]), 0.004 / 1.009, 1e-5);
    EXPECT_EQ(result.profile[ConvertedFirstColumn][0], 0.00004F);
    EXPECT_EQ(result.profile[ConvertedFirstColumn + 1][0], 1500.1234F);
    EXPECT_EQ(result.profile[ConvertedFirstColumn + 2][0], 1.5F);
    EXPECT_EQ(result.profile[ConvertedFirstColumn + 3][0], 2.5F);
    EXPECT_EQ(result.profile[ConvertedFirstColumn + 4][0], 0.25F);
}

TEST_F(CalcS00, keepsAProfileOfTheSameNameAsABackup)
{
    folder.write(QStringLiteral("qrvdata/svp_abscoeff/20261115_123456.asvp"), "a surveyor's own");
    convert(SspSample());
    EXPECT_EQ(files(), 2);
    convert(SspSample()); // the same again: nothing to keep
    EXPECT_EQ(files(), 2);
}

TEST_F(CalcS00, doesWithoutAFolder)
{
    EXPECT_EQ(calcS00(SspSample().text(), QString(), limits, noon).report.number, 2631);
    folder.write(QStringLiteral("blocked"), "a file");
    EXPECT_EQ(
        calcS00(SspSample().text(), folder.path(QStringLiteral("blocked/below")), limits, noon)
            .report.number,
        2631);
}

TEST_F(CalcS00, takesNoMoreMemoryThanFieldsThatCanBeLegal)
{
    EXPECT_EQ(convert("$QZS00,0,1000,0,1,1,0," + QByteArray(1 << 20, ',')).report.number, 2609);
    EXPECT_LE(DatagramFields(QByteArray(1 << 20, ',')).size(), 6001U);
}

TEST_F(CalcS00, makesOneWordOfTheSource)
{
    SspSample sample;
    sample.number = "12 34 )";
    EXPECT_EQ(convert(sample).report.number, 0);
    EXPECT_TRUE(lines().value(0).contains(" QZS00_12_34_) P 0003 )"));
}

TEST_F(CalcS00, survivesACutAtEachByte)
{
    SspSample sample;
    sample.identifier = "50";
    sample.rows = {"0.5,,8.5,3.5,0.1", "124.5,,2,3.1,0.1"};
    const QByteArray whole = sample.text();
    ASSERT_EQ(convert(whole).report.number, 0);
    for (int length = 0; length < whole.size(); ++length)
        EXPECT_NE(convert(firstDatagram(whole.left(length))).report.number, 0) << length;
}
