#include "tests/support/enginefixture.h"
#include "tests/support/requests.h"
#include "tests/support/udpport.h"

#include <QDir>
#include <QUdpSocket>
#include <gtest/gtest.h>
#ifdef Q_OS_WIN
#include <qt_windows.h>
#endif

namespace {

const QString action = QStringLiteral("SendSVPtoQRV");
const QString invalid = QStringLiteral("Invalid parameters.");
const QString faulty = QStringLiteral("Profile contains errors and will not be sent to QRV.");

/// The survey system's end: what arrives at its port.
class Receiver
{
  public:
    Receiver() : m_isBound(bindPatiently(m_socket, 14002)) {}

    bool isBound() const { return m_isBound; }

    QByteArray next(int timeout = 30000)
    {
        if (!m_socket.hasPendingDatagrams())
            m_socket.waitForReadyRead(timeout);
        if (!m_socket.hasPendingDatagrams())
            return {};
        QByteArray bytes(int(m_socket.pendingDatagramSize()), '\0');
        m_socket.readDatagram(bytes.data(), bytes.size());
        return bytes;
    }

  private:
    QUdpSocket m_socket;
    bool m_isBound;
};

QByteArray withChecksum(const QByteArray& text)
{
    unsigned sum = 0;
    for (int i = 1; i < text.size() - 1; ++i)
        sum ^= static_cast<unsigned char>(text[i]);
    char digits[8];
    std::snprintf(digits, sizeof digits, "%02X", sum);
    return text + QByteArray(digits) + "\\\r\n";
}

QString reply(Engine& engine, const QStringList& pieces)
{
    return outcome(engine.request(action, requests::join(pieces)));
}

} // namespace

TEST(SendAction, TheFullFormGoesOutByteForByte)
{
    Receiver receiver;
    ASSERT_TRUE(receiver.isBound());
    Engine engine;
    const QJsonObject answer = engine.request(action, requests::join(requests::fullSend()));
    EXPECT_EQ(answer, (QJsonObject{{QStringLiteral("whoami"), action},
                                   {QStringLiteral("result"), QStringLiteral("SUCCESS")},
                                   {QStringLiteral("file"), QStringLiteral("cast.ssp")},
                                   {QStringLiteral("svptype"), QStringLiteral("S00")}}));
    EXPECT_EQ(
        receiver.next(),
        withChecksum("$QZS00,00000,3,123456,15,11,2026,0.00,1500.00,,,\r\n10.25,1490.50,,,\r\n"
                     "12000.00,1550.00,,,\r\n3330.000000,S,530.000000,E,,,a comment %1*"));
}

TEST(SendAction, TheShortFormGoesOutWithItsEndMark)
{
    Receiver receiver;
    ASSERT_TRUE(receiver.isBound());
    Engine engine;
    const QJsonObject answer = engine.request(action, requests::join(requests::shortSend()));
    EXPECT_EQ(outcome(answer), QLatin1String("SUCCESS"));
    EXPECT_EQ(answer.value(QLatin1String("file")).toString(), QLatin1String("cast.asvp"));
    EXPECT_EQ(answer.value(QLatin1String("svptype")).toString(), QLatin1String("S00"));
    const QByteArray expected =
        withChecksum("$QZS00,00001,0003,123456,15,11,2026,0,1500,,,\r\n10.25,1490.5,,,\r\n"
                     "12000,1550,,,\r\n3330.00000,S,0530.00000,E,,,PE*") +
        QByteArray(1, '\0');
    EXPECT_EQ(receiver.next(), expected);

    QStringList swapped = requests::shortSend();
    swapped.swapItemsAt(2, 3);
    EXPECT_EQ(reply(engine, swapped), QLatin1String("SUCCESS"));
    EXPECT_EQ(receiver.next(), expected);
}

TEST(SendAction, TextsAreCopiedAsTheyStand)
{
    Receiver receiver;
    ASSERT_TRUE(receiver.isBound());
    Engine engine;
    QStringList pieces = requests::changed(requests::fullSend(), 14, QStringLiteral("003"));
    pieces = requests::changed(pieces, 3, QStringLiteral(" 6"));
    EXPECT_EQ(
        engine.request(action, requests::join(pieces)).value(QLatin1String("svptype")).toString(),
        QLatin1String("S 6"));
    EXPECT_TRUE(
        receiver.next().startsWith("$QZS 6,00000,003,123456,15,11,2026,0.00,1500.00,,,40\r\n"));
}

