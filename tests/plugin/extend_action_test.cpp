#include "tests/support/enginefixture.h"

#include <QJsonArray>
#include <gtest/gtest.h>

namespace {

const QString extendDefault = QStringLiteral("ExtendDefault");
const QString withFile = QStringLiteral("ExtendWithFile");
const QString unsorted = QStringLiteral("Depths are not sorted.\n");
const QString shallow = QStringLiteral("SVP must be extended to full ocean depth.\n");

// Numbers of an array, each of them a 32-bit float as it went out.
QVector<float> numbers(const QJsonObject& reply, const char* key)
{
    QVector<float> values;
    const QJsonArray array = reply.value(QLatin1String(key)).toArray();
    for (const QJsonValue& value : array) {
        EXPECT_EQ(value.toDouble(), double(float(value.toDouble())));
        values.append(float(value.toDouble()));
    }
    return values;
}

QVector<float> speedsOf(const QJsonObject& reply)
{
    return numbers(reply, "svpX");
}

QVector<float> depthsOf(const QJsonObject& reply)
{
    return numbers(reply, "svpY");
}

/// An engine with an extension file among its profiles.
class FileEngine : public Engine
{
  public:
    QJsonObject extended(const QByteArray& file,
                         const QString& samples = QStringLiteral("1500,1490,1488*0,100,200"))
    {
        folder.writeProfile(QStringLiteral("deep.txt"), file);
        return request(withFile, QLatin1Char('[') + samples + QStringLiteral("*deep.txt]"));
    }
};

} // namespace

TEST(ExtendDefaultAction, JoinsTheCompiledInRows)
{
    Engine engine;
    const QJsonObject reply =
        engine.request(extendDefault, QStringLiteral("[1500,1490,1488;0,100,200]"));
    EXPECT_EQ(depthsOf(reply),
              (QVector<float>{0, 100, 200, 500, 700, 1000, 1500, 4000, 6000, 8500, 12000}));
    EXPECT_EQ(speedsOf(reply), (QVector<float>{1500, 1490, 1488, 1498.0F, 1486.2F, 1483.0F, 1487.2F,
                                               1500.0F, 1524.1F, 1558.2F, 1602.8F}));
    EXPECT_EQ(reply.value(QLatin1String("whoami")).toString(), extendDefault);
    EXPECT_EQ(reply.value(QLatin1String("result")).toString(), QLatin1String("SUCCESS"));
    EXPECT_EQ(reply.size(), 4);
    EXPECT_TRUE(engine.rawPackets().constFirst().contains("1602.800048828125"));
    EXPECT_EQ(engine.rawPackets().size(), 1);
}

TEST(ExtendDefaultAction, PutsASampleAtTheSurface)
{
    Engine engine;
    const auto starting = [&engine](const char* depth) {
        return engine.request(
            extendDefault, QStringLiteral("1501,1490,1488;%1,100,9000").arg(QLatin1String(depth)));
    };
    EXPECT_EQ(depthsOf(starting("5")), (QVector<float>{0, 5, 100, 9000, 12000}));
    EXPECT_EQ(speedsOf(starting("5")), (QVector<float>{1501, 1501, 1490, 1488, 1602.8F}));
    // One above the surface gets it too, in front.
    EXPECT_EQ(depthsOf(starting("-2")), (QVector<float>{0, -2, 100, 9000, 12000}));
    EXPECT_EQ(depthsOf(starting("0")), (QVector<float>{0, 100, 9000, 12000}));
    EXPECT_EQ(depthsOf(starting("-0.0")), (QVector<float>{-0.0F, 100, 9000, 12000}));
}

TEST(ExtendDefaultAction, AProfileAtFullDepthStays)
{
    Engine engine;
    const QJsonObject reply =
        engine.request(extendDefault, QStringLiteral("1500,1490,1600;0,100,12000"));
    EXPECT_EQ(depthsOf(reply), (QVector<float>{0, 100, 12000}));
    // A little short of it the last row is joined.
    EXPECT_EQ(depthsOf(engine.request(extendDefault, QStringLiteral("1500,1490,1600;0,100,11999"))),
              (QVector<float>{0, 100, 11999, 12000}));
}

