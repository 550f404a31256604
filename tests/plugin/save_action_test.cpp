#include "datagram/sspdatagram.h"
#include "tests/support/enginefixture.h"
#include "tests/support/requests.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <gtest/gtest.h>

#include <random>
#ifndef Q_OS_WIN
#include <sys/mount.h>
#include <unistd.h>
#endif

namespace {

const QString save = QStringLiteral("SVP_Save");
const QString saveAs = QStringLiteral("SVP_SaveAs");

QString savedName(Engine& engine, const QString& action, const QStringList& pieces)
{
    const QJsonObject reply = engine.request(action, requests::join(pieces));
    EXPECT_EQ(reply.value(QLatin1String("whoami")).toString(), save);
    EXPECT_EQ(outcome(reply), QLatin1String("SUCCESS"));
    EXPECT_EQ(reply.size(), 3);
    return reply.value(QLatin1String("fullname")).toString();
}

QStringList filesOf(const Engine& engine, const QString& pattern)
{
    return QDir(engine.folder.profile(QString())).entryList({pattern}, QDir::Files | QDir::Hidden);
}

} // namespace

TEST(SaveAction, ADatagramIsWrittenByteForByte)
{
    Engine engine(QStringLiteral("größe 測深"));
    const QString path = savedName(engine, save, requests::datagramSave());
    EXPECT_EQ(path, engine.folder.profile(QStringLiteral("cast.ssp")));
    const QByteArray bytes = bytesOf(path);
    EXPECT_TRUE(
        bytes.startsWith("$QZS00,00000,3,123456,15,11,2026,0.00,1500.00,,,\r\n10.25,1490.50,,,\r\n"
                         "12000.00,1550.00,,,\r\n3330.000000,S,530.000000,E,,,a comment %1*"));
    EXPECT_EQ(datagram::fnVerifySXX(bytes, datagram::DatagramFields(bytes)), 0);
    unsigned sum = 0;
    for (int i = 1; i < bytes.indexOf('*'); ++i)
        sum ^= static_cast<unsigned char>(bytes[i]);
    EXPECT_EQ(bytes.mid(bytes.indexOf('*')), QString::asprintf("*%02X\\\r\n", sum).toLatin1());
}

TEST(SaveAction, ADataRootMayBeLong)
{
    QString deep = QStringLiteral("Daten für 測深 & Ω");
    for (int i = 0; i < 8; ++i)
        deep += QLatin1Char('/') + QString(40, QLatin1Char(char('a' + i)));
    Engine engine(deep);
    EXPECT_TRUE(QFile::exists(engine.folder.path(QStringLiteral("tqrv/SVPEditor.ini"))));
    EXPECT_TRUE(QFile::exists(engine.folder.profile(QStringLiteral("SVPExtension.txt"))));
    EXPECT_EQ(savedName(engine, save, requests::datagramSave()),
              engine.folder.profile(QStringLiteral("cast.ssp")));
    EXPECT_EQ(savedName(engine, saveAs, requests::asvpSave()),
              engine.folder.profile(QStringLiteral("cast.asvp")));
    for (const char* file : {"[cast.ssp,ssp]", "[cast.asvp,asvp]"})
        EXPECT_EQ(outcome(engine.request(QStringLiteral("SVP_OpenSVP"), QLatin1String(file))),
                  QLatin1String("SUCCESS"))
            << file;
}

TEST(SaveAction, InstrumentNamesBecomeSsp)
{
    Engine engine(QStringLiteral("in.vp2 folder"));
    for (const char* name : {"a.vp2", "b.aml", "c.ssp", "sub/d.vp2"}) {
        QString expected = engine.folder.profile(QLatin1String(name));
        expected.replace(expected.size() - 3, 3, QStringLiteral("ssp"));
        EXPECT_EQ(savedName(engine, save,
                            requests::changed(requests::datagramSave(), 1, QLatin1String(name))),
                  expected);
        EXPECT_TRUE(QFile::exists(expected));
    }
}

TEST(SaveAction, ADatagramKeepsWhatItReplaces)
{
    Engine engine;
    for (int i = 1; i <= 3; ++i)
        savedName(engine, save,
                  requests::changed(requests::datagramSave(), 14, QString::number(i)));
    EXPECT_EQ(filesOf(engine, QStringLiteral("cast*")).size(), 3);
    EXPECT_EQ(filesOf(engine, QStringLiteral("cast_bck_*.ssp")).size(), 2);
    EXPECT_TRUE(bytesOf(engine.folder.profile(QStringLiteral("cast.ssp"))).contains(",,,3*"));
}

