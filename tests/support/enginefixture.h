#pragma once

#include "plugin/csvp_webinterface.h"
#include "tests/support/datafolder.h"
#include "tests/support/log.h"

#include <QJsonObject>
#include <QSignalSpy>
#include <gtest/gtest.h>

/// The engine on a data root of its own, driven through its slots and watched through its signals
/// as a host does.
class Engine
{
  public:
    explicit Engine(const QString& folderName = QStringLiteral("data"), bool isConfigured = true);

    /// Hands a message to the engine as it stands.
    void message(const QString& data, const QString& name = QStringLiteral("SVP_WebInterface"));
    /// Sends an action and returns the first packet that it brought; empty when there was none.
    QJsonObject request(const QString& action, const QString& body = QString());
    /// Packets of the last message or request.
    QVector<QJsonObject> packets() const;
    /// Packets as they went out.
    QList<QByteArray> rawPackets() const;
    /// Target of the last packet.
    QString lastTarget() const;

    DataFolder folder;
    CSVP_WebInterface plugin;

  private:
    QSignalSpy m_packets;
};

/// The body of a check request: speeds and depths as lists, the other pieces filled.
QString checkBody(const QString& speeds, const QString& depths);

/// "SUCCESS" or the reason of the failure.
QString outcome(const QJsonObject& reply);
