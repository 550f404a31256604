#include "profile/asvpfile.h"
#include "profile/importfilter.h"
#include "profile/textfile.h"
#include "tests/support/datafolder.h"
#include "tests/support/log.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

using namespace profile;

namespace {

tagDecodeFmt asvpFormat()
{
    FilterRow row;
    findFilter(builtInFilters(), QStringLiteral(".asvp"), row);
    return row.format;
}

AsvpHeader goodHeader()
{
    return {QStringLiteral("SoundVelocity"),
            QStringLiteral("1.0"),
            QStringLiteral("0"),
            QStringLiteral("20261115123456"),
            QStringLiteral("59.5"),
            QStringLiteral("10.25"),
            QStringLiteral("0"),
            QStringLiteral("0"),
            QStringLiteral("0"),
            QStringLiteral("probe"),
            QStringLiteral("NA")};
}

const QVector<float> threeDepths = {0.0F, 10.125F, 12000.0F};
const QVector<float> threeSpeeds = {1500.0F, 1499.999F, 1550.1F};

} // namespace

TEST(AsvpHeader, HasTwelveWords)
{
    struct
    {
        const char* line;
        int words;
    } const cases[] = {
        {"( a b c d e f g h i j k 12 )", 12},
        {"(a b c d e f g h i j k 12)", 12},
        {"  (  a  b\tc d e f g h i j k 12 )\t", 12},
        {"( SoundVelocity  1.0 0 20261115123456 59.50000000 10.25000000 -1 0 0 x_y P 0003 )", 12},
        {"( a b c d e f g h i j k )", 0},
        {"( a b c d e f g h i j k l m )", 0},
        {"( a b c d e f g h i j k l m n o p )", 0},
        {"", 0},
        {"(", 0},
        {")", 0},
        {"()", 0},
        {"   ", 0},
    };
    for (const auto& c : cases)
        EXPECT_EQ(parseAsvpHeader(QString::fromLatin1(c.line)).size(), c.words) << c.line;
}

TEST(AsvpHeader, ATimeWithoutSecondsGetsThem)
{
    const auto timeOf = [](const char* time) {
        return parseAsvpHeader(
                   QStringLiteral("( a b c %1 e f g h i j k l )").arg(QLatin1String(time)))
            .value(3);
    };
    EXPECT_EQ(timeOf("202611151234"), QLatin1String("20261115123400"));
    EXPECT_EQ(timeOf("20261115123456"), QLatin1String("20261115123456"));
    EXPECT_EQ(timeOf("20261115123"), QLatin1String("20261115123"));
    EXPECT_EQ(timeOf("2026111512345"), QLatin1String("2026111512345"));
}

TEST(AsvpFile, ReadsBothWrittenForms)
{
    const AsvpFile editor =
        readAsvp("( SoundVelocity 1.0 0 20261115123456 59.5 10.25 0 0 0 p NA 2 )\n"
                 "0.00 1500.00\n10.00 1499.00\n",
                 asvpFormat());
    const AsvpFile converted = readAsvp(
        "( SoundVelocity  1.0 0 20261115123456 59.50000000 10.25000000 -1 0 0 x_y P 0002 )\r\n"
        "0.000 1500.000\r\n10.000 1499.000\r\n",
        asvpFormat());
    EXPECT_EQ(editor.header.size(), 12);
    EXPECT_EQ(converted.header.size(), 12);
    EXPECT_EQ(editor.record, converted.record);
    EXPECT_EQ(editor.record,
              (QVector<float>{1500, 0, 0, 1500, 0, 0, 0, 1499, 10, 10, 1499, 0, 0, 0}));
}

TEST(AsvpFile, EveryLineEndAndEncodingReadsAlike)
{
    const QByteArray text = asvp({"0 1500", "10 1499"});
    const AsvpFile expected = readAsvp(text, asvpFormat());
    EXPECT_EQ(expected.record.size(), 14);
    const QString wide = QChar(QChar::ByteOrderMark) + QString::fromLatin1(text);
    for (const QByteArray& variant :
         {QByteArray(text).replace("\r\n", "\n"), QByteArray(text).replace("\r\n", "\r\r\n"),
          QByteArray(text).replace("\r\n", "\r"), "\xEF\xBB\xBF" + text,
          QByteArray(reinterpret_cast<const char*>(wide.utf16()), wide.size() * 2)}) {
        const AsvpFile file = readAsvp(variant, asvpFormat());
        EXPECT_EQ(file.header, expected.header) << variant.toStdString();
        EXPECT_EQ(file.record, expected.record) << variant.toStdString();
    }
}

TEST(AsvpFile, SurvivesBeingCutAtEachByte)
{
    const QByteArray text = asvp({"0 1500", "10 1499", "20 1498"});
    for (int size = 0; size <= text.size(); ++size) {
        const AsvpFile file = readAsvp(text.left(size), asvpFormat());
        EXPECT_LE(file.record.size(), 21);
        EXPECT_EQ(file.record.size() % 7, 0);
    }
}

