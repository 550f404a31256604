#include "platform/platform.h"
#include "platform/process.h"
#include "tests/places.h"
#include "tests/support/datafolder.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

#ifndef Q_OS_WIN
#include <sys/stat.h>
#endif

TEST(Platform, TheDataRootFollowsTheEnvironment)
{
    const DataFolder folder;
    EXPECT_EQ(platform::dataRoot(),
              folder.programData() + platform::nativePath(QStringLiteral("\\Ardentide\\")));
    qputenv("ProgramData", "");
    EXPECT_EQ(platform::dataRoot(), QString());
    qunsetenv("ProgramData");
    EXPECT_EQ(platform::dataRoot(), QString());
#ifdef Q_OS_WIN
    EXPECT_EQ(platform::defaultProfileFolder(QStringLiteral("C:/x")), QStringLiteral("C:/x"));
    EXPECT_EQ(platform::systemFile(QStringLiteral("C:/x"), QStringLiteral("x")),
              QStringLiteral("C:/x"));
#else
    EXPECT_EQ(platform::defaultProfileFolder(QStringLiteral("C:/x")), QString());
    EXPECT_EQ(platform::systemFile(QStringLiteral("C:/x"), QStringLiteral("x")), QString());
#endif
}

TEST(Platform, FilesWithAFixedPlaceOnWindowsLieBelowTheDataRootElsewhere)
{
    const DataFolder folder;
    const QString onWindows = QStringLiteral("c:\\temp\\a.lck");
#ifdef Q_OS_WIN
    const QString expected = onWindows;
#else
    const QString expected = folder.path(QStringLiteral("temp/a.lck"));
#endif
    EXPECT_EQ(platform::systemFile(onWindows, QStringLiteral("temp/a.lck")), expected);
}

TEST(Platform, BackslashesSeparate)
{
#ifdef Q_OS_WIN
    EXPECT_EQ(platform::nativePath(QStringLiteral("a\\b\\\\c/d")), QStringLiteral("a\\b\\\\c/d"));
#else
    EXPECT_EQ(platform::nativePath(QStringLiteral("a\\b\\\\c/d")), QStringLiteral("a/b//c/d"));
#endif
}

TEST(Platform, NamesOfFiles)
{
    const QString names[] = {QStringLiteral("cast.asvp"), QStringLiteral("a b/größe 測.ssp"),
                             QStringLiteral(".hidden"),   QStringLiteral("con1.asvp"),
                             QStringLiteral("console"),   QStringLiteral("a.nul"),
                             QStringLiteral("com10.ssp"), QStringLiteral("lpt.ssp")};
    for (const QString& name : names)
        EXPECT_TRUE(platform::isFileName(name)) << name.toStdString();
#ifdef Q_OS_WIN
    constexpr bool isFree = false;
#else
    constexpr bool isFree = true;
#endif
    const QString special[] = {
        QStringLiteral("CON"),       QStringLiteral("nul.asvp"),     QStringLiteral("a/Aux.b.ssp"),
        QStringLiteral("prn .asvp"), QStringLiteral("COM1"),         QStringLiteral("lpt9.ssp"),
        QStringLiteral("com0"),      QStringLiteral("com²"),         QStringLiteral("conin$"),
        QStringLiteral("CONOUT$.x"), QStringLiteral("nul/cast.ssp"), QStringLiteral("a.asvp:b"),
        QStringLiteral("a.asvp."),   QStringLiteral("a.asvp "),      QStringLiteral("a./b.ssp"),
        QStringLiteral("a?.asvp"),   QStringLiteral("a*"),           QStringLiteral("a<"),
        QStringLiteral("a>"),        QStringLiteral("a|b"),          QStringLiteral("a\"b"),
        QStringLiteral("a\tb")};
    for (const QString& name : special)
        EXPECT_EQ(platform::isFileName(name), isFree) << name.toStdString();
}

TEST(Platform, DevicesAreKnownOnEverySystem)
{
    for (const char* name : {"NUL", "nul.asvp", "prn .asvp", "COM1", "lpt9.ssp", "conin$", "con:x"})
        EXPECT_TRUE(platform::isDeviceName(QString::fromLatin1(name))) << name;
    for (const char* name : {"", "console", "a.nul", "com10.ssp", "lpt.ssp", "_con", "co n"})
        EXPECT_FALSE(platform::isDeviceName(QString::fromLatin1(name))) << name;
}

TEST(Platform, ModulesAreNamedAsTheSystemNamesThem)
{
    const QString name = platform::moduleFileName(QStringLiteral("svpwebinterface"));
    EXPECT_TRUE(QStringLiteral(SVP_PLUGIN_FILE).endsWith(QLatin1Char('/') + name));
}

TEST(Platform, PatternsAreExpandedWhereTheShellDoesNot)
{
    const DataFolder folder;
    for (const char* name : {"b.cnv", "ä 測.cnv", "a.CNV", "c.txt", "[1] b.txt", "1 b.txt"})
        folder.write(QString::fromUtf8(name), "x");
    const QStringList patterns{folder.path(QStringLiteral("*.cnv")),
                               folder.path(QStringLiteral("[1]*.t?t"))};
    const QStringList others{QStringLiteral("--to"), folder.path(QStringLiteral("none*.cnv")),
                             folder.path(QStringLiteral("c.txt"))};
#ifdef Q_OS_WIN
    const QStringList expected{
        folder.path(QStringLiteral("a.CNV")), folder.path(QStringLiteral("b.cnv")),
        folder.path(QStringLiteral("ä 測.cnv")), folder.path(QStringLiteral("[1] b.txt"))};
#else
    const QStringList& expected = patterns;
#endif
    EXPECT_EQ(platform::expandedPatterns(patterns + others), expected + others);
}

