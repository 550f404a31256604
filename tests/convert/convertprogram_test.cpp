#include "datagram/receivedata.h"
#include "datagram/receivefile.h"
#include "platform/platform.h"
#include "tests/places.h"
#include "tests/support/printers.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

// The program as surveyors run it.

namespace {

struct ProgramRun
{
    int exitCode = -1;
    QStringList lines;
    QString errors;
};

class ConvertProgram : public testing::Test
{
  protected:
    QString path(const QString& name) const { return m_folder.filePath(name); }

    QString write(const QString& name, const QByteArray& content) const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return file.fileName();
    }

    QByteArray read(const QString& name) const
    {
        datagram::CReceiveFile file;
        file.open(path(name));
        return file.text();
    }

    static ProgramRun run(const QStringList& arguments, const QString& locale = QString())
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        if (!locale.isEmpty())
            environment.insert(QStringLiteral("LC_ALL"), locale);
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(SVP_CONVERT_FILE), arguments);
        EXPECT_TRUE(process.waitForFinished(120000));
        ProgramRun result;
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        result.exitCode = process.exitCode();
        const QString output =
            QString::fromUtf8(process.readAllStandardOutput().replace("\r\n", "\n"));
        result.lines = output.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        result.errors = QString::fromUtf8(process.readAllStandardError());
        return result;
    }

    static QString example(const char* name)
    {
        return QDir(QStringLiteral(SVP_EXAMPLES_DIR)).filePath(QString::fromLatin1(name));
    }

    QTemporaryDir m_folder;
};

const QByteArray rows = "1 1500 10\n2 1501 10\n";

} // namespace

TEST_F(ConvertProgram, EachSampleBecomesAProfileThatReadsBack)
{
    const struct
    {
        const char* file;
        const char* base;
        int levels;
        const char* said;
        const char* header;
    } cases[] = {
        {"sea-bird-shelf.cnv", "sea-bird-shelf", 10,
         "Sea-Bird converted file; 10 levels, 1.00 to 60.00 m, 1487.74 to 1502.11 m/s; 2026-11-15 "
         "13:05:10; 59 30.000 N 10 15.000 E; the time is that of the conversion, the cast began "
         "at Nov 15 2026 12:34:56 -> ",
         "( SoundVelocity  1.0 0 20261115130510 59.50000000 10.25000000 -1 0 0 SeaBird_SBE19plus P "
         "0010 )"},
        {"edf-xbt.edf", "edf-xbt", 10, "EDF probe file; 10 levels, ",
         "( SoundVelocity  1.0 0 20261115123456 59.50000000 10.25000000 -1 0 0 EDF_T-10 P 0010 )"},
        {"edf-xctd.edf", "edf-xctd", 9, "33 30.000 S 151 15.000 E; 1 left out as unusable -> ",
         "( SoundVelocity  1.0 0 20261115123456 -33.50000000 151.25000000 -1 0 0 EDF_XCTD-1 P "
         "0009 )"},
        {"calc-harbour.calc", "calc-harbour", 10, "CALC listing; 10 levels, ",
         "( SoundVelocity  1.0 0 20261115123400 59.50000000 10.25000000 -1 0 0 CALC_NA P 0010 )"},
        {"svplus-probe.svp", "svplus-probe", 10,
         "no latitude: the depths take the pressures for kPa",
         "( SoundVelocity  1.0 0 20261115123456 0 0 -1 0 0 SvPlus_NA P 0010 )"},
    };
    for (const auto& c : cases) {
        const ProgramRun result =
            run({example(c.file), QStringLiteral("--to"), path(QStringLiteral("o"))});
        EXPECT_EQ(result.exitCode, 0) << c.file;
        ASSERT_EQ(result.lines.size(), 1) << c.file;
        EXPECT_TRUE(result.lines[0].contains(QLatin1String(c.said)))
            << result.lines[0].toStdString();
        const QString target = QStringLiteral("o/%1.asvp").arg(QLatin1String(c.base));
        EXPECT_TRUE(result.lines[0].endsWith(path(target))) << result.lines[0].toStdString();
        const QByteArray text = read(target);
        EXPECT_EQ(text.left(text.indexOf("\r\n")), c.header);
        EXPECT_EQ(datagram::CReceiveData().parse(4, text), c.levels) << c.file;
    }
    EXPECT_TRUE(read(QStringLiteral("o/calc-harbour.asvp"))
                    .contains(" )\r\n1.000 1502.110\r\n2.000 1502.080\r\n"));
}

