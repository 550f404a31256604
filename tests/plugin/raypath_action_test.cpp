#include "processing/extensionrows.h"
#include "tests/support/enginefixture.h"
#include "tests/support/requests.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

const QString rayPath = QStringLiteral("ShowRaypath");
const QString success = QStringLiteral("SUCCESS");
const QString wrongInput = QStringLiteral("Input parameter error");
const QString wrongAngle = QStringLiteral("Beam pointing angle out of range.");
const QString fewInFirst = QStringLiteral("Too few points in svp.");
const QString fewInSecond = QStringLiteral("Memory allocation error or too few points in svp2.");
const QString runFix = QStringLiteral("Profiles not accepted. Please run fix.");

const QString sixSpeeds = QStringLiteral("1500,1500,1500,1500,1500,1500");
const QString sixDepths = QStringLiteral("0,100,200,300,400,12000");
const QString otherSpeeds = QStringLiteral("1500,1498,1496,1494,1492,1500");

QStringList good()
{
    return {QStringLiteral("45"), sixSpeeds, sixDepths, otherSpeeds, sixDepths};
}

QString outcomeWith(Engine& engine, int place, const QString& text)
{
    return outcome(engine.request(rayPath, requests::join(requests::changed(good(), place, text))));
}

QVector<double> numbers(const QJsonObject& reply, const char* key)
{
    QVector<double> values;
    const QJsonArray array = reply.value(QLatin1String(key)).toArray();
    for (const QJsonValue& value : array) {
        EXPECT_TRUE(value.isDouble());
        values.append(value.toDouble());
    }
    return values;
}

QJsonObject compared(Engine& engine, const QVector<float>& depth1, const QVector<float>& speed1,
                     const QVector<float>& depth2, const QVector<float>& speed2)
{
    return engine.plugin.makeJsonCompareSVP(depth1, speed1, depth2, speed2);
}

const QJsonObject noDifferences = {
    {QStringLiteral("result"), QStringLiteral("FAILURE")},
    {QStringLiteral("reason"), QStringLiteral("Cannot calculate differences.")}};

} // namespace

TEST(RaypathAction, AnswersBothPaths)
{
    Engine engine;
    const QJsonObject reply = engine.request(rayPath, requests::join(good()));
    EXPECT_EQ(outcome(reply), success);
    EXPECT_EQ(reply.value(QLatin1String("whoami")).toString(), rayPath);
    EXPECT_EQ(reply.size(), 6);
    EXPECT_EQ(engine.packets().size(), 1);

    // Constant speed, 45 degrees: as far as deep, a point at each sample.
    const QVector<double> x = numbers(reply, "svp1X");
    const QVector<double> y = numbers(reply, "svp1Y");
    EXPECT_EQ(y, (QVector<double>{0, 100, 200, 300, 400, 12000}));
    ASSERT_EQ(x.size(), y.size());
    for (int i = 0; i < x.size(); ++i)
        EXPECT_NEAR(x[i], y[i], 1e-8);

    // Slower below: steeper, so less far at the same depth.
    const QVector<double> x2 = numbers(reply, "svp2X");
    const QVector<double> y2 = numbers(reply, "svp2Y");
    ASSERT_EQ(x2.size(), y2.size());
    EXPECT_EQ(y2.constLast(), 12000.0);
    EXPECT_LT(x2.constLast(), x.constLast() - 10.0);
}

