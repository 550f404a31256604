#include "datagram/convertedcheck.h"
#include "tests/support/datafolder.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace datagram;

namespace {

const settings::ProfileLimits limits;

int codeOf(const std::vector<ProbeSample>& samples)
{
    return checkConvertedSamples(samples, limits).code;
}

struct Outcome
{
    bool isGood = false;
    QByteArray text = "as it was";
    int count = 77;
    Report report;
};

Outcome outcomeOf(const QByteArray& content)
{
    const DataFolder folder;
    folder.write(QStringLiteral("c.asvp"), content);
    Outcome outcome;
    outcome.isGood = fnCreateAndCheckS00(folder.path(QStringLiteral("c.asvp")), limits,
                                         outcome.text, outcome.count, outcome.report);
    return outcome;
}

QByteArray file(const QByteArray& rows, const QByteArray& count,
                const QByteArray& time = "20261115123456")
{
    return "( SoundVelocity  1.0 0 " + time + " 0 0 -1 0 0 QZS00_00000 P " + count + " )\r\n" +
           rows;
}

} // namespace

TEST(ConvertedSamples, keepBothSidesOfEachLimit)
{
    const double none = std::nan("");
    const ProbeSample last = {12000.0, 1500.0, 0.0};
    const struct
    {
        std::vector<ProbeSample> samples;
        int code;
    } rows[] = {
        {{last}, 0},
        {{{-0.001, 1500, 0}, last}, 3},
        {{{0.0, 1500, 0}, last}, 0},
        {{{0.0, 1500, 0}, {12000.01, 1500, 0}}, 0},
        {{{0.0, 1500, 0}, {12000.011, 1500, 0}}, 3},
        {{{1.0, 1500, 0}, {1.0, 1500, 0}, last}, 5},
        {{{1.0, 1500, 0}, {0.5, 1500, 0}, last}, 4},
        {{{none, 1500, 0}, last}, 4},
        {{{1.0, 1500, 0}, {1.00997, 1500, 0}, last}, 7},
        {{{1.0, 1500, 0}, {1.00999, 1500, 0}, last}, 0},
        {{{1.0, 1399.999, 0}, last}, 2},
        {{{1.0, 1400.0, 0}, last}, 0},
        {{{1.0, 1700.0, 0}, last}, 0},
        {{{1.0, 1700.001, 0}, last}, 2},
        {{{1.0, none, 0}, last}, 2},
        {{{0.0, 1500, 0}, {11900.0, 1500, 0}}, 0},
        {{{0.0, 1500, 0}, {11899.99, 1500, 0}}, 6},
        // Of two rules the depth comes first.
        {{{-1.0, 1000, 0}, last}, 3},
        {{{1.0, 1500, 0}, {1.0, 1000, 0}, last}, 5},
        {{{1.0, 1500, 0}, {1.005, 1000, 0}, last}, 7},
    };
    int number = 0;
    for (const auto& row : rows)
        EXPECT_EQ(codeOf(row.samples), row.code) << "row " << number++;
}

TEST(ConvertedSamples, nameTheSampleThatFails)
{
    const SampleFault inner =
        checkConvertedSamples({{0, 1500, 0}, {5, 1800, 0}, {12000, 1500, 0}}, limits);
    EXPECT_EQ(inner.number, 2);
    EXPECT_EQ(inner.depth, 5.0);
    EXPECT_EQ(inner.speed, 1800.0);
    const SampleFault end = checkConvertedSamples({{0, 1500, 0}, {500, 1501, 0}}, limits);
    EXPECT_EQ(end.number, 2);
    EXPECT_EQ(end.depth, 500.0);
    EXPECT_EQ(end.speed, 1501.0);
    const SampleFault none = checkConvertedSamples({}, limits);
    EXPECT_EQ(none.code, 1);
    EXPECT_EQ(none.depth, 0.0);
    EXPECT_EQ(none.speed, 9999.0);
}

TEST(ConvertedSamples, followTheSettings)
{
    settings::ProfileLimits wide;
    wide.maxSoundSpeed = 1800.0F;
    EXPECT_EQ(checkConvertedSamples({{12000, 1800, 0}}, wide).code, 0);
    EXPECT_EQ(checkConvertedSamples({{12000, 1800.01, 0}}, wide).code, 2);
}

TEST(ConvertedSamples, mayEqualALimitThatABinaryFractionCannotHold)
{
    settings::ProfileLimits limited;
    limited.minSoundSpeed = 1400.3F;
    limited.maxSoundSpeed = 1699.7F;
    const struct
    {
        double speed;
        int code;
    } rows[] = {{1400.3, 0}, {1400.299, 2}, {1699.7, 0}, {1699.701, 2}};
    for (const auto& row : rows)
        EXPECT_EQ(checkConvertedSamples({{12000, row.speed, 0}}, limited).code, row.code)
            << row.speed;
}

TEST(CreateAndCheckS00, buildsTheDatagram)
{
    const Outcome outcome = outcomeOf(file("0.000 1500.125\r\n12000.000 1520.000\r\n", "0002"));
    EXPECT_TRUE(outcome.isGood);
    EXPECT_EQ(outcome.count, 2);
    EXPECT_EQ(outcome.report.number, 0);
    // The checksum worked out by hand with the rule: exclusive OR of the bytes between "$" and "*".
    QByteArray text = "$RVS00,00001,0002,123456,15,11,2026,0.00,1500.12,0,0,0\r\n"
                      "12000.00,1520.00,0,0,0\r\nNo Comment*";
    int sum = 0;
    for (int i = 1; i < text.size() - 1; ++i)
        sum ^= text.at(i);
    text += QByteArray::number(sum, 16).rightJustified(2, '0') + "\\\r\n";
    EXPECT_EQ(outcome.text, text);
}

TEST(CreateAndCheckS00, reportsWhatTheReaderFinds)
{
    const QByteArray row = "12000.000 1500.000\r\n";
    const struct
    {
        QByteArray content;
        int number;
    } rows[] = {
        {file("", "0000"), 2625},
        {"( Soundvelocity )\r\n" + row, 2626},
        {file(row, "0001", "2026111512345"), 2627},
        {file(row, "0001", "20261315123456"), 2627},
        {file(row, "0002"), 2628},
        {file(row + "deep 1500\r\n", "0002"), 2629},
    };
    for (const auto& test : rows) {
        const Outcome outcome = outcomeOf(test.content);
        EXPECT_FALSE(outcome.isGood);
        EXPECT_EQ(outcome.report.number, test.number) << test.content.constData();
        EXPECT_EQ(outcome.count, 77);
        EXPECT_EQ(outcome.text, "as it was");
    }
}

TEST(CreateAndCheckS00, setsTheCountAfterAFailedSampleCheck)
{
    const Outcome outcome = outcomeOf(file("0.000 1500.000\r\n100.000 1500.000\r\n", "0002"));
    EXPECT_FALSE(outcome.isGood);
    EXPECT_EQ(outcome.count, -1);
    EXPECT_EQ(outcome.report.number, 2620);
}

TEST(CreateAndCheckS00, reportsAFileThatCannotBeOpened)
{
    QByteArray text;
    int count = 0;
    Report report;
    EXPECT_FALSE(
        fnCreateAndCheckS00(QStringLiteral("/nowhere/c.asvp"), limits, text, count, report));
    EXPECT_EQ(report.number, 2631);
}