TEST(Platform, TextFilesHaveTheLineEndsOfTheSystem)
{
    EXPECT_EQ(platform::textFileBytes(""), "");
#ifdef Q_OS_WIN
    EXPECT_EQ(platform::textFileBytes("\na\r\nb\n\nc\rd"), "\r\na\r\nb\r\n\r\nc\rd");
#else
    EXPECT_EQ(platform::textFileBytes("\na\r\nb\n\nc\rd"), "\na\r\nb\n\nc\rd");
#endif
}

TEST(Platform, NamesBeyond260LettersWork)
{
    const DataFolder folder;
    QString deep = folder.programData();
    for (int i = 0; i < 8; ++i)
        deep += QLatin1Char('/') + QString(40, QLatin1Char(char('a' + i)));
    ASSERT_GT(deep.size(), 300);
    ASSERT_TRUE(platform::makeFolder(deep));
    const QString path = deep + QStringLiteral("/größe 測.bin");
    const QString backup = path + QStringLiteral("_bck");
    EXPECT_TRUE(platform::replaceFile(path, "old"));
    EXPECT_EQ(platform::replaceFileKeeping(path, backup, "new"), platform::Replaced::Whole);
    QByteArray content;
    EXPECT_TRUE(platform::readFile(path, content));
    EXPECT_EQ(content, "new");
    EXPECT_TRUE(platform::readFile(backup, content));
    EXPECT_EQ(content, "old");
    std::FILE* const stream = platform::openStream(path, "rb");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(std::fgetc(stream), 'n');
    std::fclose(stream);
    EXPECT_FALSE(
        platform::replaceFile(deep + QLatin1Char('/') + QString(300, QLatin1Char('n')), "x"));
    EXPECT_EQ(QDir(deep).entryList(QDir::Files).size(), 2);
}

TEST(Platform, AFileIsReplacedWhole)
{
    const DataFolder folder;
    const QString path = folder.path(QStringLiteral("größe/測.bin"));
    QString error;
    EXPECT_FALSE(platform::replaceFile(path, "x", &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_TRUE(platform::makeFolder(folder.path(QStringLiteral("größe"))));
    EXPECT_TRUE(platform::replaceFile(path, "first"));
    EXPECT_TRUE(platform::replaceFile(path, QByteArray("2\0nd", 4)));
    EXPECT_EQ(bytesOf(path), QByteArray("2\0nd", 4));
    EXPECT_EQ(QDir(folder.path(QStringLiteral("größe"))).entryList(QDir::Files).size(), 1);
    EXPECT_FALSE(platform::replaceFile(folder.path(QStringLiteral("größe")), "x", &error));
    EXPECT_FALSE(platform::replaceFile(QString(), "x", &error));
}

TEST(Platform, AFileIsKeptUnderAFurtherName)
{
    const DataFolder folder;
    const QString path = folder.path(QStringLiteral("a"));
    writeBytes(path, "old");
    EXPECT_EQ(platform::replaceFileKeeping(path, path + QStringLiteral("_bck"), "new"),
              platform::Replaced::Whole);
    EXPECT_EQ(bytesOf(path), "new");
    EXPECT_EQ(bytesOf(path + QStringLiteral("_bck")), "old");
    // A name that is taken is never overwritten.
    EXPECT_FALSE(platform::keepAs(path, path + QStringLiteral("_bck")));
    EXPECT_EQ(bytesOf(path + QStringLiteral("_bck")), "old");
    EXPECT_FALSE(platform::keepAs(folder.path(QStringLiteral("none")), path));
    EXPECT_EQ(bytesOf(path), "new");
}

TEST(Platform, OnlyFilesAreRead)
{
    const DataFolder folder;
    folder.write(QStringLiteral("a"), QByteArray("x\0y", 3));
    QByteArray content;
    EXPECT_TRUE(platform::readFile(folder.path(QStringLiteral("a")), content));
    EXPECT_EQ(content, QByteArray("x\0y", 3));
    EXPECT_FALSE(platform::readFile(folder.path(QStringLiteral("none")), content));
    EXPECT_TRUE(content.isEmpty());
    EXPECT_FALSE(platform::readFile(folder.programData(), content));
}

TEST(Platform, PipesAreNotWaitedFor)
{
#ifdef Q_OS_WIN
    GTEST_SKIP() << "Windows has no pipes in folders; its devices are tested by their names";
#else
    const DataFolder folder;
    writeBytes(folder.path(QStringLiteral("a")), "x");
    const QString pipe = folder.path(QStringLiteral("pipe"));
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    QByteArray content;
    EXPECT_FALSE(platform::readFile(pipe, content));
    EXPECT_EQ(platform::openStream(pipe, "rb"), nullptr);
#endif
}

TEST(Platform, AFileTooLargeForACastIsRefused)
{
    const DataFolder folder;
    folder.write(QStringLiteral("large"), "x");
    QFile file(folder.path(QStringLiteral("large")));
    ASSERT_TRUE(file.resize(platform::maxFileSize + 1));
    QByteArray content;
    EXPECT_FALSE(platform::readFile(file.fileName(), content));
}

TEST(Platform, StreamsOpenFilesOnly)
{
    const DataFolder folder;
    folder.write(QStringLiteral("ü"), "x");
    std::FILE* const stream = platform::openStream(folder.path(QStringLiteral("ü")), "rb");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(std::fgetc(stream), 'x');
    std::fclose(stream);
    EXPECT_EQ(platform::openStream(folder.programData(), "rb"), nullptr);
    EXPECT_EQ(
        platform::openStream(folder.path(QStringLiteral("a")) + QChar(0) + QLatin1Char('b'), "wb"),
        nullptr);
}
