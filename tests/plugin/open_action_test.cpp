#include "platform/platform.h"
#include "profile/profilefolder.h"
#include "tests/places.h"
#include "tests/support/commalocale.h"
#include "tests/support/enginefixture.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <gtest/gtest.h>

namespace {

const QString openFile = QStringLiteral("SVP_OpenSVP");
const QString noFile = QStringLiteral("File does not exist or cannot be opened for reading");

QString openOutcome(Engine& engine, const QString& name)
{
    return outcome(engine.request(openFile, QStringLiteral("[") + name + QStringLiteral(",asvp]")));
}

} // namespace

TEST(OpenAction, AnswersTheWholeProfile)
{
    Engine engine;
    engine.folder.writeProfile(QStringLiteral("x.asvp"), asvp({"0.1 1500.25", "10 1499"}));
    engine.request(openFile, QStringLiteral("[x.asvp,asvp]"));
    EXPECT_EQ(engine.rawPackets(), QList<QByteArray>{R"({
    "filename": "x.asvp",
    "hsvp_filehistory": "NA",
    "hsvp_fileid": "0",
    "hsvp_filelat": "59.5",
    "hsvp_filelon": "10.25",
    "hsvp_fileradii": "0",
    "hsvp_filesamp": "2",
    "hsvp_filesource": "sample",
    "hsvp_filetime": "20261115123456",
    "hsvp_filetype": "SoundVelocity",
    "hsvp_filevalidfrom": "0",
    "hsvp_filevalidto": "0",
    "hsvp_fileversion": "1.0",
    "result": "SUCCESS",
    "svp_AbsCoef": [
        0,
        0
    ],
    "svp_Depth": [
        0.10000000149011612,
        10
    ],
    "svp_Depth_CTD": [
        0.10000000149011612,
        10
    ],
    "svp_Sal": [
        0,
        0
    ],
    "svp_Speed": [
        1500.25,
        1499
    ],
    "svp_Speed_CTD": [
        1500.25,
        1499
    ],
    "svp_Temp": [
        0,
        0
    ],
    "whoami": "SVP_OpenSVP"
}
)"});
}

TEST(OpenAction, FindsTheFileInTheProfileFolder)
{
    Engine engine(QStringLiteral("größe 測深"));
    const QByteArray good = asvp({"0 1500", "10 1499"});
    for (const char* name :
         {"x.asvp", "UPPER.ASVP", "with blank.asvp", "a,b.asvp", "sub/y.asvp", "æ測.asvp"})
        engine.folder.writeProfile(QString::fromUtf8(name), good);
    struct
    {
        const char* name;
        const char* outcome;
    } const cases[] = {
        {"x.asvp", "SUCCESS"},
        {"UPPER.ASVP", "SUCCESS"},
        {"with blank.asvp", "SUCCESS"},
        {"a,b.asvp", "SUCCESS"},
        {"sub/y.asvp", "SUCCESS"},
        {"sub\\y.asvp", "SUCCESS"},
        {"sub/../x.asvp", "SUCCESS"},
        {"æ測.asvp", "SUCCESS"},
        {"none.asvp", nullptr},
        {"sub", nullptr},
        {"", nullptr},
        {"../svp_abscoeff/x.asvp", nullptr},
        {"..\\..\\tqrv\\SVPEditor.ini", nullptr},
        {"/etc/passwd", nullptr},
        {"C:\\x.asvp", nullptr},
    };
    for (const auto& c : cases)
        EXPECT_EQ(openOutcome(engine, QString::fromUtf8(c.name)),
                  c.outcome != nullptr ? QString::fromLatin1(c.outcome) : noFile)
            << c.name;
    EXPECT_EQ(openOutcome(engine, QStringLiteral("x.asvp") + QChar(0)), noFile);
    EXPECT_EQ(engine.request(openFile, QStringLiteral("[sub/y.asvp,asvp]"))
                  .value(QLatin1String("filename"))
                  .toString(),
              QLatin1String("sub/y.asvp"));
}