TEST(ExtendDefaultAction, Refusals)
{
    Engine engine;
    const QString invalid = QStringLiteral("Invalid svp.");
    struct
    {
        QString body;
        QString outcome;
    } const cases[] = {
        {QString(), invalid},
        {QStringLiteral("1500,1490,1488"), invalid},
        {QStringLiteral("1500,1490,1488;"), invalid},
        {QStringLiteral("1500,1490;0,10"), invalid},
        {QStringLiteral("1500,1490,1488;0,10"), invalid},
        {QStringLiteral("1500,1490;0,10,20"), invalid},
        {QStringLiteral("1500;0,10,20"), invalid},
        {QStringLiteral("1500,1490,1488;0,10,20"), QStringLiteral("SUCCESS")},
        {QStringLiteral("1500,1490,1488,1487;0,10,20"), QStringLiteral("SUCCESS")},
        {QStringLiteral(" [;1500,1490,1488;;[0,10,20];1;2] "), QStringLiteral("SUCCESS")},
        {QStringLiteral("1,2,3;0,50,40"), unsorted + shallow},
        {QStringLiteral("1,2,3;-1,50,40"),
         unsorted + QStringLiteral("Negative depths found.\n") + shallow},
        {QStringLiteral("1,2,3;0,50,12000,40"), invalid},
        {QStringLiteral("1,2,3,4;0,50,40,12000"), unsorted},
        // Items that are empty or no number are 0, and not sorted behind one that is deeper.
        {QStringLiteral("1,2,3;0,10,"), unsorted + shallow},
        {QStringLiteral("1,2,3;0,10,x"), unsorted + shallow},
        {QStringLiteral("1,,nan;0,10,20"), QStringLiteral("SUCCESS")},
    };
    for (const auto& c : cases) {
        engine.plugin.addPendingAlert("pending");
        const QJsonObject reply = engine.request(extendDefault, c.body);
        EXPECT_EQ(outcome(reply), c.outcome) << c.body.toStdString();
        EXPECT_EQ(reply.value(QLatin1String("whoami")).toString(), extendDefault);
        EXPECT_EQ(engine.packets().size(), 1) << "no alerts after this action";
    }
}

namespace {

const QString tempSal = QStringLiteral("ExtendTempSal");
// Close to what the formula gives at 10 degrees and 35 psu.
const QString fourSamples = QStringLiteral("1490,1490.5,1491,1491.5*0,50,75,100");

QString waterMass(const char* pieces)
{
    return QLatin1Char('[') + fourSamples + QLatin1Char('*') + QLatin1String(pieces) +
           QLatin1Char(']');
}

} // namespace

TEST(ExtendTempSalAction, ContinuesTheProfileToFullDepth)
{
    Engine engine;
    const QJsonObject reply = engine.request(tempSal, waterMass("10*35*45"));
    const QVector<float> depths = depthsOf(reply);
    const QVector<float> speeds = speedsOf(reply);
    ASSERT_EQ(depths.size(), 204);
    ASSERT_EQ(speeds.size(), 204);
    EXPECT_EQ(depths.mid(0, 4), (QVector<float>{0, 50, 75, 100}));
    EXPECT_EQ(speeds.mid(0, 4), (QVector<float>{1490, 1490.5F, 1491, 1491.5F}));
    EXPECT_EQ(depths.at(103), 2000.0F);
    EXPECT_EQ(depths.at(104), 2100.0F);
    EXPECT_EQ(depths.constLast(), 12000.0F);
    for (int i = 1; i < depths.size(); ++i) {
        EXPECT_GT(depths.at(i), depths.at(i - 1));
        EXPECT_GT(speeds.at(i), 1400.0F);
        EXPECT_LT(speeds.at(i), 1700.0F);
    }
    // It goes on where the measurement ends.
    EXPECT_NEAR(speeds.at(4), speeds.at(3), 1.1);
    EXPECT_EQ(reply.value(QLatin1String("whoami")).toString(), tempSal);
    EXPECT_EQ(reply.value(QLatin1String("result")).toString(), QLatin1String("SUCCESS"));
    EXPECT_EQ(reply.size(), 4);
}

TEST(ExtendTempSalAction, OnlyAProfileThatStartsBelowTheSurfaceGetsASampleThere)
{
    Engine engine;
    const auto starting = [&engine](const char* depth) {
        return depthsOf(
            engine.request(tempSal, QStringLiteral("1490,1490.5,1491,1491.5*%1,50,75,100*10*35*45")
                                        .arg(QLatin1String(depth))));
    };
    EXPECT_EQ(starting("5").mid(0, 3), (QVector<float>{0, 5, 50}));
    EXPECT_EQ(starting("0").mid(0, 2), (QVector<float>{0, 50}));
    EXPECT_EQ(starting("-5").mid(0, 2), (QVector<float>{-5, 50}));
}

TEST(ExtendTempSalAction, AWrongFormIsToldAsASuccess)
{
    Engine engine;
    for (const char* body : {"", "1500", "1,2,3,4*0,1,2,3*10*35", "1,2,3,4*0,1,2,3*10*35*45*1"}) {
        engine.plugin.addPendingAlert("pending");
        engine.request(tempSal, QLatin1String(body));
        EXPECT_EQ(engine.rawPackets(), QList<QByteArray>{R"({
    "reason": "Invalid input parameters.",
    "result": "SUCCESS",
    "whoami": "ExtendTempSal"
}
)"}) << body;
    }
}

