#include "tests/support/enginefixture.h"
#include "tests/support/requests.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <gtest/gtest.h>

#include <cmath>

namespace {

const QString fix = QStringLiteral("FixProfile");

using requests::changed;
using requests::join;

const char mirrorPath[] = "tqrv/QRVTokens.json";

QByteArray mirrorOf(const QByteArray& tokens)
{
    return R"({"version":1,"lastsave":"20260102_030405","tokens":[)" + tokens + "]}";
}

/// An engine whose survey system keeps no token yet.
class FixEngine : public Engine
{
  public:
    explicit FixEngine(const QByteArray& tokens = QByteArray())
    {
        // One token of somebody else, so that the list is not empty.
        const QByteArray other = R"({"Name":"OTHER","Descr":"d","Type":1,"Value":5})";
        folder.write(QLatin1String(mirrorPath),
                     mirrorOf(tokens.isEmpty() ? other : other + "," + tokens));
    }

    QJsonObject fixed(const QStringList& pieces) { return request(fix, join(pieces)); }

    QJsonObject token(const QString& name) const
    {
        const QJsonArray tokens = QJsonDocument::fromJson(folder.read(QLatin1String(mirrorPath)))
                                      .object()
                                      .value(QLatin1String("tokens"))
                                      .toArray();
        for (const QJsonValue& element : tokens) {
            if (element[QLatin1String("Name")].toString() == name)
                return element.toObject();
        }
        return {};
    }
};

// Eight samples to 400 m of which 60 m (too slow), 55 m (not deeper) and -2 m are not valid.
QStringList asvpFix()
{
    return {QStringLiteral("1500,1501,1499,1300,1498,1490,1489,1480;"
                           "-2,0,50,60,55,100,40,400;"
                           "1,2,3,4,5,6,7,8;11,12,13,14,15,16,17,18;"
                           "20,21,22,23,24,25,26,27;30,31,32,33,34,35,36,37;"
                           "40,41,42,43,44,45,46,47"),
            QStringLiteral("my.cast.vp2"),
            QStringLiteral("SoundVelocity"),
            QStringLiteral("1.0"),
            QStringLiteral("7"),
            QStringLiteral("20261115123456"),
            QStringLiteral("59.5"),
            QStringLiteral("10.25"),
            QStringLiteral("100"),
            QStringLiteral("1"),
            QStringLiteral("2"),
            QStringLiteral("my probe"),
            QStringLiteral("NA"),
            QStringLiteral("8"),
            QStringLiteral("a comment"),
            QStringLiteral("0.01")};
}

QStringList datagramFix(const QString& kind = QStringLiteral("01"))
{
    return changed(asvpFix(), 2, kind);
}

QStringList withLists(const QStringList& pieces, const char* speeds, const char* depths)
{
    return changed(pieces, 0, QLatin1String(speeds) + QLatin1Char(';') + QLatin1String(depths));
}

// The rows of a datagram file as lists of their five fields.
QList<QByteArrayList> rowsOf(const QByteArray& text)
{
    QList<QByteArrayList> rows;
    QByteArrayList lines = text.split('\n');
    // The header stands before the first row, the tail after the last one.
    for (int i = 0; i + 2 < lines.size(); ++i) {
        QByteArrayList fields = lines.at(i).trimmed().split(',');
        rows.append(i == 0 ? fields.mid(7) : fields);
    }
    return rows;
}

} // namespace

TEST(FixAction, CleansContinuesThinsAndWritesAnAsvpFile)
{
    FixEngine engine;
    const QJsonObject reply = engine.fixed(asvpFix());
    EXPECT_EQ(outcome(reply), QLatin1String("SUCCESS"));
    EXPECT_EQ(reply.value(QLatin1String("whoami")).toString(), fix);
    EXPECT_EQ(reply.value(QLatin1String("file")).toString(), QLatin1String("my.cast_fixed.asvp"));
    const QString path = engine.folder.profile(QStringLiteral("my.cast_fixed.asvp"));
    EXPECT_EQ(reply.value(QLatin1String("fullname")).toString(), path);
    EXPECT_EQ(reply.size(), 4);
    // The rows below come from the extension file of the data folder.
    EXPECT_EQ(bytesOf(path),
              QByteArray("( SoundVelocity 1.0 7 20261115123456 59.5 10.25 100 1 2 my_probe NA 13 "
                         ")\r\n0.00 1501.00\r\n50.00 1499.00\r\n55.00 1498.00\r\n100.00 1490.00"
                         "\r\n400.00 1480.00\r\n500.00 1498.00\r\n700.00 1486.00\r\n1000.00 1483.00"
                         "\r\n1500.00 1487.00\r\n4000.00 1500.00\r\n6000.00 1524.00\r\n"
                         "8500.00 1558.00\r\n12000.00 1602.00\r\n"));
}

