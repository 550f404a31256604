#include "profile/openprofile.h"

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
