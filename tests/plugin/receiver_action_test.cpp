#include "tests/support/enginefixture.h"

#include <gtest/gtest.h>

TEST(ReceiverAction, SuccessCarriesItsTextAsReason)
{
    Engine engine;
    struct
    {
        const char* action;
        const char* reason;
    } const cases[] = {{"RVT300", "SVP sent to RVT300."}, {"Distribute", "SVP distributed."}};
    for (const auto& c : cases) {
        const QString action = QLatin1String(c.action);
        for (const char* body : {"[1,1500,2,1501,3,1502]", "1,1500,2,1501,3,1502", "a,b,c,d,e,f"}) {
            EXPECT_EQ(engine.request(action, QLatin1String(body)),
                      (QJsonObject{{QStringLiteral("whoami"), action},
                                   {QStringLiteral("result"), QStringLiteral("SUCCESS")},
                                   {QStringLiteral("reason"), QLatin1String(c.reason)}}));
            EXPECT_EQ(engine.packets().size(), 1);
        }
        for (const char* body :
             {"1,1500,2,1501,3", "1,1500,2,1501", "", "[]", "1,1500,2,1501,3,1502,4"})
            EXPECT_EQ(engine.request(action, QLatin1String(body)),
                      (QJsonObject{{QStringLiteral("whoami"), action},
                                   {QStringLiteral("result"), QStringLiteral("FAILURE")},
                                   {QStringLiteral("reason"), QStringLiteral("Invalid svp.")}}));
    }
}
