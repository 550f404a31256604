// The engine among the programs of a Windows machine.

#include "tests/support/enginefixture.h"
#include "tests/support/heldfile.h"
#include "tests/support/requests.h"

#include <QDir>
#include <gtest/gtest.h>

namespace {

const QString saveAs = QStringLiteral("SVP_SaveAs");
const QString save = QStringLiteral("SVP_Save");
const QString openFile = QStringLiteral("SVP_OpenSVP");

} // namespace

TEST(WindowsFiles, ACastThatAnotherProgramHoldsStaysAsItIs)
{
    Engine engine;
    ASSERT_EQ(outcome(engine.request(saveAs, requests::join(requests::asvpSave()))),
              QLatin1String("SUCCESS"));
    ASSERT_EQ(outcome(engine.request(save, requests::join(requests::datagramSave()))),
              QLatin1String("SUCCESS"));
    const QString cast = engine.folder.profile(QStringLiteral("cast.asvp"));
    const QString datagram = engine.folder.profile(QStringLiteral("cast.ssp"));
    const QByteArray castBefore = bytesOf(cast);
    const QByteArray datagramBefore = bytesOf(datagram);
    const QStringList filesBefore = QDir(engine.folder.profile(QString())).entryList(QDir::Files);
    const QStringList changed = requests::changed(
        requests::asvpSave(), 0, QStringLiteral("0,1501,10.256,1490.5,12000,1550"));
    {
        const HeldFile heldCast(cast);
        const HeldFile heldDatagram(datagram);
        ASSERT_TRUE(heldCast.isHeld() && heldDatagram.isHeld());
        EXPECT_EQ(outcome(engine.request(saveAs, requests::join(changed))),
                  QLatin1String("Error writing file."));
        EXPECT_EQ(outcome(engine.request(save, requests::join(requests::datagramSave()))),
                  QLatin1String("Error saving file."));
        EXPECT_FALSE(engine.plugin.lastErrorText().isEmpty());
        EXPECT_EQ(bytesOf(cast), castBefore);
        EXPECT_EQ(bytesOf(datagram), datagramBefore);
        EXPECT_EQ(QDir(engine.folder.profile(QString())).entryList(QDir::Files), filesBefore);
        // It can be looked at meanwhile.
        EXPECT_EQ(outcome(engine.request(openFile, QStringLiteral("[cast.asvp,asvp]"))),
                  QLatin1String("SUCCESS"));
    }
    EXPECT_EQ(outcome(engine.request(saveAs, requests::join(changed))), QLatin1String("SUCCESS"));
    EXPECT_NE(bytesOf(cast), castBefore);
}

TEST(WindowsFiles, NamesOfDevicesAreNoCasts)
{
    Engine engine;
    const QStringList before = QDir(engine.folder.profile(QString())).entryList(QDir::Files);
    for (const char* name : {"NUL", "con", "COM1.x", "cast.asvp:stream", "aux", "a?b", "sub/prn"}) {
        EXPECT_EQ(
            outcome(engine.request(saveAs, requests::join(requests::changed(requests::asvpSave(), 1,
                                                                            QLatin1String(name))))),
            QLatin1String("Error writing file."))
            << name;
        EXPECT_EQ(outcome(engine.request(
                      openFile, QStringLiteral("[%1.asvp,asvp]").arg(QLatin1String(name)))),
                  QLatin1String("File does not exist or cannot be opened for reading"))
            << name;
    }
    EXPECT_EQ(QDir(engine.folder.profile(QString())).entryList(QDir::Files), before);
}
