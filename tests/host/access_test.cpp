// Who may talk to the host: pages that it served itself, and nobody's else.

#include "host/access_rules.h"
#include "tests/host/client.h"
#include "tests/host/host_process.h"

#include <gtest/gtest.h>

using namespace hosttest;

namespace {

struct HostCase
{
    const char* header;
    host::LocalEnd local;
    bool allowed;
};

class HostHeader : public testing::TestWithParam<HostCase>
{
};

TEST_P(HostHeader, IsJudged)
{
    const host::AccessRules rules({"Bridge-PC"});
    EXPECT_EQ(rules.allowsHost(GetParam().header, GetParam().local), GetParam().allowed);
}

const host::LocalEnd kLoopback{"127.0.0.1", 8080};
const host::LocalEnd kLoopback6{"::1", 8080};
const host::LocalEnd kNetwork{"192.168.7.4", 8080};
const host::LocalEnd kPort80{"127.0.0.1", 80};

INSTANTIATE_TEST_SUITE_P(
    Access, HostHeader,
    testing::Values(
        HostCase{"127.0.0.1:8080", kLoopback, true}, HostCase{"localhost:8080", kLoopback, true},
        HostCase{"LocalHost:8080", kLoopback, true}, HostCase{"[::1]:8080", kLoopback6, true},
        HostCase{"192.168.7.4:8080", kNetwork, true}, HostCase{"bridge-pc:8080", kNetwork, true},
        HostCase{"localhost", kPort80, true}, HostCase{"localhost:80", kPort80, true},
        HostCase{"", kLoopback, false}, HostCase{"localhost", kLoopback, false},
        HostCase{"localhost:", kLoopback, false}, HostCase{"localhost:8081", kLoopback, false},
        HostCase{"localhost:8080:8080", kLoopback, false},
        HostCase{"localhost.:8080", kLoopback, false},
        HostCase{"evil.example:8080", kLoopback, false},
        HostCase{"127.0.0.1.evil.example:8080", kLoopback, false},
        HostCase{"192.168.7.5:8080", kNetwork, false}, HostCase{"::1:8080", kLoopback6, false},
        HostCase{"[::1]", kLoopback6, false}, HostCase{"]", kLoopback, false},
        HostCase{":8080", kLoopback, false}));

TEST(Origin, MustBeTheHostOfTheRequest)
{
    using host::AccessRules;
    EXPECT_TRUE(AccessRules::allowsOrigin("http://localhost:8080", "localhost:8080"));
    EXPECT_TRUE(AccessRules::allowsOrigin("https://localhost:8080", "localhost:8080"));
    EXPECT_TRUE(AccessRules::allowsOrigin("http://LOCALHOST:8080", "localhost:8080"));
    EXPECT_FALSE(AccessRules::allowsOrigin("http://localhost:8081", "localhost:8080"));
    EXPECT_FALSE(AccessRules::allowsOrigin("http://127.0.0.1:8080", "localhost:8080"));
    EXPECT_FALSE(AccessRules::allowsOrigin("http://evil.example", "localhost:8080"));
    EXPECT_FALSE(AccessRules::allowsOrigin("null", "localhost:8080"));
    EXPECT_FALSE(AccessRules::allowsOrigin("", "localhost:8080"));
}

TEST(Access, PageOfAForeignSiteIsRefused)
{
    RunningHost host;
    const std::string own = "http://127.0.0.1:" + std::to_string(host.port());
    EXPECT_EQ(PageClient().open(host.port(), {}, own), 101);
    EXPECT_EQ(PageClient().open(host.port(), {}, "http://evil.example"), 403);
    EXPECT_EQ(PageClient().open(host.port(), {}, "null"), 403);

    const std::string path = "/SVP_WebInterface";
    const auto post = [&](const std::string& fields) {
        return request(host.port(), postText(host.port(), path, "x", fields)).status();
    };
    EXPECT_EQ(post("Origin: " + own + "\r\n"), 200);
    EXPECT_EQ(post("Origin: http://evil.example\r\n"), 403);
    EXPECT_EQ(post("Origin: " + own + "\r\nOrigin: http://evil.example\r\n"), 403);
    EXPECT_EQ(get(host.port(), "/api/casts", "Origin: http://evil.example\r\n").status(), 403);
}

TEST(Access, ReboundNameIsRefused)
{
    RunningHost host;
    const std::string port = std::to_string(host.port());
    EXPECT_EQ(PageClient().open(host.port(), "localhost:" + port), 101);
    EXPECT_EQ(PageClient().open(host.port(), "evil.example:" + port), 403);
    EXPECT_EQ(PageClient().open(host.port(), "127.0.0.1:1"), 403);
    // The rebound site is the same origin to the browser, so only the Host field tells.
    EXPECT_EQ(PageClient().open(host.port(), "evil.example:" + port, "http://evil.example:" + port),
              403);

    const std::string foreign = " HTTP/1.1\r\nHost: evil.example:" + port + "\r\n";
    EXPECT_EQ(request(host.port(), "GET /api/casts" + foreign + "\r\n").status(), 403);
    EXPECT_EQ(request(host.port(), "GET /" + foreign + "\r\n").status(), 403);
    EXPECT_EQ(
        request(host.port(), "POST /SVP_WebInterface" + foreign + "Content-Length: 1\r\n\r\nx")
            .status(),
        403);
}

TEST(Access, FurtherNamesCanBeAllowed)
{
    RunningHost host({QStringLiteral("--host-name"), QStringLiteral("bridge-pc")});
    const std::string name = "bridge-pc:" + std::to_string(host.port());
    EXPECT_EQ(PageClient().open(host.port(), name, "http://" + name), 101);
}

TEST(Access, OneHostFieldIsNeeded)
{
    RunningHost host;
    const std::string field = "Host: 127.0.0.1:" + std::to_string(host.port()) + "\r\n";
    EXPECT_EQ(request(host.port(), "GET / HTTP/1.1\r\n\r\n").status(), 400);
    EXPECT_EQ(request(host.port(), "GET / HTTP/1.1\r\n" + field + field + "\r\n").status(), 400);
    EXPECT_EQ(request(host.port(), "GET / HTTP/1.0\r\n\r\n").status(), 403);
    EXPECT_EQ(request(host.port(), "GET / HTTP/1.0\r\n" + field + "\r\n").status(), 200);
}

TEST(Access, OnlyTheLoopbackAddressIsOpened)
{
    RunningHost host;
    // Every 127.x address is this machine's; the host answers on the one it was given.
    EXPECT_TRUE(RawClient(host.port(), "127.0.0.1").isConnected());
    EXPECT_FALSE(RawClient(host.port(), "127.0.0.2").isConnected());
}

} // namespace
