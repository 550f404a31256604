#include "datagram/convertedfile.h"
#include "datagram/receivedata.h"
#include "datagram/receivefile.h"
#include "tests/support/commalocale.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <limits>

using namespace datagram;

namespace {

QByteArray profileWith(const QByteArray& stamp, const QByteArray& rows = "0 1500\r\n10 1490\r\n",
                       const QByteArray& count = "0002")
{
    return "( SoundVelocity  1.0 0 " + stamp + " 0 0 -1 0 0 QZS00_00000 P " + count + " )\r\n" +
           rows;
}

int resultOf(const QByteArray& text)
{
    return CReceiveData().parse(ConvertedAsvp, text);
}

} // namespace

TEST(ConvertedProfile, SamplesTimeAndPositionAreRead)
{
    CReceiveData data;
    ASSERT_EQ(data.parse(4, "( SoundVelocity  1.0 0 20261115123456 -33.50000000 151.25000000 -1 0 "
                            "0 QZS00_00000 P 0003 )\r\n0.000 1500.250\r\n10.500 1490.125\r\n"
                            "12000.000 1550.000\r\n"),
              3);
    EXPECT_EQ(data.format(), 4);
    ASSERT_EQ(data.samples().size(), 3U);
    EXPECT_EQ(data.samples()[0].depth, 0.0);
    EXPECT_EQ(data.samples()[0].speed, 1500.25);
    EXPECT_EQ(data.samples()[0].third, 0.0);
    EXPECT_EQ(data.samples()[1].depth, 10.5);
    EXPECT_EQ(data.samples()[1].speed, 1490.125);
    EXPECT_EQ(data.samples()[2].depth, 12000.0);
    const ProbeHeader& header = data.header();
    EXPECT_TRUE(header.hasTime);
    EXPECT_EQ(header.year, 2026);
    EXPECT_EQ(header.month, 11);
    EXPECT_EQ(header.day, 15);
    EXPECT_EQ(header.hours, 12);
    EXPECT_EQ(header.minutes, 34);
    EXPECT_EQ(header.seconds, 56);
    EXPECT_DOUBLE_EQ(header.latitude, 3330.0);
    EXPECT_EQ(header.latitudeMark, 'S');
    EXPECT_DOUBLE_EQ(header.longitude, 15115.0);
    EXPECT_EQ(header.longitudeMark, 'E');
}

TEST(ConvertedProfile, StampMayLackItsSeconds)
{
    CReceiveData data;
    ASSERT_EQ(data.parse(4, profileWith("202611151234")), 2);
    EXPECT_EQ(data.header().minutes, 34);
    EXPECT_EQ(data.header().seconds, 0);
}

TEST(ConvertedProfile, StampsAreHeldToTheirBounds)
{
    const struct
    {
        const char* stamp;
        int result;
    } cases[] = {
        {"19000101000000", 2},
        {"18991231235959", ProbeIllegalTime},
        {"25001231235959", 2},
        {"25010101000000", ProbeIllegalTime},
        {"20260101000000", 2},
        {"20260001000000", ProbeIllegalTime},
        {"20261201000000", 2},
        {"20261301000000", ProbeIllegalTime},
        {"20260100000000", ProbeIllegalTime},
        {"20260131000000", 2},
        {"20260231000000", 2}, // each number by itself
        {"20260132000000", ProbeIllegalTime},
        {"20260101240000", 2},
        {"20260101250000", ProbeIllegalTime},
        {"20260101006000", 2},
        {"20260101006100", ProbeIllegalTime},
        {"20260101000060", 2},
        {"20260101000061", ProbeIllegalTime},
        {"202601012460", 2},
        {"202601012461", ProbeIllegalTime},
        {"202601012500", ProbeIllegalTime},
        {"20260101000", ProbeIllegalTime},
        {"2026010100000", ProbeIllegalTime},
        {"202601010000000", ProbeIllegalTime},
        {"2026010100000x", ProbeIllegalTime},
        {"2026-1-1 00:00", ProbeIllegalTime},
        {"+0260101000000", ProbeIllegalTime},
        {"0", ProbeIllegalTime},
    };
    for (const auto& c : cases)
        EXPECT_EQ(resultOf(profileWith(c.stamp)), c.result) << c.stamp;
}