TEST(SaveAction, EveryIdentifierWithRowsIsWritten)
{
    Engine engine;
    for (int number = 0; number < 60; ++number) {
        const QString text = QString::number(number).rightJustified(2, QLatin1Char('0'));
        const datagram::ContentIdentifier entry = datagram::contentIdentifier(number);
        const QJsonObject reply = engine.request(
            save, requests::join(requests::changed(requests::datagramSave(), 2, text)));
        if (!entry.isLegal) {
            EXPECT_TRUE(engine.packets().isEmpty()) << number;
        } else if (entry.first == datagram::FirstColumn::NoRows) {
            EXPECT_EQ(outcome(reply), QLatin1String("No samples extracted.")) << number;
        } else {
            EXPECT_EQ(outcome(reply), QLatin1String("SUCCESS")) << number;
            EXPECT_TRUE(bytesOf(engine.folder.profile(QStringLiteral("cast.ssp")))
                            .startsWith("$QZS" + text.toLatin1() + ",00000,3,"));
        }
    }
}

TEST(SaveAction, DatagramRefusalsStandInTheirOrder)
{
    Engine engine;
    const QStringList good = requests::datagramSave();
    const auto lists = [](const char* speeds, const char* depths) {
        return QString::fromLatin1(speeds) + QLatin1Char(';') + QLatin1String(depths) +
               QStringLiteral(";0;0;0;0;0");
    };
    QDir().mkpath(engine.folder.profile(QStringLiteral("folder.ssp")));
    struct
    {
        QStringList pieces;
        QString reason;
    } const cases[] = {
        {good + QStringList{QStringLiteral("x")},
         QStringLiteral("Wrong number of input parameters.")},
        {good.mid(0, 14), QStringLiteral("Wrong number of input parameters.")},
        {{}, QStringLiteral("Wrong number of input parameters.")},
        {requests::changed(good, 0, lists("1500,1550", "0,12000")),
         QStringLiteral("Wrong svp input.")},
        {requests::changed(good, 0, lists("1500,1550,1500", "0,12000")),
         QStringLiteral("Sample count mismatch or too small.")},
        {requests::changed(good, 0, lists("1500,1500,1550", "0,1,2,3")),
         QStringLiteral("Sample count mismatch or too small.")},
        {requests::changed(good, 0, QString()), QStringLiteral("Wrong svp input.")},
        {requests::changed(good, 13, QStringLiteral("4")),
         QStringLiteral("Stated sample count mismatch.")},
        {requests::changed(good, 2, QStringLiteral("13")), QStringLiteral("No samples extracted.")},
        {requests::changed(good, 1, QStringLiteral("folder.ssp")),
         QStringLiteral("Error saving file.")},
        {requests::changed(good, 1, QStringLiteral("../x.ssp")),
         QStringLiteral("Error saving file.")},
        {requests::changed(good, 1, QStringLiteral("/tmp/x.ssp")),
         QStringLiteral("Error saving file.")},
        {requests::changed(good, 1, QStringLiteral("C:\\x.ssp")),
         QStringLiteral("Error saving file.")},
        {requests::changed(good, 1, QString()), QStringLiteral("Error saving file.")},
        {requests::changed(good, 1, QStringLiteral("x\n") + QChar(0)),
         QStringLiteral("Error saving file.")},
    };
    for (const auto& c : cases) {
        engine.plugin.addPendingAlert("look");
        EXPECT_EQ(outcome(engine.request(save, requests::join(c.pieces))), c.reason)
            << qPrintable(c.pieces.join(QLatin1Char('*')));
        ASSERT_EQ(engine.packets().size(), 2);
        EXPECT_EQ(engine.packets().at(1).value(QLatin1String("alert")).toString(),
                  QLatin1String("look"));
    }
    EXPECT_TRUE(filesOf(engine, QStringLiteral("*.ssp")).isEmpty());
    // A short profile may be sent; saving does not test it.
    EXPECT_EQ(outcome(engine.request(
                  save, requests::join(requests::changed(good, 0, lists("1500,1550,1", "5,2,1"))))),
              QLatin1String("SUCCESS"));
}

TEST(SaveAction, AnIllegalIdentifierIsNotAnswered)
{
    Engine engine;
    engine.plugin.addPendingAlert("look");
    engine.request(
        save, requests::join(requests::changed(requests::datagramSave(), 2, QStringLiteral("8"))));
    ASSERT_EQ(engine.packets().size(), 1);
    EXPECT_EQ(engine.packets().constFirst().value(QLatin1String("whoami")).toString(),
              QLatin1String("SVPAlert"));
}

