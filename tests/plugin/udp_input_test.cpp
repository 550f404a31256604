#include "tests/support/enginefixture.h"
#include "tests/support/udpport.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>
#include <QUdpSocket>
#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace {

/// The peer process that asks for files: it waits for the acknowledgement.
class Peer
{
  public:
    Peer() : m_isBound(bindPatiently(m_socket, 15061)) {}

    bool isBound() const { return m_isBound; }

    /// What has come: as many datagrams as are expected are waited for, more of them hardly.
    QList<QByteArray> received(int expected)
    {
        QList<QByteArray> datagrams;
        while (m_socket.hasPendingDatagrams() ||
               m_socket.waitForReadyRead(datagrams.size() < expected ? 30000 : 50)) {
            QByteArray bytes(int(m_socket.pendingDatagramSize()), '\0');
            m_socket.readDatagram(bytes.data(), bytes.size());
            datagrams.append(bytes);
        }
        return datagrams;
    }

  private:
    QUdpSocket m_socket;
    bool m_isBound;
};

bool waitFor(const std::function<bool()>& condition)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition() && timer.elapsed() < 60000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    return condition();
}

const QByteArray acknowledgement("$TXQRV,351,\n\r");
const QString noFile = QStringLiteral("File does not exist or cannot be opened for reading");

} // namespace

TEST(UdpInput, ARequestIsAcknowledgedAndOpensItsFile)
{
    Peer peer;
    ASSERT_TRUE(peer.isBound());
    struct
    {
        const char* datagram;
        const char* name; // of the file that opens
    } const cases[] = {
        {"$TXQRV,350,C:\\x,profile1\r\n", "profile1.asvp"},
        {"$TXQRV,350,C:\\x,profile1.asvp", "profile1.asvp"},
        {" \t\r\n$TXQRV,350,C:\\x,profile1", nullptr},
        {"$TXQRV,0350,x,profile1", "profile1.asvp"},
        {"$TXQRV,350,x,profile1,more,fields", "profile1.asvp"},
        {"$TXQRV,350,x,UPPER.ASVP", "UPPER.ASVP"},
        {"$TXQRV,350,x,sub/y", "sub/y.asvp"},
        {"$TXQRV,350,x,v1.2/z.asvp", "v1.2/z.asvp"},
    };
    for (const auto& c : cases) {
        Engine engine;
        QSignalSpy packets(&engine.plugin, &CSVP_WebInterface::sendWSPacket);
        if (c.name != nullptr)
            engine.folder.writeProfile(QLatin1String(c.name), asvp({"0 1500", "1 1500"}));
        engine.plugin.processUdpDatagram(c.datagram);
        EXPECT_EQ(peer.received(c.name != nullptr ? 1 : 0),
                  c.name != nullptr ? QList<QByteArray>{acknowledgement} : QList<QByteArray>{})
            << c.datagram;
        ASSERT_EQ(packets.size(), c.name != nullptr ? 1 : 0) << c.datagram;
        if (c.name != nullptr) {
            EXPECT_TRUE(packets.at(0).at(1).toByteArray().contains(QByteArray("\"filename\": \"") +
                                                                   c.name + '"'))
                << c.datagram;
            EXPECT_TRUE(packets.at(0).at(1).toByteArray().contains("\"SUCCESS\""));
        }
    }
}

TEST(UdpInput, TheSuffixBecomesTheKind)
{
    const Peer peer; // that no other test's peer gets the acknowledgement
    ASSERT_TRUE(peer.isBound());
    Engine engine;
    engine.folder.writeProfile(QStringLiteral("cast.ssp"), "x");
    QSignalSpy packets(&engine.plugin, &CSVP_WebInterface::sendWSPacket);
    engine.plugin.processUdpDatagram("$TXQRV,350,C:\\x,cast.ssp");
    ASSERT_EQ(packets.size(), 1);
    EXPECT_TRUE(packets.at(0).at(1).toByteArray().contains("Header not correct in file."));
}

TEST(UdpInput, AFileThatDoesNotOpenIsAcknowledgedAllTheSame)
{
    Peer peer;
    ASSERT_TRUE(peer.isBound());
    Engine engine;
    engine.message(QStringLiteral("x,ACTION=SVP_WebInterface/CloseSVP"),
                   QStringLiteral("svp_webinterface"));
    QSignalSpy packets(&engine.plugin, &CSVP_WebInterface::sendWSPacket);
    engine.plugin.processUdpDatagram("$TXQRV,350,x,none");
    EXPECT_EQ(peer.received(1), QList<QByteArray>{acknowledgement});
    ASSERT_EQ(packets.size(), 1);
    EXPECT_EQ(packets.at(0).at(0).toString(), QLatin1String("svp_webinterface"))
        << "the last target";
    EXPECT_TRUE(packets.at(0).at(1).toByteArray().contains(noFile.toLatin1()));
    EXPECT_TRUE(testlog::hasLine(
        QStringLiteral("Sent response signal TXQRV_351 to PBUControl: $TXQRV,351,\n\r")));
}

