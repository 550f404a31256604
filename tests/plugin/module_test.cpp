#include "plugin/webinterface.h"
#include "tests/places.h"
#include "tests/support/datafolder.h"

#include <QJsonObject>
#include <QPluginLoader>
#include <QSignalSpy>
#include <gtest/gtest.h>

// The built module, loaded as a host loads it: by its metadata and its interface alone.

TEST(Module, CarriesItsMetadata)
{
    const QJsonObject metaData = QPluginLoader(QStringLiteral(SVP_PLUGIN_FILE)).metaData();
    EXPECT_EQ(metaData.value(QLatin1String("IID")).toString(),
              QLatin1String("com.ardentide.svpwebinterfacelib"));
    EXPECT_EQ(metaData.value(QLatin1String("className")).toString(),
              QLatin1String("CSVP_WebInterface"));
    EXPECT_EQ(metaData.value(QLatin1String("version")).toInt(), 0x050F00);
    EXPECT_TRUE(metaData.value(QLatin1String("MetaData")).toObject().isEmpty());
}

TEST(Module, ServesThroughTheInterface)
{
    const DataFolder folder;
    folder.writeProfile(QStringLiteral("x.asvp"), asvp({"0 1500", "10 1499"}));
    QPluginLoader loader(QStringLiteral(SVP_PLUGIN_FILE));
    QObject* const object = loader.instance();
    ASSERT_NE(object, nullptr) << qPrintable(loader.errorString());
    EXPECT_EQ(object->parent(), nullptr);
    EXPECT_EQ(loader.instance(), object);
    auto* const plugin = qobject_cast<WebInterface*>(object);
    ASSERT_NE(plugin, nullptr);
    EXPECT_EQ(plugin->getRegisterWebSocket(), QStringList{QStringLiteral("SVP_WebInterface")});
    EXPECT_EQ(plugin->getRegisterPost(), QStringList{QStringLiteral("SVP_WebInterface")});
    plugin->requestData(1, "ignored");
    plugin->interfaceReserved();

    QSignalSpy packets(object, SIGNAL(sendWSPacket(QString,QByteArray)));
    QSignalSpy responses(object, SIGNAL(sendPostResponse(int,QByteArray)));
    ASSERT_TRUE(packets.isValid() && responses.isValid());
    plugin->requestWebSocket(1, QStringLiteral("SVP_WebInterface"),
                             QStringLiteral("x,ACTION=SVP_WebInterface/SVP_OpenSVP,[x.asvp,asvp]"));
    ASSERT_EQ(packets.size(), 1);
    EXPECT_EQ(packets.at(0).at(0).toString(), QLatin1String("SVP_WebInterface"));
    EXPECT_TRUE(packets.at(0).at(1).toByteArray().contains("\"SUCCESS\""));
    EXPECT_TRUE(QMetaObject::invokeMethod(object, "requestPost", Q_ARG(int, 3),
                                          Q_ARG(QByteArray, QByteArray("x"))));
    ASSERT_EQ(responses.size(), 1);
    EXPECT_EQ(responses.at(0).at(0).toInt(), 3);
    EXPECT_TRUE(QMetaObject::invokeMethod(object, "readPendingDatagrams"));
    EXPECT_TRUE(loader.unload());
}
