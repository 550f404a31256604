#include "tests/support/enginefixture.h"

#include <gtest/gtest.h>

namespace {

// All actions, with the name under which each answers.
const struct
{
    const char* action;
    const char* whoami;
} actions[] = {
    {"SVP_OpenSVP", "SVP_OpenSVP"},
    {"SVP_Save", "SVP_Save"},
    {"SVP_SaveAs", "SVP_Save"},
    {"SendSVPtoQRV", "SendSVPtoQRV"},
    {"CloseSVP", "CloseSVP"},
    {"FixProfile", "FixProfile"},
    {"ExtendWithFile", "ExtendWithFile"},
    {"ExtendDefault", "ExtendDefault"},
    {"ExtendTempSal", "ExtendTempSal"},
    {"Thin", "Thin"},
    {"RVT300", "RVT300"},
    {"Distribute", "Distribute"},
    {"ShowRaypath", "ShowRaypath"},
    {"SaveFilter", "SaveFilter"},
    {"GetAllFilters", "GetAllFilters"},
    {"DeleteFilter", "DeleteFilter"},
    {"CheckProfile", "CheckProfile"},
    {"SelectExtentionFile", "SelectExtentionFile"},
    {"SVPReadyConnected", "SVPReadyConnected"},
    {"SVPAlert", "SVPAlert"},
};

QString whoamiOf(const QJsonObject& reply)
{
    return reply.value(QLatin1String("whoami")).toString();
}

} // namespace

TEST(Dispatch, EveryActionAnswersUnderItsName)
{
    Engine engine;
    for (const auto& c : actions) {
        const QString action = QLatin1String(c.action);
        EXPECT_EQ(whoamiOf(engine.request(action)), QLatin1String(c.whoami));
        EXPECT_EQ(whoamiOf(engine.request(action.toUpper())), QLatin1String(c.whoami));
        EXPECT_EQ(engine.packets().size(), 1) << c.action;
    }
}

TEST(Dispatch, TheMessageIsCutAtItsFirstTwoCommas)
{
    Engine engine;
    struct
    {
        const char* data;
        const char* alert; // null: no packet
    } const cases[] = {
        {"x,ACTION=SVP_WebInterface/SVPAlert,a,b", "a,b"},
        {",ACTION=SVP_WebInterface/SVPAlert,a", "a"},
        {"x,ACTION=svp_webinterface/svpalert,a,b", "a,b"},
        {"x,ACTION=SVP_WebInterface/SVPAlert=more,a", "a"},
        {"x,ACTIONS=SVP_WebInterface/SVPAlert,a", "a"},
        {"x,ACTION=SVP_WebInterface/SVPAlert,a=b", "a=b"},
        {"x,ACTION=SVPAlert,a", nullptr},
        {"x,ACTION=SVP_WebInterface/SVPAlerts,a", nullptr},
        {"x,ACTION= SVP_WebInterface/SVPAlert,a", nullptr},
        {"x, ACTION=SVP_WebInterface/SVPAlert,a", nullptr},
        {"ACTION=SVP_WebInterface/SVPAlert,a", nullptr},
        {"x,ACTION,a", nullptr},
        {"x,ACTION=,a", nullptr},
        {"", nullptr},
        {",", nullptr},
        {",,", nullptr},
    };
    for (const auto& c : cases) {
        engine.message(QLatin1String(c.data));
        ASSERT_EQ(engine.packets().size(), c.alert != nullptr ? 1 : 0) << c.data;
        if (c.alert != nullptr) {
            EXPECT_EQ(engine.packets().constFirst().value(QLatin1String("alert")).toString(),
                      QLatin1String(c.alert));
        }
    }
}

TEST(Dispatch, AMissingBodyIsEmpty)
{
    Engine engine;
    engine.message(QStringLiteral("x,ACTION=SVP_WebInterface/SVPAlert"));
    ASSERT_EQ(engine.packets().size(), 1);
    EXPECT_EQ(outcome(engine.packets().constFirst()), QLatin1String("Invalid parameters."));
}

TEST(Dispatch, WhatIsNoActionIsLoggedWithTheWholeMessage)
{
    Engine engine;
    for (const char* data :
         {"x,action=SVP_WebInterface/Thin", "x,Action=y,z", "", "x", "x,", "a,b,c,d"}) {
        engine.message(QLatin1String(data));
        EXPECT_TRUE(engine.packets().isEmpty());
        EXPECT_TRUE(
            testlog::hasLine(QStringLiteral("Action type not found -") + QLatin1String(data)))
            << data;
    }
}

TEST(Dispatch, AnUnknownActionIsIgnoredButForTheInputLine)
{
    Engine engine;
    const int before = testlog::lines().size();
    engine.message(QStringLiteral("x,ACTION=SVP_WebInterface/Nothing"));
    EXPECT_TRUE(engine.packets().isEmpty());
    EXPECT_EQ(testlog::lines().mid(before),
              QStringList{QStringLiteral("CSVP_WebInterface::requestWebSocket - INPUT: "
                                         "SVP_WebInterface:x,ACTION=SVP_WebInterface/Nothing")});
}

TEST(Dispatch, OnlyTheRegisteredNameIsServed)
{
    Engine engine;
    const int before = testlog::lines().size();
    const QString ready = QStringLiteral("x,ACTION=SVP_WebInterface/SVPReadyConnected");
    for (const char* name : {"", "SVP", "SVP_WebInterface ", "Other"}) {
        engine.message(ready, QLatin1String(name));
        EXPECT_TRUE(engine.packets().isEmpty()) << name;
    }
    EXPECT_EQ(testlog::lines().size(), before);
    engine.message(ready);
    EXPECT_EQ(engine.lastTarget(), QLatin1String("SVP_WebInterface"));
    engine.message(ready, QStringLiteral("svp_webinterface"));
    EXPECT_EQ(engine.lastTarget(), QLatin1String("svp_webinterface"));
    engine.message(ready, QStringLiteral("Other"));
    engine.message(ready, QStringLiteral("SVP_WEBINTERFACE"));
    EXPECT_EQ(engine.lastTarget(), QLatin1String("SVP_WEBINTERFACE"));
}
