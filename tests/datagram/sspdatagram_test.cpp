#include "datagram/sspdatagram.h"
#include "tests/support/printers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <random>
#include <string>

using namespace datagram;

namespace {

const QString noon = QStringLiteral("20261115123456");

Columns threeSamples()
{
    return {{0.0F, 10.126F, 12000.0F}, {1500.0F, 1499.994F, 1550.1F}, {0.00012F, 1.5F, 122.123456F},
            {10.4F, 9.6F, -1.6F},      {35.0F, 34.4F, 34.7F},         {0.1F, 40.5F, 40.4F}};
}

// An independent builder: the C library's printf, field by field.
std::string built(int identifier, const char* columns, const Columns& c, const DecimalCounts& n)
{
    char text[64];
    std::string all;
    std::snprintf(text, sizeof text, "QZS%02d,00000,%d,123456,15,11,2026,", identifier,
                  c.depth.size());
    all = text;
    const std::string carried(columns);
    const auto field = [&](char column, const QVector<float>& values, int i, int decimals) {
        if (carried.find(column) != std::string::npos) {
            std::snprintf(text, sizeof text, "%.*f", decimals, double(values[i]));
            all += text;
        }
    };
    for (int i = 0; i < c.depth.size(); ++i) {
        field('d', c.depth, i, n.depth);
        field('a', c.alternative, i, n.alternative);
        all += ",";
        field('s', c.speed, i, n.speed);
        all += ",";
        field('t', c.temperature, i, n.temperature);
        all += ",";
        field('i', c.salinity, i, n.salinity);
        all += ",";
        field('b', c.absorption, i, n.absorption);
        all += "\r\n";
    }
    all += "5930.000000,N,1015.000000,W,,,a comment, with %1";
    unsigned sum = 0;
    for (const char byte : all)
        sum ^= static_cast<unsigned char>(byte);
    std::snprintf(text, sizeof text, "*%02X\\\r\n", sum);
    return "$" + all + text;
}

// Exactly halfway between two numbers of at most five decimals: printf rounds these to even.
bool isTie(float value)
{
    for (const double scale : {1.0, 1e1, 1e2, 1e3, 1e4, 1e5}) {
        if (std::fmod(std::abs(double(value)) * scale, 1.0) == 0.5)
            return true;
    }
    return false;
}

} // namespace

TEST(SspDatagram, HalvesAreRoundedAwayFromZero)
{
    EXPECT_EQ(fnConstrSspBody(2, 0, {{0.125F, 0.375F}, {1500.125F, -0.125F}, {}, {}, {}, {}}, {}),
              "0.13,1500.13,,,\r\n0.38,-0.13,,,\r\n");
}

TEST(SspDatagram, TheHeaderCutsTheTimeUp)
{
    EXPECT_EQ(fnConstrSspHeader(noon, 0, 3), "$QZS00,00000,3,123456,15,11,2026,");
    EXPECT_EQ(fnConstrSspHeader(noon, 53, 1000), "$QZS53,00000,1000,123456,15,11,2026,");
    EXPECT_EQ(fnConstrSspHeader(QString(), 7, 0), "$QZS07,00000,0,,,,,");
    EXPECT_EQ(fnConstrSspHeader(QStringLiteral("202611151234"), 7, 0),
              "$QZS07,00000,0,151234,15,11,2026,");
    EXPECT_EQ(sspHeader(QStringLiteral("%1"), QStringLiteral("003"), noon),
              "$QZS%1,00000,003,123456,15,11,2026,");
}

