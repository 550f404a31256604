// POSTs: the whole request to the plug-in, the plug-in's own bytes to the client.

#include "tests/host/client.h"
#include "tests/host/host_process.h"

#include <gtest/gtest.h>

#include <string>

using namespace hosttest;
using namespace std::string_literals;

namespace {

constexpr char kPath[] = "/SVP_WebInterface";
constexpr char kAnswerHeader[] =
    "HTTP/1.0 200 Ok\r\nContent-Type: application/octet-stream\r\n\r\n";

/// Sends a request and gives everything that comes until the host closes.
std::string exchange(unsigned short port, const std::string& text)
{
    RawClient client(port);
    EXPECT_TRUE(client.send(text));
    std::string rest = client.receiveRest();
    EXPECT_TRUE(client.isEndedInOrder());
    return rest;
}

std::string hostValue(unsigned short port)
{
    return "127.0.0.1:" + std::to_string(port);
}

TEST(Post, TravelsThereAndBackUnchanged)
{
    RunningHost host;
    std::string body = "--b\r\n\r\n";
    for (int i = 0; i < 256; ++i)
        body += static_cast<char>(i);
    body += "\0\0\r\n--b--"s;
    const std::string answer =
        exchange(host.port(), postText(host.port(), kPath, body,
                                       "content-type: multipart/form-data; boundary=b\r\n"
                                       "Connection: keep-alive\r\n"));
    EXPECT_EQ(answer, kAnswerHeader + "POST /SVP_WebInterface HTTP/1.1\r\nContent-Length: "s +
                          std::to_string(body.size()) +
                          "\r\nContent-Type: multipart/form-data; boundary=b\r\nHost: " +
                          hostValue(host.port()) + "\r\n\r\n" + body);
}

TEST(Post, MayBeEmpty)
{
    RunningHost host;
    const std::string answer = exchange(host.port(), postText(host.port(), kPath, ""));
    EXPECT_NE(answer.find("Content-Length: 0\r\n"), std::string::npos);
    EXPECT_EQ(answer.substr(answer.size() - 4), "\r\n\r\n");
}

TEST(Post, MegabytesTravel)
{
    RunningHost host;
    std::string body(std::size_t{20} << 20, '\0');
    for (std::size_t i = 0; i < body.size(); i += 1009)
        body[i] = static_cast<char>(i);
    const std::string answer = exchange(host.port(), postText(host.port(), kPath, body));
    ASSERT_GT(answer.size(), body.size());
    EXPECT_TRUE(answer.compare(answer.size() - body.size(), body.size(), body) == 0);
}

TEST(Post, ChunksArePutTogether)
{
    RunningHost host;
    const std::string answer =
        exchange(host.port(), "POST /SVP_WebInterface HTTP/1.1\r\nHost: " + hostValue(host.port()) +
                                  "\r\nTransfer-Encoding: chunked\r\n\r\n"
                                  "3\r\na\0b\r\n4;x=y\r\n\r\n--\r\n0\r\n\r\n"s);
    EXPECT_EQ(answer, kAnswerHeader + "POST /SVP_WebInterface HTTP/1.1\r\nContent-Length: 7\r\n"s +
                          "Host: " + hostValue(host.port()) + "\r\n\r\na\0b\r\n--"s);
}

TEST(Post, BodyThatIsHeldBackIsAskedFor)
{
    RunningHost host;
    RawClient client(host.port());
    client.send("POST /SVP_WebInterface HTTP/1.1\r\nHost: " + hostValue(host.port()) +
                "\r\nExpect: 100-continue\r\nContent-Length: 4\r\n\r\n");
    EXPECT_EQ(client.receive().status(), 100);
    client.send("body");
    const std::string answer = client.receiveRest();
    EXPECT_EQ(answer.find(kAnswerHeader), 0U);
    EXPECT_EQ(answer.substr(answer.size() - 8), "\r\n\r\nbody");
    EXPECT_EQ(answer.find("Expect"), std::string::npos);
}

TEST(Post, FirstAnswerCountsAndTheConnectionCloses)
{
    RunningHost host;
    const std::string path = std::string(kPath) + "?twice";
    // So long that the first answer is still on its way when the second one comes.
    const std::string body(std::size_t{16} << 20, 'x');
    // A second request on the same connection is not answered.
    const std::string answer =
        exchange(host.port(), postText(host.port(), path, body) + getText(host.port(), "/"));
    EXPECT_EQ(answer.find(kAnswerHeader), 0U);
    EXPECT_GT(answer.size(), body.size());
    EXPECT_EQ(answer.find("Twice"), std::string::npos);
    EXPECT_EQ(answer.find("<title>"), std::string::npos);
}

TEST(Post, AnswerMayComeLater)
{
    RunningHost host;
    const std::string answer =
        exchange(host.port(), postText(host.port(), std::string(kPath) + "?later", "x"));
    EXPECT_EQ(answer.find(kAnswerHeader), 0U);
}

TEST(Post, AnswersFindTheirClients)
{
    RunningHost host;
    RawClient slow(host.port());
    RawClient quick(host.port());
    slow.send(postText(host.port(), std::string(kPath) + "?later", "slow body"));
    quick.send(postText(host.port(), kPath, "quick body"));
    EXPECT_NE(quick.receiveRest().find("quick body"), std::string::npos);
    EXPECT_NE(slow.receiveRest().find("slow body"), std::string::npos);
}

TEST(Post, MissingAnswerIsToldAfterAWhile)
{
    RunningHost host({QStringLiteral("--plugin-timeout-ms"), QStringLiteral("300")});
    EXPECT_EQ(
        request(host.port(), postText(host.port(), std::string(kPath) + "?silent", "x")).status(),
        504);
}

TEST(Post, PlugInThatThrowsIsReported)
{
    RunningHost host;
    const Reply reply =
        request(host.port(), postText(host.port(), std::string(kPath) + "?throw", "x"));
    EXPECT_EQ(reply.status(), 500);
    EXPECT_EQ(reply.body(), "The plug-in failed: thrown on demand.\n");
    EXPECT_EQ(exchange(host.port(), postText(host.port(), kPath, "x")).find(kAnswerHeader), 0U);
}

} // namespace