TEST(ExtendTempSalAction, RefusalsStandInTheirOrder)
{
    Engine engine;
    const QString invalid = QStringLiteral("Invalid svp.");
    const QString noFit = QStringLiteral("Failed to extend svp.");
    const QString good = QStringLiteral("SUCCESS");
    struct
    {
        QString body;
        QString outcome;
    } const cases[] = {
        {QStringLiteral("1490,1491,1492*0,50,40*99*35*45"), invalid},
        {QStringLiteral("1490,,1491,1492,*0,50,60*10*35*45"), invalid},
        {QStringLiteral("1490,1491,1492,1493*0,50,60*10*35*45"), invalid},
        {QStringLiteral("1490,1491,1492*0,50,60,70*10*35*45"), invalid},
        {QStringLiteral("1490,1491,1492,1493*0,50,40,60*99*35*45"), unsorted + shallow},
        {QStringLiteral("1490,1490.5,1491,1491.5*0,50,75,100,120*10*35*45"), good},
        {waterMass("0*35*45"), noFit},
        {waterMass("-0.1*35*45"), invalid},
        {waterMass("50*35*45"), noFit},
        {waterMass("50.1*35*45"), invalid},
        {waterMass("10*0*45"), noFit},
        {waterMass("10*-0.1*45"), invalid},
        {waterMass("10*500*45"), noFit},
        {waterMass("10*500.1*45"), invalid},
        {waterMass("10*35*-90"), good},
        {waterMass("10*35*90"), good},
        {waterMass("10*35*-90.1"), invalid},
        {waterMass("10*35*90.1"), invalid},
        // What is no number is 0.
        {waterMass("word*35*45"), noFit},
        {waterMass("10*35*word"), good},
    };
    for (const auto& c : cases) {
        engine.plugin.addPendingAlert("pending");
        EXPECT_EQ(outcome(engine.request(tempSal, c.body)), c.outcome) << c.body.toStdString();
        EXPECT_EQ(engine.packets().size(), 1) << "no alerts after this action";
    }
}

TEST(ExtendWithFileAction, JoinsTheRowsOfTheFile)
{
    FileEngine engine;
    const QJsonObject reply = engine.extended("1 1\r\n500.5 1480.25\r\n\r\nword\r\n1 2 3\r\n"
                                              "  12000\t1600 \r\n");
    EXPECT_EQ(depthsOf(reply), (QVector<float>{0, 100, 200, 500.5F, 12000}));
    EXPECT_EQ(speedsOf(reply), (QVector<float>{1500, 1490, 1488, 1480.25F, 1600}));
    EXPECT_EQ(reply.value(QLatin1String("whoami")).toString(), withFile);
    EXPECT_EQ(reply.size(), 4);
    // The file is read again for each request.
    EXPECT_EQ(depthsOf(engine.extended("//\n600 1480\n700 1481")),
              (QVector<float>{0, 100, 200, 600, 700}));
}

TEST(ExtendWithFileAction, RowsAreComparedWithTheFirstOneAlone)
{
    FileEngine engine;
    EXPECT_EQ(depthsOf(engine.extended("//\n500 1\n3000 2\n2000 3\n12000 4\n")),
              (QVector<float>{0, 100, 200, 500, 3000, 2000, 12000}));
    const QString error = QStringLiteral("Error in file.");
    for (const char* text : {"//\n500 1\n400 2\n", "//\n500 1\n500 2\n", "//\n500 1\n", "//\n", "",
                             "//\n500 1\n600 1\n500 1\n", "500 1\n600 1"})
        EXPECT_EQ(outcome(engine.extended(text)), error) << text;
    // Rows above the profile's end are skipped, and if all are, nothing is joined.
    EXPECT_EQ(depthsOf(engine.extended("//\n50 1\n150 2\n")), (QVector<float>{0, 100, 200}));
}

TEST(ExtendWithFileAction, NeedsNoMinimumOfSamples)
{
    FileEngine engine;
    const QByteArray rows = "//\n500 1480\n12000 1600\n";
    EXPECT_EQ(depthsOf(engine.extended(rows, QStringLiteral("1500*7"))),
              (QVector<float>{0, 7, 500, 12000}));
    EXPECT_EQ(depthsOf(engine.extended(rows, QStringLiteral("1500*-7"))),
              (QVector<float>{0, -7, 500, 12000}));
    // Empty items are dropped; without any there is nothing to extend.
    EXPECT_EQ(depthsOf(engine.extended(rows, QStringLiteral(",1500,,1490*,0,,7,"))),
              (QVector<float>{0, 7, 500, 12000}));
    EXPECT_EQ(outcome(engine.extended(rows, QStringLiteral(",*,"))),
              QStringLiteral("Error extending."));
}

