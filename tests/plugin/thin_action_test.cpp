#include "tests/support/enginefixture.h"
#include "tests/support/requests.h"

#include <QDir>
#include <gtest/gtest.h>

namespace {

const QString thin = QStringLiteral("Thin");

using requests::changed;
using requests::join;

// Eight samples to 12 000 m; the third to sixth lie on the line of the first two.
QStringList asvpThin()
{
    return {QStringLiteral("1500,1501,1502,1503,1504,1540,1560,1600;"
                           "0,1000,2000,3000,4000,5000,8000,12000;"
                           "1,2,3,4,5,6,7,8;1,2,3,4,5,6,7,8;10,11,12,13,14,15,16,17;"
                           "30,31,32,33,34,35,36,37;40,41,42,43,44,45,46,47"),
            QStringLiteral("my.cast.asvp"),
            QStringLiteral("SoundVelocity"),
            QStringLiteral("1.0"),
            QStringLiteral("7"),
            QStringLiteral("20261115123456"),
            QStringLiteral("-33.5"),
            QStringLiteral("5.5"),
            QStringLiteral("100"),
            QStringLiteral("1"),
            QStringLiteral("2"),
            QStringLiteral("my probe"),
            QStringLiteral("NA"),
            QStringLiteral("99"),
            QStringLiteral("a comment"),
            QStringLiteral("0.5")};
}

QStringList datagramThin(const QString& kind = QStringLiteral("01"))
{
    return changed(asvpThin(), 2, kind);
}

QStringList withLists(const QStringList& pieces, const QString& lists)
{
    return changed(pieces, 0, lists);
}

} // namespace

TEST(ThinAction, WritesTheKeptSamplesAsAnAsvpFile)
{
    Engine engine;
    const QJsonObject reply = engine.request(thin, join(asvpThin()));
    EXPECT_EQ(outcome(reply), QLatin1String("SUCCESS"));
    EXPECT_EQ(reply.value(QLatin1String("whoami")).toString(), thin);
    EXPECT_EQ(reply.value(QLatin1String("file")).toString(), QLatin1String("my.cast_thinned.asvp"));
    const QString path = engine.folder.profile(QStringLiteral("my.cast_thinned.asvp"));
    EXPECT_EQ(reply.value(QLatin1String("fullname")).toString(), path);
    EXPECT_EQ(reply.size(), 4);
    // 0 and 1 begin, 4 ends the first line, 5 leaves it; 6 leaves the line 4-5, 7 the line 5-6.
    EXPECT_EQ(bytesOf(path), QByteArray("( SoundVelocity 1.0 7 20261115123456 -33.5 5.5 100 1 2 "
                                        "my_probe NA 6 )\r\n0.00 1500.00\r\n1000.00 1501.00\r\n"
                                        "4000.00 1504.00\r\n5000.00 1540.00\r\n8000.00 1560.00\r\n"
                                        "12000.00 1600.00\r\n"));
}

TEST(ThinAction, WritesTheKeptSamplesAsADatagramFile)
{
    Engine engine;
    const QJsonObject reply = engine.request(thin, join(datagramThin()));
    EXPECT_EQ(outcome(reply), QLatin1String("SUCCESS"));
    EXPECT_EQ(reply.value(QLatin1String("file")).toString(), QLatin1String("my.cast_thinned.ssp"));
    const QString path = engine.folder.path(QStringLiteral("qrvdata/svp_abscoeff/"
                                                           "my.cast_thinned.ssp"));
    EXPECT_EQ(reply.value(QLatin1String("fullname")).toString(), path);
    const QByteArray text = bytesOf(path);
    QByteArray expected = "$QZS01,00000,6,123456,15,11,2026,0.00,1500.00,10,30,\r\n"
                          "1000.00,1501.00,11,31,\r\n4000.00,1504.00,14,34,\r\n"
                          "5000.00,1540.00,15,35,\r\n8000.00,1560.00,16,36,\r\n"
                          "12000.00,1600.00,17,37,\r\n"
                          "3330.000000,S,530.000000,E,,,a comment*";
    unsigned sum = 0;
    for (int i = 1; i + 1 < expected.size(); ++i)
        sum ^= static_cast<unsigned char>(expected[i]);
    expected += QStringLiteral("%1").arg(sum, 2, 16, QLatin1Char('0')).toUpper().toLatin1();
    EXPECT_EQ(text, expected + "\\\r\n");
}

