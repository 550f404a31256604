#include "datagram/conversion.h"
#include "profile/protocol.h"
#include "tests/support/enginefixture.h"
#include "tests/support/requests.h"
#include "tests/support/sspsample.h"

#include <QJsonArray>

namespace {

QJsonObject opened(Engine& engine, const QByteArray& content,
                   const QString& name = QStringLiteral("c.ssp"))
{
    engine.folder.writeProfile(name, content);
    return engine.request(QStringLiteral("SVP_OpenSVP"),
                          QLatin1Char('[') + name + QLatin1String(",ssp]"));
}

QJsonArray numbers(std::initializer_list<double> values)
{
    QJsonArray array;
    for (const double value : values)
        array.append(value);
    return array;
}

} // namespace

TEST(OpenDatagramFile, answersTheProfileAndItsHeader)
{
    Engine engine;
    SspSample sample;
    sample.identifier = "01";
    sample.rows = {"0.5,1500.25,8.5,35.25,0", "12000,1520,2,34.5,0"};
    sample.position = "5930.000000,S,01015.000000,W";
    const QJsonObject reply = opened(engine, sample.text());
    ASSERT_EQ(outcome(reply), QStringLiteral("SUCCESS"));
    EXPECT_EQ(reply[QStringLiteral("whoami")], QStringLiteral("SVP_OpenSVP"));
    EXPECT_EQ(reply[QStringLiteral("filename")], QStringLiteral("c.ssp"));
    EXPECT_EQ(reply[QStringLiteral("svp_Speed")], numbers({1500.25, 1520}));
    EXPECT_EQ(reply[QStringLiteral("svp_Depth")], numbers({0.5, 12000}));
    EXPECT_EQ(reply[QStringLiteral("svp_Depth_CTD")], numbers({0.5, 12000}));
    EXPECT_EQ(reply[QStringLiteral("svp_Speed_CTD")], numbers({1500.25, 1520}));
    EXPECT_EQ(reply[QStringLiteral("svp_Temp")], numbers({8.5, 2}));
    EXPECT_EQ(reply[QStringLiteral("svp_Sal")], numbers({35.25, 34.5}));
    EXPECT_EQ(reply[QStringLiteral("svp_AbsCoef")], numbers({0, 0}));
    EXPECT_EQ(reply[QStringLiteral("hsvp_filetype")], QStringLiteral("01"));
    EXPECT_EQ(reply[QStringLiteral("hsvp_fileversion")], 1.0);
    EXPECT_EQ(reply[QStringLiteral("hsvp_fileid")], 0);
    EXPECT_EQ(reply[QStringLiteral("hsvp_fileradii")], 0);
    EXPECT_EQ(reply[QStringLiteral("hsvp_filesource")], QStringLiteral(".ssp"));
    EXPECT_EQ(reply[QStringLiteral("hsvp_filehistory")], QStringLiteral("NA"));
    EXPECT_EQ(reply[QStringLiteral("hsvp_filesamp")], 2);
    EXPECT_EQ(reply[QStringLiteral("hsvp_filecomment")], QStringLiteral("Deep cast"));
    EXPECT_EQ(reply[QStringLiteral("hsvp_filetime")], QStringLiteral("20261115123456"));
    EXPECT_EQ(reply[QStringLiteral("hsvp_filelat")], QStringLiteral("-59.50000000"));
    EXPECT_EQ(reply[QStringLiteral("hsvp_filelon")], QStringLiteral("-10.25000000"));
    // 2026-11-15 12:34:56 UTC is 1 794 746 096 s after 1970.
    EXPECT_EQ(reply[QStringLiteral("hsvp_filevalidfrom")], 1794746096000.0 - 86400000.0);
    EXPECT_EQ(reply[QStringLiteral("hsvp_filevalidto")], 1794746096000.0 + 86400000.0);
    EXPECT_EQ(engine.packets().size(), 1);
}

