// Web sockets: requests in, packets out, for one page and for many.

#include "tests/host/client.h"
#include "tests/host/host_process.h"

#include <QElapsedTimer>
#include <QJsonDocument>
#include <gtest/gtest.h>

#include <deque>

using namespace hosttest;

namespace {

QString text(const QJsonObject& packet, const char* key)
{
    return packet.value(QLatin1String(key)).toString();
}

TEST(Page, RequestReachesThePlugInAndThePacketComesBack)
{
    RunningHost host;
    PageClient page(host.port());
    ASSERT_TRUE(page.request("page,ACTION=SVP_WebInterface/Thin,[a,b;c*\"ü測\\]"));
    const QJsonObject message = page.receive();
    EXPECT_EQ(text(message, "target"), QStringLiteral("SVP_WebInterface"));
    const QJsonObject packet = message.value(QStringLiteral("packet")).toObject();
    EXPECT_EQ(text(packet, "data"),
              QString::fromUtf8("page,ACTION=SVP_WebInterface/Thin,[a,b;c*\"ü測\\]"));
    EXPECT_GT(packet.value(QStringLiteral("connection")).toInt(), 0);
}

TEST(Page, NamesAreTakenInAnyCaseAndPassedOnAsWritten)
{
    RunningHost host;
    PageClient page(host.port());
    page.request("x", "svp_webinterface");
    EXPECT_EQ(text(page.receive(), "target"), QStringLiteral("svp_webinterface"));
    page.request("x", "Echo_Second");
    EXPECT_EQ(text(page.receive(), "target"), QStringLiteral("Echo_Second"));
}

TEST(Page, UnknownNameIsToldSo)
{
    RunningHost host;
    PageClient page(host.port());
    page.request("x", "SVP_Other");
    const QJsonObject message = page.receive();
    EXPECT_EQ(text(message, "target"), QStringLiteral("host"));
    const QJsonObject packet = message.value(QStringLiteral("packet")).toObject();
    EXPECT_EQ(text(packet, "whoami"), QStringLiteral("host"));
    EXPECT_EQ(text(packet, "result"), QStringLiteral("FAILURE"));
    EXPECT_EQ(text(packet, "reason"), QStringLiteral("No plug-in serves the name \"SVP_Other\"."));
}

TEST(Page, BrokenMessagesAreToldToTheirSenderAlone)
{
    RunningHost host;
    PageClient page(host.port());
    PageClient other(host.port());
    for (const char* broken : {"", "hello", "{", "[]", "{\"name\": \"SVP_WebInterface\"}",
                               "{\"name\": \"SVP_WebInterface\", \"data\": 1}"}) {
        ASSERT_TRUE(page.sendText(broken));
        const QJsonObject message = page.receive();
        EXPECT_EQ(text(message, "target"), QStringLiteral("host")) << broken;
        EXPECT_EQ(text(message.value(QStringLiteral("packet")).toObject(), "result"),
                  QStringLiteral("FAILURE"));
    }
    ASSERT_TRUE(page.sendBinary("{\"name\": \"SVP_WebInterface\", \"data\": \"x\"}"));
    EXPECT_EQ(text(page.receivePacket(), "reason"), QStringLiteral("Messages have to be text."));

    page.request("still open");
    EXPECT_EQ(text(page.receivePacket(), "data"), QStringLiteral("still open"));
    EXPECT_EQ(text(other.receivePacket(), "data"), QStringLiteral("still open"));
}

TEST(Page, TextThatIsNotUtf8ClosesThePage)
{
    RunningHost host;
    PageClient page(host.port());
    page.sendText("\xff\xfe");
    EXPECT_EQ(page.awaitClose(), 1007);
    PageClient next(host.port());
    next.request("x");
    EXPECT_EQ(text(next.receivePacket(), "data"), QStringLiteral("x"));
}

TEST(Page, RequestsKeepTheirOrder)
{
    RunningHost host;
    PageClient page(host.port());
    // The first one holds the plug-in up, so that the others pile up beyond what is queued.
    constexpr int kCount = 500;
    page.request("slow,200,first");
    for (int i = 0; i < kCount; ++i)
        ASSERT_TRUE(page.request(std::to_string(i)));
    EXPECT_EQ(text(page.receivePacket(), "data"), QStringLiteral("first"));
    for (int i = 0; i < kCount; ++i)
        ASSERT_EQ(text(page.receivePacket(), "data"), QString::number(i));
}

TEST(Page, TwoHundredPagesAllGetThePackets)
{
    RunningHost host;
    std::deque<PageClient> pages;
    for (int i = 0; i < 200; ++i)
        pages.emplace_back(host.port());
    ASSERT_FALSE(testing::Test::HasFailure());
    // One that answers a page, and one that nobody asked for.
    pages[42].request("to all");
    for (PageClient& page : pages)
        ASSERT_EQ(text(page.receivePacket(), "data"), QStringLiteral("to all"));
    pages[17].request("later,50,by itself");
    for (PageClient& page : pages)
        ASSERT_EQ(text(page.receivePacket(), "data"), QStringLiteral("by itself"));
}

TEST(Page, PacketsOfMegabytesArriveWhole)
{
    RunningHost host;
    std::deque<PageClient> pages(5);
    for (PageClient& page : pages)
        ASSERT_EQ(page.open(host.port()), 101);
    constexpr int kLong = 12 << 20;
    const std::string long12(kLong, 'z');
    ASSERT_TRUE(pages[0].request("long," + long12));
    for (PageClient& page : pages)
        EXPECT_EQ(text(page.receivePacket(), "data").size(), 5 + kLong);
}

TEST(Page, PacketThatIsNotJsonIsNotPassedOn)
{
    RunningHost host;
    PageClient page(host.port());
    page.request("garbage");
    const QJsonObject message = page.receive();
    EXPECT_EQ(text(message, "target"), QStringLiteral("host"));
    page.request("x");
    EXPECT_EQ(text(page.receivePacket(), "data"), QStringLiteral("x"));
}

TEST(Page, PlugInThatThrowsIsReportedAndServesOn)
{
    RunningHost host;
    PageClient page(host.port());
    page.request("throw");
    EXPECT_EQ(text(page.receivePacket(), "reason"),
              QStringLiteral("The plug-in failed: thrown on demand."));
    page.request("x");
    EXPECT_EQ(text(page.receivePacket(), "data"), QStringLiteral("x"));
}

TEST(Page, RequestOfAPageThatHasGoneIsCarriedOut)
{
    RunningHost host;
    PageClient watcher(host.port());
    {
        PageClient page(host.port());
        page.request("slow,100,one");
        page.request("the save that was sent last");
        page.hangUp();
    }
    EXPECT_EQ(text(watcher.receivePacket(), "data"), QStringLiteral("one"));
    EXPECT_EQ(text(watcher.receivePacket(), "data"), QStringLiteral("the save that was sent last"));
}

TEST(Page, FilesAreServedWhileThePlugInIsBusy)
{
    RunningHost host;
    PageClient page(host.port());
    QElapsedTimer clock;
    clock.start();
    page.request("slow,3000,done");
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(get(host.port(), "/").status(), 200);
    EXPECT_LT(clock.elapsed(), 3000);
    EXPECT_EQ(text(page.receivePacket(), "data"), QStringLiteral("done"));
    EXPECT_GE(clock.elapsed(), 3000);
}

TEST(Page, PlugInRunsOnTheMainThreadWithAPlainDecimalPoint)
{
    RunningHost host;
    PageClient page(host.port());
    page.request("about");
    const QJsonObject about = page.receivePacket();
    EXPECT_TRUE(about.value(QStringLiteral("onMainThread")).toBool());
    EXPECT_EQ(text(about, "number"), QStringLiteral("1.5"));
    EXPECT_EQ(text(about, "programData"), host.scene.dataFolder());
}

TEST(Page, LongLogMessagesAreCut)
{
    RunningHost host;
    PageClient page(host.port());
    page.request("log,3000000");
    page.receivePacket();
    const QByteArray log = host.process.errorOutput();
    EXPECT_TRUE(log.contains("first line yyy"));
    EXPECT_TRUE(log.contains("(3000011 characters)"));
    EXPECT_LT(log.size(), 10000);
    EXPECT_EQ(host.process.output(), host.process.address() + "\n");
}

} // namespace