TEST_F(ConvertProgram, ProfilesGoBesideTheirFilesAndKeepOlderOnes)
{
    const QString older = write(QStringLiteral("a.b.asvp"), "a surveyor's own");
    const ProgramRun result = run({write(QStringLiteral("a.b.txt"), rows)});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(datagram::CReceiveData().parse(4, read(QStringLiteral("a.b.asvp"))), 2);
    EXPECT_EQ(read(QStringLiteral("a.b.txt")), rows);
    const QStringList kept = QDir(m_folder.path()).entryList({QStringLiteral("a.b_bck_*.asvp")});
    ASSERT_EQ(kept.size(), 1);
    EXPECT_EQ(read(kept[0]), "a surveyor's own");
    ASSERT_EQ(result.lines.size(), 1);
    EXPECT_TRUE(result.lines[0].endsWith(
        QStringLiteral(" -> %1; the earlier one is kept as %2").arg(older, path(kept[0]))))
        << result.lines[0].toStdString();
}

TEST_F(ConvertProgram, TheSameProfileAgainIsNoOtherOne)
{
    const QStringList arguments = {example("calc-harbour.calc"), QStringLiteral("--to"),
                                   m_folder.path()};
    const QByteArray first = [&] {
        run(arguments);
        return read(QStringLiteral("calc-harbour.asvp"));
    }();
    const ProgramRun again = run(arguments);
    EXPECT_EQ(again.exitCode, 0);
    ASSERT_EQ(again.lines.size(), 1);
    EXPECT_TRUE(again.lines[0].endsWith(QLatin1String("calc-harbour.asvp")));
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::Files),
              QStringList(QStringLiteral("calc-harbour.asvp")));
    EXPECT_EQ(read(QStringLiteral("calc-harbour.asvp")), first);
}

TEST_F(ConvertProgram, WithoutATimeTheCurrentOneStandsIn)
{
    const QDateTime before = QDateTime::currentDateTimeUtc().addSecs(-1);
    const QString table = QStringLiteral("; time and position are not read from a table (the "
                                         "current time, UTC, stands in) -> ");
    const QString none =
        QStringLiteral("; no time (the current one, UTC, stands in); no position -> ");
    const struct
    {
        QString file;
        QString said;
    } cases[] = {
        {write(QStringLiteral("c.txt"), rows), table},
        {write(QStringLiteral("d.csv"), "Date 2026-11-15\n1,1500,10\n2,1501,10\n"), table},
        {example("scan-listing.txt"), table},
        {example("deck-unit.txt"), none},
    };
    for (const auto& c : cases) {
        const ProgramRun result = run({c.file, QStringLiteral("--to"), path(QStringLiteral("o"))});
        ASSERT_EQ(result.lines.size(), 1);
        EXPECT_TRUE(result.lines[0].contains(c.said)) << result.lines[0].toStdString();
    }
    for (const char* name : {"o/c.asvp", "o/deck-unit.asvp"}) {
        const QByteArray stamp = read(QString::fromLatin1(name)).mid(23, 14);
        QDateTime time =
            QDateTime::fromString(QString::fromLatin1(stamp), QStringLiteral("yyyyMMddHHmmss"));
        time.setTimeSpec(Qt::UTC);
        EXPECT_GE(time, before) << name;
        EXPECT_LE(time, QDateTime::currentDateTimeUtc()) << name;
    }
}

