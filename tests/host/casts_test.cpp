// The list of casts and the folders it comes from.

#include "host/data_folder.h"
#include "tests/host/client.h"
#include "tests/host/host_process.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <gtest/gtest.h>

using namespace hosttest;

namespace {

QJsonObject listed(unsigned short port)
{
    const Reply reply = get(port, "/api/casts");
    EXPECT_EQ(reply.status(), 200);
    EXPECT_EQ(reply["Content-Type"], "application/json");
    return QJsonDocument::fromJson(QByteArray::fromStdString(reply.body())).object();
}

QStringList names(const QJsonObject& list)
{
    QStringList all;
    const QJsonArray casts = list.value(QStringLiteral("casts")).toArray();
    for (const QJsonValue& cast : casts)
        all += cast.toObject().value(QStringLiteral("name")).toString();
    return all;
}

TEST(Casts, TellNameKindSizeAndTime)
{
    RunningHost host;
    const QString folder = host.scene.profileFolder();
    writeFile(folder + QStringLiteral("/Deep.VP2"), "12345");
    const QDateTime written(QDate(2026, 11, 15), QTime(12, 34, 56), Qt::UTC);
    {
        QFile file(folder + QStringLiteral("/Deep.VP2"));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(written, QFileDevice::FileModificationTime));
    }
    const QJsonObject list = listed(host.port());
    EXPECT_EQ(list.value(QStringLiteral("folder")).toString().toStdString(), folder.toStdString());
    const QJsonArray casts = list.value(QStringLiteral("casts")).toArray();
    ASSERT_EQ(casts.size(), 1);
    EXPECT_EQ(casts[0].toObject(),
              (QJsonObject{{QStringLiteral("name"), QStringLiteral("Deep.VP2")},
                           {QStringLiteral("kind"), QStringLiteral("vp2")},
                           {QStringLiteral("size"), 5},
                           {QStringLiteral("modified"), QStringLiteral("2026-11-15T12:34:56Z")}}));
}

TEST(Casts, MayHaveFurtherEndings)
{
    RunningHost host;
    const QString folder = host.scene.profileFolder() + QLatin1Char('/');
    for (const char* name : {"a.asvp", "b.COL", "c.x.dat", "d.dat", "e.txt", "f Ø.söl"})
        writeFile(folder + QString::fromUtf8(name), "x");
    const auto namesOf = [&host](const char* query) {
        const Reply reply = get(host.port(), std::string("/api/casts") + query);
        return names(QJsonDocument::fromJson(QByteArray::fromStdString(reply.body())).object())
            .join(QLatin1Char('|'))
            .toStdString();
    };
    EXPECT_EQ(namesOf(""), "a.asvp");
    EXPECT_EQ(namesOf("?also=.col"), "a.asvp|b.COL");
    EXPECT_EQ(namesOf("?also=.col&also=.x.dat"), "a.asvp|b.COL|c.x.dat");
    EXPECT_EQ(namesOf("?also=.s%C3%B6l"), "a.asvp|f Ø.söl");
    EXPECT_EQ(namesOf("?also=&also"), "a.asvp");
    EXPECT_EQ(namesOf("?other=.dat"), "a.asvp");
}

TEST(Casts, AreTheFilesOfTheFolderWithACastsSuffix)
{
    RunningHost host;
    const QString folder = host.scene.profileFolder() + QLatin1Char('/');
    for (const char* name : {"b.asvp", "a.ssp", "C.vp2", "d.aml", "e.amlx", "f.valeport", "g.ASVP",
                             "Tiefe Süd 測深.asvp", "two.dots.ssp"})
        writeFile(folder + QString::fromUtf8(name), "x");
    for (const char* name : {"SVPExtension.txt", "asvp", ".hidden.asvp", "x.asvp.bak", "x.asvpx",
                             "deeper/inside.asvp"})
        writeFile(folder + QString::fromUtf8(name), "x");
    ASSERT_TRUE(QDir().mkpath(folder + QStringLiteral("folder.asvp")));
#ifndef Q_OS_WIN
    ASSERT_TRUE(QFile::link(folder + QStringLiteral("b.asvp"), folder + QStringLiteral("l.asvp")));
#endif
    EXPECT_EQ(
        names(listed(host.port())),
        (QStringList{QStringLiteral("C.vp2"), QString::fromUtf8("Tiefe Süd 測深.asvp"),
                     QStringLiteral("a.ssp"), QStringLiteral("b.asvp"), QStringLiteral("d.aml"),
                     QStringLiteral("e.amlx"), QStringLiteral("f.valeport"),
                     QStringLiteral("g.ASVP"), QStringLiteral("two.dots.ssp")}));
#ifdef Q_OS_WIN
    GTEST_SKIP() << "but for links, which Windows lets only administrators make";
#endif
}

TEST(Casts, ComeFromTheFolderThatTheIniNamesNow)
{
    RunningHost host;
    const QString ini = host.scene.dataFolder() + QStringLiteral("/Ardentide/runcf/AbsCoeff.ini");
    const QString other = host.scene.path(QString::fromUtf8("Profile, Süd; #2"));
    writeFile(other + QStringLiteral("/elsewhere.asvp"), "x");
    EXPECT_TRUE(names(listed(host.port())).isEmpty());

    QString withBackslashes = other;
    withBackslashes.replace(QLatin1Char('/'), QLatin1Char('\\'));
    writeFile(ini, "; from the survey system\r\n[other]\r\nInitialDir=/nowhere\r\n[AbsLoc]\r\n"
                   "initialdir = " +
                       withBackslashes.toUtf8() + "\r\n");
    QJsonObject list = listed(host.port());
    EXPECT_EQ(list.value(QStringLiteral("folder")).toString(), other);
    EXPECT_EQ(names(list), QStringList{QStringLiteral("elsewhere.asvp")});

    writeFile(ini, "[absLoc]\nInitialDir=\"" + other.toUtf8() + "\"\n");
    EXPECT_EQ(listed(host.port()).value(QStringLiteral("folder")).toString(), other);

    writeFile(ini, "[absLoc]\nSomethingElse=1\n");
    EXPECT_EQ(listed(host.port()).value(QStringLiteral("folder")).toString(),
              host.scene.profileFolder());

    ASSERT_TRUE(QFile::remove(ini));
    EXPECT_EQ(listed(host.port()).value(QStringLiteral("folder")).toString(),
              host.scene.profileFolder());

    writeFile(ini, "[absLoc]\nInitialDir=/there/is/no/such/folder\n");
    EXPECT_TRUE(names(listed(host.port())).isEmpty());
}