TEST(RaypathAction, RefusalsStandInTheirOrder)
{
    Engine engine;
    struct
    {
        QString body;
        QString outcome;
    } const cases[] = {
        {QString(), wrongInput},
        {QStringLiteral("45*1500*0*1500"), wrongInput},
        {requests::join(good().mid(0, 4)), wrongInput},
        {requests::join(good() + QStringList{QStringLiteral("x")}), wrongInput},
        {requests::join(requests::changed(good(), 4, QString())), wrongInput},
        {QStringLiteral("*") + requests::join(good()) + QStringLiteral("**"), success},
        {QStringLiteral("91*1500*0*1500*0"), wrongAngle},
        {QStringLiteral("45*1500*0*1500,1500*0,1"), fewInFirst},
        {QStringLiteral("45*") + sixSpeeds + QStringLiteral("*5,4,3,2,1,0*1500,1500*0,1"),
         fewInSecond},
        {QStringLiteral("45*") + sixSpeeds + QStringLiteral("*5,4,3,2,1,0*1500*0"), runFix},
        {QStringLiteral("45*") + sixSpeeds + QLatin1Char('*') + sixDepths +
             QStringLiteral("*1500*0"),
         success},
    };
    for (const auto& c : cases) {
        const QJsonObject reply = engine.request(rayPath, c.body);
        EXPECT_EQ(outcome(reply), c.outcome) << qPrintable(c.body);
        EXPECT_EQ(reply.value(QLatin1String("whoami")).toString(), rayPath);
        EXPECT_EQ(reply.size(), c.outcome == success ? 6 : 3);
        EXPECT_EQ(engine.packets().size(), 1);
    }
}

TEST(RaypathAction, TheAngle)
{
    Engine engine;
    for (const char* angle : {"0", "0.0", "-0", " 45 ", "90", "90.0", "9e1", "89.999"})
        EXPECT_EQ(outcomeWith(engine, 0, QLatin1String(angle)), success) << angle;
    for (const char* angle : {"90.5", "90.00001", "-0.1", "-1e-30", "180", "1e30", "1e39", "1e400",
                              "inf", "-inf", "nan"})
        EXPECT_EQ(outcomeWith(engine, 0, QLatin1String(angle)), wrongAngle) << angle;

    const QJsonObject down =
        engine.request(rayPath, requests::join(requests::changed(good(), 0, QStringLiteral("90"))));
    const QVector<double> distances = numbers(down, "svp1X") + numbers(down, "svp2X");
    for (const double x : distances)
        EXPECT_EQ(x, 0.0);
    EXPECT_EQ(numbers(down, "svp1Y").constLast(), 12000.0);
    // What is no number is 0, as everywhere in requests: level, for a minute.
    const QJsonObject level = engine.request(
        rayPath, requests::join(requests::changed(good(), 0, QStringLiteral("abc"))));
    EXPECT_EQ(numbers(level, "svp1X"), (QVector<double>{0, 90000}));
    EXPECT_EQ(numbers(level, "svp1Y"), (QVector<double>{0, 0}));
}

TEST(RaypathAction, SamplesAreWhatHasSpeedAndDepth)
{
    Engine engine;
    const QString fiveSpeeds = QStringLiteral("1500,1500,1500,1500,1500");
    const QString fiveDepths = QStringLiteral("0,100,200,300,12000");
    EXPECT_EQ(outcomeWith(engine, 1, fiveSpeeds), fewInFirst);
    EXPECT_EQ(outcomeWith(engine, 2, fiveDepths), fewInFirst);
    EXPECT_EQ(outcomeWith(engine, 3, fiveSpeeds), fewInSecond);
    EXPECT_EQ(outcomeWith(engine, 4, fiveDepths), fewInSecond);
    EXPECT_EQ(outcomeWith(engine, 1, sixSpeeds + QStringLiteral(",1500,1500")), success);
    EXPECT_EQ(outcomeWith(engine, 4, sixDepths + QStringLiteral(",1")), success);
    // Empty items are none.
    EXPECT_EQ(outcomeWith(engine, 1, QStringLiteral(",") + fiveSpeeds + QStringLiteral(",,")),
              fewInFirst);
    EXPECT_EQ(outcomeWith(engine, 2, QStringLiteral(",,0,100,,200,300,400,12000,")), success);
    EXPECT_EQ(outcomeWith(engine, 1, QStringLiteral(",,,,,,,")), fewInFirst);
    EXPECT_EQ(outcomeWith(engine, 3, QStringLiteral(",,,,,,,")), fewInSecond);
    // A lone speed with two depths is one sample.
    EXPECT_EQ(outcomeWith(engine, 3, QStringLiteral("1490")), success);
}