TEST(SspDatagram, RowsCarryTheColumnsOfTheirIdentifier)
{
    const DecimalCounts decimals = {1, 2, 3, 1, 2, 1};
    struct
    {
        int identifier;
        const char* row; // of the second sample
    } const cases[] = {
        {0, "10.1,1499.99,,,"},          {10, "10.1,1499.99,,,"},
        {1, "10.1,1499.99,9.6,34.40,"},  {12, "10.1,1499.99,9.6,34.40,"},
        {2, "10.1,,9.6,34.40,"},         {3, "10.1,,9.6,34.40,"},
        {20, "10.1,,9.6,34.40,"},        {22, "10.1,,9.6,34.40,"},
        {30, "10.1,,9.6,34.40,"},        {32, "10.1,,9.6,34.40,"},
        {4, "1.500,,9.6,34.40,"},        {5, "1.500,,9.6,34.40,"},
        {40, "1.500,,9.6,34.40,"},       {42, "1.500,,9.6,34.40,"},
        {50, "1.500,,9.6,34.40,"},       {52, "1.500,,9.6,34.40,"},
        {6, "10.1,1499.99,,,40.5"},      {11, "10.1,1499.99,,,40.5"},
        {7, "1.500,1499.99,9.6,34.40,"}, {14, "1.500,1499.99,9.6,34.40,"},
        {21, "10.1,,9.6,34.40,40.5"},    {31, "10.1,,9.6,34.40,40.5"},
        {41, "1.500,,9.6,34.40,40.5"},   {51, "1.500,,9.6,34.40,40.5"},
    };
    for (const auto& c : cases) {
        const QByteArray rows = fnConstrSspBody(3, c.identifier, threeSamples(), decimals);
        EXPECT_EQ(rows.count("\r\n"), 3) << c.identifier;
        EXPECT_TRUE(rows.endsWith("\r\n"));
        EXPECT_EQ(rows.split('\n').value(1), QByteArray(c.row) + '\r') << c.identifier;
    }
    for (const int identifier : {13, 23, 33, 43, 53, 8, 9, 15, 19, 24, 29, 54, -1})
        EXPECT_TRUE(fnConstrSspBody(3, identifier, threeSamples(), decimals).isEmpty())
            << identifier;
    EXPECT_TRUE(fnConstrSspBody(0, 0, threeSamples(), decimals).isEmpty());
    EXPECT_TRUE(fnConstrSspBody(-1, 0, threeSamples(), decimals).isEmpty());
}

TEST(SspDatagram, CountsBeyondTheValuesReadZeros)
{
    EXPECT_EQ(fnConstrSspBody(2, 0, {{1}, {}, {}, {}, {}, {}}, {}),
              "1.00,0.00,,,\r\n0.00,0.00,,,\r\n");
    DecimalCounts absurd;
    absurd.depth = 1000000;
    EXPECT_LT(fnConstrSspBody(1, 0, {{1}, {2}, {}, {}, {}, {}}, absurd).size(), 60);
}

TEST(SspDatagram, TheStartingDecimalCounts)
{
    EXPECT_EQ(fnConstrSspBody(1, 7, threeSamples(), {}), "0.00012,1500.00,10,35,\r\n");
    EXPECT_EQ(fnConstrSspBody(1, 21, threeSamples(), {}), "0.00,,10,35,0\r\n");
    DecimalCounts counts;
    counts.raise({1, 4, 2, 3, 0, 1});
    EXPECT_EQ(counts.depth, 2);
    EXPECT_EQ(counts.speed, 4);
    EXPECT_EQ(counts.alternative, 5);
    EXPECT_EQ(counts.temperature, 3);
    EXPECT_EQ(counts.salinity, 0);
    EXPECT_EQ(counts.absorption, 1);
}