TEST(ExtendWithFileAction, FindsTheFileByItsPath)
{
    Engine engine;
    engine.folder.write(QStringLiteral("tqrv/rows.txt"), "//\n500 1480\n12000 1600\n");
    engine.folder.writeProfile(QStringLiteral("sub/öst 東.txt"), "//\n600 1480\n12000 1600\n");
    const auto secondRow = [&engine](const QString& path) {
        return depthsOf(engine.request(withFile, QStringLiteral("1500*0*") + path)).value(1);
    };
    EXPECT_EQ(secondRow(engine.folder.path(QStringLiteral("tqrv/rows.txt"))), 500.0F);
    EXPECT_EQ(secondRow(QStringLiteral("sub/öst 東.txt")), 600.0F);
    EXPECT_EQ(secondRow(QStringLiteral("sub\\öst 東.txt")), 600.0F);
    QString deep = QStringLiteral("tief 深");
    for (int i = 0; i < 8; ++i)
        deep += QLatin1Char('/') + QString(40, QLatin1Char(char('a' + i)));
    engine.folder.writeProfile(deep + QStringLiteral("/öst.txt"), "//\n700 1480\n12000 1600\n");
    EXPECT_EQ(secondRow(deep + QStringLiteral("/öst.txt")), 700.0F);
    EXPECT_EQ(secondRow(engine.folder.profile(deep) + QStringLiteral("/öst.txt")), 700.0F);
    for (const QString& path :
         {QStringLiteral("../../tqrv/rows.txt"), QStringLiteral("none.txt"), QStringLiteral("sub"),
          QStringLiteral("/dev/zero"), engine.folder.path(QString()), QStringLiteral("/"),
          QString(QStringLiteral("/tmp/a") + QChar(0) + QStringLiteral("b")),
          QString(QStringLiteral("a") + QChar(0) + QStringLiteral("b"))}) {
        EXPECT_EQ(outcome(engine.request(withFile, QStringLiteral("1500*0*") + path)),
                  QStringLiteral("Cannot open extention svp."))
            << path.toStdString();
    }
}

TEST(ExtendWithFileAction, RefusalsStandInTheirOrderAndAlertsFollowThem)
{
    FileEngine engine;
    engine.folder.writeProfile(QStringLiteral("bad.txt"), "//\n");
    engine.folder.writeProfile(QStringLiteral("good.txt"), "//\n500 1480\n12000 1600\n");
    const QString form = QStringLiteral("Invalid input parameters.");
    const QString invalid = QStringLiteral("Invalid svp.");
    const QString cannotOpen = QStringLiteral("Cannot open extention svp.");
    struct
    {
        QString body;
        QString outcome;
    } const cases[] = {
        {QString(), form},
        {QStringLiteral("1500*0"), form},
        {QStringLiteral("1500*0**"), form},
        {QStringLiteral("1500*0*none*x"), form},
        {QStringLiteral("1500,1490*0*none"), invalid},
        {QStringLiteral("1500*0,10*none"), invalid},
        {QStringLiteral("1500,1490*0,,10*none"), cannotOpen},
        {QStringLiteral("1500,1490,1488*0,50,40*none"), unsorted + shallow},
        {QStringLiteral("1500,1490*0,50*none"), cannotOpen},
        {QStringLiteral("1500,1490*0,50*bad.txt"), QStringLiteral("Error in file.")},
    };
    for (const auto& c : cases) {
        engine.plugin.addPendingAlert("pending");
        EXPECT_EQ(outcome(engine.request(withFile, c.body)), c.outcome) << c.body.toStdString();
        const QVector<QJsonObject> packets = engine.packets();
        ASSERT_EQ(packets.size(), 2);
        EXPECT_EQ(packets.at(1).value(QLatin1String("alert")).toString(), QLatin1String("pending"));
    }
    engine.plugin.addPendingAlert("pending");
    EXPECT_EQ(outcome(engine.request(withFile, QStringLiteral(" [1500*0*[good.txt]] "))),
              QLatin1String("SUCCESS"));
    EXPECT_EQ(engine.packets().size(), 1);
}

TEST(SelectExtentionFileAction, NamesTheUpload)
{
    Engine engine;
    engine.request(QStringLiteral("SelectExtentionFile"), QStringLiteral("anything"));
    EXPECT_EQ(engine.rawPackets(), QList<QByteArray>{R"({
    "extentionfile": "extentionfile.asvp",
    "result": "SUCCESS",
    "whoami": "SelectExtentionFile"
}
)"});
}
