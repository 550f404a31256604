#pragma once

#include <QElapsedTimer>
#include <QHostAddress>
#include <QThread>
#include <QUdpSocket>

/// Binds to a port of this machine, for which it is the only one: whoever has it, such as the same
/// tests of another build, is waited for.
inline bool bindPatiently(QUdpSocket& socket, quint16 port)
{
    constexpr int patience = 60000; // ms
    QElapsedTimer clock;
    clock.start();
    while (!socket.bind(QHostAddress(QHostAddress::LocalHost), port)) {
        if (clock.hasExpired(patience))
            return false;
        QThread::msleep(50);
    }
    return true;
}