TEST(SspDatagram, TheTailNamesTheHemispheres)
{
    struct
    {
        const char* latitude;
        const char* longitude;
        const char* tail;
    } const cases[] = {
        {"-33.5", "0", "33.5,S,0,E,,,c*"},    {"33.5", "-0.5", "33.5,N,0.5,W,,,c*"},
        {"-0.0", "-0", "0.0,N,0,E,,,c*"},     {"x-y", "", "xy,N,,E,,,c*"},
        {"-5e-1", "nan", "5e1,S,nan,E,,,c*"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(fnConstrSspTail(QLatin1String(c.latitude), QLatin1String(c.longitude),
                                  QStringLiteral("c")),
                  c.tail);
    EXPECT_EQ(
        fnConstrSspTail(QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("50 %1 * ü")),
        QByteArray("1,N,2,E,,,50 %1 * \xC3\xBC*"));
}

TEST(SspDatagram, TheChecksumIsTwoUpperCaseDigits)
{
    EXPECT_EQ(sealed("$A*"), "$A*41\\\r\n");
    EXPECT_EQ(sealed("$AA*"), "$AA*00\\\r\n");
    EXPECT_EQ(sealed("$AK*"), "$AK*0A\\\r\n");
    EXPECT_EQ(sealed("$*"), "$*00\\\r\n");
    EXPECT_EQ(sealed("$*A*"), "$*A*6B\\\r\n");
    EXPECT_EQ(sealed("$\xFF*"), "$\xFF*FF\\\r\n");
}

TEST(SspDatagram, PositionsAreDegreesAndMinutes)
{
    struct
    {
        const char* degrees;
        const char* text;
    } const cases[] = {
        {"59.5", "5930.000000"},
        {"-59.5", "-5930.000000"},
        {"0", "0.000000"},
        {"-0.5", "-30.000000"},
        {"10.25", "1015.000000"},
        {"179.999999", "17959.999940"},
        {"59.9999999999", "6000.000000"},
        {"x", "0.000000"},
        {"nan", "0.000000"},
        {"inf", "0.000000"},
        {"", "0.000000"},
        {"200.75", "20045.000000"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(degreesMinutesText(QLatin1String(c.degrees)), QLatin1String(c.text));
}

TEST(SspDatagram, IsTheSameAsAnotherBuilderMakes)
{
    DatagramParts parts;
    parts.time = noon;
    parts.latitude = QStringLiteral("59.5");
    parts.longitude = QStringLiteral("-10.25");
    parts.comment = QStringLiteral("a comment, with %1");
    std::mt19937 random(1);
    std::uniform_real_distribution<float> value(-10.0F, 12000.0F);
    struct
    {
        int identifier;
        const char* columns;
    } const kinds[] = {{0, "ds"},  {1, "dsti"}, {3, "dti"},   {5, "ati"},
                       {6, "dsb"}, {7, "asti"}, {31, "dtib"}, {51, "atib"}};
    for (int round = 0; round < 200; ++round) {
        const int samples = 1 + int(random() % 50);
        parts.columns = Columns();
        for (int i = 0; i < samples; ++i) {
            for (QVector<float>* column :
                 {&parts.columns.depth, &parts.columns.speed, &parts.columns.alternative,
                  &parts.columns.temperature, &parts.columns.salinity, &parts.columns.absorption}) {
                float number = value(random);
                while (isTie(number))
                    number = value(random);
                column->append(number);
            }
        }
        const DecimalCounts decimals = {int(random() % 6), int(random() % 6), int(random() % 6),
                                        int(random() % 6), int(random() % 6), int(random() % 6)};
        const auto& kind = kinds[random() % std::size(kinds)];
        parts.samples = QString::number(samples);
        parts.identifier = QString::number(kind.identifier).rightJustified(2, QLatin1Char('0'));
        const BuiltDatagram result = buildDatagram(parts, decimals);
        ASSERT_EQ(result.bytes.toStdString(),
                  built(kind.identifier, kind.columns, parts.columns, decimals));
        ASSERT_EQ(fnVerifySXX(result.bytes, DatagramFields(result.bytes)), 0);
        ASSERT_EQ(int(DatagramFields(result.bytes).size()), 5 * samples + 14 + 1)
            << "the comment has a comma";
    }
}

TEST(SspDatagram, WithoutRowsThereIsNone)
{
    DatagramParts parts;
    parts.identifier = QStringLiteral("13");
    parts.samples = QStringLiteral("3");
    parts.columns = threeSamples();
    EXPECT_EQ(buildDatagram(parts, {}).reason, QLatin1String("No samples extracted."));
    parts.identifier = QStringLiteral("00");
    parts.samples = QStringLiteral("none");
    EXPECT_EQ(buildDatagram(parts, {}).reason, QLatin1String("No samples extracted."));
    EXPECT_TRUE(buildDatagram(parts, {}).bytes.isEmpty());
}

TEST(SspDatagram, ConvertedValuesAreReadWithinTheirVectors)
{
    const ConvertedProfile profile = {{1, 2}, {3}};
    EXPECT_EQ(getFromS00(profile, 1, 0), 2.0);
    EXPECT_EQ(getFromS00(profile, 0, 1), 3.0);
    EXPECT_EQ(getFromS00(profile, 0, 2), -99.0);
    EXPECT_EQ(getFromS00(profile, 0, -1), -99.0);
    EXPECT_EQ(getFromS00(profile, 1, 1), -99.0);
    EXPECT_EQ(getFromS00(profile, -1, 0), -99.0);
}
