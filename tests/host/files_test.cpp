// The page's files: found with the right type, and nothing from outside of their folder.

#include "host/static_files.h"
#include "tests/host/client.h"
#include "tests/host/host_process.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

using namespace hosttest;

namespace {

TEST(Files, TypesGoBySuffix)
{
    const auto type = [](const char* name) {
        return std::string(host::StaticFiles::contentType(QString::fromUtf8(name)));
    };
    EXPECT_EQ(type("index.html"), "text/html; charset=utf-8");
    EXPECT_EQ(type("main.js"), "text/javascript; charset=utf-8");
    EXPECT_EQ(type("main.CSS"), "text/css; charset=utf-8");
    EXPECT_EQ(type("icon.svg"), "image/svg+xml");
    EXPECT_EQ(type("icon.png"), "image/png");
    EXPECT_EQ(type("favicon.ico"), "image/x-icon");
    EXPECT_EQ(type("table.json"), "application/json");
    EXPECT_EQ(type("main.js.map"), "application/json");
    EXPECT_EQ(type("font.woff2"), "font/woff2");
    EXPECT_EQ(type("main.ts"), "application/octet-stream");
    EXPECT_EQ(type("html"), "application/octet-stream");
}

TEST(Files, AreServedWithTheirGuards)
{
    RunningHost host;
    writeFile(host.scene.webFolder() + QStringLiteral("/deep/main.js"), "let a;");
    const Reply page = get(host.port(), "/?cast=x.asvp");
    EXPECT_EQ(page.status(), 200);
    EXPECT_EQ(page.body(), "<!doctype html><title>page</title>");
    EXPECT_EQ(page["Content-Type"], "text/html; charset=utf-8");
    const Reply script = get(host.port(), "/deep/ma%69n.js");
    EXPECT_EQ(script.body(), "let a;");
    EXPECT_EQ(script["Content-Type"], "text/javascript; charset=utf-8");
    const Reply missing = get(host.port(), "/missing.js");
    EXPECT_EQ(missing.status(), 404);
    for (const Reply* reply : {&page, &script, &missing}) {
        EXPECT_EQ((*reply)["X-Content-Type-Options"], "nosniff");
        EXPECT_EQ((*reply)["Content-Security-Policy"],
                  "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; "
                  "connect-src 'self'; base-uri 'none'; form-action 'none'; "
                  "frame-ancestors 'none'");
        EXPECT_EQ((*reply)["Referrer-Policy"], "no-referrer");
        EXPECT_EQ((*reply)["Cache-Control"], "no-cache");
    }
}

TEST(Files, OneConnectionTakesManyRequests)
{
    RunningHost host;
    writeFile(host.scene.webFolder() + QStringLiteral("/a.json"), "{}");
    RawClient client(host.port());
    // Two at once, then one after the other.
    client.send(getText(host.port(), "/") + getText(host.port(), "/a.json"));
    EXPECT_EQ(client.receive().body(), "<!doctype html><title>page</title>");
    EXPECT_EQ(client.receive().body(), "{}");
    client.send("HEAD" + getText(host.port(), "/a.json").substr(3));
    const Reply head = client.receive(true);
    EXPECT_EQ(head["Content-Length"], "2");
    EXPECT_EQ(head["Content-Type"], "application/json");
    client.send(getText(host.port(), "/missing"));
    EXPECT_EQ(client.receive().status(), 404);
    client.send(getText(host.port(), "/a.json", "Connection: close\r\n"));
    EXPECT_EQ(client.receive().body(), "{}");
    EXPECT_EQ(client.receiveRest(), "");
}

TEST(Files, BodyOfAGetIsNotTakenForTheNextRequest)
{
    RunningHost host;
    const std::string inner = getText(host.port(), "/missing");
    RawClient client(host.port());
    client.send(
        getText(host.port(), "/", "Content-Length: " + std::to_string(inner.size()) + "\r\n") +
        inner);
    EXPECT_EQ(client.receive().status(), 200);
    EXPECT_EQ(client.receiveRest(), "");
}

class OutsidePath : public testing::TestWithParam<const char*>
{
};

/// Lies beside the web folder, and inside of the folder above it.
constexpr char kSecret[] = "the secret outside";

TEST_P(OutsidePath, IsNotServed)
{
#ifdef Q_OS_WIN
    if (std::string(GetParam()) == "/link.html")
        GTEST_SKIP() << "what Qt makes as a link on Windows is a shortcut, a plain file";
#endif
    RunningHost host;
    writeFile(host.scene.path(QStringLiteral("secret.html")), kSecret);
    writeFile(host.scene.path(QStringLiteral("web-other/secret.html")), kSecret);
    writeFile(host.scene.webFolder() + QStringLiteral("/deep/inside.html"), "inside");
    writeFile(host.scene.webFolder() + QStringLiteral("/.hidden.html"), kSecret);
    writeFile(host.scene.webFolder() + QStringLiteral("/.git/secret.html"), kSecret);
    QFile::link(host.scene.path(QStringLiteral("secret.html")),
                host.scene.webFolder() + QStringLiteral("/link.html"));
    QFile::link(host.scene.path(QStringLiteral("web-other")),
                host.scene.webFolder() + QStringLiteral("/linked"));
    QFile::link(QStringLiteral("/etc"), host.scene.webFolder() + QStringLiteral("/etc"));

    RawClient client(host.port());
    client.send(getText(host.port(), GetParam()));
    const Reply reply = client.receive();
    EXPECT_TRUE(reply.status() == 404 || reply.status() == 400) << reply;
    EXPECT_EQ(reply.body().find(kSecret), std::string::npos);
    const Reply inside = get(host.port(), "/deep/inside.html");
    EXPECT_EQ(inside.body(), "inside") << inside;
}

INSTANTIATE_TEST_SUITE_P(
    Files, OutsidePath,
    testing::Values("/../secret.html", "/deep/../../secret.html", "/./../secret.html",
                    "/..//secret.html", "/%2e%2e%2fsecret.html", "/%2e%2e/secret.html",
                    "/%2E%2E/secret.html", "/.%2e/secret.html", "/%252e%252e/secret.html",
                    "/..%2fsecret.html", "/..%5csecret.html", "/..\\secret.html",
                    "/%5c..%5csecret.html", "/deep/..%2f..%2fsecret.html",
                    "/%c0%ae%c0%ae/secret.html", "/../web-other/secret.html", "/link.html",
                    "/linked/secret.html", "/etc/passwd", "//etc/passwd", "/etc%2fpasswd",
                    "/index.html%00", "/%00/../secret.html", "/index.html%", "/index.html%2",
                    "/%zz", "/deep", "/deep/", "/index.html/", "/.", "/..", "/.hidden.html",
                    "/.git/secret.html", "/c:/secret.html", "/index.html::$DATA"));

struct MalformedCase
{
    const char* request;
    unsigned status;
};

class Malformed : public testing::TestWithParam<MalformedCase>
{
};

TEST_P(Malformed, IsRefusedAndTheHostServesOn)
{
    RunningHost host;
    std::string text = GetParam().request;
    const std::string here = "127.0.0.1:" + std::to_string(host.port());
    for (std::size_t at = text.find('@'); at != std::string::npos; at = text.find('@'))
        text.replace(at, 1, here);
    EXPECT_EQ(request(host.port(), text).status(), GetParam().status) << text;
    EXPECT_EQ(get(host.port(), "/").status(), 200);
}

INSTANTIATE_TEST_SUITE_P(
    Files, Malformed,
    testing::Values(
        MalformedCase{"hello\r\n\r\n", 400}, MalformedCase{"GET /\r\n\r\n", 400},
        MalformedCase{"GET / HTTP/9.9\r\nHost: @\r\n\r\n", 400},
        MalformedCase{"GET / HTTP/1.1\r\nHost @\r\n\r\n", 400},
        MalformedCase{"GET index.html HTTP/1.1\r\nHost: @\r\n\r\n", 400},
        MalformedCase{"GET http://@/ HTTP/1.1\r\nHost: @\r\n\r\n", 400},
        MalformedCase{"OPTIONS * HTTP/1.1\r\nHost: @\r\n\r\n", 400},
        MalformedCase{"\x16\x03\x01\x02\r\n\r\n", 400},
        MalformedCase{"POST /SVP_WebInterface HTTP/1.1\r\nHost: @\r\nContent-Length: -1\r\n\r\n",
                      400},
        MalformedCase{"POST /SVP_WebInterface HTTP/1.1\r\nHost: @\r\nContent-Length: x\r\n\r\n",
                      400},
        MalformedCase{"POST /SVP_WebInterface HTTP/1.1\r\nHost: @\r\nContent-Length: 1\r\n"
                      "Transfer-Encoding: chunked\r\n\r\n0\r\n\r\n",
                      400},
        MalformedCase{"POST /SVP_WebInterface HTTP/1.1\r\nHost: @\r\nTransfer-Encoding: chunked"
                      "\r\n\r\nnot a length\r\n",
                      400},
        MalformedCase{"PUT /index.html HTTP/1.1\r\nHost: @\r\nContent-Length: 1\r\n\r\nx", 405},
        MalformedCase{"DELETE /index.html HTTP/1.1\r\nHost: @\r\n\r\n", 405},
        MalformedCase{"OPTIONS / HTTP/1.1\r\nHost: @\r\n\r\n", 405},
        MalformedCase{"POST / HTTP/1.1\r\nHost: @\r\nContent-Length: 1\r\n\r\nx", 405},
        MalformedCase{"POST /Other_Name HTTP/1.1\r\nHost: @\r\nContent-Length: 1\r\n\r\nx", 405},
        MalformedCase{"GET /SVP_WebInterface HTTP/1.1\r\nHost: @\r\n\r\n", 405},
        MalformedCase{"GET /ws HTTP/1.1\r\nHost: @\r\n\r\n", 426},
        MalformedCase{"GET /ws HTTP/1.1\r\nHost: @\r\nConnection: Upgrade\r\nUpgrade: websocket"
                      "\r\nSec-WebSocket-Version: 13\r\n\r\n",
                      400},
        MalformedCase{"GET /other HTTP/1.1\r\nHost: @\r\nConnection: Upgrade\r\nUpgrade: websocket"
                      "\r\nSec-WebSocket-Version: 13\r\nSec-WebSocket-Key: "
                      "dGhlIHNhbXBsZSBub25jZQ==\r\n\r\n",
                      404}));

TEST(Files, RawNulInTheRequestLineIsRefused)
{
    RunningHost host;
    std::string text = getText(host.port(), "/index.html!x");
    text[text.find('!')] = '\0';
    EXPECT_EQ(request(host.port(), text).status(), 400);
}

TEST(Files, MethodsAreNamed)
{
    RunningHost host;
    const std::string field = "Host: 127.0.0.1:" + std::to_string(host.port()) + "\r\n\r\n";
    EXPECT_EQ(request(host.port(), "DELETE / HTTP/1.1\r\n" + field)["Allow"], "GET, HEAD");
    EXPECT_EQ(get(host.port(), "/SVP_WebInterface")["Allow"], "POST");
}

} // namespace