TEST(ConvertedProfile, TextWithoutTheKeywordIsNone)
{
    EXPECT_EQ(resultOf("0 1500\r\n10 1490\r\n"), ProbeUnknownFormat);
    EXPECT_EQ(resultOf(""), ProbeUnknownFormat);
    EXPECT_EQ(resultOf("( soundvelocity 1.0 0 20261115123456 0 0 -1 0 0 a P 0 )"),
              ProbeUnknownFormat);
    EXPECT_EQ(resultOf("( SoundVelocity"), ProbeIllegalTime);
}

TEST(ConvertedProfile, RowsScanAsTwoNumbers)
{
    const struct
    {
        const char* rows;
        int result;
    } cases[] = {
        {"0 1500\n10 1490\n", 2},
        {"  0 1500\n\t10\t1490\n", 2},
        {"+0 +1500\n10 +1490\n", 2},
        {"0 1500 and more\n10 1490,3\n", 2},
        {"0.0 1.5e3\n1e1 .149e4\n", 2},
        {"\n0 1500\n   \n\t\n10 1490\n\n", 2},
        {"0 1500\n10 1490", 2},
        {"-0.2 1500\n10 1490\n", 2},
        {"0 1500\n10\n", ProbeIllegalRow},
        {"0 1500\n10 x\n", ProbeIllegalRow},
        {"0 1500\n10,1490\n", ProbeIllegalRow},
        {"0 1500\n10,5 1490,5\n", ProbeIllegalRow},
        {"0 1500\nend\n", ProbeIllegalRow},
        {"0 1500\n++10 1490\n", ProbeIllegalRow},
        {"0 1500\n+-10 1490\n", ProbeIllegalRow},
        {"0 1500\n10 nan\n", 2},
        {"0 1500\ninf 1490\n", 2},
        {"0 1500\n10 1e999\n", 2},
        {"0 1500\n1e-999 1490\n", 2},
    };
    for (const auto& c : cases)
        EXPECT_EQ(resultOf(profileWith("20261115123456", c.rows)), c.result) << c.rows;
}

TEST(ConvertedProfile, StatedCountMustAgreeOnceTheRowsScan)
{
    const QByteArray stamp = "20261115123456";
    EXPECT_EQ(resultOf(profileWith(stamp, "0 1500\n10 1490\n", "2")), 2);
    EXPECT_EQ(resultOf(profileWith(stamp, "0 1500\n10 1490\n", "0003")), ProbeCountDiffers);
    EXPECT_EQ(resultOf(profileWith(stamp, "0 1500\n10 1490\n", "0001")), ProbeCountDiffers);
    EXPECT_EQ(resultOf(profileWith(stamp, "0 1500\n10 1490\n", "two")), ProbeCountDiffers);
    EXPECT_EQ(resultOf(profileWith(stamp, "0 1500\n10 1490\n", "99999999999")), ProbeCountDiffers);
    EXPECT_EQ(resultOf(profileWith(stamp, "0 1500\nx\n", "0003")), ProbeIllegalRow);
    EXPECT_EQ(resultOf(profileWith(stamp, "", "0000")), 0);
    EXPECT_EQ(resultOf(profileWith(stamp, "", "0003")), ProbeCountDiffers);
    // A header that ends before the count states none.
    EXPECT_EQ(resultOf("( SoundVelocity 1.0 0 20261115123456 0 0 -1 0 0 a P )\n0 1500\n"), 1);
}

TEST(ConvertedProfile, PositionsKeepTheirHemisphere)
{
    const struct
    {
        const char* words;
        double latitude;
        char latitudeMark;
        double longitude;
        char longitudeMark;
    } cases[] = {
        {"59.5 10.25", 5930.0, 'N', 1015.0, 'E'},
        {"-0.5 -0.25", 30.0, 'S', 15.0, 'W'},
        {"0 0", 0.0, 'I', 0.0, 'I'},
        {"0.00000000 0.00000000", 0.0, 'N', 0.0, 'E'},
        {"90 180", 9000.0, 'N', 18000.0, 'E'},
        {"90.5 360.5", 0.0, 'I', 0.0, 'I'},
        {"12 190.5", 1200.0, 'N', 16930.0, 'W'},
        {"12 -190.5", 1200.0, 'N', 16930.0, 'E'},
        {"x 5y", 0.0, 'I', 0.0, 'I'},
        {"nan inf", 0.0, 'I', 0.0, 'I'},
    };
    for (const auto& c : cases) {
        CReceiveData data;
        const QByteArray text = QByteArray("(SoundVelocity 1.0 0 202611151234 ") + c.words +
                                " -1 0 0 a_b P 1)\n0 1500\n";
        ASSERT_EQ(data.parse(4, text), 1) << c.words;
        EXPECT_NEAR(data.header().latitude, c.latitude, 1e-9) << c.words;
        EXPECT_EQ(data.header().latitudeMark, c.latitudeMark) << c.words;
        EXPECT_NEAR(data.header().longitude, c.longitude, 1e-9) << c.words;
        EXPECT_EQ(data.header().longitudeMark, c.longitudeMark) << c.words;
    }
}

