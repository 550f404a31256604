// Starting: the command line, the address line, and the ways in which a start fails.

#include "tests/host/client.h"
#include "tests/host/host_process.h"
#include "tests/places.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <gtest/gtest.h>

using namespace hosttest;

namespace {

QStringList replaced(QStringList arguments, const char* option, const QString& value)
{
    arguments[arguments.indexOf(QLatin1String(option)) + 1] = value;
    return arguments;
}

/// What a start that fails says: one line, and nothing on stdout.
void expectRefusal(const QStringList& arguments, int exitCode, const char* expected,
                   const QStringList& environment = {})
{
    HostProcess host(arguments, environment);
    EXPECT_EQ(host.awaitExit(), exitCode);
    const QByteArray error = host.errorOutput();
    EXPECT_TRUE(error.startsWith("svp-host: ")) << error.constData();
    EXPECT_TRUE(error.contains(expected)) << error.constData();
    EXPECT_EQ(error.count('\n'), 1) << error.constData();
    EXPECT_EQ(host.output(), "");
}

TEST(Start, SaysItsAddressOnOneLine)
{
    RunningHost host;
    const QRegularExpression line(QStringLiteral("^http://127\\.0\\.0\\.1:[0-9]+$"));
    EXPECT_TRUE(line.match(QString::fromUtf8(host.process.address())).hasMatch());
    EXPECT_EQ(get(host.port(), "/").status(), 200);
    EXPECT_EQ(host.process.output(), host.process.address() + "\n");
}

TEST(Start, ListensOnIPv6WhenTold)
{
    if (!canListenAt("::1"))
        GTEST_SKIP() << "no IPv6 here: the tests cannot listen at ::1 either";
    Scene scene;
    HostProcess host(replaced(scene.arguments(), "--listen", QStringLiteral("[::1]:0")));
    ASSERT_TRUE(host.awaitAddress()) << host.errorOutput().constData();
    EXPECT_TRUE(host.address().startsWith("http://[::1]:"));
    RawClient client(host.port(), "::1");
    client.send("GET / HTTP/1.1\r\nHost: [::1]:" + std::to_string(host.port()) + "\r\n\r\n");
    EXPECT_EQ(client.receive().status(), 200);
}

TEST(Start, AddressOfAHostThatListensEverywhereWorksHere)
{
    Scene scene;
    HostProcess host(replaced(scene.arguments(), "--listen", QStringLiteral("0.0.0.0:0")));
    ASSERT_TRUE(host.awaitAddress());
    EXPECT_TRUE(host.address().startsWith("http://127.0.0.1:")) << host.address().constData();
    EXPECT_EQ(get(host.port(), "/").status(), 200);
}

TEST(Start, HelpAndVersionAreShown)
{
    HostProcess help({QStringLiteral("--help")});
    EXPECT_EQ(help.awaitExit(), 0);
    const QByteArray text = help.output();
    for (const char* option : {"--plugin", "--data", "--web", "--samples", "--listen"})
        EXPECT_TRUE(text.contains(option)) << option;
    HostProcess version({QStringLiteral("--version")});
    EXPECT_EQ(version.awaitExit(), 0);
    EXPECT_TRUE(version.output().startsWith("svp-host "));
}

TEST(Start, BadArgumentsAreRefused)
{
    Scene scene;
    const QStringList good = scene.arguments();
    expectRefusal(replaced(good, "--plugin", QString()), 1, "--plugin is missing");
    expectRefusal({}, 1, "--web is missing", {QStringLiteral("ProgramData=") + scene.dataFolder()});
    expectRefusal({QStringLiteral("--web"), scene.webFolder()}, 1, "--data is missing",
                  {QStringLiteral("ProgramData=")});
    expectRefusal(good + QStringList{QStringLiteral("--nonsense")}, 1, "nonsense");
    expectRefusal(good + QStringList{QStringLiteral("stray")}, 1, "\"stray\"");
    expectRefusal(replaced(good, "--data", QString()), 1, "--data is missing");
    expectRefusal(replaced(good, "--web", scene.path(QStringLiteral("none"))), 1, "--web");
    expectRefusal(replaced(good, "--samples", scene.path(QStringLiteral("none"))), 1, "--samples");
    for (const char* listen : {"8080", "127.0.0.1", "127.0.0.1:", "127.0.0.1:65536", "127.0.0.1:x",
                               "::1:80", "[127.0.0.1]:80", "example.org:80", ":80"})
        expectRefusal(replaced(good, "--listen", QLatin1String(listen)), 1, listen);
    expectRefusal(good + QStringList{QStringLiteral("--idle-timeout-ms"), QStringLiteral("0")}, 1,
                  "--idle-timeout-ms");
    expectRefusal(good + QStringList{QStringLiteral("--idle-timeout-ms"), QStringLiteral("x")}, 1,
                  "--idle-timeout-ms");
}

TEST(Start, DataFolderThatCannotBeMadeIsRefused)
{
    Scene scene;
    writeFile(scene.path(QStringLiteral("file")), "in the way");
    expectRefusal(replaced(scene.arguments(), "--data", scene.path(QStringLiteral("file/data"))), 1,
                  "cannot be made");
}

TEST(Start, PlugInThatDoesNotServeIsRefused)
{
    Scene scene;
    const QStringList good = scene.arguments();
    expectRefusal(replaced(good, "--plugin", scene.path(QStringLiteral("none.so"))), 2,
                  "There is no file");
    writeFile(scene.path(QStringLiteral("text.so")), "not a library");
    expectRefusal(replaced(good, "--plugin", scene.path(QStringLiteral("text.so"))), 2,
                  "is no plug-in");
    expectRefusal(replaced(good, "--plugin", scene.webFolder()), 2, "There is no file");
    expectRefusal(replaced(good, "--plugin", QStringLiteral(SVP_STRANGER_PLUGIN)), 2,
                  "com.ardentide.someotherlib");
    expectRefusal(replaced(good, "--plugin", QStringLiteral(SVP_FACELESS_PLUGIN)), 2,
                  "does not offer the interface");
}

TEST(Start, PlugInMayLieInAFolderWithAnyName)
{
    Scene scene;
    const QString file = scene.path(QString::fromUtf8("Ünïcode 測深/") +
                                    QFileInfo(QStringLiteral(SVP_ECHO_PLUGIN)).fileName());
    ASSERT_TRUE(QDir().mkpath(QFileInfo(file).path()));
    ASSERT_TRUE(QFile::copy(QStringLiteral(SVP_ECHO_PLUGIN), file));
    HostProcess host(replaced(scene.arguments(), "--plugin", file));
    EXPECT_TRUE(host.awaitAddress()) << host.errorOutput().constData();
}

TEST(Start, PortThatIsTakenIsRefusedBeforeAnythingIsTouched)
{
    RunningHost first;
    Scene scene;
    expectRefusal(
        replaced(scene.arguments(), "--listen", QStringLiteral("127.0.0.1:%1").arg(first.port())),
        3, "Cannot listen on 127.0.0.1 port");
    EXPECT_FALSE(QFileInfo::exists(scene.dataFolder()));
    EXPECT_EQ(get(first.port(), "/").status(), 200);
}

} // namespace
