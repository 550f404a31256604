#include "tests/settings/tokenfixture.h"
#include "tests/support/log.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>

// The store as the engine has it, with its own waiting.
TEST_F(TokenStoreTest, ALockHeldForTenSecondsFailsALookup)
{
    writeMirror(mirrorText(R"({"Name":"A","Type":1,"Value":1})"));
    const QByteArray before = mirror();
    QDir().mkpath(QFileInfo(paths.lock).path());
    TokenProcess other({QStringLiteral("hold"), paths.lock});
    ASSERT_TRUE(other.waitUntilReady());
    testlog::expectWarning(QStringLiteral("File lock failed. Giving up after 100 tries"));
    testlog::expectWarning(QStringLiteral("CGetToken - read failed"));

    settings::TokenStore patient;
    qint64 number = 7;
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(patient.integerValue(QStringLiteral("A"), number), settings::TokenStatus::Unreadable);
    EXPECT_GE(clock.elapsed(), 9900);
    EXPECT_LT(clock.elapsed(), 20000);
    EXPECT_EQ(number, 7);
    EXPECT_EQ(testlog::lines().count(QStringLiteral("File lock failed. Sleep some")), 100);
    EXPECT_EQ(testlog::lines().count(QStringLiteral("File lock failed. Giving up after 100 tries")),
              1);
    EXPECT_EQ(mirror(), before);
    EXPECT_TRUE(other.finish());
}
