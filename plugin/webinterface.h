#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QtPlugin>

/// What a host web server knows of a plug-in: the names under which the plug-in wants traffic
/// and the calls by which it gets it. This header is all that a host shares with the engine.
///
/// The order of the virtual functions is the contract with hosts that were built against it: add
/// nothing in between, reorder nothing. The class has no Q_OBJECT on purpose: a host finds it by
/// its interface identifier and needs no compiled meta-object of its own.
///
/// Beyond these functions a plug-in offers, by its meta-object,
/// - slot `requestPost(int connection, const QByteArray& request)`: a whole HTTP POST;
/// - signal `sendPostResponse(int connection, QByteArray response)`: the answer to it;
/// - signal `sendWSPacket(QString target, QByteArray json)`: a message for the pages that are
///   registered under the name `target`.
///
/// All calls are made on the thread that owns the object; signals are emitted on that thread.
class WebInterface : public QObject // clazy:exclude=missing-qobject-macro
{
  public:
    using QObject::QObject;
    ~WebInterface() override = default;

    /// Names under which web-socket messages are served, e.g. ["SVP_WebInterface"].
    virtual QStringList getRegisterWebSocket() { return {}; }

    /// Names under which POST requests are served.
    virtual QStringList getRegisterPost() { return {}; }

    /// Raw data of a connection. Unused by plug-ins of this kind.
    virtual void requestData(int connection, QByteArray data)
    {
        Q_UNUSED(connection)
        Q_UNUSED(data)
    }

    /// One web-socket message: `name` is the registered name it is meant for, `data` its text.
    virtual void requestWebSocket(int connection, QString name, QString data)
    {
        Q_UNUSED(connection)
        Q_UNUSED(name)
        Q_UNUSED(data)
    }

    /// Keeps the last place of the table for the host.
    virtual void interfaceReserved() {}
};

#define WebInterface_iid "com.ardentide.WebInterface/1.0"
Q_DECLARE_INTERFACE(WebInterface, WebInterface_iid)
