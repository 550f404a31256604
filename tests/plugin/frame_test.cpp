#include "tests/support/enginefixture.h"

#include <QMetaMethod>
#include <gtest/gtest.h>

// The contract with hosts that were built against the interface.

TEST(Frame, TheMetaObjectListsSignalsAndSlotsInTheirOrder)
{
    const QMetaObject& meta = CSVP_WebInterface::staticMetaObject;
    const char* const signatures[] = {"sendPostResponse(int,QByteArray)",
                                      "sendWSPacket(QString,QByteArray)",
                                      "requestWebSocket(int,QString,QString)",
                                      "requestPost(int,QByteArray)", "readPendingDatagrams()"};
    ASSERT_EQ(meta.methodCount() - meta.methodOffset(), 5);
    for (int i = 0; i < 5; ++i) {
        const QMetaMethod method = meta.method(meta.methodOffset() + i);
        EXPECT_EQ(method.methodSignature(), QByteArray(signatures[i]));
        EXPECT_EQ(method.methodType(), i < 2 ? QMetaMethod::Signal : QMetaMethod::Slot);
    }
    EXPECT_STREQ(meta.className(), "CSVP_WebInterface");
    EXPECT_STREQ(meta.superClass()->className(), "QObject");
}

TEST(Frame, IsFoundByClassAndInterfaceName)
{
    Engine engine;
    EXPECT_EQ(engine.plugin.qt_metacast("CSVP_WebInterface"), &engine.plugin);
    EXPECT_EQ(engine.plugin.qt_metacast("com.ardentide.WebInterface/1.0"),
              static_cast<WebInterface*>(&engine.plugin));
    EXPECT_EQ(engine.plugin.qt_metacast("com.ardentide.WebInterface/1.1"), nullptr);
    EXPECT_EQ(qobject_cast<WebInterface*>(static_cast<QObject*>(&engine.plugin)), &engine.plugin);
}

TEST(Frame, RegistersOneNameForEachKindOfTraffic)
{
    Engine engine;
    EXPECT_EQ(engine.plugin.getRegisterWebSocket(),
              QStringList{QStringLiteral("SVP_WebInterface")});
    EXPECT_EQ(engine.plugin.getRegisterPost(), QStringList{QStringLiteral("SVP_WebInterface")});
}

TEST(Frame, ReadyAnswersItsNameAlone)
{
    Engine engine;
    engine.request(QStringLiteral("SVPReadyConnected"));
    ASSERT_EQ(engine.rawPackets().size(), 1);
    EXPECT_EQ(engine.rawPackets().constFirst(), "{\n    \"whoami\": \"SVPReadyConnected\"\n}\n");
}

TEST(Frame, CloseDeliversTheAlertThatWasHeldBack)
{
    Engine engine;
    engine.request(QStringLiteral("CloseSVP"), QStringLiteral("anything"));
    EXPECT_EQ(
        engine.rawPackets(),
        QList<QByteArray>{"{\n    \"result\": \"SUCCESS\",\n    \"whoami\": \"CloseSVP\"\n}\n"});

    engine.plugin.addPendingAlert("first");
    engine.plugin.addPendingAlert("");
    engine.plugin.addPendingAlert("second");
    engine.request(QStringLiteral("CloseSVP"));
    ASSERT_EQ(engine.rawPackets().size(), 2);
    EXPECT_EQ(engine.rawPackets().at(1), "{\n    \"alert\": \"first\\nsecond\",\n    \"result\": "
                                         "\"FAILURE\",\n    \"whoami\": \"SVPAlert\"\n}\n");
    engine.request(QStringLiteral("CloseSVP"));
    EXPECT_EQ(engine.rawPackets().size(), 1);
}

TEST(Frame, AnAlertThatComesBackIsShownAgain)
{
    Engine engine;
    struct
    {
        const char* body;
        const char* alert; // null: refused
    } const cases[] = {
        {"[a*]", "a"},  {"[a]", "a"},     {"  [text, with commas]  ", "text, with commas"},
        {"**a**", "a"}, {"[ a ]", " a "}, {"[a*b]", nullptr},
        {"", nullptr},  {"[]", nullptr},  {"***", nullptr},
    };
    for (const auto& c : cases) {
        const QJsonObject reply = engine.request(QStringLiteral("SVPAlert"), QLatin1String(c.body));
        ASSERT_EQ(engine.packets().size(), 1) << c.body;
        EXPECT_EQ(reply.value(QLatin1String("whoami")).toString(), QLatin1String("SVPAlert"));
        EXPECT_EQ(outcome(reply), c.alert != nullptr ? QLatin1String("SUCCESS")
                                                     : QLatin1String("Invalid parameters."))
            << c.body;
        EXPECT_EQ(reply.value(QLatin1String("alert")).toString(), QLatin1String(c.alert)) << c.body;
        EXPECT_EQ(reply.contains(QLatin1String("alert")), c.alert != nullptr) << c.body;
    }
}

TEST(Frame, ReportMessagesComeFromTheSettingsFile)
{
    const Engine defaults;
    {
        Engine engine;
        EXPECT_EQ(
            engine.plugin.GetReportErr("2616", 3, 10.5, 1399.0),
            "Illegal sound speed value. Sample no. 3:  10.50m  1399.00m/s. Profile not accepted.");
        EXPECT_EQ(
            engine.plugin.GetReportErr("2616", 3, 10.5F, 1399.0F),
            "Illegal sound speed value. Sample no. 3:  10.50m  1399.00m/s. Profile not accepted.");
        EXPECT_EQ(engine.plugin.GetReportErr("2606"),
                  "Illegal day (legal 1-31).  Profile not accepted.");
        EXPECT_EQ(engine.plugin.GetReportErr("2611"), "");
    }
    const DataFolder folder;
    folder.write(QStringLiteral("tqrv/SVPEditor.ini"),
                 "[iniVer]\nSVPEditorVersion=8\n[absReportMsg]\n"
                 "1=C:\\data\\x.asvp %s %n %d\n2=%s%s%s%s\n");
    CSVP_WebInterface plugin;
    EXPECT_EQ(plugin.GetReportErr("1", 5), "C:/data/x.asvp %s %n 5");
    EXPECT_EQ(plugin.GetReportErr("2"), "%s%s%s%s");
    EXPECT_EQ(plugin.GetReportErr("2600"), "");
}