TEST_F(ConvertProgram, RowsKeepTheirOrderAndTheLineSaysSo)
{
    const ProgramRun result =
        run({write(QStringLiteral("c.txt"), "2 1500 10\n1 1501 10\n1 1502 10\n")});
    ASSERT_EQ(result.lines.size(), 1);
    EXPECT_TRUE(result.lines[0].contains(QLatin1String("depths do not increase throughout")));
    EXPECT_TRUE(read(QStringLiteral("c.asvp"))
                    .endsWith("\r\n2.000 1500.000\r\n1.000 1501.000\r\n1.000 1502.000\r\n"));
    const ProgramRun good = run({write(QStringLiteral("d.txt"), rows)});
    EXPECT_FALSE(good.lines.join(QString()).contains(QLatin1String("increase")));
}

TEST_F(ConvertProgram, SpeedsThatAreNoneOfWaterAreCounted)
{
    const struct
    {
        const char* rows;
        const char* said;
    } cases[] = {
        {"1 0 10\n2 1501 10\n3 1502 10\n", "; 1 sound speed outside 1300 to 1700 m/s -> "},
        {"1 1299.99 10\n2 1501 10\n3 1700.01 10\n4 1502 10\n",
         "; 2 sound speeds outside 1300 to 1700 m/s -> "},
    };
    for (const auto& c : cases) {
        const ProgramRun result = run({write(QStringLiteral("c.txt"), c.rows)});
        ASSERT_EQ(result.lines.size(), 1);
        EXPECT_TRUE(result.lines[0].contains(QLatin1String(c.said)))
            << result.lines[0].toStdString();
    }
    const ProgramRun good =
        run({write(QStringLiteral("d.txt"), "1 1300 10\n2 1700 10\n3 1502 10\n")});
    EXPECT_FALSE(good.lines.join(QString()).contains(QLatin1String("outside")));
}

TEST_F(ConvertProgram, FailuresSayWhyAndTheRestIsConverted)
{
    const struct
    {
        QString file;
        const char* reason;
    } cases[] = {
        {path(QStringLiteral("none.cnv")), "there is no such file"},
        {m_folder.path(), "it is a folder"},
        {write(QStringLiteral("empty.cnv"), ""), "it is empty"},
        {write(QStringLiteral("junk.cnv"), QByteArray(1000, '\x01')), "binary"},
        {write(QStringLiteral("cast.ssp"), "$QZS00,00000,3,123456,15,11,2026,0.00,1500.00,,,\r\n"),
         "open it in the editor"},
        {write(QStringLiteral("cut.cnv"), "# nquan = 2\n# name 0 = depSM:\n"),
         "Sea-Bird converted file: it ends before its levels"},
        {write(QStringLiteral("air.edf"),
               "// (EDF)\nDepth (m) - Sound Velocity (m/s)\n1\t9000\n2\t9001\n"),
         "EDF probe file: its sound speeds are none of water (9000.00 to 9001.00 m/s)"},
    };
    for (const auto& c : cases) {
        const ProgramRun result = run({c.file, write(QStringLiteral("good.txt"), rows)});
        EXPECT_EQ(result.exitCode, 1) << c.reason;
        ASSERT_EQ(result.lines.size(), 2) << c.reason;
        EXPECT_TRUE(result.lines[0].startsWith(c.file + QStringLiteral(": not converted: ")))
            << result.lines[0].toStdString();
        EXPECT_TRUE(result.lines[0].contains(QLatin1String(c.reason)))
            << result.lines[0].toStdString();
        EXPECT_TRUE(QFile::remove(path(QStringLiteral("good.asvp"))));
    }
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("cut.asvp"))));
}

TEST_F(ConvertProgram, NoInputIsWrittenOver)
{
    // A table under the name that its own profile would have.
    const QString own = write(QStringLiteral("cast.asvp"), rows);
    const ProgramRun alone = run({own});
    EXPECT_EQ(alone.exitCode, 1);
    EXPECT_TRUE(alone.lines.join(QString()).contains(QLatin1String("is an input itself")));
    const ProgramRun reached =
        run({own, QStringLiteral("--to"), m_folder.path() + QStringLiteral("/.")});
    EXPECT_EQ(reached.exitCode, 1);
    const ProgramRun other = run({write(QStringLiteral("cast.txt"), rows), own});
    EXPECT_EQ(other.exitCode, 1);
    EXPECT_EQ(read(QStringLiteral("cast.asvp")), rows);
    // The same file as that of the input where systems look past upper and lower case.
    run({write(QStringLiteral("CAST.TXT"), rows), own});
    EXPECT_EQ(read(QStringLiteral("cast.asvp")), rows);
#ifdef Q_OS_WIN
    GTEST_SKIP() << "but for links, which Windows lets only administrators make";
#else
    ASSERT_TRUE(QFile::link(own, path(QStringLiteral("link.asvp"))));
    EXPECT_EQ(run({own, write(QStringLiteral("link.txt"), rows)}).exitCode, 1);
    EXPECT_EQ(read(QStringLiteral("cast.asvp")), rows);
#endif
}

