#include "profile/columnfile.h"
#include "profile/importfilter.h"
#include "tests/places.h"
#include "tests/support/commalocale.h"
#include "tests/support/datafolder.h"
#include "tests/support/printers.h"

#include <QDateTime>
#include <QJsonArray>
#include <gtest/gtest.h>

using namespace profile;

namespace {

const QByteArray text = "logger EX-7\n"
                        "depth;speed;temperature;salinity;absorption\n"
                        "10;1500.25;8.5;35.5;0.25\n"
                        "20;1501.5;8.25;;\n"
                        "30;1502;x;34;0.5\n";

tagDecodeFmt filter(const char* line)
{
    FilterRow row;
    EXPECT_TRUE(parseFilterRow(QLatin1String(line), row)) << line;
    return row.format;
}

OpenedProfile opened(const QByteArray& content, const char* line)
{
    return openColumnFile(content, filter(line), QStringLiteral("sub/x.col"));
}

const char* const depthAndSpeed = "n,.col,0,1,-1,-1,-1,1;2,1.0,1.0,semicolon,undef";

} // namespace

TEST(ColumnFile, FillsTheSlotsByTheFilterRow)
{
    const QJsonObject reply = opened(text, "n,.col,0,1,2,3,4,1;2,0.1,2.0,semicolon,salinity").reply;
    const auto array = [&reply](const char* key) {
        return reply.value(QLatin1String(key)).toArray();
    };
    EXPECT_EQ(array("svp_Speed"), (QJsonArray{3000.5, 3003, 3004}));
    EXPECT_EQ(array("svp_Depth"), (QJsonArray{1, 2, 3}));
    EXPECT_EQ(array("svp_Depth_CTD"), (QJsonArray{1, 2, 3}));
    EXPECT_EQ(array("svp_Speed_CTD"), (QJsonArray{3000.5, 3003, 3004}));
    EXPECT_EQ(array("svp_Temp"), (QJsonArray{8.5, 8.25, 0}));
    EXPECT_EQ(array("svp_Sal"), (QJsonArray{35.5, 0, 34}));
    EXPECT_EQ(array("svp_AbsCoef"), (QJsonArray{0.25, 0, 0.5}));
    EXPECT_EQ(reply.value(QLatin1String("filename")), QJsonValue(QLatin1String("sub/x.col")));
    EXPECT_EQ(reply.value(QLatin1String("hsvp_filesamp")), QJsonValue(3));
}

TEST(ColumnFile, TheSalinityWordChoosesTheKind)
{
    struct
    {
        const char* line;
        const char* kind;
        const char* source;
    } const cases[] = {
        {"n,.col,0,1,2,3,-1,1;2,1,1,semicolon,salinity", "01", ".ssp"},
        {"n,.col,0,1,2,3,-1,1;2,1,1,semicolon,conductivity", "03", ".ssp"},
        {"n,.col,0,1,2,3,-1,1;2,1,1,semicolon,undef", "00", ".ssp"},
        {"n,.col,0,1,2,-1,-1,1;2,1,1,semicolon,salinity", "SoundVelocity", "x.col"},
        {"n,.col,0,1,-1,3,-1,1;2,1,1,semicolon,conductivity", "SoundVelocity", "x.col"},
        {depthAndSpeed, "SoundVelocity", "x.col"},
    };
    for (const auto& c : cases) {
        const QJsonObject reply = opened(text, c.line).reply;
        EXPECT_EQ(reply.value(QLatin1String("hsvp_filetype")).toString(), QLatin1String(c.kind))
            << c.line;
        EXPECT_EQ(reply.value(QLatin1String("hsvp_filesource")).toString(), QLatin1String(c.source))
            << c.line;
    }
}

TEST(ColumnFile, IsStampedWithTheCurrentTime)
{
    const QDateTime before = QDateTime::currentDateTimeUtc();
    const QJsonObject reply = opened(text, depthAndSpeed).reply;
    const QDateTime after = QDateTime::currentDateTimeUtc();
    const QString stamp = reply.value(QLatin1String("hsvp_filetime")).toString();
    EXPECT_GE(stamp, before.toString(QStringLiteral("yyyyMMddHHmmss")));
    EXPECT_LE(stamp, after.toString(QStringLiteral("yyyyMMddHHmmss")));
    EXPECT_EQ(reply.value(QLatin1String("hsvp_fileversion")), QJsonValue(1.0));
    EXPECT_EQ(reply.value(QLatin1String("hsvp_fileid")), QJsonValue(0));
    EXPECT_EQ(reply.value(QLatin1String("hsvp_fileradii")), QJsonValue(0));
    EXPECT_EQ(reply.value(QLatin1String("hsvp_filehistory")), QJsonValue(QLatin1String("NA")));
    EXPECT_TRUE(reply.value(QLatin1String("hsvp_filevalidfrom")).isDouble());
    EXPECT_TRUE(reply.value(QLatin1String("hsvp_filevalidto")).isDouble());
    EXPECT_FALSE(reply.contains(QLatin1String("hsvp_filelat")));
    EXPECT_FALSE(reply.contains(QLatin1String("hsvp_filelon")));
}