TEST(AsvpFile, IsWrittenWithTwoDecimalsAndCrLf)
{
    EXPECT_EQ(asvpText(threeDepths, threeSpeeds, goodHeader()),
              QByteArray("( SoundVelocity 1.0 0 20261115123456 59.5 10.25 0 0 0 probe NA 3 )\r\n"
                         "0.00 1500.00\r\n10.13 1500.00\r\n12000.00 1550.10\r\n"));
}

TEST(AsvpFile, EveryHeaderReadsBackAsTwelveWords)
{
    AsvpHeader header = goodHeader();
    header[0] = QString();
    header[4] = QStringLiteral("  ");
    header[9] = QStringLiteral(" two words\there ");
    header[10] = QStringLiteral("%1 %12");
    const QByteArray firstLine = asvpText(threeDepths, threeSpeeds, header).split('\r').first();
    EXPECT_EQ(firstLine,
              QByteArray("( NA 1.0 0 20261115123456 0 10.25 0 0 0 two_words_here %1_%12 3 )"));
    for (QString& value : header)
        value = QString();
    EXPECT_EQ(asvpText(threeDepths, threeSpeeds, header).split('\r').first(),
              QByteArray("( NA 0 0 0 0 0 0 0 0 NA NA 3 )"));
}

TEST(WriteSVPfile, WritesIntoTheConfiguredFolder)
{
    const DataFolder folder(QStringLiteral("größe 測"));
    QString path;
    EXPECT_EQ(writeSVPfile(threeDepths, threeSpeeds, QStringLiteral("cast"), goodHeader(), path),
              0);
    EXPECT_EQ(path, folder.profile(QStringLiteral("cast.asvp")));
    EXPECT_EQ(bytesOf(path), asvpText(threeDepths, threeSpeeds, goodHeader()));
}

TEST(WriteSVPfile, MakesTheFoldersItNeedsBelowTheDataRoot)
{
#ifdef Q_OS_WIN
    const DataFolder folder; // without a configuration it would write into the drive's own root
#else
    const DataFolder folder(QStringLiteral("data"), false);
#endif
    QString path;
    EXPECT_EQ(writeSVPfile(threeDepths, threeSpeeds, QStringLiteral("north/x"), goodHeader(), path),
              0);
    EXPECT_EQ(path, folder.profile(QStringLiteral("north/x.asvp")));
    EXPECT_TRUE(QFile::exists(path));
}

TEST(WriteSVPfile, AppendsTheSuffixOnlyWhereItIsMissing)
{
    const DataFolder folder;
    struct
    {
        const char* name;
        const char* written;
    } const cases[] = {{"a", "a.asvp"},
                       {"b.asvp", "b.asvp"},
                       {"c.asvp_old", "c.asvp_old"},
                       {"d.ASVP", "d.ASVP.asvp"}};
    for (const auto& c : cases) {
        QString path;
        EXPECT_EQ(
            writeSVPfile(threeDepths, threeSpeeds, QString::fromLatin1(c.name), goodHeader(), path),
            0);
        EXPECT_EQ(path, folder.profile(QString::fromLatin1(c.written)));
        EXPECT_TRUE(QFile::exists(path));
    }
}

TEST(WriteSVPfile, RefusesFewerThanThreeSamplesAndUnequalLists)
{
    const DataFolder folder;
    QString path;
    EXPECT_EQ(writeSVPfile({0, 1}, {1500, 1500}, QStringLiteral("x"), goodHeader(), path), -1);
    EXPECT_EQ(writeSVPfile({0, 1, 2}, {1500, 1500}, QStringLiteral("x"), goodHeader(), path), -1);
    EXPECT_EQ(
        writeSVPfile({0, 1, 2}, {1500, 1500, 1500, 1500}, QStringLiteral("x"), goodHeader(), path),
        -1);
    EXPECT_FALSE(QFile::exists(folder.profile(QStringLiteral("x.asvp"))));
}

TEST(WriteSVPfile, TellsWhenTheFileCannotBeWritten)
{
    const DataFolder folder;
    QString path;
    QDir().mkpath(folder.profile(QStringLiteral("dir.asvp")));
    for (const char* name :
         {"dir.asvp", "dir.asvp/x/", "../x", "/tmp/x", "C:x", "", "..\\x", "..", "sub/"}) {
        EXPECT_EQ(
            writeSVPfile(threeDepths, threeSpeeds, QString::fromLatin1(name), goodHeader(), path),
            -2)
            << name;
    }
    EXPECT_TRUE(testlog::hasLine(QStringLiteral(
        "CSVP_WebInterface::writeSVPfile - WARNING - Filename refers to a directory")));
    EXPECT_FALSE(QFile::exists(folder.path(QStringLiteral("qrvdata/x.asvp"))));
}

TEST(WriteSVPfile, AnOlderFileIsReplaced)
{
    const DataFolder folder;
    folder.writeProfile(QStringLiteral("x.asvp"), QByteArray(100000, 'x'));
    QString path;
    EXPECT_EQ(writeSVPfile(threeDepths, threeSpeeds, QStringLiteral("x"), goodHeader(), path), 0);
    EXPECT_EQ(bytesOf(path), asvpText(threeDepths, threeSpeeds, goodHeader()));
}
