#include "tests/support/enginefixture.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <gtest/gtest.h>

#ifndef Q_OS_WIN
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

// Whatever comes, the engine answers or keeps quiet as promised, and serves the next request.

namespace {

void expectServing(Engine& engine)
{
    EXPECT_EQ(outcome(engine.request(QStringLiteral("CloseSVP"))), QLatin1String("SUCCESS"));
}

} // namespace

TEST(HostileInput, TenMegabytesOfAnything)
{
    Engine engine;
    constexpr int size = 10 * 1024 * 1024;
    constexpr int levels = 1024 * 1024;
    for (const QChar filler :
         {QChar('*'), QChar(','), QChar(';'), QChar('['), QChar('='), QChar('9'), QChar(0)}) {
        const QString body(size, filler);
        for (const char* action : {"CheckProfile", "SVP_OpenSVP", "SVPAlert", "SendSVPtoQRV",
                                   "SVP_Save", "SVP_SaveAs", "RVT300", "ShowRaypath"}) {
            engine.request(QLatin1String(action), body);
            EXPECT_EQ(engine.packets().size(), 1) << action << filler.unicode();
        }
        engine.message(body);
        EXPECT_TRUE(engine.packets().isEmpty());
    }
    engine.request(QStringLiteral("CheckProfile"),
                   checkBody(QString(levels, QLatin1Char(',')), QString(levels, QLatin1Char(','))));
    EXPECT_EQ(engine.packets().constFirst().value(QLatin1String("svpX")).toArray().size(),
              levels + 1);
    expectServing(engine);
}

TEST(HostileInput, AHundredThousandLevels)
{
    Engine engine;
    QList<QByteArray> lines;
    QStringList depths;
    QStringList speeds;
    for (int i = 0; i < 100000; ++i) {
        depths.append(QString::number(i * 0.12, 'f', 2));
        speeds.append(QStringLiteral("1500"));
        lines.append(QByteArray::number(i * 0.12, 'f', 2) + " 1500");
    }
    engine.folder.writeProfile(QStringLiteral("long.asvp"), asvp(lines));
    const QJsonObject opened =
        engine.request(QStringLiteral("SVP_OpenSVP"), QStringLiteral("[long.asvp,asvp]"));
    EXPECT_EQ(opened.value(QLatin1String("svp_Depth")).toArray().size(), 100000);
    const QJsonObject checked =
        engine.request(QStringLiteral("CheckProfile"),
                       checkBody(speeds.join(QLatin1Char(',')), depths.join(QLatin1Char(','))));
    EXPECT_EQ(checked.value(QLatin1String("tofix")).toString(),
              QLatin1String("Existing profile depths and sound speeds are valid."));
}

TEST(HostileInput, RaysThroughAHundredThousandLevels)
{
    Engine engine;
    QStringList depths;
    QStringList speeds;
    for (int i = 0; i < 100000; ++i) {
        depths.append(QString::number(i * 0.12, 'f', 2));
        speeds.append(i % 2 == 0 ? QStringLiteral("1700") : QStringLiteral("1400"));
    }
    const QString profile = QLatin1Char('*') + speeds.join(QLatin1Char(',')) + QLatin1Char('*') +
                            depths.join(QLatin1Char(','));
    for (const char* angle : {"0", "1e-30", "0.1", "20", "89", "90"}) {
        const QJsonObject reply =
            engine.request(QStringLiteral("ShowRaypath"), QLatin1String(angle) + profile + profile);
        EXPECT_EQ(outcome(reply), QLatin1String("SUCCESS"));
        const int points = reply.value(QLatin1String("svp1X")).toArray().size();
        EXPECT_GT(points, 1) << angle;
        EXPECT_LE(points, 2 * 100000 + 100000) << angle;
    }
    expectServing(engine);
}

TEST(HostileInput, ZeroBytesAndLoneSurrogates)
{
    Engine engine;
    const QString zero(1, QChar(0));
    engine.message(zero + QStringLiteral(",ACTION=SVP_WebInterface/SVPAlert,a") + zero +
                   QStringLiteral("b"));
    EXPECT_EQ(engine.packets().constFirst().value(QLatin1String("alert")).toString(),
              QStringLiteral("a") + zero + QStringLiteral("b"));
    engine.request(QStringLiteral("SVPAlert"), QString(QChar(0xD800)));
    EXPECT_EQ(engine.packets().size(), 1);
    engine.request(QStringLiteral("SVP_OpenSVP"), QString(QChar(0xD800)) + QStringLiteral(".asvp"));
    EXPECT_EQ(engine.packets().size(), 1);
    engine.message(QStringLiteral("x,ACTION=SVP_WebInterface/SVPAlert") + zero +
                   QStringLiteral(",a"));
    EXPECT_TRUE(engine.packets().isEmpty());
    expectServing(engine);
}