TEST(OpenAction, AnAbsoluteNameOutsideIsRefusedEvenInsideItsFolder)
{
    Engine engine;
    engine.folder.writeProfile(QStringLiteral("x.asvp"), asvp({"0 1500", "10 1499"}));
    EXPECT_EQ(openOutcome(engine, engine.folder.profile(QStringLiteral("x.asvp"))), noFile);
}

TEST(OpenAction, RefusalsCarryTheirReason)
{
    Engine engine;
    struct
    {
        const char* name;
        QByteArray content;
        const char* outcome;
    } const cases[] = {
        {"two.asvp", asvp({"0 1500", "1 1500"}), "SUCCESS"},
        {"one.asvp", asvp({"0 1500"}), "Too few points in file."},
        {"none.asvp", asvp({}), "Too few points in file."},
        {"bad.asvp", asvp({"a b", "c d", "nan 1500", "1 inf", "0 1500"}),
         "Too few points in file."},
        {"empty.asvp", "", "Header not correct in file."},
        {"blank.asvp", "\r\n\r\n", "Header not correct in file."},
        {"eleven.asvp", "( a b c d e f g h i j k )\n0 1500\n1 1500\n",
         "Header not correct in file."},
        {"thirteen.asvp", "( a b c d e f g h i j k l m )\n0 1500\n1 1500\n",
         "Header not correct in file."},
        {"zeros.asvp", QByteArray(1000, '\0'), "Header not correct in file."},
        {"bytes.asvp", QByteArray("\x80\xFF\xFE( ", 5), "Header not correct in file."},
        {"x.txt", asvp({"0 1500", "1 1500"}), "Filter not found."},
        {"noext", "", "Filter not found."},
        {"x.vp2", "", "Valeport vp2 decode problem."},
        {"x.SSP", "", "Header not correct in file."},
    };
    for (const auto& c : cases) {
        engine.folder.writeProfile(QLatin1String(c.name), c.content);
        EXPECT_EQ(openOutcome(engine, QLatin1String(c.name)), QLatin1String(c.outcome)) << c.name;
        ASSERT_EQ(engine.packets().size(), 1);
        const QJsonObject reply = engine.packets().constFirst();
        EXPECT_EQ(reply.value(QLatin1String("whoami")).toString(), openFile);
        if (outcome(reply) != QLatin1String("SUCCESS")) {
            EXPECT_EQ(reply.size(), 3) << "a refusal carries no profile";
        }
    }
}

TEST(OpenAction, TheHeaderMayHoldAnyLetters)
{
    Engine engine;
    engine.folder.writeProfile(QStringLiteral("zero.asvp"),
                               "( SoundVelocity 1.0 0 202611151234 59.5 10.25 0 0 0 a" +
                                   QByteArray(1, '\0') + "b NA 2 )\n0 1500\n1 1500\n");
    EXPECT_EQ(engine.request(openFile, QStringLiteral("[zero.asvp,asvp]"))
                  .value(QLatin1String("hsvp_filesource"))
                  .toString(),
              QStringLiteral("a") + QChar(0) + QStringLiteral("b"));
    engine.folder.writeProfile(
        QStringLiteral("x.asvp"),
        "( SoundVelocity 1.0 0 202611151234 59.5 10.25 0 0 0 M\xE5l\xF8y %1 2 )\r0 1500\r1 1500");
    const QJsonObject latin = engine.request(openFile, QStringLiteral("[x.asvp,asvp]"));
    EXPECT_EQ(latin.value(QLatin1String("hsvp_filesource")).toString(), QStringLiteral("Måløy"));
    EXPECT_EQ(latin.value(QLatin1String("hsvp_filehistory")).toString(), QLatin1String("%1"));
    EXPECT_EQ(latin.value(QLatin1String("hsvp_filetime")).toString(),
              QLatin1String("20261115123400"));
}