TEST(Casts, AreReadOnly)
{
    RunningHost host;
    const std::string field = "Host: 127.0.0.1:" + std::to_string(host.port()) + "\r\n\r\n";
    const Reply refused = request(host.port(), "DELETE /api/casts HTTP/1.1\r\n" + field);
    EXPECT_EQ(refused.status(), 405);
    EXPECT_EQ(refused["Allow"], "GET, HEAD");
    const Reply head = request(host.port(), "HEAD /api/casts HTTP/1.1\r\n" + field, true);
    EXPECT_EQ(head.status(), 200);
    EXPECT_EQ(head["Content-Length"], std::to_string(get(host.port(), "/api/casts").body().size()));
}

TEST(DataFolder, IsLaidOut)
{
    Scene scene(QString::fromUtf8("Données 測深"));
    writeFile(scene.samplesFolder() + QStringLiteral("/sample.asvp"), "sample");
    writeFile(scene.samplesFolder() + QStringLiteral("/README.md"), "not a cast");
    QFile::setPermissions(scene.samplesFolder() + QStringLiteral("/sample.asvp"),
                          QFileDevice::ReadOwner);
    HostProcess host(scene.arguments());
    ASSERT_TRUE(host.awaitAddress());

    EXPECT_EQ(readFile(scene.dataFolder() + QStringLiteral("/Ardentide/runcf/AbsCoeff.ini")),
              "[absLoc]\nInitialDir=" + scene.profileFolder().toUtf8() + "\n");
    EXPECT_TRUE(QFileInfo(scene.dataFolder() + QStringLiteral("/Ardentide/tqrv")).isDir());
    EXPECT_EQ(readFile(scene.profileFolder() + QStringLiteral("/sample.asvp")), "sample");
    EXPECT_TRUE(QFileInfo(scene.profileFolder() + QStringLiteral("/sample.asvp")).isWritable());
    EXPECT_FALSE(QFileInfo::exists(scene.profileFolder() + QStringLiteral("/README.md")));
    const QJsonObject list = listed(host.port());
    EXPECT_EQ(list.value(QStringLiteral("folder")).toString(), scene.profileFolder());
    EXPECT_EQ(names(list), QStringList{QStringLiteral("sample.asvp")});

    PageClient page(host.port());
    page.request("about");
    EXPECT_EQ(page.receivePacket().value(QStringLiteral("programData")).toString(),
              scene.dataFolder());
}

TEST(DataFolder, IsUtf8WhateverTheLocale)
{
    for (const char* locale : {"LC_ALL=C", "LC_ALL=POSIX", "LC_ALL=nowhere_NW"}) {
        SCOPED_TRACE(locale);
        Scene scene(QString::fromUtf8("Données 測深"));
        HostProcess host(scene.arguments(), {QLatin1String(locale)});
        ASSERT_TRUE(host.awaitAddress());
        EXPECT_EQ(listed(host.port()).value(QStringLiteral("folder")).toString(),
                  scene.profileFolder());
        EXPECT_TRUE(QFileInfo(scene.profileFolder()).isDir());
    }
}

TEST(DataFolder, KeepsADeletedSampleDeleted)
{
    Scene scene;
    writeFile(scene.samplesFolder() + QStringLiteral("/one.asvp"), "1");
    writeFile(scene.samplesFolder() + QStringLiteral("/two.asvp"), "2");
    {
        HostProcess first(scene.arguments());
        ASSERT_TRUE(first.awaitAddress());
        EXPECT_EQ(names(listed(first.port())),
                  (QStringList{QStringLiteral("one.asvp"), QStringLiteral("two.asvp")}));
    }
    ASSERT_TRUE(QFile::remove(scene.profileFolder() + QStringLiteral("/one.asvp")));
    HostProcess second(scene.arguments());
    ASSERT_TRUE(second.awaitAddress());
    EXPECT_EQ(names(listed(second.port())), QStringList{QStringLiteral("two.asvp")});
}

TEST(DataFolder, KeepsWhatIsThere)
{
    Scene scene;
    const QByteArray ini = "[absLoc]\nInitialDir=/somewhere/else\n";
    writeFile(scene.dataFolder() + QStringLiteral("/Ardentide/runcf/AbsCoeff.ini"), ini);
    writeFile(scene.profileFolder() + QStringLiteral("/one.asvp"), "mine");
    writeFile(scene.samplesFolder() + QStringLiteral("/one.asvp"), "sample");
    HostProcess host(scene.arguments());
    ASSERT_TRUE(host.awaitAddress());
    EXPECT_EQ(readFile(scene.dataFolder() + QStringLiteral("/Ardentide/runcf/AbsCoeff.ini")), ini);
    EXPECT_EQ(readFile(scene.profileFolder() + QStringLiteral("/one.asvp")), "mine");
}

} // namespace
