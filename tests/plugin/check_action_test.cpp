#include "tests/support/enginefixture.h"

#include <QJsonArray>
#include <gtest/gtest.h>

namespace {

const QString check = QStringLiteral("CheckProfile");

} // namespace

TEST(CheckAction, AGoodProfilePasses)
{
    Engine engine;
    engine.request(check, checkBody(QStringLiteral("1500,1550"), QStringLiteral("0,12000")));
    EXPECT_EQ(engine.rawPackets(), QList<QByteArray>{R"({
    "result": "SUCCESS",
    "svpX": [
    ],
    "svpY": [
    ],
    "tofix": "Existing profile depths and sound speeds are valid.",
    "whoami": "CheckProfile"
}
)"});
}

TEST(CheckAction, InvalidSamplesComeBackInTheirOrder)
{
    Engine engine;
    const QJsonObject reply =
        engine.request(check, checkBody(QStringLiteral("1399.9,1500,1700.01,1500.1,1501"),
                                        QStringLiteral("0,10,20,10.005,5")));
    EXPECT_EQ(reply.value(QLatin1String("svpX")).toArray(),
              (QJsonArray{double(1399.9F), double(1700.01F), double(1500.1F), 1501.0}));
    EXPECT_EQ(reply.value(QLatin1String("svpY")).toArray(),
              (QJsonArray{0, 20, double(10.005F), 5}));
    EXPECT_EQ(reply.value(QLatin1String("tofix")).toString(),
              QLatin1String("Invalid entries are marked.\n"
                            "SVP must be extended to full ocean depth (12000.00m).\n"
                            "SVP must be extended upwards to 0.00m\n"));
    EXPECT_EQ(reply.size(), 5);
}

TEST(CheckAction, RefusalsStandInTheirOrder)
{
    Engine engine;
    const QString wrongNumber = QStringLiteral("Wrong number of input parameters.");
    const QString tooFew = QStringLiteral("Too few samples in profile.");
    const QString unequal = QStringLiteral("No of depths and speed samples don't match.");
    const QString tail = QStringLiteral("*f*k*v*i*t*la*lo*r*vf*vt*s*h*n");
    struct
    {
        QString body;
        QString outcome;
    } const cases[] = {
        {QString(), wrongNumber},
        {QStringLiteral("1500,1500;0,1") + tail, wrongNumber},
        {QStringLiteral("1500,1500;0,1") + tail + QStringLiteral("*c*x"), wrongNumber},
        {QStringLiteral("1500;0") + tail, wrongNumber},
        {QStringLiteral("1500,1500;0,1") + tail + QStringLiteral("*"), wrongNumber},
        {QStringLiteral("1500,1500;0,1") + tail + QStringLiteral("*c"), QStringLiteral("SUCCESS")},
        {QStringLiteral("1500,1500;0,1*") + tail + QStringLiteral("**c**"),
         QStringLiteral("SUCCESS")},
        {QStringLiteral(" ;1500,1500;0,1 ") + tail + QStringLiteral("*c"),
         QStringLiteral("SUCCESS")},
        {QStringLiteral("; ;1500,1500;0,1") + tail + QStringLiteral("*c"), tooFew},
        {QStringLiteral(";1500,1500;;0,1") + tail + QStringLiteral("*c"),
         QStringLiteral("SUCCESS")},
        {QStringLiteral("[1500,1500;0,1]") + tail + QStringLiteral("*c]"),
         QStringLiteral("SUCCESS")},
        {QStringLiteral("1500;0") + tail + QStringLiteral("*c"), tooFew},
        {QStringLiteral("1500;0,1") + tail + QStringLiteral("*c"), tooFew},
        {QStringLiteral(" ") + tail + QStringLiteral("*c"), tooFew},
        {QStringLiteral("1500,1500") + tail + QStringLiteral("*c"), unequal},
        {QStringLiteral("1500,1500;0") + tail + QStringLiteral("*c"), unequal},
        {QStringLiteral("1500,1500;0,1,2") + tail + QStringLiteral("*c"), unequal},
    };
    for (const auto& c : cases) {
        const QJsonObject reply = engine.request(check, c.body);
        EXPECT_EQ(outcome(reply), c.outcome) << qPrintable(c.body);
        EXPECT_EQ(reply.value(QLatin1String("whoami")).toString(), check);
        EXPECT_EQ(engine.packets().size(), 1);
    }
}

TEST(CheckAction, NumbersThatAreNoneReadAsZero)
{
    Engine engine;
    const QJsonObject reply = engine.request(
        check, checkBody(QStringLiteral("1500,nan,inf,1e400,"), QStringLiteral("x,1,2,3,4")));
    EXPECT_EQ(reply.value(QLatin1String("svpX")).toArray(), (QJsonArray{0, 0, 0, 0}));
    EXPECT_EQ(reply.value(QLatin1String("svpY")).toArray(), (QJsonArray{1, 2, 3, 4}));
    EXPECT_EQ(reply.value(QLatin1String("tofix")).toString(),
              QLatin1String("Invalid entries are marked.\n"
                            "SVP must be extended to full ocean depth (12000.00m).\n"));
}

TEST(CheckAction, LimitsOfTheSettingsFileDoNotMoveTheBounds)
{
    const DataFolder folder;
    folder.write(QStringLiteral("tqrv/SVPEditor.ini"),
                 "[iniVer]\nSVPEditorVersion=8\n[profileHandl]\ndSVMin=1000\ndSVMax=2000\n");
    CSVP_WebInterface plugin;
    QSignalSpy packets(&plugin, &CSVP_WebInterface::sendWSPacket);
    plugin.requestWebSocket(1, QStringLiteral("SVP_WebInterface"),
                            QStringLiteral("x,ACTION=SVP_WebInterface/CheckProfile,") +
                                checkBody(QStringLiteral("1399,1701"), QStringLiteral("0,12000")));
    EXPECT_TRUE(packets.at(0).at(1).toByteArray().contains("Invalid entries are marked."));
}

TEST(CheckAction, TheAlertFollowsEveryReply)
{
    Engine engine;
    for (const QString& body : {checkBody(QStringLiteral("1500,1550"), QStringLiteral("0,12000")),
                                QStringLiteral("wrong")}) {
        engine.plugin.addPendingAlert("look");
        engine.request(check, body);
        ASSERT_EQ(engine.packets().size(), 2);
        EXPECT_EQ(engine.packets().at(1).value(QLatin1String("whoami")).toString(),
                  QLatin1String("SVPAlert"));
    }
}

TEST(CheckAction, TheSendTestSpeaksOnlyOfTheForm)
{
    Engine engine;
    QString message = QStringLiteral("before");
    EXPECT_FALSE(engine.plugin.QuickCheck(message, QStringLiteral("a*b")));
    EXPECT_EQ(message, QLatin1String("Wrong number of input parameters."));
    message = QStringLiteral("before");
    EXPECT_FALSE(engine.plugin.QuickCheck(
        message, QStringLiteral("SoundVelocity*f*1500,1500*0,100*1*2*20261115123456")));
    EXPECT_TRUE(engine.plugin.QuickCheck(
        message, QStringLiteral("SoundVelocity*f*1500,1500*0,12000*1*2*20261115123456")));
    EXPECT_EQ(message, QLatin1String("before"));
}