TEST(SendAction, DecimalsFollowTheFilesThatWereOpened)
{
    Receiver receiver;
    ASSERT_TRUE(receiver.isBound());
    Engine engine;
    const auto firstRow = [&] {
        reply(engine, requests::fullSend());
        return receiver.next().split('\n').constFirst().mid(33);
    };
    EXPECT_EQ(firstRow(), "0.00,1500.00,,,\r");
    const auto open = [&engine](const QByteArray& content) {
        engine.folder.writeProfile(QStringLiteral("x.asvp"), content);
        return outcome(
            engine.request(QStringLiteral("SVP_OpenSVP"), QStringLiteral("[x.asvp,asvp]")));
    };
    // Every row counts; a file that does not open does not.
    EXPECT_EQ(open(asvp({"0 1500", "1.1234 1500.1", "2 1500.123"})), QLatin1String("SUCCESS"));
    EXPECT_EQ(firstRow(), "0.0000,1500.000,,,\r");
    EXPECT_NE(open(asvp({"0.123456 1500.123456"})), QLatin1String("SUCCESS"));
    EXPECT_EQ(firstRow(), "0.0000,1500.000,,,\r");
    EXPECT_EQ(open(asvp({"0 1500", "1 1500"})), QLatin1String("SUCCESS"));
    EXPECT_EQ(firstRow(), "0.0000,1500.000,,,\r");
}

TEST(SendAction, RefusalsStandInTheirOrder)
{
    Receiver receiver;
    ASSERT_TRUE(receiver.isBound());
    Engine engine;
    const QStringList full = requests::fullSend();
    const QStringList brief = requests::shortSend();
    const auto lists = [](const QString& speeds, const QString& depths) {
        return speeds + QLatin1Char(';') + depths + QStringLiteral(";0;0;0;0;0");
    };
    struct
    {
        QStringList pieces;
        QString reason;
    } const cases[] = {
        {{}, invalid},
        {brief + full.mid(0, 9), invalid},
        // With its empty pieces dropped it would look like the short form.
        {{QStringLiteral("0"), QStringLiteral("f"), QStringLiteral("1500,1490,9999;5,12000,3"),
          QStringLiteral("0,12000"), QString(), QString(), QStringLiteral("20261115123456"),
          QString(), QString(), QString(), QString(), QString(), QString(), QString(),
          QStringLiteral("3"), QStringLiteral("c")},
         faulty},
        {requests::changed(requests::changed(brief, 2, QStringLiteral("0,12000")), 3,
                           QStringLiteral("1500")),
         faulty},
        {requests::changed(requests::changed(brief, 3, QStringLiteral("0,12000")), 2,
                           QStringLiteral("1500")),
         faulty},
        {full.mid(0, 8), invalid},
        {full.mid(0, 15), invalid},
        {full + QStringList{QStringLiteral("more")}, invalid},
        {requests::changed(brief, 0, QStringLiteral("00")), invalid},
        {requests::changed(brief, 0, QStringLiteral("soundvelocity")), invalid},
        {requests::changed(brief, 2, QStringLiteral("0,10,11998.9")), faulty},
        {requests::changed(brief, 3, QStringLiteral("1500,1490,1399.9")), faulty},
        {requests::changed(brief, 2, QStringLiteral("0,1,2,3,4,5,6,7,8,12000")),
         QStringLiteral("Invalid svp.")},
        {requests::changed(brief, 2, QStringLiteral("0,10,12000,12001")),
         QStringLiteral("Invalid svp.")},
        {requests::changed(brief, 3, QStringLiteral("1500,1490,1550,1550")),
         QStringLiteral("Invalid svp.")},
        {requests::changed(full, 15, QString()), faulty},
        {requests::changed(full, 2,
                           lists(QStringLiteral("1500,1490,1550"), QStringLiteral("0,10,5"))),
         faulty},
        {requests::changed(full, 2, lists(QStringLiteral("1500,1550"), QStringLiteral("0,12000"))),
         QStringLiteral("Wrong svp input.")},
        {requests::changed(
             full, 2, lists(QStringLiteral("1500,1490,1550"), QStringLiteral("0,10,12000,12001"))),
         QStringLiteral("Sample count mismatch or too small.")},
        {requests::changed(full, 14, QStringLiteral("4")),
         QStringLiteral("Stated sample count mismatch.")},
        {requests::changed(full, 14, QStringLiteral("x")),
         QStringLiteral("Stated sample count mismatch.")},
        {requests::changed(full, 3, QStringLiteral("13")), QStringLiteral("No samples extracted.")},
        {requests::changed(full, 3, QStringLiteral("x")), QStringLiteral("SUCCESS")},
    };
    for (const auto& c : cases) {
        engine.plugin.addPendingAlert("look");
        EXPECT_EQ(reply(engine, c.pieces), c.reason) << qPrintable(c.pieces.join(QLatin1Char('*')));
        ASSERT_EQ(engine.packets().size(), 2);
        EXPECT_EQ(engine.packets().at(0).value(QLatin1String("whoami")).toString(), action);
        EXPECT_EQ(engine.packets().at(1).value(QLatin1String("alert")).toString(),
                  QLatin1String("look"));
    }
    // Only the last one of them went out: an identifier that is no number reads as 0.
    EXPECT_TRUE(receiver.next().startsWith("$QZSx,"));
    EXPECT_TRUE(receiver.next(100).isEmpty());
}

