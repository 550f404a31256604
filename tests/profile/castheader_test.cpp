#include "profile/castheader.h"
#include "tests/support/printers.h"

#include <QDateTime>
#include <gtest/gtest.h>

using namespace profile;

namespace {

// 2026-06-18 07:42:10 UTC, as `date -u +%s` counts it.
constexpr qint64 moment = 1781768530000;

CastHeader header(const char* time)
{
    CastHeader result;
    result.type = QStringLiteral("01");
    result.source = QStringLiteral("x.vp2");
    result.time = QLatin1String(time);
    return result;
}

} // namespace

TEST(CastHeader, HoldsWhatIsKnownAndTheUsualRest)
{
    QJsonObject reply;
    CastHeader known = header("20260618074210");
    known.latitude = QStringLiteral("60.4");
    known.longitude = QStringLiteral("-4.3");
    known.comment = QStringLiteral("note");
    insertCastHeader(reply, known);
    EXPECT_EQ(reply, (QJsonObject{
                         {QStringLiteral("hsvp_filetype"), QStringLiteral("01")},
                         {QStringLiteral("hsvp_fileversion"), 1.0},
                         {QStringLiteral("hsvp_fileid"), 0},
                         {QStringLiteral("hsvp_fileradii"), 0},
                         {QStringLiteral("hsvp_filesource"), QStringLiteral("x.vp2")},
                         {QStringLiteral("hsvp_filetime"), QStringLiteral("20260618074210")},
                         {QStringLiteral("hsvp_filevalidfrom"), moment - 86400000},
                         {QStringLiteral("hsvp_filevalidto"), moment + 86400000},
                         {QStringLiteral("hsvp_filehistory"), QStringLiteral("NA")},
                         {QStringLiteral("hsvp_filelat"), QStringLiteral("60.4")},
                         {QStringLiteral("hsvp_filelon"), QStringLiteral("-4.3")},
                         {QStringLiteral("hsvp_filecomment"), QStringLiteral("note")},
                     }));
}

TEST(CastHeader, WhatIsUnknownIsLeftOut)
{
    QJsonObject reply;
    insertCastHeader(reply, header("20260618074210"));
    for (const char* key : {"hsvp_filelat", "hsvp_filelon", "hsvp_filecomment"})
        EXPECT_FALSE(reply.contains(QLatin1String(key))) << key;
}

TEST(CastHeader, AKnownTimeMayBeANumber)
{
    QJsonObject reply;
    CastHeader known = header("20260618074210");
    known.isTimeNumber = true;
    insertCastHeader(reply, known);
    EXPECT_EQ(reply.value(QLatin1String("hsvp_filetime")), QJsonValue(moment));
}

TEST(CastHeader, WithoutATimeTheCurrentOneIsTaken)
{
    for (const bool isNumber : {false, true}) {
        QJsonObject reply;
        CastHeader unknown = header("");
        unknown.isTimeNumber = isNumber;
        const qint64 before = QDateTime::currentMSecsSinceEpoch();
        insertCastHeader(reply, unknown);
        const qint64 after = QDateTime::currentMSecsSinceEpoch();
        const QJsonValue time = reply.value(QLatin1String("hsvp_filetime"));
        qint64 stamped = 0;
        ASSERT_TRUE(parseStamp(time.toString(), stamped)) << "a text, whatever the kind of file";
        EXPECT_GE(stamped, before - 1000);
        EXPECT_LE(stamped, after);
        const double from = reply.value(QLatin1String("hsvp_filevalidfrom")).toDouble();
        EXPECT_GE(from, double(before - 86400000));
        EXPECT_LE(from, double(after - 86400000));
        EXPECT_EQ(reply.value(QLatin1String("hsvp_filevalidto")).toDouble() - from, 2 * 86400000.0);
    }
}

TEST(CastHeader, ATimeThatIsNotUnderstoodIsToldBehindTheComment)
{
    const auto comment = [](const char* time, bool isUnread, const char* text) {
        QJsonObject reply;
        CastHeader cast = header(time);
        cast.isTimeUnread = isUnread;
        cast.comment = QLatin1String(text);
        insertCastHeader(reply, cast);
        return reply.value(QLatin1String("hsvp_filecomment")).toString();
    };
    const QString sentence =
        QStringLiteral("The time in the file is not understood: it is the current one.");
    EXPECT_EQ(comment("", true, "note"), QLatin1String("note ") + sentence);
    EXPECT_EQ(comment("", true, ""), sentence);
    EXPECT_EQ(comment("", false, "note"), QLatin1String("note"));
    EXPECT_EQ(comment("20260618074210", true, "note"), QLatin1String("note"));
}

TEST(Stamp, IsFourteenDigitsThatNameAMoment)
{
    qint64 milliseconds = -1;
    EXPECT_TRUE(parseStamp(QStringLiteral("20260618074210"), milliseconds));
    EXPECT_EQ(milliseconds, moment);
    EXPECT_TRUE(parseStamp(QStringLiteral("19700101000000"), milliseconds));
    EXPECT_EQ(milliseconds, 0);
    EXPECT_TRUE(parseStamp(QStringLiteral("20240229235959"), milliseconds));
    for (const char* text :
         {"", "2026061807421", "202606180742100", "2026061807421x", "20261318074210",
          "20260631074210", "20250229000000", "20260618240000", "20260618076010", "20260618074260",
          "00000101000000", "+0260618074210"})
        EXPECT_FALSE(parseStamp(QLatin1String(text), milliseconds)) << text;
    EXPECT_FALSE(parseStamp(QStringLiteral("２０２６０６１８０７４２１０"), milliseconds));
}

TEST(BaseName, IsTheLastElementOfEitherKindOfPath)
{
    EXPECT_EQ(baseName(QStringLiteral("x.vp2")), QLatin1String("x.vp2"));
    EXPECT_EQ(baseName(QStringLiteral("sub/x.vp2")), QLatin1String("x.vp2"));
    EXPECT_EQ(baseName(QStringLiteral("a/b\\x.vp2")), QLatin1String("x.vp2"));
    EXPECT_EQ(baseName(QString()), QString());
}
