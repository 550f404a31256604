#include "datagram/sspdatagram.h"
#include "tests/support/printers.h"

#include <gtest/gtest.h>

using namespace datagram;

namespace {

int verdict(const QByteArray& text)
{
    return fnVerifySXX(text, DatagramFields(text));
}

std::vector<QByteArray> listOf(const QByteArray& text)
{
    const DatagramFields fields(text);
    std::vector<QByteArray> list;
    for (std::size_t i = 0; i < fields.size(); ++i)
        list.emplace_back(fields[i].data(), int(fields[i].size()));
    return list;
}

// A datagram of a header and `rows` rows.
QByteArray datagramOf(const QByteArray& header, int rows, const QByteArray& end = "\\\r\n")
{
    QByteArray text = header;
    for (int i = 0; i < rows; ++i)
        text += QByteArray::number(i * 10) + ",1500.00,,,\r\n";
    return text + "5930.000000,N,1015.000000,E,,,comment*00" + end;
}

} // namespace

TEST(VerifySXX, OneSampleGivesNineteenFields)
{
    const QByteArray text = datagramOf("$QZS00,00000,1,123456,15,11,2026,", 1);
    EXPECT_EQ(DatagramFields(text).size(), 19U);
    EXPECT_EQ(verdict(text), 0);
}

TEST(VerifySXX, TheFirstBrokenRuleDecides)
{
    struct
    {
        const char* header;
        int code;
    } const cases[] = {
        {"QZS00,00000,3,123456,15,11,2026,", 1},
        {"$QZX00,00000,3,123456,15,11,2026,", 2},
        {"$QZ,00000,3,123456,15,11,2026,", 2},
        {"$,00000,3,123456,15,11,2026,", 2},
        {"$XYS00,00000,3,123456,15,11,2026,", 0},
        {"$QZS,00000,3,123456,15,11,2026,", 0},
        {"$QZS07,00000,3,123456,15,11,2026,", 0},
        {"$QZS08,00000,3,123456,15,11,2026,", 3},
        {"$QZS09,00000,3,123456,15,11,2026,", 3},
        {"$QZS10,00000,3,123456,15,11,2026,", 0},
        {"$QZS13,00000,3,123456,15,11,2026,", 0},
        {"$QZS14,00000,3,123456,15,11,2026,", 0},
        {"$QZS15,00000,3,123456,15,11,2026,", 3},
        {"$QZS19,00000,3,123456,15,11,2026,", 3},
        {"$QZS23,00000,3,123456,15,11,2026,", 0},
        {"$QZS24,00000,3,123456,15,11,2026,", 3},
        {"$QZS53,00000,3,123456,15,11,2026,", 0},
        {"$QZS54,00000,3,123456,15,11,2026,", 3},
        {"$QZS60,00000,3,123456,15,11,2026,", 3},
        {"$QZS-1,00000,3,123456,15,11,2026,", 3},
        {"$QZS00,00000,0,123456,15,11,2026,", 4},
        {"$QZS00,00000,-1,123456,15,11,2026,", 4},
        {"$QZS00,00000,1001,123456,15,11,2026,", 4},
        {"$QZS00,00000,1000,123456,15,11,2026,", 9},
        {"$QZS00,00000,,123456,15,11,2026,", 4},
        {"$QZS00,00000,99999999999,123456,15,11,2026,", 4},
        {"$QZS00,00000,3,235959,15,11,2026,", 0},
        {"$QZS00,00000,3,000000,15,11,2026,", 0},
        {"$QZS00,00000,3,236000,15,11,2026,", 5},
        {"$QZS00,00000,3,235960,15,11,2026,", 5},
        {"$QZS00,00000,3,240000,15,11,2026,", 5},
        {"$QZS00,00000,3,-1,15,11,2026,", 5},
        {"$QZS00,00000,3,123456,0,11,2026,", 6},
        {"$QZS00,00000,3,123456,1,11,2026,", 0},
        {"$QZS00,00000,3,123456,31,11,2026,", 0},
        {"$QZS00,00000,3,123456,32,11,2026,", 6},
        {"$QZS00,00000,3,123456,15,0,2026,", 7},
        {"$QZS00,00000,3,123456,15,1,2026,", 0},
        {"$QZS00,00000,3,123456,15,12,2026,", 0},
        {"$QZS00,00000,3,123456,15,13,2026,", 7},
        {"$QZS00,00000,3,123456,15,11,-1,", 8},
        {"$QZS00,00000,3,123456,15,11,0,", 0},
        {"$QZS00,00000,3,123456,15,11,9999,", 0},
        {"$QZS00,00000,3,123456,15,11,10000,", 8},
        {"$QZS99,00000,0,999999,99,99,99999,", 3},
        {"$QZS00,00000,0,999999,99,99,99999,", 4},
        {"$QZS00,00000,3,999999,99,99,99999,", 5},
    };
    for (const auto& c : cases)
        EXPECT_EQ(verdict(datagramOf(c.header, 3)), c.code) << c.header;
    EXPECT_EQ(verdict(""), 1);
    EXPECT_EQ(verdict("$"), 2);
    EXPECT_EQ(verdict("$QZS00"), 4);
}

TEST(VerifySXX, TwoFieldsMoreOrLessAreTolerated)
{
    const QByteArray header = "$QZS00,00000,3,123456,15,11,2026,";
    const QByteArray good = datagramOf(header, 3);
    for (int extra = 0; extra <= 3; ++extra)
        EXPECT_EQ(verdict(QByteArray(good).replace("comment", "comment" + QByteArray(extra, ','))),
                  extra < 3 ? 0 : 9)
            << extra;
    QByteArray fewer = good;
    for (int missing = 1; missing <= 3; ++missing) {
        fewer.replace(fewer.indexOf("1500.00,"), 8, "1500.00");
        EXPECT_EQ(verdict(fewer), missing < 3 ? 0 : 9) << missing;
        fewer.replace(fewer.indexOf("1500.00"), 7, "1499.00");
    }
}

TEST(VerifySXX, TheEndIsABackslashAndALineEnd)
{
    const QByteArray header = "$QZS00,00000,3,123456,15,11,2026,";
    struct
    {
        QByteArray end;
        int code;
    } const cases[] = {
        {"\\\r\n", 0}, {"\\\n", 10}, {"\\\r", 10},      {"\\", 10},
        {"", 10},      {"\r\n", 10}, {"\\\r\nmore", 0}, {"\\\r\n\\", 10},
    };
    for (const auto& c : cases)
        EXPECT_EQ(verdict(datagramOf(header, 3, c.end)), c.code) << c.end.toStdString();
}

TEST(VerifySXX, LineEndsSeparateFields)
{
    EXPECT_EQ(listOf("a,b\r\nc,d*00\\\r\n"),
              (std::vector<QByteArray>{"a", "b ", "c", "d*00\\\r\n"}));
    EXPECT_EQ(listOf("a\r\n,b1234567"), (std::vector<QByteArray>{"a ", " b1234567"}));
    EXPECT_EQ(listOf("a\r\n"), (std::vector<QByteArray>{"a\r\n"}));
    EXPECT_EQ(listOf(""), (std::vector<QByteArray>{""}));
}

TEST(VerifySXX, SurvivesBeingCutAtEachByte)
{
    const QByteArray text = datagramOf("$QZS00,00000,3,123456,15,11,2026,", 3);
    for (int size = 0; size < text.size(); ++size)
        EXPECT_NE(verdict(text.left(size)), 0) << size;
}
