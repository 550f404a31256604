// No client takes the host away from the others.

#include "tests/host/client.h"
#include "tests/host/host_process.h"

#include <QElapsedTimer>
#include <gtest/gtest.h>

#include <deque>
#include <string>

using namespace hosttest;

namespace {

constexpr std::size_t kMiB = std::size_t{1} << 20;

QStringList limit(const char* name, int value)
{
    return {QStringLiteral("--") + QLatin1String(name), QString::number(value)};
}

TEST(Limits, DribblingClientIsDroppedWhileOthersAreServed)
{
    RunningHost host(limit("header-timeout-ms", 3000));
    RawClient dribbling(host.port());
    RawClient mute(host.port());
    ASSERT_TRUE(dribbling.send("GET / HTTP/1.1\r\nX-Long: "));
    // Each byte comes well within the time-out; it is the whole header that has to.
    EXPECT_TRUE(eventually([&] {
        EXPECT_EQ(get(host.port(), "/").status(), 200);
        return !dribbling.send("x");
    }));
    EXPECT_TRUE(mute.isClosedWithin(kPatienceMs));
}

TEST(Limits, DribblingBodyIsDropped)
{
    RunningHost host(limit("body-timeout-ms", 1000));
    RawClient dribbling(host.port());
    std::string text = postText(host.port(), "/SVP_WebInterface", std::string(100000, 'x'));
    text.resize(text.size() - 99999);
    ASSERT_TRUE(dribbling.send(text));
    EXPECT_TRUE(eventually([&] {
        EXPECT_EQ(get(host.port(), "/").status(), 200);
        return !dribbling.send("x");
    }));
}

TEST(Limits, IdleConnectionIsClosed)
{
    RunningHost host(limit("idle-timeout-ms", 300));
    RawClient client(host.port());
    client.send(getText(host.port(), "/"));
    EXPECT_EQ(client.receive().status(), 200);
    EXPECT_EQ(client.receiveRest(), "");
}

TEST(Limits, LongHeaderIsRefused)
{
    RunningHost host;
    const std::string longer = "X-Long: " + std::string(9000, 'x') + "\r\n";
    EXPECT_EQ(get(host.port(), "/", longer).status(), 431);
    EXPECT_EQ(get(host.port(), "/" + std::string(100000, 'x')).status(), 431);
    std::string many;
    for (int i = 0; i < 3000; ++i)
        many += "a:\r\n";
    EXPECT_EQ(get(host.port(), "/", many).status(), 431);
    EXPECT_EQ(get(host.port(), "/", "X: " + std::string(7000, 'x') + "\r\n").status(), 200);
}

TEST(Limits, LongBodyIsRefusedAndTheAnswerArrives)
{
    RunningHost host;
    const std::string body(33 * kMiB, 'x');
    // All of it is sent before the answer is looked at, as simple clients do. It has to be taken
    // in: where the connection is reset instead, some systems throw the answer away.
    RawClient client(host.port());
    EXPECT_TRUE(client.send(postText(host.port(), "/SVP_WebInterface", body)));
    const Reply reply = client.receive();
    EXPECT_EQ(reply.status(), 413);
    EXPECT_EQ(client.receiveRest(), "");
    EXPECT_TRUE(client.isEndedInOrder());
    EXPECT_NE(reply.body().find("32 MiB"), std::string::npos);

    RawClient chunked(host.port());
    chunked.send("POST /SVP_WebInterface HTTP/1.1\r\nHost: 127.0.0.1:" +
                 std::to_string(host.port()) + "\r\nTransfer-Encoding: chunked\r\n\r\n");
    for (int i = 0; i < 33; ++i)
        EXPECT_TRUE(chunked.send("100000\r\n" + std::string(kMiB, 'x') + "\r\n"));
    EXPECT_EQ(chunked.receive().status(), 413);

    EXPECT_EQ(get(host.port(), "/").status(), 200);
}

TEST(Limits, ForeignUploadIsRefusedAndTheAnswerArrives)
{
    RunningHost host;
    const std::string body(20 * kMiB, 'x');
    RawClient client(host.port());
    EXPECT_TRUE(client.send(
        postText(host.port(), "/SVP_WebInterface", body, "Origin: http://evil.example\r\n")));
    EXPECT_EQ(client.receive().status(), 403);
}

TEST(Limits, LongMessageClosesThePageAlone)
{
    RunningHost host;
    PageClient other(host.port());
    PageClient page(host.port());
    page.sendText(std::string(17 * kMiB, 'x'));
    EXPECT_EQ(page.awaitClose(), 1009);
    other.request("x");
    EXPECT_EQ(other.receivePacket().value(QStringLiteral("data")).toString(), QStringLiteral("x"));
}

TEST(Limits, OneConnectionTooManyIsToldSo)
{
    RunningHost host(limit("max-connections", 3));
    std::deque<PageClient> pages(3);
    for (PageClient& page : pages)
        ASSERT_EQ(page.open(host.port()), 101);
    RawClient tooMany(host.port());
    tooMany.send(getText(host.port(), "/"));
    EXPECT_EQ(tooMany.receive().status(), 503);
    EXPECT_EQ(tooMany.receiveRest(), "");

    // The open pages are not disturbed, and a place that is given back can be had.
    pages[0].request("x");
    EXPECT_EQ(pages[1].receivePacket().value(QStringLiteral("data")).toString(),
              QStringLiteral("x"));
    pages[2].hangUp();
    EXPECT_TRUE(eventually([&] { return get(host.port(), "/").status() == 200; }));
}

TEST(Limits, CrowdBeyondTheLimitIsWithstood)
{
    RunningHost host(limit("max-connections", 20));
    {
        // Of four descriptors each, of which a process has 1024 where nobody has raised that.
        std::deque<RawClient> crowd;
        for (int i = 0; i < 200; ++i)
            crowd.emplace_back(host.port());
    }
    EXPECT_TRUE(eventually([&] { return get(host.port(), "/").status() == 200; }));
}

TEST(Limits, PageThatDoesNotReadIsDropped)
{
    RunningHost host(limit("page-queue-bytes", 4 * 1024 * 1024));
    PageClient asleep(host.port());
    PageClient awake(host.port());
    constexpr int kPackets = 60;
    constexpr int kSize = 1024 * 1024;
    // One at a time, so that the page that reads never falls behind.
    for (int i = 0; i < kPackets; ++i) {
        awake.request("flood,1," + std::to_string(kSize));
        ASSERT_EQ(awake.receivePacket().value(QStringLiteral("data")).toString().size(), kSize);
    }
    int received = 0;
    while (!asleep.receiveText().empty())
        ++received;
    EXPECT_LT(received, kPackets);
    EXPECT_TRUE(host.process.errorOutput().contains("does not read its messages"));
}

TEST(Limits, SilentPageIsDroppedAndALivingOneIsNot)
{
    RunningHost host(limit("ping-interval-ms", 200) + limit("silence-timeout-ms", 3000));
    PageClient living(host.port());
    PageClient silent(host.port()); // answers pings only while it is being read
    living.request("later,7000,after a while");
    EXPECT_EQ(living.receivePacket().value(QStringLiteral("data")).toString(),
              QStringLiteral("after a while"));
    EXPECT_EQ(silent.awaitClose(), 0);
    EXPECT_TRUE(host.process.errorOutput().contains("has gone silent"));
    living.request("x");
    EXPECT_EQ(living.receivePacket().value(QStringLiteral("data")).toString(), QStringLiteral("x"));
}

TEST(Limits, BusyPlugInDoesNotMakeItsPageSilent)
{
    RunningHost host(limit("ping-interval-ms", 200) + limit("silence-timeout-ms", 1500));
    PageClient page(host.port());
    ASSERT_TRUE(page.request("slow,2500,first"));
    // More than the host queues, so that it stops reading from the page meanwhile.
    for (int i = 0; i < 40; ++i)
        ASSERT_TRUE(page.request(std::to_string(i)));
    EXPECT_EQ(page.receivePacket().value(QStringLiteral("data")).toString(),
              QStringLiteral("first"));
    for (int i = 0; i < 40; ++i)
        ASSERT_EQ(page.receivePacket().value(QStringLiteral("data")).toString(),
                  QString::number(i));
}

TEST(Limits, PageIsNotReadFromWhileThePlugInIsBehind)
{
    RunningHost host;
    PageClient page(host.port());
    QElapsedTimer clock;
    clock.start();
    page.request("hold,2500");
    ASSERT_EQ(page.receivePacket().value(QStringLiteral("data")).toString(),
              QStringLiteral("begun"));
    // More than the host queues and the system's socket buffers hold together.
    constexpr int kMessages = 64;
    const std::string filling(kMiB, ' ');
    for (int i = 0; i < kMessages; ++i)
        ASSERT_TRUE(page.sendText(filling + R"({"name": "SVP_WebInterface", "data": ")" +
                                  std::to_string(i) + "\"}"));
    EXPECT_GT(clock.elapsed(), 2400);
    for (int i = 0; i < kMessages; ++i)
        ASSERT_EQ(page.receivePacket().value(QStringLiteral("data")).toString(),
                  QString::number(i));
}

} // namespace
