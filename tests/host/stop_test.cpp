// Stopping: soon, with a word to the open pages, and without cutting the plug-in short.

#include "tests/host/client.h"
#include "tests/host/host_process.h"

#include <QElapsedTimer>
#include <gtest/gtest.h>

#include <csignal>
#include <deque>

#ifdef Q_OS_WIN
#include <qt_windows.h>
#endif

using namespace hosttest;

namespace {

/// Within two seconds, and a little for a machine that is busy with other tests.
constexpr int kSoonMs = 4000;

/// Has the plug-in busy by the time it returns.
void beginCall(PageClient& page, int milliseconds)
{
    ASSERT_TRUE(page.request("hold," + std::to_string(milliseconds)));
    ASSERT_EQ(page.receivePacket().value(QStringLiteral("data")).toString(),
              QStringLiteral("begun"));
}

TEST(Stop, PagesAreToldAndTheHostEndsSoon)
{
#ifdef Q_OS_WIN
    const auto numbers = {SIGBREAK};
#else
    const auto numbers = {SIGTERM, SIGINT};
#endif
    for (const int signal : numbers) {
        SCOPED_TRACE(signal);
        RunningHost host;
        std::deque<PageClient> pages(20);
        for (PageClient& page : pages)
            ASSERT_EQ(page.open(host.port()), 101);
        RawClient idle(host.port());
        RawClient halfway(host.port());
        halfway.send("GET / HT");
        QElapsedTimer clock;
        clock.start();
#ifdef Q_OS_WIN
        host.process.terminate();
#else
        ASSERT_EQ(::kill(static_cast<pid_t>(host.process.processId()), signal), 0);
#endif
        for (PageClient& page : pages)
            EXPECT_EQ(page.awaitClose(), 1001);
        EXPECT_EQ(host.process.awaitExit(), 0);
        EXPECT_LT(clock.elapsed(), kSoonMs);
    }
}

#ifdef Q_OS_WIN
TEST(Stop, AWindowThatIsClosedAsksToStop)
{
    for (const unsigned long event :
         {DWORD(CTRL_CLOSE_EVENT), DWORD(CTRL_LOGOFF_EVENT), DWORD(CTRL_SHUTDOWN_EVENT)}) {
        SCOPED_TRACE(event);
        RunningHost host;
        PageClient page(host.port());
        const HANDLE told = host.process.beginWindowEvent(event);
        EXPECT_EQ(page.awaitClose(), 1001);
        EXPECT_EQ(host.process.awaitExit(), 0);
        // As soon as the thread that is told had returned, Windows would have ended the program. It
        // has ended with the program instead, and with its code.
        DWORD code = STILL_ACTIVE;
        EXPECT_TRUE(GetExitCodeThread(told, &code));
        EXPECT_EQ(code, 0U);
        CloseHandle(told);
    }
}
#endif

TEST(Stop, PagesThatDoNotListenAreNotWaitedFor)
{
    RunningHost host;
    std::deque<PageClient> pages(20);
    for (PageClient& page : pages)
        ASSERT_EQ(page.open(host.port()), 101);
    // Enough to fill the sockets of those that do not read.
    pages[0].request("flood,20,1000000");
    pages[0].receivePacket();
    QElapsedTimer clock;
    clock.start();
    host.process.terminate();
    EXPECT_EQ(host.process.awaitExit(), 0);
    EXPECT_LT(clock.elapsed(), kSoonMs);
}

TEST(Stop, CallOfThePlugInIsLetFinish)
{
    RunningHost host;
    PageClient page(host.port());
    // From before the call: it takes its time however late the host is asked to stop.
    QElapsedTimer clock;
    clock.start();
    beginCall(page, 1500);
    page.request("log,77777"); // not begun when the host is asked to stop
    host.process.terminate();
    EXPECT_EQ(page.awaitClose(), 1001);
    EXPECT_EQ(host.process.awaitExit(), 0);
    EXPECT_GT(clock.elapsed(), 1400);
    EXPECT_FALSE(host.process.errorOutput().contains("77788 characters"));
}

TEST(Stop, PlugInThatDoesNotEndIsLeftBehind)
{
    RunningHost host({QStringLiteral("--stop-timeout-ms"), QStringLiteral("300")});
    PageClient page(host.port());
    beginCall(page, 15000);
    QElapsedTimer clock;
    clock.start();
    host.process.terminate();
    EXPECT_EQ(host.process.awaitExit(), 4);
    EXPECT_LT(clock.elapsed(), 10000);
    EXPECT_TRUE(host.process.errorOutput().contains("did not come to an end"));
}

TEST(Stop, SecondSignalDoesNotWait)
{
    RunningHost host;
    PageClient page(host.port());
    beginCall(page, 15000);
    QElapsedTimer clock;
    clock.start();
    host.process.terminate();
    EXPECT_EQ(page.awaitClose(), 1001);
    EXPECT_TRUE(host.process.isRunning());
    host.process.terminate();
    EXPECT_EQ(host.process.awaitExit(), 4);
    EXPECT_LT(clock.elapsed(), 8000);
}

TEST(Stop, PortIsFreeAgainAtOnce)
{
    Scene scene;
    quint16 port = 0;
    QStringList arguments = scene.arguments();
    for (int round = 0; round < 2; ++round) {
        HostProcess host(arguments);
        ASSERT_TRUE(host.awaitAddress()) << host.errorOutput().constData();
        port = host.port();
        arguments.last() = QStringLiteral("127.0.0.1:%1").arg(port);
        PageClient page(port);
        host.terminate();
        EXPECT_EQ(page.awaitClose(), 1001);
        EXPECT_EQ(host.awaitExit(), 0);
    }
}

} // namespace