TEST(ThinAction, ADatagramFileKeepsABackupOfTheOneItReplaces)
{
    Engine engine;
    const QDir folder(engine.folder.path(QStringLiteral("qrvdata/svp_abscoeff")));
    engine.request(thin, join(datagramThin()));
    engine.request(thin, join(changed(datagramThin(), 15, QStringLiteral("1"))));
    EXPECT_EQ(folder.entryList({QStringLiteral("my.cast_thinned*")}).size(), 2);
    EXPECT_EQ(folder.entryList({QStringLiteral("my.cast_thinned_bck_*.ssp")}).size(), 1);
}

TEST(ThinAction, TheKindIsWrittenInTwoDigits)
{
    Engine engine;
    const QJsonObject reply = engine.request(thin, join(datagramThin(QStringLiteral("7"))));
    // The alternative first column stands for the depth.
    EXPECT_TRUE(bytesOf(reply.value(QLatin1String("fullname")).toString())
                    .startsWith("$QZS07,00000,6,123456,15,11,2026,1.00000,1500.00,10,30,\r\n"));
}

TEST(ThinAction, NamesLoseWhatStandsBehindTheirLastPoint)
{
    Engine engine;
    const auto fileOf = [&engine](const QString& name) {
        return engine.request(thin, join(changed(asvpThin(), 1, name)))
            .value(QLatin1String("file"))
            .toString();
    };
    EXPECT_EQ(fileOf(QStringLiteral("a.b.vp2")), QLatin1String("a.b_thinned.asvp"));
    EXPECT_EQ(fileOf(QStringLiteral("plain")), QLatin1String("plain_thinned.asvp"));
    EXPECT_EQ(fileOf(QStringLiteral("v1.2/plain")), QLatin1String("plain_thinned.asvp"));
    EXPECT_FALSE(engine.folder.read(QStringLiteral("qrvdata/svp_abscoeff/v1.2/plain_thinned.asvp"))
                     .isEmpty());
}