TEST(SaveAction, AsvpFilesAreWrittenByBothActions)
{
    const QByteArray expected =
        "( SoundVelocity 1.0 7 20261115123456 -33.5 5.5 100 1 2 my_probe NA 3 )\r\n"
        "0.00 1500.00\r\n10.26 1490.50\r\n12000.00 1550.00\r\n";
    for (const QString& action : {save, saveAs}) {
        Engine engine;
        const QString path = savedName(engine, action, requests::asvpSave());
        EXPECT_EQ(path, engine.folder.profile(QStringLiteral("cast.asvp")));
        EXPECT_EQ(bytesOf(path), expected);
        savedName(engine, action, requests::asvpSave());
        EXPECT_EQ(filesOf(engine, QStringLiteral("cast*")).size(), 1)
            << "an older file is replaced";
    }
    Engine engine;
    savedName(engine, saveAs, requests::changed(requests::asvpSave(), 2, QStringLiteral("01")));
    EXPECT_TRUE(
        bytesOf(engine.folder.profile(QStringLiteral("cast.asvp"))).startsWith("( 01 1.0 7 "));
    savedName(engine, save,
              requests::changed(requests::asvpSave(), 2, QStringLiteral("My SoundVelocity kind")));
    EXPECT_TRUE(bytesOf(engine.folder.profile(QStringLiteral("cast.asvp")))
                    .startsWith("( My_SoundVelocity_kind 1.0 7 "));
}

TEST(SaveAction, AsvpRefusalsStandInTheirOrder)
{
    Engine engine;
    const QStringList good = requests::asvpSave();
    QDir().mkpath(engine.folder.profile(QStringLiteral("folder.asvp")));
    struct
    {
        QStringList pieces;
        QString reason;
    } const cases[] = {
        {good.mid(0, 14), QStringLiteral("Wrong number of input parameters.")},
        {requests::changed(good, 0, QStringLiteral("0,1500,1,1500")),
         QStringLiteral("Wrong svp input.")},
        {requests::changed(good, 0, QStringLiteral("0,1500,1,1500,2")),
         QStringLiteral("Wrong svp input.")},
        {requests::changed(good, 0, QStringLiteral("0,1500,1,1500,2,1500,3")),
         QStringLiteral("Wrong svp input.")},
        {requests::changed(good, 1, QStringLiteral("folder.asvp")),
         QStringLiteral("Error writing file.")},
        {requests::changed(good, 1, QStringLiteral("../x")), QStringLiteral("Error writing file.")},
    };
    for (const auto& c : cases) {
        engine.plugin.addPendingAlert("look");
        EXPECT_EQ(outcome(engine.request(saveAs, requests::join(c.pieces))), c.reason)
            << qPrintable(c.pieces.join(QLatin1Char('*')));
        ASSERT_EQ(engine.packets().size(), 2);
    }
}

TEST(SaveAction, WhatIsSavedOpensToTheSameValues)
{
    Engine engine;
    std::mt19937 random(7);
    std::uniform_real_distribution<double> speed(1400.0, 1700.0);
    for (int round = 0; round < 50; ++round) {
        QStringList list;
        QVector<double> written;
        double depth = 0.0;
        const int samples = 3 + int(random() % 40);
        for (int i = 0; i < samples; ++i) {
            for (const double value : {depth, speed(random)}) {
                list.append(QString::number(value, 'f', 5));
                written.append(double(list.last().toFloat()));
            }
            depth += double(random() % 5000) * 0.01 + 0.011;
        }
        savedName(engine, saveAs,
                  requests::changed(requests::asvpSave(), 0, list.join(QLatin1Char(','))));
        const QJsonObject opened =
            engine.request(QStringLiteral("SVP_OpenSVP"), QStringLiteral("[cast.asvp,asvp]"));
        const QJsonArray depths = opened.value(QLatin1String("svp_Depth")).toArray();
        const QJsonArray speeds = opened.value(QLatin1String("svp_Speed")).toArray();
        ASSERT_EQ(depths.size(), samples);
        for (int i = 0; i < samples; ++i) {
            // Half a hundredth, and the float's own step at this size.
            EXPECT_NEAR(depths.at(i).toDouble(), written[2 * i], 0.0051);
            EXPECT_NEAR(speeds.at(i).toDouble(), written[2 * i + 1], 0.0051);
        }
    }
}