TEST(RaypathAction, TwoToFiveSamplesAreTooFewForTheSecond)
{
    Engine engine;
    QStringList speeds;
    QStringList depths;
    for (int i = 0; i < 7; ++i) {
        speeds.append(QStringLiteral("1500"));
        depths.append(QString::number(i * 2000));
        QStringList pieces = good();
        pieces[3] = speeds.join(QLatin1Char(','));
        pieces[4] = depths.join(QLatin1Char(','));
        EXPECT_EQ(outcome(engine.request(rayPath, requests::join(pieces))),
                  i >= 1 && i <= 4 ? fewInSecond : success)
            << i + 1;
    }
}

TEST(RaypathAction, ALoneSampleIsCompletedToFullOceanDepth)
{
    Engine engine;
    QStringList pieces = good();
    pieces[3] = QStringLiteral("1500");
    pieces[4] = QStringLiteral("0");
    const QJsonObject reply = engine.request(rayPath, requests::join(pieces));
    EXPECT_EQ(numbers(reply, "svp2Y"), (QVector<double>{0, 1000, 3000, 5000, 8000, 12000}));
    const QVector<double> x = numbers(reply, "svp2X");
    ASSERT_EQ(x.size(), 6);
    EXPECT_NEAR(x[5], 12000.0, 1e-8);
    // Below the first of the added samples it is out of order.
    pieces[4] = QStringLiteral("1000");
    EXPECT_EQ(outcome(engine.request(rayPath, requests::join(pieces))), runFix);
    pieces[4] = QStringLiteral("999");
    EXPECT_EQ(outcome(engine.request(rayPath, requests::join(pieces))), success);
    // Only the second profile is completed.
    EXPECT_EQ(outcomeWith(engine, 1, QStringLiteral("1500")), fewInFirst);
}

TEST(RaypathAction, ProfilesThatNeedAFixAreNotTraced)
{
    Engine engine;
    for (const int place : {2, 4}) {
        EXPECT_EQ(outcomeWith(engine, place, QStringLiteral("0,100,300,200,400,12000")), runFix);
        EXPECT_EQ(outcomeWith(engine, place, QStringLiteral("0,100,100,200,400,12000")), runFix);
        EXPECT_EQ(outcomeWith(engine, place, QStringLiteral("0,100,100.004,200,400,12000")),
                  runFix);
        EXPECT_EQ(outcomeWith(engine, place, QStringLiteral("0,100,100.006,200,400,12000")),
                  success);
    }
    // Nothing valid to trace through.
    for (const int place : {1, 3})
        EXPECT_EQ(outcomeWith(engine, place, QStringLiteral("0,1,2,3,4,5")), runFix);
}

TEST(RaypathAction, ValidSamplesAreTracedAndContinued)
{
    Engine engine;
    QStringList pieces = good();
    pieces[0] = QStringLiteral("90");
    pieces[1] = QStringLiteral("1500,1399,1500,1500,1700.1,1500");
    pieces[2] = QStringLiteral("-5,10,20,30,40,600");
    const QJsonObject reply = engine.request(rayPath, requests::join(pieces));
    QVector<double> depths = {20, 30, 600};
    const processing::ExtensionRows& rows = processing::defaultExtensionRows();
    for (const float depth : rows.depths) {
        if (depth > 600)
            depths.append(double(depth));
    }
    EXPECT_EQ(numbers(reply, "svp1Y"), depths);
}