TEST(OpenDatagramFile, readsTextsAsEditorsAndTransfersLeaveThem)
{
    Engine engine;
    const QByteArray text = SspSample().text();
    EXPECT_EQ(outcome(opened(engine, "\xEF\xBB\xBF" + text)), QStringLiteral("SUCCESS"));
    EXPECT_EQ(outcome(opened(engine, QByteArray(text).replace("\r\n", "\n"))),
              QStringLiteral("SUCCESS"));
    EXPECT_EQ(outcome(opened(engine, QByteArray(text).replace("\r\n", "\r\r\n"))),
              QStringLiteral("SUCCESS"));
    EXPECT_EQ(outcome(opened(engine, text + text)), QStringLiteral("SUCCESS"));
}

TEST(OpenDatagramFile, leavesOutAPositionThatIsNotThere)
{
    Engine engine;
    SspSample sample;
    for (const char* position : {",,,", "5930.0,N,,", ",,1015.0,E"}) {
        sample.position = position;
        const QJsonObject reply = opened(engine, sample.text());
        ASSERT_EQ(outcome(reply), QStringLiteral("SUCCESS"));
        EXPECT_FALSE(reply.contains(QStringLiteral("hsvp_filelat"))) << position;
        EXPECT_FALSE(reply.contains(QStringLiteral("hsvp_filelon"))) << position;
    }
}

TEST(OpenDatagramFile, tellsTheKindOfEachIdentifier)
{
    const auto kindOf = [](const char* identifier) {
        Engine engine;
        SspSample sample;
        sample.identifier = identifier;
        // Good for depths and for pressures in MPa alike is no row, so the depths come from
        // pressure only where the first column is one.
        const bool isPressure =
            datagram::contentIdentifier(sample.identifier.toInt()).firstIsPressure;
        sample.rows = isPressure ? QList<QByteArray>{"0,1500,10,35,0", "124.5,1500,0,0,0"}
                                 : QList<QByteArray>{"0,1500,10,35,0", "12000,1500,0,0,0"};
        return opened(engine, sample.text())[QStringLiteral("hsvp_filetype")].toString();
    };
    EXPECT_EQ(kindOf("00"), QStringLiteral("00"));
    EXPECT_EQ(kindOf("01"), QStringLiteral("01"));
    EXPECT_EQ(kindOf("12"), QStringLiteral("01"));
    EXPECT_EQ(kindOf("06"), QStringLiteral("00"));
    EXPECT_EQ(kindOf("10"), QStringLiteral("00"));
    EXPECT_EQ(kindOf("13"), QStringLiteral("00"));
    EXPECT_EQ(kindOf("07"), QStringLiteral("00"));
    EXPECT_EQ(kindOf("14"), QStringLiteral("00"));
}

