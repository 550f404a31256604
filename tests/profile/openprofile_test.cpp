#include "profile/importfilter.h"
#include "profile/openprofile.h"
#include "tests/support/datafolder.h"

#include <QJsonArray>
#include <gtest/gtest.h>

TEST(OpenProfile, TheNameIsCutOutOfTheRequest)
{
    struct
    {
        const char* request;
        const char* name;
    } const cases[] = {
        {"[x.asvp,asvp]", "x.asvp"},
        {"[x.ssp,ssp]", "x.ssp"},
        {"[cast.vp2,vp2]", "cast.vp2"},
        {"[cast.ASVP,ASVP]", "cast.ASVP"},
        {"x.asvp", "x.asvp"},
        {"x.asvp,asvp", "x.asvp,asvp"},
        {"[x.asvp]", "x.asvp]"},
        {"[a,b.asvp,asvp]", "a,b.asvp"},
        {"[[x.asvp,asvp]", "x.asvp"},
        {"[a]b.asvp,asvp]", "a]b.asvp"},
        {"[x.asvp,a-b]", "x.asvp,a-b]"},
        {"[x.asvp,]", "x.asvp,]"},
        {"[x.vp2,vp2,vp2]", "x.vp2,vp2"},
        {"[x,asvp].vp2,vp2]", "x.vp2"},
        {"", ""},
        {"[]", "]"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(profile::requestedFileName(QString::fromLatin1(c.request)), QLatin1String(c.name))
            << c.request;
}

namespace {

class OpenProfileKinds : public testing::Test
{
  protected:
    // Opens a file of this content and tells what came: the kind in the reply, or the reason.
    QString outcome(const char* name, const QByteArray& content)
    {
        m_data.writeProfile(QLatin1String(name), content);
        const profile::OpenedProfile opened = profile::openProfile(
            profile::ProfileFolder(m_data.path(QStringLiteral("qrvdata/svp_abscoeff")), true),
            QLatin1String(name), profile::builtInFilters() + m_userRows,
            [](const QByteArray&, const QString&) {
                return profile::OpenedProfile{{}, QStringLiteral("datagram"), {}};
            });
        return opened.reason.isEmpty()
                   ? opened.reply.value(QLatin1String("hsvp_filetype")).toString() +
                         QLatin1Char('/') +
                         QString::number(
                             opened.reply.value(QLatin1String("svp_Depth")).toArray().size())
                   : opened.reason;
    }

    QStringList m_userRows = {
        QStringLiteral("mine,.VP2,0,1,-1,-1,-1,0,1,1,space,undef"),
        QStringLiteral("buoy,.col,0,1,2,3,-1,1;2,1,1,semicolon,conductivity"),
        QStringLiteral("late,.col,0,1,-1,-1,-1,1;2,1,1,space,undef"),
    };

  private:
    DataFolder m_data;
};

} // namespace

TEST_F(OpenProfileKinds, TheSuffixChoosesTheReader)
{
    const QByteArray vp2 = "[COLUMNS]\nDepth\nSound Velocity\n[DATA]\n1\t1500\n2\t1501\n";
    const QByteArray aml = "[MeasurementMetadata]\nColumns=Depth,SV,TempCT,Salinity\n"
                           "[MeasurementData]\n1,1500,9,35\n2,1501,9,35\n";
    const QByteArray valeport = "Now: 20/06/2026 13:20:45\n1\t9\t1500\n2\t9\t1501\n3\t9\t1502\n";
    struct
    {
        const char* name;
        QByteArray content;
        const char* outcome;
    } const cases[] = {
        {"x.vp2", vp2, "00/2"},
        {"X.VP2", vp2, "00/2"},
        {"x.aml", aml, "01/2"},
        {"X.AmlX", aml, "01/2"},
        {"x.amlx", aml, "01/2"},
        {"x.valeport", valeport, "SoundVelocity/3"},
        {"X.VALEPORT", valeport, "SoundVelocity/3"},
        {"x.asvp", asvp({"0 1500", "1 1500"}), "SoundVelocity/2"},
        {"x.ssp", "", "datagram"},
        {"X.SSP", "", "datagram"},
        {"x.col", "a\nb\n1;1500;9;35\n2;1501;9;35\n", "03/2"},
        {"X.COL", "a\nb\n1;1500;9;35\n2;1501;9;35\n", "03/2"},
        // Refusals.
        {"bad.vp2", aml, "Valeport vp2 decode problem."},
        {"bad.aml", vp2, "AML aml format decode problem."},
        {"bad.amlx", "", "AML aml format decode problem."},
        {"few.vp2", vp2.left(vp2.lastIndexOf("2\t")), "Too few points in file."},
        {"few.aml", aml.left(aml.lastIndexOf("2,")), "Too few points in file."},
        {"few.valeport", valeport.left(30), "Too few points in file."},
        {"few.col", "a\nb\n1;1500;9;35\n", "Too few points in file."},
        {"none.xyz", vp2, "Filter not found."},
    };
    for (const auto& c : cases)
        EXPECT_EQ(outcome(c.name, c.content), QLatin1String(c.outcome)) << c.name;
}
