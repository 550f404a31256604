// The host with the real engine, end to end.

#include "tests/host/client.h"
#include "tests/host/host_process.h"
#include "tests/places.h"

#include <QFileInfo>
#include <gtest/gtest.h>

using namespace hosttest;

namespace {

TEST(Engine, AnswersThePageAndTheUpload)
{
    Scene scene(QString::fromUtf8("Données 測深"));
    QStringList arguments = scene.arguments();
    arguments[1] = QStringLiteral(SVP_PLUGIN_FILE);
    HostProcess host(arguments);
    ASSERT_TRUE(host.awaitAddress()) << host.errorOutput().constData();

    PageClient page(host.port());
    ASSERT_TRUE(page.request("page,ACTION=SVP_WebInterface/SVPReadyConnected"));
    const QJsonObject message = page.receive();
    EXPECT_EQ(message.value(QStringLiteral("target")).toString(),
              QStringLiteral("SVP_WebInterface"));
    EXPECT_EQ(message.value(QStringLiteral("packet")).toObject(),
              (QJsonObject{{QStringLiteral("whoami"), QStringLiteral("SVPReadyConnected")}}));

    RawClient upload(host.port());
    upload.send(postText(host.port(), "/SVP_WebInterface",
                         "--b\r\nContent-Disposition: form-data; filename=\"cast.asvp\"\r\n\r\n"
                         "not a cast\r\n--b--\r\n",
                         "Content-Type: multipart/form-data; boundary=b\r\n"));
    EXPECT_EQ(upload.receiveRest().find("HTTP/1.0 500 Internal Server Error\r\n"), 0U);

    // The engine keeps its settings in the data folder that it was given.
    EXPECT_TRUE(
        QFileInfo::exists(scene.dataFolder() + QStringLiteral("/Ardentide/tqrv/SVPEditor.ini")));
    host.terminate();
    EXPECT_EQ(page.awaitClose(), 1001);
    EXPECT_EQ(host.awaitExit(), 0);
}

} // namespace