TEST(HostileInput, FoldersAndPipesInThePlaceOfFiles)
{
    Engine engine;
    QDir().mkpath(engine.folder.profile(QStringLiteral("folder.asvp")));
#ifndef Q_OS_WIN
    const QString pipe = engine.folder.profile(QStringLiteral("pipe.asvp"));
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
#endif
    for (const char* name : {"folder.asvp", "pipe.asvp"})
        EXPECT_EQ(outcome(engine.request(QStringLiteral("SVP_OpenSVP"),
                                         QStringLiteral("[%1,asvp]").arg(QLatin1String(name)))),
                  QLatin1String("File does not exist or cannot be opened for reading"));

#ifdef Q_OS_WIN
    GTEST_SKIP() << "but for pipes, which Windows has not in folders, and for the default folder, "
                    "which is no test's own there";
#else
    QFile::remove(engine.folder.path(QStringLiteral("runcf/AbsCoeff.ini")));
    QDir().mkpath(engine.folder.path(QStringLiteral("runcf/AbsCoeff.ini")));
    testlog::expectWarning(QStringLiteral("Failed to read"));
    engine.folder.writeProfile(QStringLiteral("x.asvp"), asvp({"0 1500", "10 1499"}));
    EXPECT_EQ(
        outcome(engine.request(QStringLiteral("SVP_OpenSVP"), QStringLiteral("[x.asvp,asvp]"))),
        QLatin1String("SUCCESS"));
#endif
}

TEST(HostileInput, AReadOnlyDataRootServesReading)
{
#ifdef Q_OS_WIN
    GTEST_SKIP() << "Windows knows no read-only mounts; files that may not be written are tested "
                    "as files held open";
#else
    const DataFolder folder;
    folder.writeProfile(QStringLiteral("x.asvp"), asvp({"0 1500", "10 1499"}));
    // With backslashes, so that the rewriting of the configuration fails too.
    folder.write(QStringLiteral("runcf/AbsCoeff.ini"),
                 "[absLoc]\nInitialDir=" + folder.path(QStringLiteral("qrvdata/svp_abscoeff"))
                                               .replace(QLatin1Char('/'), QLatin1Char('\\'))
                                               .toUtf8());
    // Permissions do not bind an administrator, a read-only mount does.
    const QByteArray root = QFile::encodeName(folder.programData());
    const bool isAdministrator = geteuid() == 0;
    if (isAdministrator) {
        if (mount(root.constData(), root.constData(), nullptr, MS_BIND, nullptr) != 0)
            GTEST_SKIP() << "this machine allows no mounts";
        ASSERT_EQ(
            mount(nullptr, root.constData(), nullptr, MS_BIND | MS_REMOUNT | MS_RDONLY, nullptr),
            0);
    } else {
        ASSERT_EQ(chmod(QFile::encodeName(folder.path(QString())).constData(), 0500), 0);
    }
    {
        CSVP_WebInterface plugin;
        QSignalSpy packets(&plugin, &CSVP_WebInterface::sendWSPacket);
        EXPECT_EQ(plugin.GetReportErr("2600"), "No samples. Profile not accepted.");
        plugin.requestWebSocket(
            1, QStringLiteral("SVP_WebInterface"),
            QStringLiteral("x,ACTION=SVP_WebInterface/SVP_OpenSVP,[x.asvp,asvp]"));
        ASSERT_EQ(packets.size(), 1);
        EXPECT_TRUE(packets.at(0).at(1).toByteArray().contains("\"SUCCESS\""));
        EXPECT_TRUE(folder.read(QStringLiteral("tqrv/SVPEditor.ini")).isEmpty());
    }
    if (isAdministrator)
        umount(root.constData());
    else
        chmod(QFile::encodeName(folder.path(QString())).constData(), 0700);
#endif
}