TEST(RaypathAction, ARayThatCannotSetOutIsItsStart)
{
    // Level, where the speed grows downward: it bends up, out of the profile.
    Engine engine;
    QStringList pieces = good();
    pieces[0] = QStringLiteral("0");
    pieces[1] = QStringLiteral("1500,1501,1502,1503,1504,1600");
    const QJsonObject reply = engine.request(rayPath, requests::join(pieces));
    EXPECT_EQ(outcome(reply), success);
    EXPECT_EQ(numbers(reply, "svp1X"), QVector<double>{0});
    EXPECT_EQ(numbers(reply, "svp1Y"), QVector<double>{0});
}

TEST(Comparison, PairsByRangeInTheOrderOfTheAngles)
{
    Engine engine;
    const QJsonObject object = compared(engine, {0, 12000}, {1500, 1500}, {5, 1000}, {1450, 1450});
    const int ranges[] = {10, 20, 50, 100, 200, 500, 1000, 2000, 5000, 7000, 10000};
    const double angles[] = {90, 80, 70, 60, 50, 40, 30, 20, 10};
    EXPECT_EQ(object.size(), 12);
    EXPECT_EQ(object.value(QLatin1String("result")).toString(), success);
    const auto text = [](double depth, double bottom) {
        return depth > bottom ? QStringLiteral("nan") : QString::number(depth, 'f', 2);
    };
    for (const int range : ranges) {
        const QJsonArray pairs = object.value(QStringLiteral("err%1").arg(range)).toArray();
        ASSERT_EQ(pairs.size(), 9) << range;
        EXPECT_EQ(pairs.at(0).toArray(), (QJsonArray{"nan", "nan"}));
        for (int i = 1; i < 9; ++i) {
            const double depth = range * std::tan(angles[i] * M_PI / 180.0);
            EXPECT_EQ(pairs.at(i).toArray(),
                      (QJsonArray{text(depth, 12000), text(depth + 5, 1000)}))
                << range << ' ' << angles[i];
        }
    }
    EXPECT_EQ(object.value(QLatin1String("err10")).toArray().at(4).toArray().at(0).toString(),
              QLatin1String("11.92"));
    const QByteArray json = QJsonDocument(object).toJson();
    EXPECT_GT(json.indexOf("\"result\""), json.lastIndexOf("\"err"));
}

TEST(Comparison, OnlyValidSamplesCount)
{
    Engine engine;
    const QJsonObject clean =
        compared(engine, {0, 100, 3000}, {1500, 1490, 1510}, {0, 3000}, {1500, 1500});
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    constexpr float inf = std::numeric_limits<float>::infinity();
    EXPECT_EQ(compared(engine, {-1, 0, 50, nan, 100, 70, inf, 200, 3000, 3500},
                       {1500, 1500, 1800, 1500, 1490, 1480, 1500, nan, 1510}, {0, 3000},
                       {1500, 1500, 1499}),
              clean);
    // A profile is not continued: its rays end with its samples.
    const QJsonObject shallow = compared(engine, {0, 100}, {1500, 1500}, {0, 12000}, {1500, 1500});
    EXPECT_EQ(shallow.value(QLatin1String("err200")).toArray().at(6).toArray(),
              (QJsonArray{"nan", "115.47"}));
}

TEST(Comparison, NeedsTwoValidSamplesInEachProfile)
{
    Engine engine;
    const QVector<float> depths = {0, 12000};
    const QVector<float> speeds = {1500, 1500};
    EXPECT_EQ(compared(engine, {}, {}, depths, speeds), noDifferences);
    EXPECT_EQ(compared(engine, depths, speeds, {}, {}), noDifferences);
    EXPECT_EQ(compared(engine, {0, 5}, {1500, 1399}, depths, speeds), noDifferences);
    EXPECT_EQ(compared(engine, depths, speeds, {0, 5}, {1500}), noDifferences);
    EXPECT_EQ(compared(engine, {12000, 13000}, speeds, depths, speeds), noDifferences);
    EXPECT_EQ(compared(engine, depths, speeds, depths, speeds).value(QLatin1String("result")),
              success);
}
