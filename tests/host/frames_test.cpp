// The text of web-socket messages, without sockets.

#include "host/frames.h"

#include <gtest/gtest.h>

#include <string>

using namespace std::string_literals;

namespace {

TEST(PageRequest, HasANameAndData)
{
    const host::PageRequest request = host::parsePageRequest(
        R"( {"data": "page,ACTION=a/b,[\"x\u00e9\",\\ \u0000]", "more": [{"name": 1}], "name": "N"} )");
    EXPECT_EQ(request.problem, "");
    EXPECT_EQ(request.name, "N");
    EXPECT_EQ(request.data, "page,ACTION=a/b,[\"x\xc3\xa9\",\\ \0]"s);
}

TEST(PageRequest, InnerKeysAreNotTheMessagesOwn)
{
    EXPECT_NE(host::parsePageRequest(R"({"a": {"name": "N", "data": "D"}})").problem, "");
    EXPECT_NE(host::parsePageRequest(R"([{"name": "N", "data": "D"}])").problem, "");
    EXPECT_NE(host::parsePageRequest(R"({"name": ["N"], "data": {"x": "D"}})").problem, "");
    EXPECT_NE(host::parsePageRequest(R"([["name", "N", "data", "D"]])").problem, "");
}

TEST(PageRequest, TheLastOfTwoCounts)
{
    EXPECT_EQ(host::parsePageRequest(R"({"name": "A", "name": "B", "data": ""})").name, "B");
    EXPECT_NE(host::parsePageRequest(R"({"name": "A", "name": 1, "data": ""})").problem, "");
}

class NoRequest : public testing::TestWithParam<std::string>
{
};

TEST_P(NoRequest, HasAReason)
{
    const host::PageRequest request = host::parsePageRequest(GetParam());
    EXPECT_NE(request.problem, "");
    EXPECT_EQ(request.problem.back(), '.');
}

INSTANTIATE_TEST_SUITE_P(
    Frames, NoRequest,
    testing::Values(""s, " "s, "{"s, "{}"s, "[]"s, "null"s, "1"s, "\"name\""s, "hello"s,
                    R"({"name": "N"})"s, R"({"data": "D"})"s, R"({"name": 1, "data": "D"})"s,
                    R"({"name": "N", "data": null})"s, R"({"name": "N", "data": "D"} x)"s,
                    R"({"name": "N", "data": "D"}{})"s, R"({"name": "N", "data": "\ud800"})"s,
                    "{\"name\": \"N\", \"data\": \"\xff\"}"s,
                    "{\"name\": \"N\", \"data\": \"\n\"}"s, R"({name: "N", data: "D"})"s,
                    "{\"name\": \"N\", \"data\": \"D\"}\0"s, std::string(100000, '['),
                    std::string(100000, '{')));

TEST(PacketFrame, KeepsThePacketsText)
{
    const host::Frame frame = host::packetFrame("a\"b", "{\n    \"whoami\": \"x\"\n}\n");
    ASSERT_TRUE(frame);
    EXPECT_EQ(*frame, "{\"target\":\"a\\\"b\",\"packet\":{\n    \"whoami\": \"x\"\n}\n}");
}

TEST(PacketFrame, TakesObjectsOnly)
{
    for (const auto& packet :
         {""s, "[]"s, "1"s, "{"s, "{}{}"s, "{\"a\": \xff}"s, "{\"a\": \"\xff\"}"s, "}, \"x\": {"s})
        EXPECT_FALSE(host::packetFrame("t", packet)) << packet;
    EXPECT_TRUE(host::packetFrame("t", "{}"));
}

TEST(HostFailure, IsAPacketOfTheHost)
{
    EXPECT_EQ(*host::hostFailure("No \"x\"."),
              "{\"target\":\"host\",\"packet\":{\"whoami\":\"host\",\"result\":\"FAILURE\","
              "\"reason\":\"No \\\"x\\\".\"}}");
}

} // namespace