TEST(FixAction, SendsTheComparisonAsASecondPacket)
{
    FixEngine engine;
    engine.fixed(asvpFix());
    const QVector<QJsonObject> packets = engine.packets();
    ASSERT_EQ(packets.size(), 2);
    const QJsonObject& comparison = packets.at(1);
    EXPECT_EQ(comparison.value(QLatin1String("whoami")).toString(), QLatin1String("Thin"));
    EXPECT_TRUE(comparison.contains(QLatin1String("file")));
    EXPECT_EQ(comparison.value(QLatin1String("file")).toString(), QString());
    EXPECT_EQ(comparison.value(QLatin1String("result")).toString(), QLatin1String("SUCCESS"));
    EXPECT_EQ(comparison.value(QLatin1String("err10")).toArray().size(), 9);
    EXPECT_EQ(comparison.value(QLatin1String("err10000")).toArray().size(), 9);
    EXPECT_EQ(comparison.size(), 14);
    // At 10 m and 45 degrees or so both rays run through the same measured water.
    const QJsonArray pair = comparison.value(QLatin1String("err10")).toArray().at(4).toArray();
    EXPECT_EQ(pair.at(0).toString(), pair.at(1).toString());
    EXPECT_NEAR(pair.at(0).toString().toDouble(), 10.0 * std::tan(50.0 * M_PI / 180.0), 0.05);
    // Before the fix the profile ended at 400 m, behind it it does not.
    const QJsonArray far = comparison.value(QLatin1String("err500")).toArray().at(4).toArray();
    EXPECT_EQ(far.at(0).toString(), QLatin1String("nan"));
    EXPECT_NEAR(far.at(1).toString().toDouble(), 500.0 * std::tan(50.0 * M_PI / 180.0), 15.0);
}

TEST(FixAction, FurtherColumnsGoOnBelowTheMeasurement)
{
    FixEngine engine;
    const QJsonObject reply = engine.fixed(datagramFix(QStringLiteral("7")));
    EXPECT_EQ(reply.value(QLatin1String("file")).toString(), QLatin1String("my.cast_fixed.ssp"));
    const QString path =
        engine.folder.path(QStringLiteral("qrvdata/svp_abscoeff/my.cast_fixed.ssp"));
    EXPECT_EQ(reply.value(QLatin1String("fullname")).toString(), path);
    const QList<QByteArrayList> rows = rowsOf(bytesOf(path));
    ASSERT_EQ(rows.size(), 13);
    // Measured: as they came, at the places of the valid samples (the first, at -2 m, is dropped).
    EXPECT_EQ(rows.at(0), (QByteArrayList{"2.00000", "1501.00", "21", "31", ""}));
    EXPECT_EQ(rows.at(2), (QByteArrayList{"5.00000", "1498.00", "24", "34", ""}));
    EXPECT_EQ(rows.at(4), (QByteArrayList{"8.00000", "1480.00", "27", "37", ""}));
    // Joined: the pressure in megapascals at the survey's latitude, the last water mass.
    EXPECT_EQ(rows.at(5).mid(1), (QByteArrayList{"1498.00", "27", "37", ""}));
    const double degree = M_PI / 180.0;
    const auto megapascals = [&](double depth) {
        return (2.45e-6 * depth + (1.0 - 0.00263 * std::cos(2.0 * 59.5 * degree))) * 1.008 * depth *
               0.01;
    };
    EXPECT_NEAR(rows.at(5).at(0).toDouble(), megapascals(500.0), 6e-6);
    EXPECT_NEAR(rows.at(12).at(0).toDouble(), megapascals(12000.0), 1.3e-5);
}

