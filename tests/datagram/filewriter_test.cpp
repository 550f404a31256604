#include "datagram/filewriter.h"
#include "tests/places.h"
#include "tests/support/datafolder.h"
#include "tests/support/log.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <gtest/gtest.h>

using namespace datagram;

namespace {

QStringList filesOf(const DataFolder& folder)
{
    return QDir(folder.path(QString())).entryList(QDir::Files, QDir::Name);
}

} // namespace

TEST(BackupPath, CarriesDateTimeAndSuffix)
{
    const DataFolder folder;
    const QDateTime now(QDate(2026, 11, 15), QTime(1, 2, 3));
    const auto backupOf = [&](const char* name) {
        return backupPath(folder.path(QLatin1String(name)), now).mid(folder.path(QString()).size());
    };
    EXPECT_EQ(backupOf("cast.ssp"), QLatin1String("cast_bck_20261115_010203.ssp"));
    EXPECT_EQ(backupOf("cast.north.ssp"), QLatin1String("cast.north_bck_20261115_010203.ssp"));
    EXPECT_EQ(backupOf("sub/x.ssp"), QLatin1String("sub/x_bck_20261115_010203.ssp"));
    folder.write(QStringLiteral("cast_bck_20261115_010203.ssp"), "taken");
    EXPECT_EQ(backupOf("cast.ssp"), QLatin1String("cast_bck_20261115_010203_2.ssp"));
    folder.write(QStringLiteral("cast_bck_20261115_010203_2.ssp"), "taken");
    EXPECT_EQ(backupOf("cast.ssp"), QLatin1String("cast_bck_20261115_010203_3.ssp"));
}

TEST(SaveOtherFile, KeepsWhatItReplaces)
{
    const DataFolder folder;
    QFile::remove(folder.path(QString()) + QStringLiteral("x"));
    QString error;
    const QString path = folder.path(QStringLiteral("cast.ssp"));
    EXPECT_EQ(saveOtherFile(path, "1", true, error), platform::Replaced::Whole);
    EXPECT_EQ(filesOf(folder), QStringList{QStringLiteral("cast.ssp")});
    EXPECT_EQ(saveOtherFile(path, "2", true, error), platform::Replaced::Whole);
    EXPECT_EQ(saveOtherFile(path, "3", true, error), platform::Replaced::Whole);
    EXPECT_EQ(saveOtherFile(path, "4", false, error), platform::Replaced::Whole);
    EXPECT_EQ(bytesOf(path), "4");
    const QStringList files = filesOf(folder);
    ASSERT_EQ(files.size(), 3);
    const QRegularExpression form(QStringLiteral("^cast_bck_\\d{8}_\\d{6}(_2)?\\.ssp$"));
    QByteArray kept;
    for (const QString& name : files) {
        if (name != QLatin1String("cast.ssp")) {
            EXPECT_TRUE(form.match(name).hasMatch()) << qPrintable(name);
            kept += bytesOf(folder.path(name));
        }
    }
    EXPECT_TRUE(kept == "12" || kept == "21");
}

TEST(SaveKeepingOther, KeepsWhatHoldsSomethingElse)
{
    const DataFolder folder;
    const QString path = folder.path(QStringLiteral("cast.asvp"));
    QString kept = QStringLiteral("x");
    QString error;
    EXPECT_EQ(saveKeepingOther(path, "1", kept, error), platform::Replaced::Whole);
    EXPECT_TRUE(kept.isEmpty());
    EXPECT_EQ(saveKeepingOther(path, "1", kept, error), platform::Replaced::Whole);
    EXPECT_TRUE(kept.isEmpty());
    EXPECT_EQ(filesOf(folder), QStringList{QStringLiteral("cast.asvp")});

    EXPECT_EQ(saveKeepingOther(path, "2", kept, error), platform::Replaced::Whole);
    EXPECT_EQ(bytesOf(path), "2");
    EXPECT_EQ(bytesOf(kept), "1");
    EXPECT_TRUE(kept.startsWith(folder.path(QStringLiteral("cast_bck_")))) << qPrintable(kept);
    EXPECT_EQ(filesOf(folder).size(), 2);
}