TEST(ColumnFile, SkippedLinesAndSeparatorsAreThoseOfTheRow)
{
    struct
    {
        const char* line;
        QByteArray separator;
    } const cases[] = {
        {"n,.col,0,1,-1,-1,-1,1;2,1,1,space,undef", " "},
        {"n,.col,0,1,-1,-1,-1,1;2,1,1,tab,undef", "\t"},
        {"n,.col,0,1,-1,-1,-1,1;2,1,1,semicolon,undef", ";"},
        {"n,.col,0,1,-1,-1,-1,1;2,1,1,colon,undef", ":"},
        {"n,.col,0,1,-1,-1,-1,1;2,1,1,comma,undef", ","},
    };
    for (const auto& c : cases)
        EXPECT_EQ(opened(QByteArray(text).replace(";", c.separator), c.line)
                      .reply.value(QLatin1String("svp_Depth"))
                      .toArray(),
                  (QJsonArray{10, 20, 30}))
            << c.line;
    // Lines 1 and 2 hold no numbers; lines 3 and 5 are skipped though they do.
    EXPECT_EQ(opened(text, "n,.col,0,1,-1,-1,-1,3;5,1,1,semicolon,undef").reason,
              QLatin1String("Too few points in file."));
    EXPECT_EQ(opened(text, "n,.col,0,1,-1,-1,-1,3,1,1,semicolon,undef")
                  .reply.value(QLatin1String("svp_Depth"))
                  .toArray(),
              (QJsonArray{20, 30}));
}

TEST(ColumnFile, DecimalsAreThoseOfTheColumnsRead)
{
    const QByteArray rows = "1.123;1500.1;5.12345\n2.1;1500;5\n";
    const DecimalCounts shown = opened(rows, "n,.col,0,1,-1,-1,-1,0,1,1,semicolon,undef").decimals;
    EXPECT_EQ(shown.depth, 3);
    EXPECT_EQ(shown.speed, 2);
    EXPECT_EQ(shown.temperature, 0);
    EXPECT_EQ(opened(rows, "n,.col,0,1,2,-1,-1,0,1,1,semicolon,undef").decimals.temperature, 5);
}

TEST(ColumnFile, TooFewLevelsAreRefused)
{
    for (const char* content : {"", "10;1500\n", "a;b\nc;d\n", "10 1500\n20 1501\n"})
        EXPECT_EQ(opened(content, "n,.col,0,1,-1,-1,-1,0,1,1,semicolon,undef").reason,
                  QLatin1String("Too few points in file."))
            << content;
}

TEST(ColumnFile, EncodingsLineEndsAndLocalesChangeNothing)
{
    const CommaLocale comma;
    const auto levels = [](const QByteArray& content) {
        return opened(content, depthAndSpeed).reply.value(QLatin1String("svp_Speed")).toArray();
    };
    const QString wide = QChar(QChar::ByteOrderMark) + QString::fromLatin1(text);
    for (const QByteArray& variant :
         {text, QByteArray(text).replace("\n", "\r\n"), QByteArray(text).replace("\n", "\r\r\n"),
          QByteArray(text).replace("\n", "\r"), "\xEF\xBB\xBF" + text,
          QByteArray(text).replace("logger", "m\xE5ler"),
          QByteArray(reinterpret_cast<const char*>(wide.utf16()), wide.size() * 2)})
        EXPECT_EQ(levels(variant), (QJsonArray{1500.25, 1501.5, 1502})) << variant.toStdString();
}

TEST(ColumnFile, TheExampleOpens)
{
    const QByteArray example = bytesOf(QStringLiteral(SVP_EXAMPLES_DIR "/buoy-logger.col"));
    const QJsonObject reply =
        opened(example, "buoy,.col,0,1,2,3,-1,1;2,1.0,1.0,semicolon,salinity").reply;
    const auto array = [&reply](const char* key) {
        return reply.value(QLatin1String(key)).toArray();
    };
    ASSERT_EQ(array("svp_Depth").size(), 24);
    EXPECT_EQ(array("svp_Depth").last(), QJsonValue(58));
    EXPECT_NEAR(array("svp_Speed").last().toDouble(), 1485.93, 1e-4);
    EXPECT_NEAR(array("svp_Temp").last().toDouble(), 8.8, 1e-6);
    EXPECT_NEAR(array("svp_Sal").last().toDouble(), 34.6, 1e-5);
    EXPECT_EQ(reply.value(QLatin1String("hsvp_filetype")).toString(), QLatin1String("01"));
}

TEST(ColumnFile, SurvivesBeingCutAtEachByte)
{
    for (int size = 0; size <= text.size(); ++size) {
        const OpenedProfile profile = opened(text.left(size), depthAndSpeed);
        EXPECT_LE(profile.reply.value(QLatin1String("svp_Speed")).toArray().size(), 3);
    }
}