TEST(UdpInput, WhatIsNoRequestIsDropped)
{
    Peer peer;
    ASSERT_TRUE(peer.isBound());
    Engine engine;
    QSignalSpy packets(&engine.plugin, &CSVP_WebInterface::sendWSPacket);
    const int before = testlog::lines().size();
    for (const char* datagram :
         {"$TXQRV,351,C:\\x,a", "$txqrv,350,a,b", "$TXQRV,,a,b", "$TXQRV,x,a,b", "$TXQRV,350x,a,b",
          "$TXQRV,-350,a,b", "$TXQRV,99999999999,a,b", "$TXQRV,", "$TXQRV", "", "junk", "\n"})
        engine.plugin.processUdpDatagram(datagram);
    EXPECT_EQ(testlog::lines().size(), before);
    const QString prefix =
        QStringLiteral("CSVP_WebInterface::HandleTXQRVDatagrams - INPUT: $TXQRV,350: ");
    for (const char* datagram : {"$TXQRV,350,,cast.ssp", "$TXQRV,350", "$TXQRV,350,"}) {
        engine.plugin.processUdpDatagram(datagram);
        EXPECT_TRUE(
            testlog::hasLine(prefix + QStringLiteral("No file path\n") + QLatin1String(datagram)));
    }
    for (const char* datagram : {"$TXQRV,350,x,", "$TXQRV,350,x"}) {
        engine.plugin.processUdpDatagram(datagram);
        EXPECT_TRUE(testlog::hasLine(prefix + QStringLiteral("No file identifier string\n") +
                                     QLatin1String(datagram)));
    }
    EXPECT_TRUE(peer.received(0).isEmpty());
    EXPECT_TRUE(packets.isEmpty());
}

TEST(UdpInput, ABurstWithJunkInItIsReadToItsEnd)
{
    const Peer peer; // that no other test's peer gets the acknowledgements
    ASSERT_TRUE(peer.isBound());
    const QString listening =
        QStringLiteral("SVP Editor - INFO - listening for input on udp port 15060");
    auto heard = std::make_unique<Engine>();
    // The port is one for the whole machine; another engine may hold it for its while.
    for (int i = 0; i < 60 && !testlog::hasLine(listening); ++i) {
        heard.reset();
        QThread::msleep(500);
        heard = std::make_unique<Engine>();
    }
    if (!testlog::hasLine(listening))
        GTEST_SKIP() << "port 15060 is held by another process";
    Engine& engine = *heard;
    engine.folder.writeProfile(QStringLiteral("x.asvp"), asvp({"0 1500", "1 1500"}));
    int opened = 0;
    QObject::connect(&engine.plugin, &CSVP_WebInterface::sendWSPacket, &engine.plugin,
                     [&opened](const QString&, const QByteArray&) { ++opened; });
    QUdpSocket sender;
    const QHostAddress local(QHostAddress::LocalHost);
    int requests = 0;
    for (int i = 0; i < 10000; ++i) {
        QByteArray datagram =
            i % 10 == 0 ? QByteArray("$TXQRV,350,p,x") : QByteArray(i % 700, char(i));
        requests += i % 10 == 0 ? 1 : 0;
        sender.writeDatagram(datagram, local, 15060);
        // The system drops what its buffer cannot hold; the burst must not outrun it.
        if (i % 50 == 0) {
            ASSERT_TRUE(waitFor([&] { return opened == requests; })) << i;
        }
    }
    EXPECT_TRUE(waitFor([&] { return opened == requests; }));
    EXPECT_EQ(opened, 1000);
}

TEST(UdpInput, ASocketWithoutAPortHasNothingToRead)
{
    QUdpSocket other;
    other.bind(CSVP_WebInterface::inputPort, QUdpSocket::DontShareAddress);
    Engine engine;
    engine.plugin.readPendingDatagrams();
    EXPECT_TRUE(
        testlog::hasLine(QStringLiteral("SVP Editor - WARNING - failed to bind udp port - 15060")));
}
