#include "platform/platform.h"
#include "resources/resources.h"
#include "tests/support/enginefixture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUdpSocket>
#include <gtest/gtest.h>

namespace {

const QString settingsFile = QStringLiteral("tqrv/SVPEditor.ini");
const QString extensionFile = QStringLiteral("qrvdata/svp_abscoeff/SVPExtension.txt");

QByteArray defaultSettings()
{
    CDataFile store;
    settings::fillDefaults(store);
    return platform::textFileBytes(QByteArray::fromStdString(store.SaveText()));
}

} // namespace

TEST(Startup, AFreshStartLeavesSettingsAndExtensionProfile)
{
    const Engine engine(QStringLiteral("größe 測深"), false);
    EXPECT_EQ(engine.folder.read(settingsFile), defaultSettings());
    EXPECT_EQ(engine.folder.read(extensionFile), resources::extensionProfile());
    EXPECT_TRUE(testlog::hasLine(QStringLiteral(
        "CSVP_WebInterface - WARNING - could not find SVPExtension.txt using default")));
    const QFile::Permissions permissions = QFile::permissions(engine.folder.path(extensionFile));
    EXPECT_TRUE(permissions.testFlag(QFile::WriteOwner));
    EXPECT_TRUE(permissions.testFlag(QFile::ReadOwner));
    EXPECT_TRUE(permissions.testFlag(QFile::ReadOther));
#ifdef Q_OS_WIN
    GTEST_SKIP() << "but for who may write, which the folder says on Windows";
#else
    EXPECT_FALSE(permissions.testFlag(QFile::WriteOther));
#endif
}

TEST(Startup, ExistingFilesStay)
{
    const DataFolder folder;
    const QByteArray edited = "[iniVer]\nSVPEditorVersion=9\n[profileHandl]\ndSVMin=1390\n";
    folder.write(settingsFile, edited);
    folder.write(extensionFile, "mine");
    {
        const CSVP_WebInterface plugin;
        EXPECT_EQ(plugin.limits().minSoundSpeed, 1390.0F);
        EXPECT_EQ(plugin.limits().maxSoundSpeed, 1700.0F);
    }
    EXPECT_EQ(folder.read(settingsFile), edited);
    EXPECT_EQ(folder.read(extensionFile), "mine");
    EXPECT_FALSE(testlog::hasLine(QStringLiteral(
        "CSVP_WebInterface - WARNING - could not find SVPExtension.txt using default")));
}

TEST(Startup, AnOutdatedSettingsFileIsWrittenAnew)
{
    const DataFolder folder;
    for (const char* text : {"[iniVer]\nSVPEditorVersion=7\n[x]\ny=z\n", "[x]\ny=z\n", ""}) {
        folder.write(settingsFile, text);
        const CSVP_WebInterface plugin;
        EXPECT_EQ(folder.read(settingsFile), defaultSettings()) << text;
    }
}

TEST(Startup, FoldersInThePlaceOfFilesAreNoHindrance)
{
    const DataFolder folder;
    QDir().mkpath(folder.path(settingsFile));
    QDir().mkpath(folder.path(extensionFile));
    CSVP_WebInterface plugin;
    EXPECT_EQ(plugin.GetReportErr("2600"), "No samples. Profile not accepted.");
    EXPECT_TRUE(QFileInfo(folder.path(settingsFile)).isDir());
}

TEST(Startup, AFileInThePlaceOfTheDataRootIsNoHindrance)
{
    const DataFolder folder(QStringLiteral("data"), false);
    writeBytes(folder.programData() + QStringLiteral("/Ardentide"), "a file");
    CSVP_WebInterface plugin;
    EXPECT_EQ(plugin.GetReportErr("2600"), "No samples. Profile not accepted.");
    EXPECT_EQ(bytesOf(folder.programData() + QStringLiteral("/Ardentide")), "a file");
    EXPECT_TRUE(testlog::traces().contains(
        QStringLiteral("<error> [CDataFile::Save] Unable to save file.\n")));
}

TEST(Startup, WithoutADataRootNothingIsWrittenAndTheEngineServes)
{
    for (const bool isSet : {true, false}) {
        DataFolder folder(QStringLiteral("data"), false);
        const QString workingFolder = QDir::currentPath();
        QDir::setCurrent(folder.programData());
        if (isSet)
            qputenv("ProgramData", "");
        else
            qunsetenv("ProgramData");
        CSVP_WebInterface plugin;
        QSignalSpy packets(&plugin, &CSVP_WebInterface::sendWSPacket);
        EXPECT_EQ(plugin.GetReportErr("2600"), "No samples. Profile not accepted.");
        plugin.requestWebSocket(1, QStringLiteral("SVP_WebInterface"),
                                QStringLiteral("x,ACTION=SVP_WebInterface/SVPReadyConnected"));
        EXPECT_EQ(packets.size(), 1);
        EXPECT_TRUE(QDir(folder.programData()).isEmpty());
        EXPECT_FALSE(QDir(QStringLiteral("/Ardentide")).exists());
        QDir::setCurrent(workingFolder);
    }
}

TEST(Startup, ATakenPortIsLoggedAndTheEngineServes)
{
    QUdpSocket other;
    // Another process may hold the port already; then it is taken all the same.
    other.bind(15060, QUdpSocket::DontShareAddress);
    Engine engine;
    EXPECT_TRUE(
        testlog::hasLine(QStringLiteral("SVP Editor - WARNING - failed to bind udp port - 15060")));
    EXPECT_EQ(outcome(engine.request(QStringLiteral("CloseSVP"))), QLatin1String("SUCCESS"));
}
