#include "fuzz/fuzzengine.h"
#include "plugin/csvp_webinterface.h"
#include "processing/extendrequest.h"
#include "processing/extensionrows.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdint>
#include <cstdlib>

// The three extend requests through the engine: what comes back as a success is a profile.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    CSVP_WebInterface& engine = fuzzEngine();
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), int(size));
    static const QStringList actions = {QStringLiteral("ExtendDefault"),
                                        QStringLiteral("ExtendTempSal"),
                                        QStringLiteral("ExtendWithFile")};
    for (const QString& action : actions) {
        QByteArray answer;
        const auto connection =
            QObject::connect(&engine, &CSVP_WebInterface::sendWSPacket, &engine,
                             [&answer](const QString&, const QByteArray& json) { answer = json; });
        engine.requestWebSocket(1, QStringLiteral("SVP_WebInterface"),
                                QStringLiteral("f,ACTION=SVP_WebInterface/") + action +
                                    QLatin1Char(',') + text);
        QObject::disconnect(connection);
        const QJsonObject reply = QJsonDocument::fromJson(answer).object();
        const QJsonArray speeds = reply.value(QLatin1String("svpX")).toArray();
        const QJsonArray depths = reply.value(QLatin1String("svpY")).toArray();
        if (reply.value(QLatin1String("whoami")).toString() != action ||
            speeds.size() != depths.size())
            std::abort();
        if (!reply.contains(QLatin1String("reason")) && depths.isEmpty())
            std::abort();
        for (const QJsonValue& depth : depths) {
            if (!depth.isDouble())
                std::abort();
        }
    }
    return 0;
}