TEST(FixAction, TheFirstColumnOfEachKind)
{
    for (const char* kind : {"1", "4", "5", "7", "14", "40", "41", "42", "50", "51", "52"}) {
        FixEngine engine;
        const QJsonObject reply = engine.fixed(datagramFix(QLatin1String(kind)));
        const QList<QByteArrayList> rows =
            rowsOf(bytesOf(reply.value(QLatin1String("fullname")).toString()));
        ASSERT_EQ(rows.size(), 13) << kind;
        const bool isPressure = QByteArray(kind) != "1";
        EXPECT_EQ(rows.at(12).at(0).toDouble() < 200.0, isPressure) << kind;
    }
}

TEST(FixAction, AFixedProfileStaysAsItIs)
{
    FixEngine engine;
    QStringList pieces =
        withLists(asvpFix(), "1501,1499,1498,1490,1480,1602", "0,50,55,100,400,12000");
    pieces = changed(pieces, 1, QStringLiteral("deep.asvp"));
    EXPECT_EQ(outcome(engine.fixed(pieces)), QLatin1String("SUCCESS"));
    const QByteArray once =
        engine.folder.read(QStringLiteral("qrvdata/svp_abscoeff/deep_fixed.asvp"));
    EXPECT_TRUE(once.endsWith("400.00 1480.00\r\n12000.00 1602.00\r\n"));
    // Again with what came out.
    QStringList speeds;
    QStringList depths;
    const QByteArrayList onceLines = once.split('\n').mid(1);
    for (const QByteArray& line : onceLines) {
        if (line.contains(' ')) {
            depths.append(QString::fromLatin1(line.split(' ').at(0)));
            speeds.append(QString::fromLatin1(line.split(' ').at(1).trimmed()));
        }
    }
    pieces[0] = speeds.join(QLatin1Char(',')) + QLatin1Char(';') + depths.join(QLatin1Char(','));
    engine.fixed(pieces);
    EXPECT_EQ(engine.folder.read(QStringLiteral("qrvdata/svp_abscoeff/deep_fixed.asvp")), once);
    // Full ocean depth begins at 11 999 m.
    engine.fixed(withLists(pieces, "1501,1499,1498,1490,1480,1602", "0,50,55,100,400,11999"));
    EXPECT_TRUE(engine.folder.read(QStringLiteral("qrvdata/svp_abscoeff/deep_fixed.asvp"))
                    .endsWith("\r\n11999.00 1602.00\r\n"));
    engine.fixed(withLists(pieces, "1501,1499,1498,1490,1480,1601", "0,50,55,100,400,11998.9"));
    EXPECT_TRUE(engine.folder.read(QStringLiteral("qrvdata/svp_abscoeff/deep_fixed.asvp"))
                    .endsWith("\r\n11998.90 1601.00\r\n12000.00 1602.00\r\n"));
}

TEST(FixAction, MissingTokensAreAddedWithTheirDescriptions)
{
    FixEngine engine;
    EXPECT_EQ(outcome(engine.fixed(asvpFix())), QLatin1String("SUCCESS"));
    const auto expectToken = [&engine](const char* name, const char* description, int type,
                                       const QJsonValue& value) {
        const QJsonObject token = engine.token(QLatin1String(name));
        EXPECT_EQ(token.value(QLatin1String("Descr")).toString(), QLatin1String(description));
        EXPECT_EQ(token.value(QLatin1String("Type")).toInt(), type) << name;
        EXPECT_EQ(token.value(QLatin1String("Value")), value) << name;
    };
    expectToken("SVP_WOA_EXTEND", "Use WOA for svp extentions", 1, 0);
    expectToken("SVP_WOA_FILE_S", "WOA database Salinity file", 2, QString());
    expectToken("SVP_WOA_FILE_T", "WOA database Temperature file", 2, QString());
    expectToken("OTHER", "d", 1, 5);
    const QByteArray mirror = engine.folder.read(QLatin1String(mirrorPath));
    engine.fixed(asvpFix());
    EXPECT_EQ(engine.folder.read(QLatin1String(mirrorPath)), mirror) << "nothing is added twice";
}

