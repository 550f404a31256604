#include "platform/platform.h"
#include "profile/profilefolder.h"
#include "tests/support/datafolder.h"
#include "tests/support/log.h"

#include <QDir>
#include <gtest/gtest.h>

using profile::ProfileFolder;

TEST(ProfileFolder, NamesStayInside)
{
    const ProfileFolder folder(QStringLiteral("/data/casts/"), false);
    struct
    {
        const char* name;
        const char* path;
    } const cases[] = {
        {"x.asvp", "/data/casts/x.asvp"},
        {"sub/x.asvp", "/data/casts/sub/x.asvp"},
        {"sub\\x.asvp", "/data/casts/sub/x.asvp"},
        {"sub/../x.asvp", "/data/casts/x.asvp"},
        {"./x.asvp", "/data/casts/x.asvp"},
        {"..x.asvp", "/data/casts/..x.asvp"},
        {"../x.asvp", ""},
        {"sub/../../x.asvp", ""},
        {"..\\x.asvp", ""},
        {"..", ""},
        {"x.asvp/", ""},
        {".", ""},
        {"", ""},
        {"/etc/passwd", ""},
        {"\\etc\\passwd", ""},
        {"C:/x.asvp", ""},
        {"c:x.asvp", ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(folder.pathOf(QString::fromLatin1(c.name)), QLatin1String(c.path)) << c.name;
    EXPECT_EQ(folder.pathOf(QStringLiteral("x") + QChar(0) + QStringLiteral(".asvp")), QString());
    EXPECT_EQ(ProfileFolder(QString(), false).pathOf(QStringLiteral("x")), QString());
}

TEST(ProfileFolder, TheConfigurationNamesIt)
{
    const DataFolder data(QStringLiteral("données"));
    struct
    {
        const char* text;
        const char* path;
    } const cases[] = {
        {"[absLoc]\nInitialDir=/casts\n", "/casts"},
        {"[absLoc]\r\nInitialDir=/casts\r\n", "/casts"},
        {"[absLoc]\nInitialDir=\\casts\\north\\\n", "/casts/north"},
        {"[absLoc]\nInitialDir=\"/casts, 2026; north\"\n", "/casts, 2026; north"},
        {"[absLoc]\nInitialDir=/casts, 2026\n", "/casts, 2026"},
        {"[absloc]\ninitialdir = /casts\n", "/casts"},
        {"[absLoc]\nInitialDir=/m\xC3\xA5l\n", "/m\xC3\xA5l"},
        {"[absLoc]\nInitialDir=/m\xE5l\n", "/m\xC3\xA5l"},
    };
    for (const auto& c : cases) {
        data.write(QStringLiteral("runcf/AbsCoeff.ini"), c.text);
        EXPECT_EQ(profile::openedProfileFolder().path(), QString::fromUtf8(c.path)) << c.text;
        EXPECT_EQ(profile::savedProfileFolder().path(), QString::fromUtf8(c.path)) << c.text;
    }
}

TEST(ProfileFolder, OnlyBackslashesOfTheConfigurationChange)
{
    const DataFolder data;
    const QString file = QStringLiteral("runcf/AbsCoeff.ini");
    const QByteArray text = "; c:\\x\r\n\n[absLoc]\r\nInitialDir=C:\\casts\r\nOther=\xE5" +
                            QByteArray(1, '\0') + "\\\n";
    data.write(file, text);
    EXPECT_TRUE(profile::openedProfileFolder().path().endsWith(QLatin1String("C:/casts")));
    EXPECT_EQ(data.read(file), QByteArray(text).replace('\\', '/'));
}

TEST(ProfileFolder, TheDefaultLiesBelowTheDataRoot)
{
#ifdef Q_OS_WIN
    GTEST_SKIP() << "Windows has default folders of its own, see TheDefaultsOfWindows";
#else
    const DataFolder data(QStringLiteral("data"), false);
    testlog::expectWarning(QStringLiteral("Failed to read ") + profile::configurationPath());
    const QString expected = data.path(QStringLiteral("qrvdata/svp_abscoeff"));
    EXPECT_EQ(profile::openedProfileFolder().path(), expected);
    data.write(QStringLiteral("runcf/AbsCoeff.ini"),
               "[absLoc]\nInitialDir=\n[other]\nInitialDir=/x\n");
    EXPECT_EQ(profile::openedProfileFolder().path(), expected);
    EXPECT_EQ(profile::savedProfileFolder().path(), expected);
    EXPECT_FALSE(QDir(expected).exists());
    const ProfileFolder folder = profile::savedProfileFolder();
    folder.makeFolderOf(folder.pathOf(QStringLiteral("x.asvp")));
    EXPECT_TRUE(QDir(expected).exists());
#endif
}

TEST(ProfileFolder, AFolderElsewhereIsNotMade)
{
    const DataFolder data;
    const QString elsewhere = data.programData() + QStringLiteral("/elsewhere");
    data.write(QStringLiteral("runcf/AbsCoeff.ini"), "[absLoc]\nInitialDir=" + elsewhere.toUtf8());
    const ProfileFolder folder = profile::savedProfileFolder();
    folder.makeFolderOf(folder.pathOf(QStringLiteral("x.asvp")));
    EXPECT_FALSE(QDir(elsewhere).exists());
}

TEST(ProfileFolder, AFolderThatTheConfigurationDoesNotNameIsMade)
{
    const DataFolder data(QStringLiteral("data"), false);
    const ProfileFolder folder = profile::savedProfileFolder();
    const bool wasThere = QDir(folder.path()).exists();
    folder.makeFolderOf(folder.pathOf(QStringLiteral("x.asvp")));
    EXPECT_TRUE(QDir(folder.path()).exists());
    if (!wasThere)
        QDir().rmpath(folder.path()); // on Windows it is outside of the test's own folder
}

TEST(ProfileFolder, AFolderBelowTheDataRootIsFoundAsTheSystemComparesPaths)
{
    const DataFolder data;
    const QString folder = QDir::fromNativeSeparators(data.path(QStringLiteral("made"))).toUpper();
    data.write(QStringLiteral("runcf/AbsCoeff.ini"), "[absLoc]\nInitialDir=" + folder.toUtf8());
    const ProfileFolder made = profile::savedProfileFolder();
    made.makeFolderOf(made.pathOf(QStringLiteral("x.asvp")));
    EXPECT_EQ(QDir(data.path(QStringLiteral("made"))).exists(),
              platform::pathCase() == Qt::CaseInsensitive);
    EXPECT_EQ(QDir(folder).exists(), platform::pathCase() == Qt::CaseInsensitive);
}

TEST(ProfileFolder, AFolderInPlaceOfTheConfigurationIsNone)
{
#ifdef Q_OS_WIN
    GTEST_SKIP() << "Windows has default folders of its own, see TheDefaultsOfWindows";
#else
    const DataFolder data(QStringLiteral("data"), false);
    QDir().mkpath(data.path(QStringLiteral("runcf/AbsCoeff.ini")));
    EXPECT_EQ(profile::savedProfileFolder().path(),
              data.path(QStringLiteral("qrvdata/svp_abscoeff")));
#endif
}

TEST(ProfileFolder, WithoutADataRootThereIsNone)
{
#ifdef Q_OS_WIN
    GTEST_SKIP() << "Windows has default folders of its own, see TheDefaultsOfWindows";
#else
    const DataFolder data;
    qunsetenv("ProgramData");
    testlog::expectWarning(QStringLiteral("Failed to read"));
    EXPECT_EQ(profile::openedProfileFolder().path(), QString());
    EXPECT_EQ(profile::savedProfileFolder().pathOf(QStringLiteral("x.asvp")), QString());
#endif
}

#ifdef Q_OS_WIN

TEST(ProfileFolder, TheDefaultsOfWindows)
{
    const DataFolder data(QStringLiteral("data"), false);
    const QString opened = QStringLiteral("C:/ProgramData/Ardentide/qrvdata/svp_abscoeff");
    const QString saved = QStringLiteral("C:/qrvdata/svp_abscoeff");
    testlog::expectWarning(QStringLiteral("Failed to read"));
    EXPECT_EQ(profile::openedProfileFolder().path(), opened);
    EXPECT_EQ(profile::savedProfileFolder().path(), saved);
    data.write(QStringLiteral("runcf/AbsCoeff.ini"), "[absLoc]\r\nInitialDir=\r\n");
    EXPECT_EQ(profile::openedProfileFolder().path(), opened);
    EXPECT_EQ(profile::savedProfileFolder().path(), saved);
    QFile::remove(data.path(QStringLiteral("runcf/AbsCoeff.ini")));
    QDir().mkpath(data.path(QStringLiteral("runcf/AbsCoeff.ini")));
    EXPECT_EQ(profile::savedProfileFolder().path(), saved);
    qunsetenv("ProgramData");
    EXPECT_EQ(profile::openedProfileFolder().path(), opened);
}

#endif
