#include "plugin/csvp_webinterface.h"

#include <QDebug>
#include <QFileInfo>
#include <QHostAddress>
#include <QUdpSocket>

#include <algorithm>
#include <cstring>

// Requests of other processes of the survey system: "$TXQRV,350,<path>,<identifier>" opens a file.

namespace {

constexpr char sentence[] = "$TXQRV,";
constexpr int openRequest = 350;
constexpr char acknowledgement[] = "$TXQRV,351,\n\r";
constexpr quint16 acknowledgementPort = 15061;

QByteArray stripped(const QByteArray& text)
{
    constexpr char blanks[] = " \t\n\r";
    int start = 0;
    int end = text.size();
    while (start < end && std::strchr(blanks, text[start]) != nullptr && text[start] != '\0')
        ++start;
    while (end > start && std::strchr(blanks, text[end - 1]) != nullptr && text[end - 1] != '\0')
        --end;
    return text.mid(start, end - start);
}

} // namespace

void CSVP_WebInterface::readPendingDatagrams()
{
    auto* socket = qobject_cast<QUdpSocket*>(sender());
    if (socket == nullptr)
        socket = udpSocket;
    // A socket that could not be bound has nothing to read.
    while (socket->state() == QAbstractSocket::BoundState && socket->hasPendingDatagrams()) {
        QByteArray datagram(int(std::max<qint64>(socket->pendingDatagramSize(), 0)), '\0');
        const qint64 size = socket->readDatagram(datagram.data(), datagram.size());
        if (size < 0)
            continue;
        datagram.truncate(int(size));
        if (socket->localPort() == inputPort)
            processUdpDatagram(datagram);
        else
            qDebug() << "Unknown input port:" << socket->localPort();
    }
}

void CSVP_WebInterface::processUdpDatagram(const QByteArray& datagram)
{
    if (!QString::fromUtf8(datagram).startsWith(QLatin1String(sentence)))
        return;
    try {
        HandleTXQRVDatagrams(datagram);
    } catch (const std::exception& error) {
        qDebug() << "CSVP_WebInterface::HandleTXQRVDatagrams - WARNING -" << error.what();
    }
}

void CSVP_WebInterface::HandleTXQRVDatagrams(const QByteArray& datagram)
{
    const QList<QByteArray> fields = stripped(datagram).split(',');
    bool isNumber = false;
    if (fields.value(1).toInt(&isNumber) != openRequest || !isNumber)
        return;
    const auto refuse = [&datagram](const char* fault) {
        qDebug().noquote().nospace()
            << "CSVP_WebInterface::HandleTXQRVDatagrams - INPUT: " << fault << '\n'
            << datagram;
    };
    if (fields.value(2).isEmpty())
        return refuse("$TXQRV,350: No file path");
    if (fields.value(3).isEmpty())
        return refuse("$TXQRV,350: No file identifier string");

    // The peer waits for this, not for the file: opening may take longer than its patience.
    QUdpSocket().writeDatagram(acknowledgement, QHostAddress(QHostAddress::LocalHost),
                               acknowledgementPort);
    qDebug().noquote().nospace() << "Sent response signal TXQRV_351 to PBUControl: "
                                 << acknowledgement;

    const QString identifier = QString::fromUtf8(fields[3]);
    const QString suffix = QFileInfo(identifier).suffix();
    const QString name = suffix.isEmpty() ? identifier + QStringLiteral(".asvp") : identifier;
    const QString kind = suffix.isEmpty() ? QStringLiteral("asvp") : suffix;
    handleOpenSVP(QLatin1Char('[') + name + QLatin1Char(',') + kind + QLatin1Char(']'),
                  QByteArray());
}
