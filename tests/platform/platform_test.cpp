#include "platform/platform.h"
#include "tests/support/datafolder.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

#include <sys/stat.h>

TEST(Platform, TheDataRootFollowsTheEnvironment)
{
    const DataFolder folder;
    EXPECT_EQ(platform::dataRoot(), folder.programData() + QStringLiteral("/Ardentide/"));
    qputenv("ProgramData", "");
    EXPECT_EQ(platform::dataRoot(), QString());
    qunsetenv("ProgramData");
    EXPECT_EQ(platform::dataRoot(), QString());
    EXPECT_EQ(platform::defaultProfileFolder(QStringLiteral("C:/x")), QString());
    EXPECT_EQ(platform::systemFile(QStringLiteral("C:/x"), QStringLiteral("x")), QString());
}

TEST(Platform, FilesWithAFixedPlaceOnWindowsLieBelowTheDataRootElsewhere)
{
    const DataFolder folder;
    EXPECT_EQ(platform::systemFile(QStringLiteral("c:\\temp\\a.lck"), QStringLiteral("temp/a.lck")),
              folder.path(QStringLiteral("temp/a.lck")));
}

TEST(Platform, BackslashesSeparate)
{
    EXPECT_EQ(platform::nativePath(QStringLiteral("a\\b\\\\c/d")), QStringLiteral("a/b//c/d"));
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
    const QString pipe = folder.path(QStringLiteral("pipe"));
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    EXPECT_FALSE(platform::readFile(pipe, content));
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
    const QString pipe = folder.path(QStringLiteral("pipe"));
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    EXPECT_EQ(platform::openStream(pipe, "rb"), nullptr);
    EXPECT_EQ(
        platform::openStream(folder.path(QStringLiteral("a")) + QChar(0) + QLatin1Char('b'), "wb"),
        nullptr);
}