TEST(ConvertedProfile, AfterAnErrorNothingIsLeft)
{
    CReceiveData data;
    ASSERT_EQ(data.parse(4, profileWith("20261115123456")), 2);
    EXPECT_EQ(data.parse(4, profileWith("20261115123456", "0 1500\n", "0009")), ProbeCountDiffers);
    EXPECT_TRUE(data.samples().empty());
    EXPECT_EQ(data.parse(4, profileWith("0")), ProbeIllegalTime);
    EXPECT_FALSE(data.header().hasTime);
}

TEST(ReceiveData, UnknownFormatsHaveNoSamples)
{
    CReceiveData data;
    for (const int format :
         {-1, 14, 15, 1000000, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        EXPECT_EQ(data.parse(format, profileWith("20261115123456")), 0);
        EXPECT_EQ(data.format(), format);
        EXPECT_TRUE(data.samples().empty());
    }
}

TEST(ReceiveData, ControlZEndsATextAndMarksOpenIt)
{
    EXPECT_EQ(resultOf(profileWith("20261115123456") + "\x1A"), 2);
    EXPECT_EQ(resultOf(profileWith("20261115123456") + QByteArray("\x1A\0\0\0", 4)), 2);
    EXPECT_EQ(resultOf("\xEF\xBB\xBF" + profileWith("20261115123456")), 2);
}

TEST(ReceiveFile, FilesAreReadWholeOrNotAtAll)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("ca\u00DFt.asvp")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const QByteArray bytes("a\r\r\nb\0c", 7);
    file.write(bytes);
    file.close();
    CReceiveFile received;
    EXPECT_TRUE(received.open(file.fileName()));
    EXPECT_EQ(received.text(), bytes);
    EXPECT_FALSE(received.open(folder.filePath(QStringLiteral("none"))));
    EXPECT_TRUE(received.text().isEmpty());
    EXPECT_FALSE(received.open(folder.path()));
}

TEST(ConvertedFile, TextIsThePipelinesForm)
{
    EXPECT_EQ(convertedFileText(QStringLiteral("20261115123456"), QStringLiteral("-33.50000000"),
                                QStringLiteral("151.25000000"), QStringLiteral("QZS00_00000"),
                                {{0.0, 1500.25, 7.0}, {10.4996, 1490.1254, 0.0}}),
              "( SoundVelocity  1.0 0 20261115123456 -33.50000000 151.25000000 -1 0 0 QZS00_00000 "
              "P 0002 )\r\n0.000 1500.250\r\n10.500 1490.125\r\n");
}

TEST(ConvertedFile, WordsAreNeverEmptyOrSplit)
{
    EXPECT_EQ(convertedFileText(QString(), QString(), QString(), QStringLiteral(" a b\tc "), {}),
              "( SoundVelocity  1.0 0 0 0 0 -1 0 0 a_b_c P 0000 )\r\n");
    EXPECT_EQ(convertedFileText(QString(), QString(), QString(), QString(), {}),
              "( SoundVelocity  1.0 0 0 0 0 -1 0 0 NA P 0000 )\r\n");
}

TEST(ConvertedFile, ReadsBackUnderACommaLocale)
{
    const CommaLocale locale;
    ASSERT_TRUE(CommaLocale::isActive());
    const QByteArray text =
        convertedFileText(QStringLiteral("202611151234"), QStringLiteral("-0.50000000"),
                          QStringLiteral("10.25000000"), QStringLiteral("a_b"),
                          {{0.5, 1500.25, 0.0}, {12000.0, 1550.125, 0.0}});
    CReceiveData data;
    ASSERT_EQ(data.parse(ConvertedAsvp, text), 2);
    EXPECT_EQ(data.samples()[0].depth, 0.5);
    EXPECT_EQ(data.samples()[1].speed, 1550.125);
    EXPECT_EQ(data.header().latitudeMark, 'S');
}