TEST(OpenAction, TheAlertFollowsTheReply)
{
    Engine engine;
    engine.plugin.addPendingAlert("look");
    engine.request(openFile, QStringLiteral("[none.asvp,asvp]"));
    ASSERT_EQ(engine.packets().size(), 2);
    EXPECT_EQ(outcome(engine.packets().at(0)), noFile);
    EXPECT_EQ(engine.packets().at(1).value(QLatin1String("alert")).toString(),
              QLatin1String("look"));
}

TEST(OpenAction, WithoutAConfigurationTheDefaultFolderServes)
{
    Engine engine(QStringLiteral("data"), false);
    testlog::expectWarning(QStringLiteral("Failed to read ") + profile::configurationPath());
    // On Windows it is outside of the test's own folder.
    const QString name = QStringLiteral("svp-editor-test-default-folder.asvp");
    const QString path = platform::defaultProfileFolder(
                             QStringLiteral("C:/ProgramData/Ardentide/qrvdata/svp_abscoeff")) +
                         QLatin1Char('/') + name;
    writeBytes(path, asvp({"0 1500", "10 1499"}));
    EXPECT_EQ(openOutcome(engine, name), QLatin1String("SUCCESS"));
    QFile::remove(path);
}

TEST(OpenAction, AFolderNamedWithBackslashesIsFoundAndRewritten)
{
    Engine engine;
    const QString elsewhere = engine.folder.programData() + QStringLiteral("/else\\where");
    engine.folder.write(QStringLiteral("runcf/AbsCoeff.ini"),
                        "[absLoc]\r\nInitialDir=" + elsewhere.toUtf8() + "\r\n");
    writeBytes(engine.folder.programData() + QStringLiteral("/else/where/x.asvp"),
               asvp({"0 1500", "10 1499"}));
    EXPECT_EQ(openOutcome(engine, QStringLiteral("x.asvp")), QLatin1String("SUCCESS"));
    EXPECT_FALSE(engine.folder.read(QStringLiteral("runcf/AbsCoeff.ini")).contains('\\'));
}

TEST(OpenAction, ACommaLocaleChangesNoNumber)
{
    const CommaLocale comma;
    ASSERT_TRUE(CommaLocale::isActive());
    Engine engine;
    EXPECT_TRUE(
        engine.folder.read(QStringLiteral("tqrv/SVPEditor.ini")).contains("dSVMin=1400.000000"));
    EXPECT_EQ(engine.plugin.limits().minTemperature, -5.0F);
    engine.folder.writeProfile(QStringLiteral("x.asvp"), asvp({"0.5 1500.25", "10.5 1499.75"}));
    engine.request(openFile, QStringLiteral("[x.asvp,asvp]"));
    EXPECT_TRUE(engine.rawPackets().constFirst().contains("1500.25,\n        1499.75"));
    const QJsonObject checked =
        engine.request(QStringLiteral("CheckProfile"),
                       checkBody(QStringLiteral("1500.25,1399.75"), QStringLiteral("0.5,10.5")));
    EXPECT_EQ(checked.value(QLatin1String("svpX")).toArray(), (QJsonArray{1399.75}));
    EXPECT_EQ(engine.plugin.GetReportErr("2617", 1, 0.5, 1500.25),
              "Illegal depth value. Sample no. 1:  0.50m  1500.25m/s. Profile not accepted.");
}

TEST(OpenAction, EveryExampleOpens)
{
    Engine engine;
    const QDir examples(QStringLiteral(SVP_EXAMPLES_DIR));
    const QStringList names = examples.entryList({QStringLiteral("*.asvp")}, QDir::Files);
    ASSERT_FALSE(names.isEmpty());
    for (const QString& name : names) {
        engine.folder.writeProfile(name, bytesOf(examples.filePath(name)));
        const QJsonObject reply =
            engine.request(openFile, QStringLiteral("[") + name + QStringLiteral(",asvp]"));
        EXPECT_EQ(outcome(reply), QLatin1String("SUCCESS")) << qPrintable(name);
        EXPECT_EQ(reply.value(QLatin1String("hsvp_filesamp")).toString().toInt(),
                  reply.value(QLatin1String("svp_Depth")).toArray().size())
            << qPrintable(name);
    }
}
