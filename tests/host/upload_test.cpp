// Files of the atlas on their way to the disk.

#include "tests/host/client.h"
#include "tests/host/host_process.h"
#ifdef Q_OS_WIN
#include "tests/support/heldfile.h"
#endif

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>

using namespace hosttest;

namespace {

const std::string kBeginning = "Made up\nDEPTHS (M):0,5,10\n";

QString folderOf(const RunningHost& host)
{
    return host.scene.dataFolder() + QStringLiteral("/Ardentide/qrvdata/woa");
}

QStringList storedBy(const RunningHost& host)
{
    return QDir(folderOf(host)).entryList(QDir::Files | QDir::Hidden, QDir::Name);
}

/// A file of the atlas in form, of a size in bytes.
std::string fileOf(std::size_t size)
{
    std::string text = kBeginning;
    while (text.size() < size)
        text += "-77.5,-178.5,34.1" + std::to_string(text.size()) + "\n";
    text.resize(size);
    return text;
}

std::string headOf(const RunningHost& host, const std::string& path, const std::string& fields)
{
    return "PUT " + path + " HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(host.port()) + "\r\n" +
           fields + "\r\n";
}

Reply put(const RunningHost& host, const std::string& path, const std::string& body)
{
    return request(host.port(),
                   headOf(host, path, "Content-Length: " + std::to_string(body.size()) + "\r\n") +
                       body);
}

TEST(Upload, IsStoredWholeUnderItsName)
{
    RunningHost host;
    // Both sides of a piece's size, and far beyond.
    for (const std::size_t size : {kBeginning.size(), std::size_t{65535}, std::size_t{65536},
                                   std::size_t{65537}, std::size_t{40} << 20}) {
        const std::string text = fileOf(size);
        const Reply reply = put(host, "/api/atlas/salinity?name=S%C3%BCd%20s.csv", text);
        ASSERT_EQ(reply.status(), 200) << reply.body();
        const QString path = folderOf(host) + QString::fromUtf8("/Süd s.csv");
        EXPECT_EQ(
            QJsonDocument::fromJson(QByteArray::fromStdString(reply.body())).object(),
            (QJsonObject{{QStringLiteral("path"), path}, {QStringLiteral("size"), double(size)}}));
        EXPECT_TRUE(readFile(path) == QByteArray::fromStdString(text)) << size;
    }
    EXPECT_EQ(put(host, "/api/atlas/temperature?name=t.csv", kBeginning).status(), 200);
    EXPECT_EQ(storedBy(host),
              (QStringList{QString::fromUtf8("Süd s.csv"), QStringLiteral("t.csv")}));
}

TEST(Upload, MayComeInChunksAndBeHeldBack)
{
    RunningHost host;
    const std::string path = "/api/atlas/salinity?name=a.csv";
    const Reply chunked =
        request(host.port(), headOf(host, path, "Transfer-Encoding: chunked\r\n") +
                                 "8\r\nMade up\n\r\n5\r\n(M):0\r\n1;x=y\r\n\n\r\n0\r\n\r\n");
    ASSERT_EQ(chunked.status(), 200) << chunked.body();
    EXPECT_EQ(readFile(folderOf(host) + QStringLiteral("/a.csv")), "Made up\n(M):0\n");

    RawClient client(host.port());
    client.send(headOf(host, path, "Expect: 100-continue\r\nContent-Length: 26\r\n"));
    EXPECT_EQ(client.receive().status(), 100);
    client.send(kBeginning);
    EXPECT_EQ(client.receive().status(), 200);
    EXPECT_EQ(readFile(folderOf(host) + QStringLiteral("/a.csv")),
              QByteArray::fromStdString(kBeginning));
}

TEST(Upload, ThatIsNoAtlasFileLeavesTheOlderOne)
{
    RunningHost host;
    const std::string path = "/api/atlas/temperature?name=t.csv";
    ASSERT_EQ(put(host, path, kBeginning).status(), 200);
    for (const std::string& text : {std::string(), std::string("Depth,Speed\n0,1500\n10,1501\n"),
                                    std::string(std::size_t{5} << 20, 'x')}) {
        const Reply reply = put(host, path, text);
        EXPECT_EQ(reply.status(), 422);
        EXPECT_EQ(reply.body(), "t.csv does not look like a file of the atlas: its second line "
                                "should name the depths of the levels behind a colon.\n");
    }
    EXPECT_EQ(readFile(folderOf(host) + QStringLiteral("/t.csv")),
              QByteArray::fromStdString(kBeginning));
    EXPECT_EQ(storedBy(host), QStringList{QStringLiteral("t.csv")});
}

TEST(Upload, HasASizeThatIsTaken)
{
    RunningHost host({QStringLiteral("--atlas-file-bytes"), QStringLiteral("1048576")});
    const std::string path = "/api/atlas/salinity?name=s.csv";
    ASSERT_EQ(put(host, path, fileOf(1048576)).status(), 200);
    const Reply large = put(host, path, fileOf(1048577));
    EXPECT_EQ(large.status(), 413);
    EXPECT_EQ(large.body(), "The body of the request is too long; at most 1 MiB are taken.\n");

    // In chunks it shows on the way only.
    const std::string chunk = fileOf(0x80000);
    RawClient client(host.port());
    client.send(headOf(host, path, "Transfer-Encoding: chunked\r\n"));
    for (int i = 0; i < 2; ++i)
        client.send("80000\r\n" + chunk + "\r\n");
    client.send("1\r\nx\r\n0\r\n\r\n");
    const Reply late = client.receive();
    EXPECT_EQ(late.status(), 413);
    EXPECT_EQ(late.body(), "The file is too large; at most 1 MiB are taken.\n");
    EXPECT_TRUE(readFile(folderOf(host) + QStringLiteral("/s.csv")) ==
                QByteArray::fromStdString(fileOf(1048576)));
    EXPECT_EQ(storedBy(host), QStringList{QStringLiteral("s.csv")});
    // Other bodies have their own limit.
    EXPECT_EQ(request(host.port(), "POST /SVP_WebInterface HTTP/1.1\r\nHost: 127.0.0.1:" +
                                       std::to_string(host.port()) +
                                       "\r\nContent-Length: 33554433\r\n\r\n")
                  .status(),
              413);
}

TEST(Upload, ThatBreaksOffLeavesNothing)
{
    RunningHost host;
    {
        RawClient client(host.port());
        client.send(headOf(host, "/api/atlas/salinity?name=s.csv", "Content-Length: 100000\r\n") +
                    fileOf(70000));
        ASSERT_TRUE(eventually([&] { return QDir(folderOf(host)).exists(); }));
    }
    EXPECT_TRUE(eventually([&] { return storedBy(host).isEmpty(); }));
}

TEST(Upload, NeedsANameThatLeadsNowhereElse)
{
    RunningHost host;
    for (const char* query : {"", "?name=", "?name=..%2Fx", "?name=..", "?name=a%5Cb",
                              "?name=%2Fetc%2Fx", "?name=a%00b", "?name=.x", "?other=x",
                              "?name=NUL", "?name=con.csv", "?name=com1.x.csv"}) {
        const Reply reply = put(host, std::string("/api/atlas/salinity") + query, kBeginning);
        EXPECT_EQ(reply.status(), 400) << query;
        EXPECT_EQ(reply.body(), "The file cannot be stored under this name. Rename it.\n");
    }
    EXPECT_FALSE(QDir(folderOf(host)).exists());
    EXPECT_EQ(put(host, "/api/atlas/pressure?name=x", kBeginning).status(), 405);
}

TEST(Upload, IsOneOfAFew)
{
    RunningHost host({QStringLiteral("--uploads"), QStringLiteral("1")});
    RawClient first(host.port());
    first.send(headOf(host, "/api/atlas/salinity?name=s.csv", "Content-Length: 26\r\n"));
    ASSERT_TRUE(eventually([&] { return QDir(folderOf(host)).exists(); }));
    EXPECT_EQ(put(host, "/api/atlas/temperature?name=t.csv", kBeginning).status(), 503);
    first.send(kBeginning);
    EXPECT_EQ(first.receive().status(), 200);
    EXPECT_EQ(put(host, "/api/atlas/temperature?name=t.csv", kBeginning).status(), 200);
}

TEST(Upload, ThatCannotBeWrittenSaysSo)
{
    RunningHost host;
    writeFile(folderOf(host), "a file where the folder should be");
    const Reply reply = put(host, "/api/atlas/salinity?name=s.csv", kBeginning);
    EXPECT_EQ(reply.status(), 500);
    EXPECT_NE(reply.body().find("s.csv cannot be written"), std::string::npos);
}

#ifdef Q_OS_WIN
TEST(Upload, WaitsForAFileThatIsHeldForAMoment)
{
    RunningHost host;
    const std::string path = "/api/atlas/salinity?name=s.csv";
    ASSERT_EQ(put(host, path, kBeginning).status(), 200);
    const std::string text = fileOf(1000);
    const QString stored = folderOf(host) + QStringLiteral("/s.csv");
    {
        const HeldFile held(stored);
        ASSERT_TRUE(held.isHeld());
        const Reply refused = put(host, path, text);
        EXPECT_EQ(refused.status(), 507);
        EXPECT_NE(refused.body().find("s.csv cannot be written: "), std::string::npos) << refused;
        EXPECT_EQ(readFile(stored).toStdString(), kBeginning);
        EXPECT_EQ(storedBy(host), QStringList(QStringLiteral("s.csv")));
    }
    auto held = std::make_unique<FileHeldHere>(stored);
    ASSERT_TRUE(held->isHeld());
    Reply reply;
    std::thread sender([&] { reply = put(host, path, text); });
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_EQ(readFile(stored).toStdString(), kBeginning);
    held.reset();
    sender.join();
    EXPECT_EQ(reply.status(), 200) << reply;
    EXPECT_EQ(readFile(stored).toStdString(), text);
}
#endif

TEST(Upload, DoesNotKeepTheHostFromStopping)
{
    RunningHost host;
    RawClient client(host.port());
    client.send(headOf(host, "/api/atlas/salinity?name=s.csv", "Content-Length: 100000\r\n") +
                fileOf(70000));
    ASSERT_TRUE(eventually([&] { return QDir(folderOf(host)).exists(); }));
    host.process.terminate();
    EXPECT_EQ(host.process.awaitExit(), 0);
    EXPECT_EQ(storedBy(host), QStringList());
}

} // namespace