TEST_F(ConvertProgram, ARunWritesEachProfileOnce)
{
    const ProgramRun result = run({write(QStringLiteral("cast.txt"), "1 1500 10\n2 1501 10\n"),
                                   write(QStringLiteral("cast.dat"), "3 1500 10\n4 1501 10\n")});
    EXPECT_EQ(result.exitCode, 1);
    ASSERT_EQ(result.lines.size(), 2);
    EXPECT_TRUE(result.lines[1].contains(QLatin1String("holds the profile of")));
    EXPECT_TRUE(read(QStringLiteral("cast.asvp")).endsWith("\r\n2.000 1501.000\r\n"));
    // Where systems look past upper and lower case, these two profiles are one file as well.
    const ProgramRun cased =
        run({write(QStringLiteral("Other.txt"), rows), write(QStringLiteral("other.dat"), rows)});
    EXPECT_EQ(cased.exitCode, platform::pathCase() == Qt::CaseInsensitive ? 1 : 0);
}

TEST_F(ConvertProgram, AFolderThatCannotBeMadeIsAFailure)
{
    const QString file = write(QStringLiteral("plain"), "x");
    const QString input = write(QStringLiteral("c.txt"), rows);
    const ProgramRun below = run({input, QStringLiteral("--to"), file + QStringLiteral("/below")});
    EXPECT_EQ(below.exitCode, 1);
    EXPECT_TRUE(below.lines.join(QString()).contains(QLatin1String("cannot be made")));
    EXPECT_EQ(run({input, QStringLiteral("--to"), file}).exitCode, 2);
    const ProgramRun deep = run({input, QStringLiteral("--to"), path(QStringLiteral("x/y/z"))});
    EXPECT_EQ(deep.exitCode, 0);
    EXPECT_TRUE(QFile::exists(path(QStringLiteral("x/y/z/c.asvp"))));
}

TEST_F(ConvertProgram, NamesMayHoldAnyLettersUnderAnyLocale)
{
    const QString name = QStringLiteral("m\u00E5ling \u6D77.txt");
    const ProgramRun result = run({write(name, rows)}, QStringLiteral("C"));
    EXPECT_EQ(result.exitCode, 0) << result.lines.join(QString()).toStdString();
    EXPECT_TRUE(QFile::exists(path(QStringLiteral("m\u00E5ling \u6D77.asvp"))));
    EXPECT_TRUE(result.lines.join(QString()).contains(name));
}

TEST_F(ConvertProgram, WrongUsageIsToldApart)
{
    for (const QStringList& arguments :
         {QStringList(), QStringList(QStringLiteral("--nonsense")),
          QStringList({QStringLiteral("a.cnv"), QStringLiteral("--to")}),
          QStringList({
              QStringLiteral("a.cnv"),
              QStringLiteral("--to="),
          }),
          QStringList({QStringLiteral("--to"), m_folder.path()})}) {
        const ProgramRun result = run(arguments);
        EXPECT_EQ(result.exitCode, 2) << arguments.join(QLatin1Char(' ')).toStdString();
        EXPECT_TRUE(result.errors.contains(QLatin1String("Usage: svp-convert IN... [--to DIR]")));
        EXPECT_TRUE(result.lines.isEmpty());
    }
    const ProgramRun help = run({QStringLiteral("--help")});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(help.lines.join(QLatin1Char('\n')).contains(QLatin1String("--to <DIR>")));
}
