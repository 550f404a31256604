#pragma once

#include "plugin/webinterface.h"

/// A plug-in that sends back what it gets, and misbehaves on demand.
///
/// Messages are commands, their parts separated by commas:
/// - "slow,<ms>,<text>"     echoes after blocking the thread
/// - "hold,<ms>"            says "begun", then blocks the thread
/// - "later,<ms>,<text>"    returns at once and echoes by itself
/// - "flood,<count>,<size>" sends packets of about that many bytes
/// - "log,<size>"           logs a message of that many characters
/// - "garbage"              sends bytes that are not JSON
/// - "throw"                throws
/// - "about"                tells of its environment
/// - anything else          is echoed
///
/// A POST is answered with its own text; the words "silent", "twice", "later" and "throw" in its
/// request line change that.
class EchoPlugin : public WebInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.ardentide.svpwebinterfacelib")
    Q_INTERFACES(WebInterface)

  public:
    EchoPlugin() = default;

    QStringList getRegisterWebSocket() override;
    QStringList getRegisterPost() override;

  public slots:
    void requestWebSocket(int connection, QString name, QString data) override;
    void requestPost(int connection, const QByteArray& request);

  signals:
    void sendPostResponse(int connection, QByteArray response);
    void sendWSPacket(QString target, QByteArray json);

  private:
    void echo(int connection, const QString& name, const QString& data);
};