TEST(SaveKeepingOther, WhatCannotBeWrittenIsTold)
{
    const DataFolder folder;
    QDir().mkpath(folder.path(QStringLiteral("folder.asvp")));
    for (const char* name : {"none/cast.asvp", "folder.asvp"}) {
        QString kept;
        QString error;
        EXPECT_EQ(saveKeepingOther(folder.path(QLatin1String(name)), "1", kept, error),
                  platform::Replaced::NotOpened);
        EXPECT_TRUE(kept.isEmpty());
        EXPECT_FALSE(error.isEmpty());
    }
}

TEST(SaveOtherFile, WhatCannotBeWrittenIsTold)
{
    const DataFolder folder;
    QDir().mkpath(folder.path(QStringLiteral("folder.ssp")));
    for (const char* name : {"none/cast.ssp", "folder.ssp"}) {
        QString error;
        EXPECT_EQ(saveOtherFile(folder.path(QLatin1String(name)), "1", true, error),
                  platform::Replaced::NotOpened);
        EXPECT_FALSE(error.isEmpty());
        EXPECT_TRUE(testlog::hasLine(
            QStringLiteral("CSVP_WebInterface::writeSVPfile - WARNING - ") + error));
    }
    EXPECT_TRUE(QFileInfo(folder.path(QStringLiteral("folder.ssp"))).isDir());
}

TEST(SaveOtherFile, WhatALinkLeadsToIsKept)
{
#ifdef Q_OS_WIN
    GTEST_SKIP() << "Windows lets only administrators make links";
#else
    const DataFolder folder;
    const QString real = folder.path(QStringLiteral("real.dat"));
    const QString link = folder.path(QStringLiteral("cast.ssp"));
    writeBytes(real, "old");
    ASSERT_TRUE(QFile::link(real, link));
    QString error;
    EXPECT_EQ(saveOtherFile(link, "new", true, error), platform::Replaced::Whole);
    EXPECT_EQ(bytesOf(real), "new");
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    const QStringList backups =
        QDir(folder.path(QString())).entryList({QStringLiteral("cast_bck_*")}, QDir::Files);
    ASSERT_EQ(backups.size(), 1);
    EXPECT_FALSE(QFileInfo(folder.path(backups.first())).isSymLink());
    EXPECT_EQ(bytesOf(folder.path(backups.first())), "old");
#endif
}

TEST(SaveOtherFile, ALongNameIsKeptToo)
{
    const DataFolder folder;
    for (const int length : {200, 236, 244, 248}) {
        const QString name = QString(length - 4, QLatin1Char('n')) + QStringLiteral(".ssp");
        const QString path = folder.path(name);
        QString error;
        for (const char* content : {"1", "2", "3"})
            EXPECT_EQ(saveOtherFile(path, content, true, error), platform::Replaced::Whole)
                << length;
        QStringList kept;
        const QFileInfoList files =
            QDir(folder.path(QString())).entryInfoList({QStringLiteral("*_bck_*")}, QDir::Files);
        for (const QFileInfo& file : files) {
            kept.append(QString::fromLatin1(bytesOf(file.filePath())));
            QFile::remove(file.filePath());
        }
        kept.sort();
        EXPECT_EQ(kept, (QStringList{QStringLiteral("1"), QStringLiteral("2")})) << length;
    }
    const QString wide(80, QChar(0x6E2C));
    EXPECT_LE(QFileInfo(backupPath(folder.path(wide + QStringLiteral(".ssp")),
                                   QDateTime::currentDateTime()))
                  .fileName()
                  .toUtf8()
                  .size(),
              255);
}

TEST(SaveOtherFile, AKillAtAnyStepLosesNothing)
{
#ifdef Q_OS_WIN
    GTEST_SKIP() << "the program that dies at a chosen step takes over calls of the C library of "
                    "other systems";
#else
    int steps = 0;
    for (int code = 9; code == 9; ++steps) {
        ASSERT_LT(steps, 10);
        const DataFolder folder;
        const QString path = folder.path(QStringLiteral("cast.ssp"));
        writeBytes(path, "old");
        code = QProcess::execute(QStringLiteral(SVP_KILLED_WRITER),
                                 {path, QString::number(steps + 1)});
        ASSERT_TRUE(code == 9 || code == 0);
        EXPECT_EQ(bytesOf(path), code == 9 ? "old" : "new") << "step " << steps + 1;
    }
    // The second name of the older file, and at least one step that puts the new one in place.
    EXPECT_GE(steps, 3);
#endif
}
