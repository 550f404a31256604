#include "datagram/sendrequest.h"
#include "tests/support/printers.h"

#include <gtest/gtest.h>

using namespace datagram;

TEST(ShortDatagram, IsBuiltByteForByte)
{
    ShortSend request;
    request.depths = {0, 10.5F, 12000};
    request.speeds = {1500.25F, 1234.567F, 1550};
    request.latitude = QStringLiteral("-33.5");
    request.longitude = QStringLiteral("5.5");
    request.time = QStringLiteral("20261115123456");
    const QByteArray text =
        "$QZS00,00001,0003,123456,15,11,2026,0,1500.25,,,\r\n10.5,1234.57,,,\r\n"
        "12000,1550,,,\r\n3330.00000,S,0530.00000,E,,,PE*";
    unsigned sum = 0;
    for (int i = 1; i < text.size() - 1; ++i)
        sum ^= static_cast<unsigned char>(text[i]);
    char digits[8];
    std::snprintf(digits, sizeof digits, "%02X", sum);
    EXPECT_EQ(shortDatagram(request), text + QByteArray(digits) + "\\\r\n");
}

TEST(ShortDatagram, TheCountHasAtLeastFourDigits)
{
    ShortSend request;
    for (const int count : {0, 25, 9999, 10000}) {
        request.depths = QVector<float>(count, 1.0F);
        request.speeds = QVector<float>(count, 1500.0F);
        const QByteArray text = shortDatagram(request);
        EXPECT_EQ(text.split(',').value(2), QByteArray::number(count).rightJustified(4, '0'));
    }
}

TEST(ShortDatagram, UnequalListsGiveTheirCompletePairs)
{
    ShortSend request;
    request.depths = {0, 1, 2};
    request.speeds = {1500};
    EXPECT_TRUE(shortDatagram(request).startsWith("$QZS00,00001,0001,,,,,0,1500,,,\r\n0000."));
    request.depths.clear();
    EXPECT_TRUE(shortDatagram(request).startsWith("$QZS00,00001,0000,,,,,0000."));
}

TEST(ShortDatagram, PositionsHaveTwoDigitsOfDegrees)
{
    struct
    {
        const char* degrees;
        const char* text;
    } const cases[] = {
        {"5.5", "0530.00000"},        {"-5.5", "0530.00000"},   {"0", "0000.00000"},
        {"59.5", "5930.00000"},       {"100.1", "10006.00000"}, {"0.05", "0003.00000"},
        {"9.99999999", "1000.00000"}, {"x", "0000.00000"},      {"inf", "0000.00000"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(shortPositionText(QLatin1String(c.degrees)), QLatin1String(c.text)) << c.degrees;
}

TEST(ShortSend, TakesTheListsInEitherOrder)
{
    const QString text = QStringLiteral("SoundVelocity*f*1,2*3,4*5*6*7");
    const auto pieces = profile::splitPieces(text, Qt::KeepEmptyParts);
    const ShortSend depthsFirst = parseShortSend(pieces, false);
    EXPECT_EQ(depthsFirst.depths, (QVector<float>{1, 2}));
    EXPECT_EQ(depthsFirst.speeds, (QVector<float>{3, 4}));
    EXPECT_EQ(depthsFirst.fileName, QLatin1String("f"));
    EXPECT_EQ(depthsFirst.latitude, QLatin1String("5"));
    EXPECT_EQ(depthsFirst.longitude, QLatin1String("6"));
    EXPECT_EQ(depthsFirst.time, QLatin1String("7"));
    EXPECT_EQ(parseShortSend(pieces, true).depths, (QVector<float>{3, 4}));
    EXPECT_TRUE(parseShortSend({}, true).fileName.isEmpty());
}