TEST(FixAction, AnUnreadableMirrorIsLeftAloneAndTheDefaultsHold)
{
    FixEngine engine;
    const QByteArray broken = R"({"version":1,"tokens":[{"Name":"OTHER")";
    engine.folder.write(QLatin1String(mirrorPath), broken);
    testlog::expectWarning(QStringLiteral("CGetToken - read failed"));
    EXPECT_EQ(outcome(engine.fixed(asvpFix())), QLatin1String("SUCCESS"));
    EXPECT_EQ(engine.folder.read(QLatin1String(mirrorPath)), broken);
}

TEST(FixAction, APositionThatIsNoNumberGivesNoPressureThatIsNone)
{
    FixEngine engine;
    for (const char* latitude : {"nan", "inf", "-Infinity", "NA"}) {
        const QJsonObject reply =
            engine.fixed(changed(datagramFix(QStringLiteral("4")), 6, QLatin1String(latitude)));
        const QList<QByteArrayList> rows =
            rowsOf(bytesOf(reply.value(QLatin1String("fullname")).toString()));
        ASSERT_EQ(rows.size(), 13) << latitude;
        // As at the equator: (2.45e-6 z + 1 - 0.00263) 1.008 z, in megapascals.
        EXPECT_NEAR(rows.at(12).at(0).toDouble(),
                    (2.45e-6 * 12000.0 + 1.0 - 0.00263) * 1.008 * 12000.0 * 0.01, 1.3e-5);
    }
}

TEST(FixAction, WithoutDatabaseAndMirrorTheTokensAreAddedToo)
{
    FixEngine engine;
    QFile::remove(engine.folder.path(QLatin1String(mirrorPath)));
    testlog::expectWarning(QStringLiteral("No tokens in database"));
    EXPECT_EQ(outcome(engine.fixed(asvpFix())), QLatin1String("SUCCESS"));
    EXPECT_EQ(engine.token(QStringLiteral("SVP_WOA_FILE_T")).value(QLatin1String("Descr")),
              QJsonValue(QStringLiteral("WOA database Temperature file")));
}