TEST(SendAction, AnIllegalIdentifierIsNotAnswered)
{
    Engine engine;
    for (const char* identifier : {"8", "x", "-1", "54", "1.0"}) {
        engine.request(action, requests::join(requests::changed(requests::fullSend(), 0,
                                                                QLatin1String(identifier))));
        EXPECT_TRUE(engine.packets().isEmpty()) << identifier;
    }
    engine.plugin.addPendingAlert("look");
    engine.request(action,
                   requests::join(requests::changed(requests::fullSend(), 0, QStringLiteral("8"))));
    ASSERT_EQ(engine.packets().size(), 1);
    EXPECT_EQ(engine.packets().constFirst().value(QLatin1String("whoami")).toString(),
              QLatin1String("SVPAlert"));
}

TEST(SendAction, TooLargeADatagramIsLogged)
{
    Engine engine;
    QStringList depths;
    QStringList speeds;
    for (int i = 0; i < 20000; ++i) {
        depths.append(QString::number(i));
        speeds.append(QStringLiteral("1500"));
    }
    QStringList pieces =
        requests::changed(requests::fullSend(), 2,
                          speeds.join(QLatin1Char(',')) + QLatin1Char(';') +
                              depths.join(QLatin1Char(',')) + QStringLiteral(";0;0;0;0;0"));
    // The failure is not told to the front end: nothing on this way is ever confirmed.
    EXPECT_EQ(reply(engine, requests::changed(pieces, 14, QStringLiteral("20000"))),
              QLatin1String("SUCCESS"));
    EXPECT_EQ(testlog::lines().filter(QStringLiteral("bytes not sent:")).size(), 1);
}

TEST(SendAction, SurplusSpeedsDoNotCount)
{
    // Two samples may be sent, but not saved.
    Receiver receiver;
    ASSERT_TRUE(receiver.isBound());
    Engine engine;
    const QString lists = QStringLiteral("1500,1510,1550;0,12000;0;0;0;0;0");
    EXPECT_EQ(reply(engine, requests::changed(requests::changed(requests::fullSend(), 2, lists), 14,
                                              QStringLiteral("2"))),
              QLatin1String("SUCCESS"));
    EXPECT_TRUE(receiver.next().contains("2026,0.00,1500.00,,,\r\n12000.00,1510.00,,,\r\n3330."));
    EXPECT_EQ(outcome(engine.request(QStringLiteral("SVP_Save"),
                                     requests::join(requests::changed(
                                         requests::changed(requests::datagramSave(), 0, lists), 13,
                                         QStringLiteral("2"))))),
              QLatin1String("Sample count mismatch or too small."));
}

TEST(SendAction, ManySendsLeaveTheSystemItsSockets)
{
    Receiver receiver;
    ASSERT_TRUE(receiver.isBound());
    Engine engine;
    const auto openDescriptors = [] {
#ifdef Q_OS_WIN
        DWORD count = 0;
        GetProcessHandleCount(GetCurrentProcess(), &count);
        return int(count);
#else
        return QDir(QStringLiteral("/proc/self/fd"))
            .entryList(QDir::AllEntries | QDir::System)
            .size();
#endif
    };
    // The first one makes what Qt keeps for the thread.
    ASSERT_EQ(reply(engine, requests::fullSend()), QLatin1String("SUCCESS"));
    ASSERT_FALSE(receiver.next().isEmpty());
    const int before = openDescriptors();
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(reply(engine, requests::fullSend()), QLatin1String("SUCCESS"));
        ASSERT_FALSE(receiver.next().isEmpty()) << i;
    }
    EXPECT_EQ(openDescriptors(), before);
}
