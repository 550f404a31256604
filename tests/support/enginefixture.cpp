#include "tests/support/enginefixture.h"

#include <QJsonDocument>

Engine::Engine(const QString& folderName, bool isConfigured)
    : folder(folderName, isConfigured), m_packets(&plugin, &CSVP_WebInterface::sendWSPacket)
{
}

void Engine::message(const QString& data, const QString& name)
{
    m_packets.clear();
    plugin.requestWebSocket(7, name, data);
}

QJsonObject Engine::request(const QString& action, const QString& body)
{
    message(QStringLiteral("page,ACTION=SVP_WebInterface/") + action + QLatin1Char(',') + body);
    const QVector<QJsonObject> answers = packets();
    return answers.isEmpty() ? QJsonObject() : answers.first();
}

QVector<QJsonObject> Engine::packets() const
{
    QVector<QJsonObject> objects;
    const QList<QByteArray> texts = rawPackets();
    for (const QByteArray& json : texts)
        objects.append(QJsonDocument::fromJson(json).object());
    return objects;
}

QList<QByteArray> Engine::rawPackets() const
{
    QList<QByteArray> texts;
    for (const QList<QVariant>& packet : m_packets)
        texts.append(packet.at(1).toByteArray());
    return texts;
}

QString Engine::lastTarget() const
{
    return m_packets.isEmpty() ? QString() : m_packets.last().at(0).toString();
}

QString checkBody(const QString& speeds, const QString& depths)
{
    return QStringLiteral("[") + speeds + QLatin1Char(';') + depths +
           QStringLiteral(";0;0;0;0;0*cast.asvp*SoundVelocity*1.0*0*20261115123456*59.5*10.25*0*0*"
                          "0*sample*NA*2*NA]");
}

QString outcome(const QJsonObject& reply)
{
    const QString result = reply.value(QStringLiteral("result")).toString();
    return result == QLatin1String("FAILURE") ? reply.value(QStringLiteral("reason")).toString()
                                              : result;
}