TEST(FixAction, ExtendsFromTheAtlasWhereATokenSaysSo)
{
    const QByteArray use = R"({"Name":"SVP_WOA_EXTEND","Descr":"","Type":1,"Value":1})";
    FixEngine none(use);
    EXPECT_EQ(outcome(none.fixed(asvpFix())),
              QLatin1String("Error generating WOA extension file."));

    Engine engine;
    engine.folder.write(QStringLiteral("woa/s.csv"),
                        "title\nDEPTHS (M):0,100,450,1000,5500\n59.5,10.5,35,35.1,35,34.9,34.7\n");
    engine.folder.write(QStringLiteral("woa/t.csv"),
                        "title\nDEPTHS (M):0,100,450,1000,5500\n59.5,10.5,12,8,6.5,3.5,2\n");
    const auto file = [&engine](const char* name) {
        return engine.folder.path(QStringLiteral("woa/%1.csv").arg(QLatin1String(name))).toUtf8();
    };
    engine.folder.write(
        QLatin1String(mirrorPath),
        mirrorOf(use + R"(,{"Name":"SVP_WOA_FILE_S","Descr":"","Type":2,"Value":")" + file("s") +
                 R"("},{"Name":"SVP_WOA_FILE_T","Descr":"","Type":2,"Value":")" + file("t") +
                 R"("})"));
    EXPECT_EQ(outcome(engine.request(fix, join(asvpFix()))), QLatin1String("SUCCESS"));
    const QByteArray rows =
        engine.folder.read(QStringLiteral("qrvdata/svp_abscoeff/WOASVPExtension.txt"));
    // The shallowest level shares the comment's line; below the atlas the default rows follow.
    EXPECT_TRUE(rows.startsWith("// Compulsory 1st line."));
    EXPECT_EQ(rows.count('\n'), 5 + 3);
    EXPECT_TRUE(rows.endsWith("\r\n6000 1524\r\n8500 1558\r\n12000 1602\r\n"));
    const QByteArray text =
        engine.folder.read(QStringLiteral("qrvdata/svp_abscoeff/my.cast_fixed.asvp"));
    const QByteArrayList lines = text.split('\n');
    EXPECT_EQ(lines.at(5), "400.00 1480.00\r");
    ASSERT_TRUE(lines.at(6).startsWith("450.00 ")) << text.toStdString();
    // By the equation of Leroy and others in depth, which holds within 0.2 m/s: 1483.95.
    EXPECT_NEAR(lines.at(6).mid(7).trimmed().toDouble(), 1483.95, 0.2);
    EXPECT_FALSE(text.contains("\r\n500.00"));
    // As a datagram too: the joined rows carry the depth as their first column, or the pressure.
    for (const char* kind : {"01", "07"}) {
        const QJsonObject reply = engine.request(fix, join(datagramFix(QLatin1String(kind))));
        const QList<QByteArrayList> written =
            rowsOf(bytesOf(reply.value(QLatin1String("fullname")).toString()));
        ASSERT_EQ(written.size(), 11) << kind;
        EXPECT_NEAR(written.at(5).at(1).toDouble(), 1483.95, 0.2);
        EXPECT_NEAR(written.at(5).at(0).toDouble(), QByteArray(kind) == "01" ? 450.0 : 4.54, 0.01);
    }
    // Another cell is land: no profile, no file.
    EXPECT_EQ(outcome(engine.request(fix, join(changed(asvpFix(), 6, QStringLiteral("40"))))),
              QLatin1String("Error generating WOA extension file."));
    // A position that is none is not taken for 0 N 0 E.
    EXPECT_EQ(outcome(engine.request(fix, join(changed(asvpFix(), 7, QStringLiteral("NA"))))),
              QLatin1String("Error generating WOA extension file."));
    // A deep profile needs no atlas.
    EXPECT_EQ(outcome(engine.request(
                  fix, join(withLists(changed(asvpFix(), 6, QStringLiteral("40")),
                                      "1501,1499,1498,1490,1480,1602", "0,50,55,100,400,12000")))),
              QLatin1String("SUCCESS"));
}