TEST(ThinAction, RefusalsStandInTheirOrder)
{
    Engine engine;
    const QString wrongNumber = QStringLiteral("Wrong number of input parameters.");
    const QString wrongInput = QStringLiteral("Wrong svp input.");
    const QString unsorted = QStringLiteral("Depths not sorted.");
    const QString notExtended = QStringLiteral("Profile not extended.");
    const QString tolerance = QStringLiteral("Input parameter error");
    const QString thinning = QStringLiteral("Thinning error");
    const QString sizes = QStringLiteral("Thinning error: element sizes are different");
    const auto asvpLists = [](const char* speeds, const char* depths) {
        return withLists(asvpThin(),
                         QLatin1String(speeds) + QLatin1Char(';') + QLatin1String(depths));
    };
    const auto datagramLists = [](const char* speeds, const char* depths) {
        return withLists(datagramThin(),
                         QLatin1String(speeds) + QLatin1Char(';') + QLatin1String(depths));
    };
    const auto kind = [](const char* text) {
        return changed(changed(datagramThin(QLatin1String(text)), 0, QStringLiteral("1;0")), 15,
                       QStringLiteral("5"));
    };
    struct
    {
        QStringList pieces;
        QString outcome;
    } const cases[] = {
        {{}, wrongNumber},
        {asvpThin().mid(0, 15), wrongNumber},
        {asvpThin() + QStringList(QStringLiteral("x")), wrongNumber},
        {changed(asvpThin(), 14, QString()), wrongNumber},
        {kind("15"), QStringLiteral("Unsupported SSP type S15")},
        {kind("8"), QStringLiteral("Unsupported SSP type S8")},
        {kind("-1"), QStringLiteral("Unsupported SSP type S-1")},
        {kind("54"), QStringLiteral("Unsupported SSP type S54")},
        {kind("soundvelocity"), QStringLiteral("Unsupported SSP type Ssoundvelocity")},
        {kind("1.5"), QStringLiteral("Unsupported SSP type S1.5")},
        {kind("%1"), QStringLiteral("Unsupported SSP type S%1")},
        {kind("00"), wrongInput},
        {datagramLists("1500,1501", "0,12000"), wrongInput},
        {datagramLists("1500,1501,1502", "0,12000"), wrongInput},
        {datagramLists("1500,1501", "0,10,12000"), wrongInput},
        {asvpLists("1,2,3,4,5", "0,1,2,3,12000"), wrongInput},
        {asvpLists("1,2,3,4,5,6", "0,1,2,3,12000"), wrongInput},
        {asvpLists("1,2,3,4,5,6", "0,1,2,3,4,5,12000"), wrongInput},
        {asvpLists("1,2,3,4,5,6", "0.5,1,2,2.004,4,11999"), unsorted},
        {datagramLists("1,2,3", "0,5,4"), unsorted},
        {asvpLists("1,2,3,4,5,6", "0.01,1,2,3,4,12000"), notExtended},
        {asvpLists("1,2,3,4,5,6", "0,1,2,3,4,11999.9"), notExtended},
        {asvpLists("1,2,3,4,5,6", "0,1,2,3,4,12000.1"), notExtended},
        {asvpLists("1,2,3,4,5,6", "-1,1,2,3,4,12000"), notExtended},
        {changed(asvpThin(), 15, QStringLiteral("0.009")), tolerance},
        {changed(asvpThin(), 15, QStringLiteral("1.01")), tolerance},
        {changed(asvpThin(), 15, QStringLiteral("nan")), tolerance},
        {changed(asvpThin(), 15, QStringLiteral("word")), tolerance},
        {changed(asvpThin(), 15, QStringLiteral("-0.5")), tolerance},
        {changed(asvpThin(), 15, QStringLiteral("0.01")), QStringLiteral("SUCCESS")},
        {changed(asvpThin(), 15, QStringLiteral("1.0")), QStringLiteral("SUCCESS")},
        {changed(datagramLists("1,2,3", "5,6,7"), 15, QStringLiteral("2")), tolerance},
        {datagramLists("1500,1501,1502", "1,2,11499"), thinning},
        {datagramLists("1500,1501,1502", "1,2,11500"), sizes},
        {changed(datagramLists("1500,1501,1502", "1,2,11500"), 2, QStringLiteral("00")),
         QStringLiteral("SUCCESS")},
        {changed(datagramLists("1500,1501,1502", "1,2,11500;;;;; "), 2, QStringLiteral("10")),
         QStringLiteral("SUCCESS")},
        {changed(datagramLists("1500,1501,1502", "1,2,11500;;;1,2"), 2, QStringLiteral("00")),
         sizes},
        {changed(datagramLists("1500,1501,1502", "1,2,11500;;;;;1,2,3"), 2, QStringLiteral("06")),
         QStringLiteral("SUCCESS")},
        {changed(datagramLists("1500,1501,1502", "1,2,11500;;;;;1,2,3"), 2, QStringLiteral("07")),
         sizes},
        {datagramLists("1500,1501,1502", "1,2,11500;1,2,3;1,2,3;1,2,3"), sizes},
        {datagramLists("1500,1501,1502", "1,2,11500;1,2,3;1,2,3;1,2;1,2,3;1,2,3"), sizes},
        {datagramLists("1500,1501,1502", "1,2,11500;1,2,3;1,2,3;;1,2,3;1,2,3"), sizes},
        {datagramLists("1500,1501,1502", "1,2,11500;1,2,3;1,2,3;1,2,3;1,2,3;1,2,3,4"),
         QStringLiteral("SUCCESS")},
        {asvpLists("1,2,3,4,5,6", "0,1,2,3,4,12000"), QStringLiteral("SUCCESS")},
        {asvpLists("1,2,3,4,5,6", "0,1,2,3,4,12000;;;;;"), QStringLiteral("SUCCESS")},
        {asvpLists("1,2,3,4,5,6", "0,1,2,3,4,12000;1,2,3,4,5"), sizes},
        {changed(datagramThin(), 2, QStringLiteral("13")), QStringLiteral("No samples extracted.")},
        {changed(datagramThin(), 1, QStringLiteral("../../x.ssp")),
         QStringLiteral("Error saving file.")},
        {changed(asvpThin(), 1, QStringLiteral("../../x.asvp")),
         QStringLiteral("Error writing file.")},
    };
    for (const auto& c : cases) {
        engine.plugin.addPendingAlert("pending");
        EXPECT_EQ(outcome(engine.request(thin, join(c.pieces))), c.outcome)
            << join(c.pieces).toStdString();
        if (c.outcome != QLatin1String("SUCCESS")) {
            const QVector<QJsonObject> packets = engine.packets();
            ASSERT_EQ(packets.size(), 2);
            EXPECT_TRUE(packets.at(1)
                            .value(QLatin1String("alert"))
                            .toString()
                            .startsWith(QLatin1String("pending")));
        } else {
            EXPECT_EQ(engine.packets().size(), 1);
        }
    }
}

TEST(ThinAction, EverySupportedKindIsTaken)
{
    Engine engine;
    for (int kind = 0; kind <= 60; ++kind) {
        const bool isListed =
            kind <= 7 || (kind >= 10 && kind <= 14) || (kind >= 20 && kind <= 53 && kind % 10 <= 3);
        const QString answer =
            outcome(engine.request(thin, join(datagramThin(QString::number(kind)))));
        EXPECT_EQ(answer == QStringLiteral("Unsupported SSP type S%1").arg(kind), !isListed)
            << kind;
    }
}