TEST(SaveAction, AMissingFolderElsewhereIsAnError)
{
    Engine engine;
    const QString elsewhere = engine.folder.programData() + QStringLiteral("/elsewhere");
    engine.folder.write(QStringLiteral("runcf/AbsCoeff.ini"),
                        "[absLoc]\nInitialDir=" + elsewhere.toUtf8());
    EXPECT_EQ(outcome(engine.request(save, requests::join(requests::datagramSave()))),
              QLatin1String("Error saving file."));
    EXPECT_EQ(outcome(engine.request(saveAs, requests::join(requests::asvpSave()))),
              QLatin1String("Error writing file."));
    EXPECT_FALSE(QDir(elsewhere).exists());
    EXPECT_FALSE(engine.plugin.lastErrorText().isEmpty());
    QDir().mkpath(elsewhere);
    EXPECT_EQ(savedName(engine, save, requests::datagramSave()),
              elsewhere + QStringLiteral("/cast.ssp"));
    EXPECT_TRUE(engine.plugin.lastErrorText().isEmpty());
}

TEST(SaveAction, AReadOnlyFolderIsAnError)
{
#ifdef Q_OS_WIN
    GTEST_SKIP() << "Windows knows no read-only mounts; files that may not be written are tested "
                    "as files held open";
#else
    Engine engine;
    savedName(engine, save, requests::datagramSave());
    savedName(engine, saveAs, requests::asvpSave());
    const QByteArray folder = QFile::encodeName(engine.folder.profile(QString()));
    const bool isAdministrator = geteuid() == 0;
    if (isAdministrator) {
        if (mount(folder.constData(), folder.constData(), nullptr, MS_BIND, nullptr) != 0 ||
            mount(nullptr, folder.constData(), nullptr, MS_BIND | MS_REMOUNT | MS_RDONLY,
                  nullptr) != 0)
            GTEST_SKIP() << "this machine allows no mounts";
    } else {
        QFile::setPermissions(engine.folder.profile(QString()), QFile::ReadOwner | QFile::ExeOwner);
    }
    const QStringList before = filesOf(engine, QStringLiteral("*"));
    EXPECT_EQ(outcome(engine.request(save, requests::join(requests::datagramSave()))),
              QLatin1String("Error saving file."));
    EXPECT_EQ(outcome(engine.request(saveAs, requests::join(requests::asvpSave()))),
              QLatin1String("Error writing file."));
    EXPECT_EQ(filesOf(engine, QStringLiteral("*")), before);
    if (isAdministrator)
        umount(folder.constData());
    else
        QFile::setPermissions(engine.folder.profile(QString()),
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
#endif
}

TEST(SaveAction, AFullDiskLosesNothing)
{
#ifdef Q_OS_WIN
    GTEST_SKIP() << "Windows mounts no small disk for a test";
#else
    Engine engine;
    const QByteArray folder = QFile::encodeName(engine.folder.profile(QString()));
    if (geteuid() != 0 || mount("tmpfs", folder.constData(), "tmpfs", 0, "size=64k") != 0)
        GTEST_SKIP() << "this machine allows no mounts";
    savedName(engine, save, requests::datagramSave());
    savedName(engine, saveAs, requests::asvpSave());
    const QByteArray datagram = bytesOf(engine.folder.profile(QStringLiteral("cast.ssp")));
    const QByteArray asvpFile = bytesOf(engine.folder.profile(QStringLiteral("cast.asvp")));

    QStringList depths;
    QStringList speeds;
    QStringList pairs;
    for (int i = 0; i < 8000; ++i) {
        depths.append(QString::number(i));
        speeds.append(QStringLiteral("1500"));
        pairs.append(QString::number(i) + QStringLiteral(",1500"));
    }
    QStringList large =
        requests::changed(requests::datagramSave(), 0,
                          speeds.join(QLatin1Char(',')) + QLatin1Char(';') +
                              depths.join(QLatin1Char(',')) + QStringLiteral(";0;0;0;0;0"));
    large = requests::changed(large, 13, QStringLiteral("8000"));
    EXPECT_EQ(outcome(engine.request(save, requests::join(large))),
              QLatin1String("Error saving file."));
    EXPECT_EQ(engine.plugin.lastErrorText(),
              QLatin1String("File data written does not match file data in memory"));
    EXPECT_EQ(outcome(engine.request(
                  saveAs, requests::join(requests::changed(requests::asvpSave(), 0,
                                                           pairs.join(QLatin1Char(',')))))),
              QLatin1String("Error writing file."));

    EXPECT_EQ(bytesOf(engine.folder.profile(QStringLiteral("cast.ssp"))), datagram);
    EXPECT_EQ(bytesOf(engine.folder.profile(QStringLiteral("cast.asvp"))), asvpFile);
    EXPECT_EQ(filesOf(engine, QStringLiteral("*")).size(), 2) << "no backup, no half-written file";
    umount(folder.constData());
#endif
}