TEST(OpenDatagramFile, refusesWhatIsNoDatagram)
{
    Engine engine;
    const struct
    {
        QByteArray content;
        const char* reason;
    } rows[] = {
        {"", "Header not correct in file."},
        {"( SoundVelocity )", "Header not correct in file."},
        {"$RVS00,00001,", "Header not correct in file."},
        {"$QZSx1,00001,", "Header not correct in file."},
        {"$QZS08,00000,", "Unsupported SSP type S08"},
        {"$QZS15,00000,", "Unsupported SSP type S15"},
        {"$QZS54,00000,", "Unsupported SSP type S54"},
        {"$QZS99,00000,", "Unsupported SSP type S99"},
        {"$QZS24,00000,", "Unsupported SSP type S24"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(outcome(opened(engine, row.content)), QLatin1String(row.reason));
        EXPECT_EQ(engine.packets().size(), 1); // no alert
    }
}

TEST(OpenDatagramFile, reportsWhyADatagramIsRefusedAfterTheReply)
{
    Engine engine;
    SspSample sample;
    sample.rows = {"0,1500,,,", "10.5,1800,,,", "12000,1500,,,"};
    EXPECT_EQ(outcome(opened(engine, sample.text())), QStringLiteral("Too few points in file."));
    const QVector<QJsonObject> packets = engine.packets();
    ASSERT_EQ(packets.size(), 2);
    EXPECT_EQ(packets[1][QStringLiteral("whoami")], QStringLiteral("SVPAlert"));
    EXPECT_EQ(
        packets[1][QStringLiteral("alert")],
        QStringLiteral("Illegal sound speed value. Sample no. 2:  10.50m  1800.00m/s. Profile "
                       "not accepted."));
}

TEST(OpenDatagramFile, keepsTheEarlierProfileWhenARuleFails)
{
    Engine engine;
    EXPECT_EQ(engine.plugin.getFromS00(0, 0), -99.0);
    EXPECT_EQ(outcome(opened(engine, SspSample().text())), QStringLiteral("SUCCESS"));
    EXPECT_EQ(engine.plugin.getFromS00(1, datagram::ConvertedDepth), 100.0);
    EXPECT_EQ(engine.plugin.getFromS00(1, 7), -99.0);
    SspSample broken;
    broken.rows = {"0,1500,,,", "50,1500,,,"};
    EXPECT_NE(outcome(opened(engine, broken.text())), QStringLiteral("SUCCESS"));
    EXPECT_EQ(engine.plugin.getFromS00(1, datagram::ConvertedDepth), 100.0);
    EXPECT_TRUE(engine.plugin.calcS00("$QZS").empty());
}

TEST(OpenDatagramFile, writesTheRowsBackUnderTheSameIdentifier)
{
    Engine engine;
    SspSample sample;
    const struct
    {
        const char* identifier;
        QList<QByteArray> rows;
    } cases[] = {
        {"01",
         {"0.125,1500.2500,8.5,35.250,", "5.500,1499.5000,8.0,35.100,",
          "12000.000,1520.0000,2.0,34.500,"}},
        {"14",
         {"0.000125,1500.2500,8.5,3.500,", "0.055000,1499.5000,8.0,3.250,",
          "124.500000,1520.0000,2.0,3.125,"}},
    };
    for (const auto& test : cases) {
        sample.identifier = test.identifier;
        sample.rows = test.rows;
        const QJsonObject reply = opened(engine, sample.text());
        ASSERT_EQ(outcome(reply), QStringLiteral("SUCCESS")) << test.identifier;
        QStringList lists;
        for (const QLatin1String key : protocol::sampleKeys) {
            QStringList values;
            const QJsonArray array = reply[key].toArray();
            for (const QJsonValue& value : array)
                values.append(QString::number(value.toDouble(), 'g', 9));
            lists.append(values.join(QLatin1Char(',')));
        }
        const QStringList pieces = {lists.join(QLatin1Char(';')),
                                    QStringLiteral("again.ssp"),
                                    QLatin1String(test.identifier),
                                    QStringLiteral("1.0"),
                                    QStringLiteral("0"),
                                    reply[QStringLiteral("hsvp_filetime")].toString(),
                                    reply[QStringLiteral("hsvp_filelat")].toString(),
                                    reply[QStringLiteral("hsvp_filelon")].toString(),
                                    QStringLiteral("0"),
                                    QStringLiteral("0"),
                                    QStringLiteral("0"),
                                    QStringLiteral("x"),
                                    QStringLiteral("NA"),
                                    QStringLiteral("3"),
                                    QStringLiteral("Deep cast")};
        ASSERT_EQ(outcome(engine.request(QStringLiteral("SVP_Save"), requests::join(pieces))),
                  QStringLiteral("SUCCESS"));
        const QByteArray saved = bytesOf(engine.folder.profile(QStringLiteral("again.ssp")));
        EXPECT_EQ(saved.left(saved.indexOf('*')), sample.text().left(sample.text().indexOf('*')));
    }
}
