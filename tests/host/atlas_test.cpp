// The settings of the World Ocean Atlas and the files that are handed in for it.

#include "host/atlas_settings.h"
#include "platform/filelock.h"
#include "settings/tokenstore.h"
#include "settings/tokenstore_mirror.h"
#include "tests/host/client.h"
#include "tests/host/host_process.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

using namespace hosttest;

namespace {

/// A file that is one of the atlas in form: made up, of one cell.
const QByteArray kAtlasText =
    "Made up\r\n#COMMA SEPARATED LATITUDE, LONGITUDE, AND VALUES AT DEPTHS "
    "(M):0,5,10\r\n59.5,10.5,35.1,35.2,35.3\r\n";

QString mirrorOf(const RunningHost& host)
{
    return host.scene.dataFolder() + QStringLiteral("/Ardentide/tqrv/QRVTokens.json");
}

QString lockOf(const RunningHost& host)
{
#ifdef Q_OS_WIN
    Q_UNUSED(host)
    return settings::systemTokenPaths().lock; // the same for all hosts
#else
    return host.scene.dataFolder() + QStringLiteral("/Ardentide/temp/token.lck");
#endif
}

QString folderOf(const RunningHost& host)
{
    return host.scene.dataFolder() + QStringLiteral("/Ardentide/qrvdata/woa");
}

std::string putText(const RunningHost& host, const std::string& path, std::string_view body,
                    const std::string& fields = {})
{
    std::string text = postText(host.port(), path, body, fields);
    return text.replace(0, 4, "PUT");
}

Reply put(const RunningHost& host, const std::string& path, std::string_view body,
          const std::string& fields = {})
{
    return request(host.port(), putText(host, path, body, fields));
}

Reply putSettings(const RunningHost& host, bool use, const QString& salinity,
                  const QString& temperature)
{
    const QJsonObject settings{{QStringLiteral("use"), use},
                               {QStringLiteral("salinity"), salinity},
                               {QStringLiteral("temperature"), temperature}};
    return put(host, "/api/atlas", QJsonDocument(settings).toJson().toStdString());
}

QJsonObject objectOf(const Reply& reply)
{
    EXPECT_EQ(reply.status(), 200) << reply.body();
    EXPECT_EQ(reply["Content-Type"], "application/json");
    return QJsonDocument::fromJson(QByteArray::fromStdString(reply.body())).object();
}

QJsonObject settingsOf(const RunningHost& host)
{
    return objectOf(get(host.port(), "/api/atlas"));
}

settings::TokenMap tokensOf(const RunningHost& host)
{
    settings::TokenMirror mirror;
    EXPECT_EQ(mirror.parse(readFile(mirrorOf(host))), settings::TokenMirror::Parsed::Whole);
    return mirror.tokens();
}

QJsonObject fileObject(const QString& path, bool isThere, int size, const QString& fault)
{
    return {{QStringLiteral("path"), path},
            {QStringLiteral("there"), isThere},
            {QStringLiteral("size"), size},
            {QStringLiteral("fault"), fault}};
}

TEST(Atlas, IsOffAndHasNoFilesAtFirst)
{
    RunningHost host;
    const QJsonObject nothing = fileObject(QString(), false, 0, QString());
    EXPECT_EQ(settingsOf(host), (QJsonObject{{QStringLiteral("use"), false},
                                             {QStringLiteral("salinity"), nothing},
                                             {QStringLiteral("temperature"), nothing},
                                             {QStringLiteral("folder"), folderOf(host)},
                                             {QStringLiteral("stored"), QJsonArray()}}));
    // Looking at them adds nothing.
    EXPECT_TRUE(tokensOf(host).isEmpty());
    EXPECT_FALSE(QDir(folderOf(host)).exists());
}

TEST(Atlas, SettingsAreTokens)
{
    RunningHost host;
    writeFile(mirrorOf(host), R"({"version":1,"lastsave":"","tokens":[)"
                              R"({"Name":"Other","Descr":"d","Type":0,"Value":2.5},)"
                              R"({"Name":"SVP_WOA_EXTEND","Descr":"","Type":1,"Value":0}]})");
    const QString salinity = host.scene.path(QString::fromUtf8("Süd 測深/s.csv"));
    writeFile(salinity, kAtlasText);
    const QString missing = host.scene.path(QStringLiteral("none.csv"));

    const QJsonObject answer = objectOf(putSettings(host, true, salinity, missing));
    EXPECT_EQ(answer.value(QStringLiteral("use")), true);
    EXPECT_EQ(answer.value(QStringLiteral("salinity")),
              fileObject(salinity, true, kAtlasText.size(), QString()));
    EXPECT_EQ(answer.value(QStringLiteral("temperature")),
              fileObject(missing, false, 0, QStringLiteral("There is no file %1.").arg(missing)));
    EXPECT_EQ(settingsOf(host), answer);

    const settings::TokenMap tokens = tokensOf(host);
    EXPECT_EQ(tokens.size(), 4);
    const auto expectToken = [&tokens](const char* name, const char* description,
                                       settings::TokenKind kind, const QJsonValue& value) {
        const settings::Token token = tokens.value(QLatin1String(name));
        EXPECT_EQ(token.description, QLatin1String(description)) << name;
        EXPECT_EQ(token.kind, kind) << name;
        EXPECT_EQ(token.value, value) << name;
    };
    expectToken("SVP_WOA_EXTEND", "Use WOA for svp extentions", settings::TokenKind::Integer, 1);
    expectToken("SVP_WOA_FILE_S", "WOA database Salinity file", settings::TokenKind::Text,
                salinity);
    expectToken("SVP_WOA_FILE_T", "WOA database Temperature file", settings::TokenKind::Text,
                missing);
    expectToken("Other", "d", settings::TokenKind::Float, 2.5);

    // Off again, the files stay chosen.
    objectOf(putSettings(host, false, salinity, missing));
    EXPECT_EQ(tokensOf(host).value(QStringLiteral("SVP_WOA_EXTEND")).value, 0);
    EXPECT_EQ(settingsOf(host).value(QStringLiteral("salinity")),
              answer.value(QStringLiteral("salinity")));
}

TEST(Atlas, SettingsThatMakeNoSenseAreRefused)
{
    RunningHost host;
    const std::string longest(4096, 'x');
    const std::string files = R"("salinity":"s","temperature":"t"})";
    for (const std::string& body :
         {std::string(), std::string("no JSON"), std::string("[]"), std::string("{}"),
          R"({"use":1,)" + files, R"({"use":"true",)" + files,
          std::string(R"({"use":true,"salinity":"s"})"),
          std::string(R"({"use":true,"salinity":null,"temperature":"t"})"),
          std::string(R"({"use":true,"salinity":"a\nb","temperature":"t"})"),
          std::string(R"({"use":true,"salinity":"a\u0000b","temperature":"t"})"),
          R"({"use":true,"salinity":"x)" + longest + R"(","temperature":"t"})"}) {
        const Reply reply = put(host, "/api/atlas", body);
        EXPECT_EQ(reply.status(), 400) << body.substr(0, 80);
        EXPECT_NE(reply.body().find("The settings need"), std::string::npos);
    }
    EXPECT_FALSE(QFile::exists(mirrorOf(host)));
    EXPECT_EQ(
        put(host, "/api/atlas", R"({"use":false,"salinity":")" + longest + R"(","temperature":""})")
            .status(),
        200);
    EXPECT_EQ(put(host, "/api/atlas", std::string(65536, ' ')).status(), 400);
    const Reply large = put(host, "/api/atlas", std::string(65537, ' '));
    EXPECT_EQ(large.status(), 413);
    EXPECT_EQ(large.body(), "The body of the request is too long; at most 64 KiB are taken.\n");
}

TEST(Atlas, HeldLockIsToldSoonAndKeepsNobodyWaiting)
{
    RunningHost host;
    settingsOf(host);
    const QByteArray before = readFile(mirrorOf(host));
    platform::FileLock lock;
    ASSERT_TRUE(lock.open(lockOf(host)));
    ASSERT_TRUE(lock.tryLock());

    RawClient waiting(host.port());
    QElapsedTimer clock;
    clock.start();
    waiting.send(putText(host, "/api/atlas", R"({"use":true,"salinity":"s","temperature":"t"})"));
    EXPECT_EQ(get(host.port(), "/").status(), 200);
    EXPECT_LT(clock.elapsed(), 450);
    const Reply refused = waiting.receive();
    EXPECT_EQ(refused.status(), 503);
    EXPECT_EQ(refused.body(), "The atlas settings were not stored: another program is using the "
                              "survey system's settings. Try again in a moment.\n");
    EXPECT_EQ(get(host.port(), "/api/atlas").status(), 503);
    EXPECT_LT(clock.elapsed(), 5000);
    EXPECT_EQ(readFile(mirrorOf(host)), before);

    lock.close();
    EXPECT_EQ(settingsOf(host).value(QStringLiteral("use")), false);
}

TEST(Atlas, UnreadableMirrorIsToldAndNotOverwritten)
{
    RunningHost host;
    writeFile(mirrorOf(host), "{\"tokens\":[");
    const Reply shown = get(host.port(), "/api/atlas");
    EXPECT_EQ(shown.status(), 503);
    EXPECT_EQ(shown.body(),
              "The atlas settings cannot be shown: the survey system's settings cannot be read and "
              "written. Look whether the folder tqrv of the data folder may be.\n");
    EXPECT_EQ(putSettings(host, true, QString(), QString()).status(), 503);
    EXPECT_EQ(readFile(mirrorOf(host)), "{\"tokens\":[");
}

TEST(Atlas, IsForTheHostsOwnPagesAlone)
{
    RunningHost host;
    const std::string foreign = "Origin: http://evil.example\r\n";
    EXPECT_EQ(get(host.port(), "/api/atlas", foreign).status(), 403);
    EXPECT_EQ(put(host, "/api/atlas", "{}", foreign).status(), 403);
    EXPECT_EQ(
        put(host, "/api/atlas/salinity?name=s.csv", kAtlasText.toStdString(), foreign).status(),
        403);
    const std::string rebound = "PUT /api/atlas HTTP/1.1\r\nHost: evil.example\r\n"
                                "Content-Length: 0\r\n\r\n";
    EXPECT_EQ(request(host.port(), rebound).status(), 403);
    EXPECT_FALSE(QDir(folderOf(host)).exists());

    const std::string field =
        " HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(host.port()) + "\r\n\r\n";
    const Reply removed = request(host.port(), "DELETE /api/atlas" + field);
    EXPECT_EQ(removed.status(), 405);
    EXPECT_EQ(removed["Allow"], "GET, HEAD, PUT");
    const Reply read = request(host.port(), "GET /api/atlas/temperature" + field);
    EXPECT_EQ(read.status(), 405);
    EXPECT_EQ(read["Allow"], "PUT");
}

TEST(AtlasFile, IsJudgedByItsBeginning)
{
    const auto isTaken = [](const QByteArray& text) {
        return host::atlasTextFault(text, QStringLiteral("x.csv")).isEmpty();
    };
    EXPECT_TRUE(isTaken(kAtlasText));
    EXPECT_TRUE(isTaken("title\n:0\n"));
    EXPECT_TRUE(isTaken("\n(M): 5.5 ,10\n"));
    EXPECT_FALSE(isTaken(""));
    EXPECT_FALSE(isTaken("a : 0,5 in the title alone\nlatitude,longitude\n1,2,3\n"));
    EXPECT_FALSE(isTaken("title\n:0,5"));
    EXPECT_FALSE(isTaken("title\nDEPTHS:\n"));
    EXPECT_FALSE(isTaken("title\nDEPTHS: shallow, deep\n"));
    EXPECT_FALSE(isTaken("title\nDEPTHS:-5,0\n"));
    EXPECT_FALSE(isTaken("title\nno depths\n1:2\n"));
    EXPECT_FALSE(isTaken(QByteArray(host::kAtlasBeginning, 'x')));
    EXPECT_EQ(host::atlasTextFault("x", QStringLiteral("x.csv")).toStdString(),
              "x.csv does not look like a file of the atlas: its second line should name the "
              "depths of the levels behind a colon.");

    Scene scene;
    EXPECT_EQ(host::atlasFileFault(scene.dataFolder()),
              QStringLiteral("There is no file %1.").arg(scene.dataFolder()));
    EXPECT_EQ(host::atlasFileFault(scene.webFolder()),
              QStringLiteral("%1 is no file.").arg(scene.webFolder()));
}

TEST(AtlasFile, HasTheNameOfOneFile)
{
    for (const char* name : {"a", "woa23 t00_04.csv", "Süd 測深.csv", "a..b"})
        EXPECT_TRUE(host::isAtlasFileName(QString::fromUtf8(name))) << name;
    EXPECT_TRUE(host::isAtlasFileName(QString(200, QLatin1Char('x'))));
    EXPECT_FALSE(host::isAtlasFileName(QString(201, QLatin1Char('x'))));
    for (const char* name : {"", ".", "..", ".hidden", "a.", " a", "a ", "a/b", "../a", "a\\b",
                             "c:a", "a*", "a?", "a\"", "a<b", "a>b", "a|b", "a\nb", "a\x7F"})
        EXPECT_FALSE(host::isAtlasFileName(QString::fromUtf8(name))) << name;
}

} // namespace