TEST(FixAction, RefusalsStandInTheirOrder)
{
    FixEngine engine;
    const QString stated = QStringLiteral("Stated sample count mismatch.");
    const QString columns = QStringLiteral("Sample count mismatch or too small.");
    const QString invalid = QStringLiteral("Invalid svp.");
    const auto lists = [](const QStringList& pieces, const char* speeds, const char* depths,
                          const char* count) {
        return changed(withLists(pieces, speeds, depths), 13, QLatin1String(count));
    };
    const QString further = QStringLiteral(";1,2,3;1,2,3;1,2,3;1,2,3;1,2,3");
    const auto three = [&](const char* speeds) {
        return changed(changed(datagramFix(), 13, QStringLiteral("3")), 0,
                       QLatin1String(speeds) + QStringLiteral(";0,10,20") + further);
    };
    struct
    {
        QStringList pieces;
        QString outcome;
    } const cases[] = {
        {{}, QStringLiteral("Invalid parameters.")},
        {asvpFix().mid(0, 15), QStringLiteral("Invalid parameters.")},
        {changed(asvpFix(), 14, QString()), QStringLiteral("Invalid parameters.")},
        {changed(datagramFix(QStringLiteral("15")), 15, QStringLiteral("0.005")),
         QStringLiteral("Invalid thin factor: 0.005")},
        {changed(asvpFix(), 15, QStringLiteral("1.001")),
         QStringLiteral("Invalid thin factor: 1.001")},
        {changed(asvpFix(), 15, QStringLiteral("word %1")),
         QStringLiteral("Invalid thin factor: word %1")},
        {changed(asvpFix(), 15, QStringLiteral("1.0")), QStringLiteral("SUCCESS")},
        {lists(datagramFix(QStringLiteral("15")), "1,2", "3", "9"),
         QStringLiteral("Unsupported SSP type S15")},
        {lists(datagramFix(), "1500,1500", "0,10,20", "9"), stated},
        {lists(datagramFix(), "1500,1500", "0,10,20", "3"), columns},
        {lists(datagramFix(), "1500,1500", "0,10", "2"), columns},
        {changed(datagramFix(), 13, QStringLiteral("x")), stated},
        {lists(datagramFix(), "1500,1500,1500", "0,10,20;1,2,3;1,2,3;1,2,3;1,2,3;1,2", "3"),
         columns},
        {changed(lists(datagramFix(), "1500,1500,1500", "0,10,20", "3"), 2, QStringLiteral("00")),
         QStringLiteral("SUCCESS")},
        {lists(asvpFix(), "1500,1500,1500,1500,1500,1500", "0,1,2,3,4,5;;;1,2,3,4,5", "6"),
         QStringLiteral("Thinning error: element sizes are different")},
        {lists(asvpFix(), "1,2,3,4,5", "1,2,3,4,5", "5"), invalid},
        {lists(asvpFix(), "1,2,3,4,5,6", "1,2,3,4,5", "5"), invalid},
        {lists(asvpFix(), "1500,2,3,4,5,6", "0,2,3,4,5,6", "77"),
         QStringLiteral("Error cleaning profile.")},
        {three("1500,9,9"), QStringLiteral("Error cleaning. Too few samples left.")},
        {three("1500,1500,9"), QStringLiteral("SUCCESS")},
        {changed(datagramFix(), 2, QStringLiteral("13")), QStringLiteral("No samples extracted.")},
        {changed(datagramFix(), 1, QStringLiteral("../../x.ssp")),
         QStringLiteral("Error saving file.")},
        {changed(asvpFix(), 1, QStringLiteral("../../x.asvp")),
         QStringLiteral("Error writing file: ../../x_fixed.asvp")},
        // Three levels make a file of this kind.
        {lists(asvpFix(), "1500,1,1,1,1,1600", "0,1,2,3,4,12000", "6"),
         QStringLiteral("Error writing file: my.cast_fixed.asvp")},
    };
    for (const auto& c : cases) {
        engine.plugin.addPendingAlert("pending");
        const QJsonObject reply = engine.fixed(c.pieces);
        EXPECT_EQ(outcome(reply), c.outcome) << join(c.pieces).toStdString();
        EXPECT_EQ(reply.value(QLatin1String("whoami")).toString(), fix);
        const QString second = engine.packets().at(1).value(QLatin1String("whoami")).toString();
        EXPECT_EQ(second, c.outcome == QLatin1String("SUCCESS") ? QLatin1String("Thin")
                                                                : QLatin1String("SVPAlert"));
    }
}

TEST(FixAction, RowsThatDoNotSortCannotBeThinned)
{
    FixEngine engine;
    // The file ends too shallow: the rows that are compiled in follow it, upward again.
    engine.folder.write(QStringLiteral("qrvdata/svp_abscoeff/SVPExtension.txt"),
                        "//\r\n600.0 1480\r\n9000.0 1550\r\n");
    EXPECT_EQ(outcome(engine.fixed(asvpFix())), QLatin1String("Error thinning profile."));
    EXPECT_FALSE(QFileInfo::exists(engine.folder.profile(QStringLiteral("my.cast_fixed.asvp"))));
}

TEST(FixAction, WithoutAnExtensionFileTheCompiledInRowsAreJoined)
{
    FixEngine engine;
    QFile::remove(engine.folder.path(QStringLiteral("qrvdata/svp_abscoeff/SVPExtension.txt")));
    engine.fixed(asvpFix());
    EXPECT_TRUE(engine.folder.read(QStringLiteral("qrvdata/svp_abscoeff/my.cast_fixed.asvp"))
                    .endsWith("8500.00 1558.20\r\n12000.00 1602.80\r\n"));
}

TEST(FixAction, AFileThatCannotBeWrittenIsNamed)
{
    FixEngine engine;
    const QString path = engine.folder.profile(QStringLiteral("my.cast_fixed.asvp"));
    QDir().mkpath(path);
    EXPECT_EQ(outcome(engine.fixed(asvpFix())), QStringLiteral("Error writing file: ") + path);
}
