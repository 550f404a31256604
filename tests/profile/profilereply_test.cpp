#include "profile/profilereply.h"

#include <QJsonArray>
#include <gtest/gtest.h>

using namespace profile;

TEST(ProfileReply, SlotsBecomeArrays)
{
    QJsonObject reply;
    EXPECT_EQ(insertProfile(reply, {1500, 0.1F, 2, 3, 4, 5, 6, 1501, 10, 12, 13, 14, 15, 16, 99},
                            QStringLiteral("x.asvp")),
              QString());
    const auto array = [&reply](const char* key) {
        return reply.value(QLatin1String(key)).toArray();
    };
    EXPECT_EQ(array("svp_Speed"), (QJsonArray{1500, 1501}));
    EXPECT_EQ(array("svp_Depth"), (QJsonArray{0.10000000149011612, 10}));
    EXPECT_EQ(array("svp_Depth_CTD"), (QJsonArray{2, 12}));
    EXPECT_EQ(array("svp_Speed_CTD"), (QJsonArray{3, 13}));
    EXPECT_EQ(array("svp_Temp"), (QJsonArray{4, 14}));
    EXPECT_EQ(array("svp_Sal"), (QJsonArray{5, 15}));
    EXPECT_EQ(array("svp_AbsCoef"), (QJsonArray{6, 16}));
    EXPECT_EQ(reply.value(QLatin1String("filename")).toString(), QLatin1String("x.asvp"));
    EXPECT_EQ(reply.value(QLatin1String("hsvp_filesamp")).toInt(), 2);
}

TEST(ProfileReply, AGivenSampleCountStays)
{
    QJsonObject reply{{QStringLiteral("hsvp_filesamp"), QStringLiteral("0002")}};
    EXPECT_EQ(insertProfile(reply, QVector<float>(14), QStringLiteral("x")), QString());
    EXPECT_EQ(reply.value(QLatin1String("hsvp_filesamp")), QJsonValue(QStringLiteral("0002")));
}

TEST(ProfileReply, TwoLevelsAreTheLeast)
{
    QJsonObject reply;
    EXPECT_EQ(insertProfile(reply, QVector<float>(13), QStringLiteral("x")),
              QLatin1String("Too few points in file."));
    EXPECT_EQ(insertProfile(reply, {}, QStringLiteral("x")),
              QLatin1String("Too few points in file."));
    EXPECT_TRUE(reply.isEmpty());
}

TEST(ProfileReply, TheHeaderWordsGoOutAsStrings)
{
    QJsonObject reply;
    QStringList words;
    for (int i = 1; i <= 12; ++i)
        words.append(QString::number(i));
    insertAsvpHeader(reply, words);
    const char* const keys[] = {"hsvp_filetype",   "hsvp_fileversion",   "hsvp_fileid",
                                "hsvp_filetime",   "hsvp_filelat",       "hsvp_filelon",
                                "hsvp_fileradii",  "hsvp_filevalidfrom", "hsvp_filevalidto",
                                "hsvp_filesource", "hsvp_filehistory",   "hsvp_filesamp"};
    int number = 0;
    for (const char* key : keys)
        EXPECT_EQ(reply.value(QLatin1String(key)), QJsonValue(QString::number(++number))) << key;
    EXPECT_EQ(reply.size(), 12);
}
